#pragma once

#include "reports/Report.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace brimsett {
class Database;
class SqlLog;
}  // namespace brimsett

namespace brimsett::hcv {

// One line of the ministry's overnight answer file: health number (1-10), version code
// (11-12), response code (13-14), the echoed identifier (15-18), sex (19), birth date
// (20-27), expiry (28-35), last name (36-65), first name (66-85), second name (86-105).
struct OvernightAnswer {
    QString healthNum;
    QString versionCode;
    QString code;
    QString sex;
    QDate dob;
    QDate expiry;
    QString lastName;
    QString firstName;
    QString secondName;
    bool hasDetails() const { return !lastName.isEmpty() || !firstName.isEmpty(); }
};

// None for a line that is not an answer (shorter than the code, or a health number that is
// not ten digits).
std::optional<OvernightAnswer> parseOvernightLine(const QString& line);

struct AppliedOvernight {
    OvernightAnswer answer;
    std::optional<qint64> patientId;  // none: no patient has the number
    int status = 0;
    QString message;  // ResponseMessage(code)
    QString name;     // the patient's "Last, First" as the register holds it after the answer
};

struct OvernightResult {
    QList<AppliedOvernight> cards;
    int skippedLines = 0;  // lines that were not answers
    QString problem;       // the file could not be read (nothing applied)
};

// Applies an overnight answer file: each card's answer is stored on its patient exactly as a
// real-time answer is (storeAnswer, `HNCheckDate` from the file's modification time), all in
// one transaction; cards of no patient are reported, not stored.
OvernightResult applyOvernightFile(Database& db, const SqlLog& log, const QString& path);

// "Overnight Health Card Validation - Failed Cards": the cards whose class isRejected() and
// those of no patient, with ID, name, health card, code and message, and their count.
reports::Report overnightFailureReport(const OvernightResult& result, const QString& fileName,
                                       const QDate& printDate);

}  // namespace brimsett::hcv
