#pragma once

#include "patients/PatientEntry.h"
#include "patients/PatientValidation.h"

#include <QString>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

inline constexpr const char* kNoSuchPatient = "No such patient";

// Loading, numbering, saving and deleting patients. Every question and message goes through
// the Prompter; each save or delete is one transaction, and its statements go to the SQL log
// (when logging is on) only after the commit. A statement the database refuses throws
// DbError, and the transaction is rolled back before it reaches the caller.
//
// Titles of the messages given here: "Patient ID" for the typed-id question and its refusal,
// "Patients" for "Invalid number.", "No such patient" and the unchanged save, "Delete Account"
// for the delete question.
class PatientRegister {
public:
    enum class Outcome {
        Saved,      // written; savedId is the patient's id
        Unchanged,  // the stored row already holds these values; told so, nothing written
        Refused,    // a check failed or a question was answered No; told why, nothing written
    };
    struct SaveResult {
        Outcome outcome = Outcome::Refused;
        qint64 savedId = 0;
    };

    PatientRegister(Database& db, const AppSettings& settings, Prompter& prompter,
                    const Clock& clock, const SqlLog& log);

    // A typed id: a whole number above zero (blanks around it ignored); none otherwise, and
    // the caller says kInvalidNumber.
    static std::optional<qint64> readId(const QString& typed);

    // The stored patient; none when there is no such row (the caller says kNoSuchPatient).
    std::optional<PatientEntry> load(qint64 id);
    bool exists(qint64 id);

    // The id a new patient would get now, for showing on the screen: the highest id (below
    // "NextIDUnder" when that is set) plus one. The save chooses again inside its
    // transaction, so the shown id is a forecast, never a reservation.
    qint64 nextId();

    // A new patient. With entry.patientId typed: "Invalid number." when it is not a number,
    // the "already reserved" refusal when it is taken, otherwise the question whether to use
    // it (No lets the program choose). The id is chosen and the row inserted in one write
    // transaction, so two computers saving at once never get the same id.
    SaveResult saveNew(const PatientEntry& entry);

    // Changes to the stored patient `id` (entry.patientId is not read). Unchanged when the
    // stored row already equals the entry; "No such patient" when the row has gone.
    SaveResult saveChanges(qint64 id, const PatientEntry& entry);

    // Asks ("Delete Account", default No), then deletes the patient, the patient's `claims`
    // and their `items` in one transaction. True when deleted.
    bool deleteAccount(qint64 id);

    PatientValidation& validation() { return m_validation; }

private:
    // The error lines of a duplicate health number found inside the save's transaction.
    QStringList duplicateUnderLock(const PatientEntry& entry, std::optional<qint64> ownId);

    Database& m_db;
    const AppSettings& m_settings;
    Prompter& m_prompter;
    const SqlLog& m_log;
    PatientValidation m_validation;
};

}  // namespace brimsett
