#pragma once

#include <QDate>
#include <QString>

#include <optional>

namespace brimsett {
class Database;
class Prompter;
}  // namespace brimsett

// Billing an appointment from the book: what claim entry is opened with.
namespace brimsett::appointments {

struct BillingStart {
    qint64 appId = 0;
    qint64 patientId = 0;
    QString doctorId;
    QDate serviceDate;
    QString serviceCode;  // the appointment's, for the first row of the claim
    QString diagCode;
};

// Reads the appointment and its patient. An appointment already "Billed" asks first
// ("This appointment is already marked as 'Billed'." / "Are you sure you want to bill it?",
// default No). None when the user said No or the appointment cannot be billed (gone, or no
// registered patient), the reason told through the prompter. Writes nothing: the claim's
// save marks the visit billed.
std::optional<BillingStart> startBilling(Database& db, Prompter& prompter, qint64 appId);

}  // namespace brimsett::appointments
