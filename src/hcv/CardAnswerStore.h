#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

#include <optional>

namespace brimsett {
class Database;
class SqlLog;
}  // namespace brimsett

namespace brimsett::hcv {

// An answer about one card, however it came (a real-time file or the overnight file).
struct CardAnswer {
    QString code;
    QDateTime checkedAt;  // the answer file's own modification time
    bool hasDetails = false;
    QString firstName;
    QString lastName;
    QString sex;
    QDate dob;  // written only when valid
};

// The patient a health number belongs to: the lowest PatientID whose HealthNum equals the
// number with its trailing blanks removed; none when no patient has it.
std::optional<qint64> patientOfHealthNumber(Database& db, const QString& healthNum);

// Stores the answer on the patient in one transaction: `Response`, `Status` (its class),
// `HNCheckDate`, and with details `FName`, `LName`, `Sex` and a valid `DOB`. The statement
// goes to the SQL log after the commit. Throws DbError (rolled back) when refused.
void storeAnswer(Database& db, const SqlLog& log, qint64 patientId, const CardAnswer& answer);

// The same inside a transaction the caller commits: the statement for the SQL log is returned,
// to be written once the caller's commit has made it true.
QString storeAnswerUnlogged(Database& db, qint64 patientId, const CardAnswer& answer);

}  // namespace brimsett::hcv
