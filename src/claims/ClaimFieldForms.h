#pragma once

#include <QString>

// The forms of the coded fields of a claim and its items, as the ministry's claim file
// carries them. Blanks around a value are the caller's to trim.
namespace brimsett::claimform {

// A physician's billing number: six digits.
bool isProviderNumber(const QString& text);
// Numbers "99" + four digits are not given to physicians; the ministry refuses them as the
// referring doctor.
bool isReservedProviderNumber(const QString& text);
// A facility (master) number: four letters or digits, as the patient register keeps it.
bool isFacilityNumber(const QString& text);
// A referring laboratory's licence number: four digits.
bool isRefLabNumber(const QString& text);
// A diagnostic code: three digits, or four where the code list carries a fourth.
bool isDiagnosticCode(const QString& text);
// An item's code: the four characters of the schedule's fee code and the suffix letter
// "A", "B" or "C" that says whose fee is claimed. Whether the fee code exists is the
// schedule's to say.
bool isScheduleItemCode(const QString& text);

}  // namespace brimsett::claimform
