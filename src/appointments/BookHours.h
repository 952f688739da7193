#pragma once

#include <QString>

#include <optional>

namespace brimsett {
class SettingsStore;
struct AppSettings;
}  // namespace brimsett

// The hours the appointment book shows and the step of its rows.
namespace brimsett::appointments {

// Whole hours of the day, 0 to 23, both shown: 8 to 17 shows 8:00 am to the end of 5 pm.
struct ShownHours {
    int first = 8;
    int last = 17;

    int firstMinute() const { return first * 60; }
    // The last hour is shown whole, so its bookings are in range up to its 59th minute.
    int lastMinute() const { return last * 60 + 59; }
    bool operator==(const ShownHours&) const = default;
};

// "HourS"/"HourE" of section "Appointment" (this computer's last choice), else the office's
// "HourStart"/"HourEnd"; a range that does not read or runs backwards gives 8 am to 5 pm.
ShownHours readShownHours(const SettingsStore& store, const AppSettings& settings);
// Written back as whole hours, "8" and "17".
void saveShownHours(SettingsStore& store, const ShownHours& hours);
// An hour as the settings may hold it: "8", "17", "08:00 AM", "5 PM", "5pm".
std::optional<int> hourOfText(const QString& text);

// The row step: "TimeSlot" is a choice among 5, 10, 15, 20, 30 and 60 minutes (2 is 15);
// anything else keeps 15.
int slotStepMinutes(int timeSlotChoice);

// The hour box of a time field as typed: an hour of 13 or more becomes "12"; other text is
// kept as typed.
QString typedHour(const QString& text);
// 0..23 from an hour of the 12-hour clock (1 to 12) and its half of the day.
int hour24(int hour12, bool pm);

}  // namespace brimsett::appointments
