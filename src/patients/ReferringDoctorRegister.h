#pragma once

#include "patients/ReferringDoctor.h"

#include <QList>
#include <QString>

#include <optional>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// Saving and deleting referring doctors. Every question and message goes through the
// Prompter; each save or delete is one transaction, and its statements go to the SQL log
// (when logging is on) only after the commit.
//
// Patients name their referring and family doctors by billing number, so a corrected number
// takes those patients along. Claims keep the number they were billed with.
class ReferringDoctorRegister {
public:
    static inline const QString kTitle = QStringLiteral("Error");
    static inline const QString kHeading =
        QStringLiteral("Cannot save this referring doctor due to the following problem(s):");
    static inline const QString kDeleteTitle = QStringLiteral("Delete Referring Doctor");
    static inline const QString kRenumberTitle = QStringLiteral("Change Billing Number");
    static inline const QString kLeaveTitle = QStringLiteral("Referring doctor changed");

    struct Problem {
        ReferringDoctor::Field field;
        QString text;
    };

    ReferringDoctorRegister(Database& db, Prompter& prompter, const SqlLog& log);

    std::optional<ReferringDoctor> load(const QString& providerNum);

    // The problems of a normalised doctor, one each. savedNum is the number the row is stored
    // under (empty for a new doctor): the row itself is no duplicate.
    QList<Problem> problems(const ReferringDoctor& doctor, const QString& savedNum);

    // Saves the doctor as typed (normalised first); savedNum as for problems(). A different
    // number asks first (default No). Problems are shown at once under kHeading and nothing
    // is written. Returns the doctor as stored, or none; badField() then names the first field
    // to correct, if a check refused.
    std::optional<ReferringDoctor> save(const ReferringDoctor& typed, const QString& savedNum);
    std::optional<ReferringDoctor::Field> badField() const { return m_badField; }

    // Asks (default No) and deletes the row. True when deleted.
    bool remove(const QString& providerNum);

private:
    // The work of save() and remove(); a refused statement throws, and the transaction
    // rolls back on the way out.
    std::optional<ReferringDoctor> trySave(const ReferringDoctor& doctor, const QString& savedNum);
    bool tryRemove(const QString& providerNum);

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    std::optional<ReferringDoctor::Field> m_badField;
};

}  // namespace brimsett
