#pragma once

#include <QString>

#include <optional>

// Appointment statuses and the time of day as the book writes it. Times are whole minutes
// since midnight; a day has 1440.
namespace brimsett::appointments {

constexpr int kMinutesPerDay = 1440;

// The book's status names, 0 to 9, spelled as the book has always spelled them
// ("Reschedulled"); a value outside the list has no name.
QString StatusName(int status);
constexpr int kStatusCount = 10;
constexpr int kStatusBilled = 6;
constexpr int kStatusCancelled = 7;

// "12" for hour 0, otherwise ((hour - 1) mod 12) + 1: 12 gives "12", 13 gives "1".
QString Hour12(int hour);
// "am" below hour 12, else "pm".
QString AmPm(int hour);
// The hour right-aligned in two characters, ":", two-digit minutes, " am"/" pm":
// 545 reads " 9:05 am", 720 "12:00 pm".
QString TimeText(int minutes);

// Minutes since midnight from a time as typed: "H:MM" with "am" or "pm" (blanks and case
// free, hour 1 to 12), or "H:MM" on the 24-hour clock (hour 0 to 23). TimeText's own text
// reads back. Nothing for anything else ("13:75", "0:30 am", "9.30").
std::optional<int> parseTimeText(const QString& text);
// What the desk is told when a typed time does not read.
QString invalidTimeProblem(const QString& text);

}  // namespace brimsett::appointments
