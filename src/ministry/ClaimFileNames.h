#pragma once

#include <QDate>
#include <QString>

namespace brimsett {

class Database;
class SettingsStore;

// Naming new claim files so that no two preparations, on any number of programs, ever give
// the same name, and an existing file is never written over.
namespace claimfilenames {

// "H", a month letter "A" to "L", a provider or group number, ".", three digits.
bool isClaimFileName(const QString& name);

// Whether a batch was recorded under this file name, in any case.
bool nameInBatches(Database& db, const QString& name);

struct Taken {
    QString fileName;
    int counter = 0;  // the "DiskIDCounter" it took
};

// The next claim file name of the stem, with its counter saved at once. Called inside the
// preparation's write transaction: that transaction holds the office's write lock, so two
// preparations take names in turn and each sees the other's batches and files. The counter
// is one past the newest of the setting, the newest batch's file and the newest claim file
// in the folder (a program that read its settings earlier, or lost a race for them, cannot
// set it back), and names in use on disk or in `batches` are passed over.
Taken take(Database& db, SettingsStore& store, const QString& folder, const QDate& today,
           const QString& stem);

// Gives a counter back when no file came of it, but only while it is still the newest:
// another preparation may have taken the next one meanwhile.
void giveBack(SettingsStore& store, int counter);

// The counter nearest to `near` whose file name ends in the three digits `extension`.
int counterWithExtension(int near, int extension);

}  // namespace claimfilenames
}  // namespace brimsett
