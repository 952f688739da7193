#include "appointments/BookBilling.h"

#include "appointments/AppointmentStore.h"
#include "appointments/AppointmentTime.h"
#include "foundation/Database.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"

namespace brimsett::appointments {

namespace {

// The book's messages carry the program's name, as its other questions do.
const QString kTitle = QStringLiteral("Brimsett");

bool isRegistered(Database& db, qint64 patientId) {
    return db.scalar(QStringLiteral("Select Count(*) From patients Where PatientID=?"), {patientId},
                     QStringLiteral("reading patient %1").arg(patientId))
               .toLongLong() > 0;
}

// Why the appointment cannot be billed at all; empty when it can. Told before any question,
// so the desk is not asked about a visit that is refused anyway.
QStringList refusal(Database& db, const std::optional<Appointment>& a, qint64 appId) {
    if (!a || a->deleted) {
        return {QStringLiteral("Appointment %1 is not on file.").arg(appId)};
    }
    if (!a->patientId || !isRegistered(db, *a->patientId)) {
        // The claim needs the patient's health number; a caller booked by name has none yet.
        return {QStringLiteral("This appointment has no registered patient."),
                QStringLiteral("Enter the patient's number in its details first, then bill it.")};
    }
    return {};
}

}  // namespace

std::optional<BillingStart> startBilling(Database& db, Prompter& prompter, qint64 appId) {
    std::optional<Appointment> a;
    try {
        a = AppointmentStore(db).load(appId);
        if (const QStringList why = refusal(db, a, appId); !why.isEmpty()) {
            prompter.tell(kTitle, why, Icon::Information);
            return std::nullopt;
        }
    } catch (const DbError& e) {
        prompter.error({QStringLiteral("The appointment could not be read."), e.message()});
        return std::nullopt;
    }
    if (a->status == kStatusBilled &&
        !prompter.confirm(kTitle,
                          {QStringLiteral("This appointment is already marked as 'Billed'."),
                           QStringLiteral("Are you sure you want to bill it?")})) {
        return std::nullopt;
    }
    // A late cancellation may still be charged to the patient, but never by a slip of the key.
    if (a->status == kStatusCancelled &&
        !prompter.confirm(kTitle, {QStringLiteral("This appointment is cancelled."),
                                   QStringLiteral("Are you sure you want to bill it?")})) {
        return std::nullopt;
    }
    BillingStart start;
    start.appId = a->appId;
    start.patientId = *a->patientId;
    start.doctorId = a->doctorId;
    start.serviceDate = a->appDate;
    start.serviceCode = a->serviceCode.trimmed();
    start.diagCode = a->diagCode.trimmed();
    return start;
}

}  // namespace brimsett::appointments
