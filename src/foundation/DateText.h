#pragma once

#include <QDate>
#include <QDateTime>
#include <QString>

// The date texts the program writes and reads: "YYYYMMDD" in ministry files and
// comparisons, "YYYY/MM/DD" on screens and in settings, and the long date of headings.
namespace brimsett::datetext {

QString yyyymmdd(const QDate& date);     // "20261122"; empty for an invalid date
QString slashed(const QDate& date);      // "2026/11/22"; empty for an invalid date
QString longDate(const QDate& date);     // "Sunday, November 22, 2026"
QString stamp(const QDateTime& moment);  // "20261122-143005" for file names

// Strict readers: an invalid QDate for anything that is not exactly the form.
QDate fromYyyymmdd(const QString& text);
QDate fromSlashed(const QString& text);

// A two-digit year by the window of the office's older files and cards: 00 to 29 are this
// century's, 30 to 99 the last one's.
int fullYear(int twoDigitYear);
// "YYMMDD" with the year by that window; an invalid QDate for anything else.
QDate fromYymmdd(const QString& text);

// The stored forms ("YYYY-MM-DD", "YYYY-MM-DD HH:MM:SS").
QString isoDate(const QDate& date);
QString isoDateTime(const QDateTime& moment);

}  // namespace brimsett::datetext
