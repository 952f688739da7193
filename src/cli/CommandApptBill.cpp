#include "appointments/AppointmentStore.h"
#include "appointments/AppointmentTime.h"
#include "appointments/BookBilling.h"
#include "cli/CliClaimSave.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"

namespace brimsett {

namespace {

using namespace appointments;

// A claim for a booked visit, as billing it from the book and saving at the desk would make
// it; the save marks the visit billed.
int billAppointment(CliSession& session, const CliArgs& args) {
    bool ok = false;
    const qint64 appId = args.argument(0).toLongLong(&ok);
    if (!ok) {
        return args.usageError(
            QStringLiteral("%1 is not an appointment number").arg(args.argument(0)));
    }
    QList<cli::TypedItem> items;
    QString problem;
    if (!cli::readItems(args.positional().mid(1), items, problem)) {
        return args.usageError(problem);
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const std::optional<BillingStart> start = startBilling(session.db(), session.prompter(), appId);
    if (!start) {
        return 1;
    }
    if (items.isEmpty()) {
        if (start->serviceCode.isEmpty()) {
            return fail(QStringLiteral("appointment %1 has no service code: give the ITEM to bill")
                            .arg(appId));
        }
        items << cli::TypedItem{start->serviceCode,
                                ItemEntry{QString(), start->diagCode, QString(), QString(),
                                          datetext::slashed(start->serviceDate)},
                                QString()};
    }
    if (const int status = cli::saveClaim(session, args, start->patientId, start->doctorId, items);
        status != 0) {
        return status;
    }
    // Only an item on the visit's own date marks it; say so rather than leave it unnoticed.
    const std::optional<Appointment> after = AppointmentStore(session.db()).load(appId);
    if (after && after->status != kStatusBilled) {
        session.prompter().tell(
            QStringLiteral("Brimsett"),
            {QStringLiteral("Appointment %1 is not marked 'Billed': no item is on %2.")
                 .arg(appId)
                 .arg(datetext::slashed(start->serviceDate))},
            Icon::Warning);
    }
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("appt bill"),
    .summary = QStringLiteral("save a claim for an appointment and mark it billed"),
    .arguments = {{QStringLiteral("APPID"), QStringLiteral("the appointment")},
                  {QStringLiteral("ITEM"),
                   QStringLiteral("CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE], the code as typed"),
                   CliArgument::Count::AnyNumber}},
    .options = cli::claimHeaderOptions(),
    .details = {QStringLiteral("Without ITEM the claim bills the appointment's service and "
                               "diagnostic codes on its date, at the schedule's fee."),
                QStringLiteral("An appointment already 'Billed' is asked about first: --yes or "
                               "an answer on standard input.")},
    .run = billAppointment,
});

}  // namespace

}  // namespace brimsett
