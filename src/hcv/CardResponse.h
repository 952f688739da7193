#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

namespace brimsett::hcv {

// One answer line as the old program cut it (see parseResponseLine).
struct CardResponse {
    QString installation;  // field 1, a leading double quote removed
    QString healthNum;     // positions 10 to 19 of the echoed record, as cut
    QString code;          // the two characters after the next "|"
    bool hasDetails = false;
    QString versionCode;
    QString lastName;   // trimmed
    QString firstName;  // trimmed
    QString sex;        // as received
    QDate dob;          // invalid when absent or not a date
};

// Cuts one answer line: the identifier up to the first "|"; the health number at positions
// 10 to 19 of the rest; the code after the rest's next "|"; then, past the code, its "|" and
// one unused field, the card details when anything remains (version code, last name, first
// name, sex, birth date "yyyymmdd", each ended by "|"). A line too short for a cut leaves
// that field and the ones after it empty; nothing here fails.
CardResponse parseResponseLine(const QString& line);

// The first line of a file, cut as above; all empty when the file cannot be read.
CardResponse readResponseFile(const QString& path);

// The five lines of the "TW HCV" message:
// "HN: n VC: v", "Name: last, first", "DOB: yyyy/mm/dd Sex: s", "Response Code: c",
// "Response Message: " + ResponseMessage(c).
QStringList answerLines(const QString& healthNum, const QString& versionCode,
                        const QString& lastName, const QString& firstName, const QDate& dob,
                        const QString& sex, const QString& code);
QStringList answerLines(const CardResponse& response);

}  // namespace brimsett::hcv
