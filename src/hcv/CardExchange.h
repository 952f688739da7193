#pragma once

#include "hcv/CardResponse.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>

namespace brimsett {
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
}  // namespace brimsett

namespace brimsett::hcv {

// One answer file taken by a poll.
struct PolledAnswer {
    enum class What {
        Applied,             // stored on its patient, the file deleted
        Archived,            // no patient has the number: moved to "Archive"
        AppliedFromArchive,  // an archived answer whose patient now exists
    };
    What what = What::Applied;
    QString fileName;
    CardResponse response;
    QStringList message;  // the five lines told under "TW HCV"
};

// The real-time card check: request files written into the outgoing folder, answer files
// taken from the incoming folder and its "Archive", stored on the patient and told under
// "TW HCV". One per running program; the main screen owns the timers and hands them in.
class CardExchange {
public:
    struct Hooks {
        std::function<void()> startWait;  // the one-shot wait for an answer
        std::function<void()> stopWait;
        // An answer was stored on the patient with this health number (trimmed).
        std::function<void(const QString& healthNum)> answerStored;
    };
    enum class Outcome {
        Written,        // path holds the request file
        AnsweredToday,  // the card was answered today and the request was not forced
        Failed,         // the file could not be written (told why)
    };
    struct RequestResult {
        Outcome outcome = Outcome::Failed;
        QString path;
        bool patientFound = false;  // the wait was started only then
    };

    CardExchange(Database& db, const SettingsStore& store, const Clock& clock, Prompter& prompter,
                 const SqlLog& log, QString officeFolder, Hooks hooks = {});

    // "TCP1" is read once, when the program starts; the command line turns it on itself.
    bool pollingOn() const { return m_pollingOn; }
    void setPollingOn(bool on) { m_pollingOn = on; }
    bool awaitingAnswer() const { return m_awaiting; }

    // Writes the request for one card (created owner-only, whole or not at all), unless its
    // patient was answered today and force is false. Sets the waiting flag and, when the
    // number is a patient's, starts the wait.
    RequestResult RequestCardCheck(const QString& healthNum, const QString& versionCode,
                                   bool force);

    // With polling on: every answer file of the incoming folder, then of its "Archive", in
    // name order. Answers of this installation are stored and their files deleted (or moved
    // to "Archive" when no patient has the number); other installations' files are left
    // where they are. Each answer taken is told under "TW HCV". A file that cannot be read
    // gives empty fields and the poll goes on. Nothing happens with polling off.
    QList<PolledAnswer> PollCardResponses();

    // The wait ran out: with an answer still awaited the user is told "An Error occured with
    // your HCV service. Please call technical support."; the flag is cleared either way.
    void waitExpired();

private:
    // Stores an answer on its patient, then deletes its file and ends the wait.
    void storeFrom(qint64 patientId, const CardResponse& response, const QString& path);

    Database& m_db;
    const SettingsStore& m_store;
    const Clock& m_clock;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QString m_office;
    Hooks m_hooks;
    bool m_pollingOn = false;
    bool m_awaiting = false;
    QString m_folderProblem;  // the answer folder's problem last told
    // Answer files whose storing failed and was told: a poll every few seconds must not tell
    // the same failure again while the file waits for the database to take it.
    QSet<QString> m_toldFailures;
    void failed(const QString& path, const QString& problem);
};

}  // namespace brimsett::hcv
