#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace brimsett {

class Database;
class SettingsStore;

// Putting a new claim file in the office folder, and clearing away what a preparation that
// was killed part-way left there.
namespace claimfileplacement {

// The folder, under the office folder, that unrecorded claim files are moved to.
inline QString setAsideFolder() {
    return QStringLiteral("SetAside");
}

// Writes the file whole under a hidden temporary name, then links it to its name, which
// fails rather than replace a file already there. Empty when done, otherwise the problem.
QString placeNew(const QByteArray& bytes, const QString& folder, const QString& name);

// Run inside a preparation's write transaction, when no other preparation can be part-way:
// temporary files of a killed preparation are removed, and claim files that have a creation
// record but no batch (their preparation died between placing the file and its commit, so
// their claims stayed pending) are moved to the set-aside folder and their record dropped,
// so they can be neither sent nor confused with the file that will carry those claims.
// Returns the names moved.
QStringList setAsideOrphans(Database& db, SettingsStore& store, const QString& folder);

}  // namespace claimfileplacement
}  // namespace brimsett
