#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"

namespace brimsett {

namespace {

using namespace appointments;

bool readStatus(const CliArgs& args, int& status) {
    bool ok = false;
    status = args.value(QStringLiteral("status")).toInt(&ok);
    return ok;
}

bool readNumber(const CliArgs& args, int i, qint64& number) {
    bool ok = false;
    number = args.argument(i).toLongLong(&ok);
    return ok;
}

int saved(CliSession& session, const DetailsInput& input) {
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    AppointmentBook book(session.db(), session.prompter(), log);
    const std::optional<qint64> appId = book.save(input);
    if (!appId) {
        return 1;
    }
    session.out() << "Appointment " << *appId << "\n";
    return 0;
}

int addAppointment(CliSession& session, const CliArgs& args) {
    const bool caller = args.isSet(QStringLiteral("name")) || args.isSet(QStringLiteral("phone"));
    if (args.isSet(QStringLiteral("patient")) && caller) {
        return args.usageError(QStringLiteral("give either --patient or --name and --phone"));
    }
    DetailsInput in;
    in.status = 1;  // a new booking is "Booked" unless told otherwise
    if (args.isSet(QStringLiteral("status")) && !readStatus(args, in.status)) {
        return args.usageError(QStringLiteral("--status takes a number from 0 to 9"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    Database& db = session.db();
    in.doctorId = args.value(QStringLiteral("doctor"));
    in.date = args.value(QStringLiteral("date"));
    in.time = args.value(QStringLiteral("time"));
    in.slotType = args.value(QStringLiteral("type"));
    bool typeOk = false;
    const int typeId = in.slotType.trimmed().toInt(&typeOk);
    if (const std::optional<SlotType> type = typeOk ? slotTypeById(db, typeId) : std::nullopt) {
        chooseSlotType(in, *type);
    }
    for (const auto& [name, member] :
         {std::pair{"length", &DetailsInput::length},
          std::pair{"service", &DetailsInput::serviceCode},
          std::pair{"diag", &DetailsInput::diagCode}, std::pair{"notes", &DetailsInput::notes},
          std::pair{"name", &DetailsInput::patientName},
          std::pair{"phone", &DetailsInput::patientPhone}}) {
        if (args.isSet(QLatin1String(name))) {
            in.*member = args.value(QLatin1String(name));
        }
    }
    in.patientId = args.value(QStringLiteral("patient"));
    fillFromPatient(db, in);
    return saved(session, in);
}

int setAppointment(CliSession& session, const CliArgs& args) {
    qint64 appId = 0;
    if (!readNumber(args, 0, appId)) {
        return args.usageError(
            QStringLiteral("%1 is not an appointment number").arg(args.argument(0)));
    }
    const QStringList fields = {QStringLiteral("status"), QStringLiteral("notes"),
                                QStringLiteral("time"), QStringLiteral("date"),
                                QStringLiteral("doctor")};
    if (std::none_of(fields.begin(), fields.end(),
                     [&](const QString& f) { return args.isSet(f); })) {
        return args.usageError(QStringLiteral("nothing to change"));
    }
    int status = 0;
    if (args.isSet(QStringLiteral("status")) && !readStatus(args, status)) {
        return args.usageError(QStringLiteral("--status takes a number from 0 to 9"));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const std::optional<Appointment> stored = AppointmentStore(session.db()).load(appId);
    if (!stored) {
        return fail(QStringLiteral("appointment %1 was not found").arg(appId));
    }
    DetailsInput in = DetailsInput::of(*stored);
    if (args.isSet(QStringLiteral("status"))) {
        in.status = status;
    }
    in.notes = args.value(QStringLiteral("notes"), in.notes);
    in.time = args.value(QStringLiteral("time"), in.time);
    in.date = args.value(QStringLiteral("date"), in.date);
    in.doctorId = args.value(QStringLiteral("doctor"), in.doctorId);
    return saved(session, in);
}

int showAppointment(CliSession& session, const CliArgs& args) {
    qint64 appId = 0;
    if (!readNumber(args, 0, appId)) {
        return args.usageError(
            QStringLiteral("%1 is not an appointment number").arg(args.argument(0)));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    AppointmentStore store(session.db());
    const std::optional<Appointment> found = store.load(appId);
    if (!found) {
        return fail(QStringLiteral("appointment %1 was not found").arg(appId));
    }
    const Appointment& a = *found;
    QTextStream& out = session.out();
    out << "Appointment: " << a.appId << "\nDoctor: " << a.doctorId
        << "\nDate: " << datetext::slashed(a.appDate) << "\nTime: " << TimeText(a.appTime).trimmed()
        << "\nLength: " << a.appLength << "\nType: " << a.slotType << " " << a.slotName
        << "\nStatus: " << a.status << " " << detailsStatusName(a.status) << "\nPatient: ";
    if (a.patientId) {
        out << *a.patientId << " " << a.patientLine << "  " << a.patientHPhone
            << "  DOB: " << datetext::slashed(a.patientDob);
    }
    out << "\nName: " << a.patientName << "\nPhone: " << a.patientPhone
        << "\nService: " << a.serviceCode << "\nDiagnosis: " << a.diagCode << "\nNotes: " << a.notes
        << "\n";
    if (store.isRequisition(a.appId)) {
        out << "Read-only: made by the lab-requisition program\n";
    }
    return 0;
}

int showDay(CliSession& session, const CliArgs& args) {
    const QDate date = datetext::fromSlashed(args.argument(1));
    if (!date.isValid()) {
        return args.usageError(QStringLiteral("%1 is not a date YYYY/MM/DD").arg(args.argument(1)));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    for (const DayLine& l : dayLines(session.db(), args.argument(0).toUpper(), date)) {
        session.out() << TimeText(l.time) << "\t" << l.length << "\t" << l.slotName << "\t"
                      << (l.appointment ? StatusName(l.appointment->status) : QString()) << "\t"
                      << (l.appointment ? l.appointment->whoText() : QString()) << "\t"
                      << (l.appointment ? l.appointment->notes : QString()) << "\n";
    }
    return 0;
}

CliOption option(const char* name, const char* value, const char* help, bool required = false) {
    return {QString::fromLatin1(name), QString::fromLatin1(value), QString::fromLatin1(help),
            required};
}

CliArgument idArgument() {
    return {QStringLiteral("ID"), QStringLiteral("the appointment number")};
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("appt add"),
        .summary = QStringLiteral("book an appointment and print its number"),
        .options = {option("doctor", "ID", "the doctor", true),
                    option("date", "YYYY/MM/DD", "the day", true),
                    option("time", "H:MM(am|pm)", "the start", true),
                    option("type", "ID", "the slot type", true),
                    option("length", "MIN", "minutes (else the slot type's)"),
                    option("patient", "ID", "a registered patient"),
                    option("name", "TEXT", "a caller not registered yet"),
                    option("phone", "TEXT", "the caller's phone"), option("notes", "TEXT", "notes"),
                    option("status", "N", "status 0 to 9 (else 1, Booked)"),
                    option("service", "CODE", "service code (else the slot type's)"),
                    option("diag", "CODE", "diagnostic code (else the slot type's)")},
        .details = {QStringLiteral("A time already booked for the doctor is asked about first; "
                                   "--yes books it anyway.")},
        .run = addAppointment,
    }) &&
    cli::add({
        .name = QStringLiteral("appt show"),
        .summary = QStringLiteral("print an appointment"),
        .arguments = {idArgument()},
        .run = showAppointment,
    }) &&
    cli::add({
        .name = QStringLiteral("appt set"),
        .summary = QStringLiteral("change, move or cancel (--status 7) an appointment"),
        .arguments = {idArgument()},
        .options = {option("status", "N", "status 0 to 9"), option("notes", "TEXT", "notes"),
                    option("time", "H:MM(am|pm)", "a new start"),
                    option("date", "YYYY/MM/DD", "a new day"),
                    option("doctor", "ID", "another doctor")},
        .run = setAppointment,
    }) &&
    cli::add({
        .name = QStringLiteral("appt day"),
        .summary = QStringLiteral("print a doctor's day with the template's empty slots"),
        .arguments = {{QStringLiteral("DOCTOR"), QStringLiteral("the doctor")},
                      {QStringLiteral("DATE"), QStringLiteral("YYYY/MM/DD")}},
        .details = {QStringLiteral("One line per appointment or empty slot: time, length, slot "
                                   "type, status, patient, notes, tab-separated.")},
        .run = showDay,
    });

}  // namespace

}  // namespace brimsett
