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

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("patient show"),
    .summary = QStringLiteral("print the patient's fields, one per line"),
    .arguments = {{QStringLiteral("ID"), QStringLiteral("the patient's number")}},
    .run = show,
});

}  // namespace

}  // namespace brimsett
