#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
class TransferWait;

// The three ways of the choice list, numbered as "SubmitMethod" stores them.
enum class TransferMethod { Disk = 0, DialUp = 1, Folder = 2 };
// Their names in the choice list, in that order.
inline QStringList transferMethodNames() {
    return {QStringLiteral("3.5'' Disk(s)"), QStringLiteral("EDT / Phone Line Dial-Up"),
            QStringLiteral("EDT / Internet")};
}

struct TransferPlaces {
    QString officeFolder;  // the program's folder, ending in "/"
    QString diskFolder;    // stands in for "A:\": removable media or a chosen folder
};

// Handing claim files to the ministry and fetching its answers, by disk or by the
// "EDT / Internet" exchange folders that a transfer agent serves. Every message goes through
// the prompter; a submitted file's batches get their `SubmitDate`.
class ClaimTransfer {
public:
    ClaimTransfer(Database& db, SettingsStore& store, const Clock& clock, Prompter& prompter,
                  TransferWait& wait, const SqlLog& log, TransferPlaces places);

    // Sends one claim file (name without folder, found in the office folder). True when it
    // was handed over and recorded; false when refused, declined or failed (told why).
    bool submit(const QString& fileName, TransferMethod method);

    // Hands one file of the office folder over the chosen way, without a claim file's
    // checks (its records are the caller's). True when it was handed over; otherwise the
    // user was told why, under `title`.
    bool handOver(const QString& fileName, TransferMethod method, const QString& title);

    // Fetches the ministry's waiting answers for a doctor. The files now in the office's
    // "Download" folder (or found on the disk), by name; none when the fetch failed.
    std::optional<QStringList> fetchAnswers(const QString& doctorId, TransferMethod method);

private:
    Database& m_db;
    SettingsStore& m_store;
    const Clock& m_clock;
    Prompter& m_prompter;
    TransferWait& m_wait;
    const SqlLog& m_log;
    TransferPlaces m_places;
};

}  // namespace brimsett
