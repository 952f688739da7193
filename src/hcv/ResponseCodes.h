#pragma once

#include <QString>
#include <QStringList>

// What the provincial register's two-character answer codes mean.
namespace brimsett::hcv {

// The message of a code, with the register's own wording kept ("exists", "Infomration");
// "80" and every unknown code give an empty text.
QString ResponseMessage(const QString& code);

// The result class kept in the patient's `Status`:
//  1  all digits, 50 to 55 (the card passed);
//  2  all digits outside 50..55, not 90 or 99 and not beginning with "9"; or not all digits
//     ("9A".."9M" and anything unknown);
//  4  90 or 99 (the register could not answer);
//  5  all digits outside 50..55, not 90 or 99, beginning with "9".
int statusClass(const QString& code);

// The classes the rejected-card list and the overnight report count as a failed card: 2 and
// 5. Class 4 is the register's own failure to answer, not the card's.
bool isRejected(int status);

// The printed legend under the rejected-card list, worded as it has always been printed.
QStringList legendLines();

}  // namespace brimsett::hcv
