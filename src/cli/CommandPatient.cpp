#include "cli/CliSession.h"
#include "foundation/SqlLog.h"
#include "patients/PatientRegister.h"

#include <utility>

namespace brimsett {

namespace {

QList<std::pair<const char*, QString>> labelled(const PatientEntry& p) {
    return {
        {"Patient ID", p.patientId},
        {"Last Name", p.lName},
        {"First Name", p.fName},
        {"Health Number", p.healthNum},
        {"Version Code", p.versionCode},
        {"Expiry Date", p.expYear},
        {"Date of Birth", p.dob},
        {"Sex", p.sex},
        {"Address", p.address},
        {"City", p.city},
        {"Province", p.province},
        {"Postal Code", p.postalCode},
        {"Country", p.country},
        {"Home Phone", p.hPhone},
        {"Work Phone", p.wPhone},
        {"Refr. Doctor", p.refDoc},
        {"Family Doctor", p.famDoc},
        {"Facility Number", p.facilityNum},
        {"Admit Date", p.admitDate},
        {"Notes", p.notes},
        {"Flag", p.flag ? QStringLiteral("Yes") : QStringLiteral("No")},
        {"Card Batch", p.batchId},
        {"Card Checked", p.hnCheckDate},
        {"Card Response", p.response},
        {"Card Status", p.status},
        {"HL7 Patient ID", p.hl7PatId},
    };
}

int show(CliSession& session, const CliArgs& args) {
    const std::optional<qint64> id = PatientRegister::readId(args.argument(0));
    if (!id) {
        return args.usageError(QLatin1String(kInvalidNumber));
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    PatientRegister patients(session.db(), session.settings(), session.prompter(), session.clock(),
                             log);
    const std::optional<PatientEntry> patient = patients.load(*id);
    if (!patient) {
        return fail(QLatin1String(kNoSuchPatient));
    }
    for (const auto& [label, value] : labelled(*patient)) {
        // Notes may hold line breaks; each field stays on its own line.
        QString text = value;
        text.replace(QLatin1String("\r\n"), QLatin1String(" / "));
        text.replace(QLatin1Char('\n'), QLatin1String(" / "));
        text.replace(QLatin1Char('\r'), QLatin1String(" / "));
        session.out() << label << ": " << text << "\n";
    }
    return 0;
}

// A new patient through the desk's save: the same checks, questions and numbering.
int add(CliSession& session, const CliArgs& args) {
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    PatientEntry entry;
    entry.lName = args.value(QStringLiteral("last"));
    entry.fName = args.value(QStringLiteral("first"));
    entry.healthNum = args.value(QStringLiteral("hn"));
    entry.versionCode = args.value(QStringLiteral("version"));
    entry.dob = args.value(QStringLiteral("dob"));
    entry.sex = args.value(QStringLiteral("sex"));
    entry.province = args.value(QStringLiteral("province"), QStringLiteral("ON"));
    entry.hPhone = args.value(QStringLiteral("phone"));
    entry.patientId = args.value(QStringLiteral("id"));
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    PatientRegister patients(session.db(), session.settings(), session.prompter(), session.clock(),
                             log);
    const auto result = patients.saveNew(entry);
    if (result.outcome != PatientRegister::Outcome::Saved) {
        return 1;
    }
    session.out() << result.savedId << "\n";
    return 0;
}

[[maybe_unused]] const bool addRegistered = cli::add({
    .name = QStringLiteral("patient add"),
    .summary = QStringLiteral("save a new patient and print the patient's number"),
    .options = {{QStringLiteral("last"), QStringLiteral("NAME"), QStringLiteral("last name"), true},
                {QStringLiteral("first"), QStringLiteral("NAME"), QStringLiteral("first name")},
                {QStringLiteral("hn"), QStringLiteral("N"), QStringLiteral("health number")},
                {QStringLiteral("version"), QStringLiteral("VC"), QStringLiteral("version code")},
                {QStringLiteral("dob"), QStringLiteral("YYYY/MM/DD"),
                 QStringLiteral("date of birth")},
                {QStringLiteral("sex"), QStringLiteral("M|F"), QStringLiteral("sex")},
                {QStringLiteral("province"), QStringLiteral("XX"),
                 QStringLiteral("province of the health number (else ON)")},
                {QStringLiteral("phone"), QStringLiteral("TEXT"), QStringLiteral("home phone")},
                {QStringLiteral("id"), QStringLiteral("N"),
                 QStringLiteral("the patient's number (else the next free one)")}},
    .run = add,
});

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("patient show"),
    .summary = QStringLiteral("print the patient's fields, one per line"),
    .arguments = {{QStringLiteral("ID"), QStringLiteral("the patient's number")}},
    .run = show,
});

}  // namespace

}  // namespace brimsett
