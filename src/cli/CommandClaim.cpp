#include "claims/ClaimEntryRecord.h"
#include "claims/ClaimSave.h"
#include "claims/ClaimStore.h"
#include "claims/PendingClaims.h"
#include "claims/ServiceCodeCell.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"
#include "patients/PatientRegister.h"
#include "patients/ProviderRegister.h"

namespace brimsett {

namespace {

// The claim's rows as the screen would make them from the typed codes.
bool readItems(const QStringList& items, ClaimEntry& entry, ServiceCodeCell& cell,
               const QString& specialty, QString& problem, QStringList& notes) {
    for (const QString& item : items) {
        const QStringList parts = item.split(QLatin1Char(':'));
        if (parts.size() < 4 || parts.size() > 5 || parts.at(0).trimmed().isEmpty()) {
            problem = QStringLiteral("'%1' is not CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE]").arg(item);
            return false;
        }
        ItemEntry typed{QString(), parts.at(1), parts.at(2), QString(), parts.at(3)};
        const ServiceCodeCell::Result made =
            cell.normalise(parts.at(0), typed, entry.claimType(), specialty);
        if (!made.notes.isEmpty()) {
            notes += made.notes;
        }
        QList<ItemEntry> rows = made.rows;
        if (parts.size() == 5 && !rows.isEmpty()) {
            rows.first().fee = parts.at(4);
        }
        entry.rows += rows;
    }
    return true;
}

int addClaim(CliSession& session, const CliArgs& options) {
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    const std::optional<qint64> patientId = PatientRegister::readId(options.value("patient"));
    PatientRegister patients(session.db(), session.settings(), session.prompter(), session.clock(),
                             log);
    const std::optional<PatientEntry> patient =
        patientId ? patients.load(*patientId) : std::nullopt;
    if (!patient) {
        return fail(QLatin1String(kNoSuchPatient));
    }
    ProviderRegister providers(session.db(), session.settings(), session.prompter(), log);
    const std::optional<Provider> doctor = providers.load(options.value("doctor").trimmed());

    ClaimEntry entry;
    claimentry::copyPatient(entry, *patient);
    entry.doctorId = options.value("doctor").trimmed();
    const ClaimEntryOptions entryOptions = ClaimEntryOptions::read(session.store());
    entry.payProg = options.value("program", entryOptions.defClaim);
    entry.thirdPartyId = options.value("third-party");
    entry.sli = options.value("sli");
    entry.regNum = options.value("regnum");
    entry.refLab = options.value("reflab");
    for (const auto& [name, member] :
         {std::pair{"refdoc", &ClaimEntry::refDoc}, std::pair{"facility", &ClaimEntry::facilityNum},
          std::pair{"admit", &ClaimEntry::admitDate}}) {
        if (options.isSet(name)) {
            entry.*member = options.value(name);
        }
    }
    const bool versionEdited =
        options.isSet("version") && options.value("version") != entry.versionCode;
    if (options.isSet("version")) {
        entry.versionCode = options.value("version");
    }
    ServiceCodeCell cell(session.db(), entryOptions, opened->money);
    QStringList notes;
    QString problem;
    if (!readItems(options.positional(), entry, cell, doctor ? doctor->specCode : QString(),
                   problem, notes)) {
        return options.usageError(problem);
    }
    if (!notes.isEmpty()) {
        session.prompter().tell(QStringLiteral("Claims"), notes, Icon::Information);
    }
    ClaimSave saver(session.db(), session.prompter(), session.clock(), session.settings(),
                    entryOptions, log, opened->money);
    const std::optional<ClaimSave::Saved> saved = saver.save(entry, versionEdited);
    if (!saved) {
        return 1;
    }
    session.out() << "Claim " << saved->claim.claimId << " Account " << saved->claim.acctNum
                  << "\n";
    return 0;
}

int showClaim(CliSession& session, const CliArgs& args) {
    bool ok = false;
    const qint64 id = args.argument(0).toLongLong(&ok);
    if (!ok) {
        return args.usageError(QStringLiteral("%1 is not a claim number").arg(args.argument(0)));
    }
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), false);
    ClaimStore store(session.db(), session.clock(), log);
    const std::optional<ClaimRecord> claim = store.load(id);
    if (!claim) {
        return fail(QStringLiteral("claim %1 was not found").arg(id));
    }
    QTextStream& out = session.out();
    const ClaimRecord& c = *claim;
    out << "Claim: " << c.claimId << "\nAccount: " << c.acctNum << "\nBatch: [" << c.batchId
        << "]\nDoctor: " << c.doctorId << "\nProgram: " << c.payProg;
    if (c.thirdPartyId) {
        out << " (payer " << *c.thirdPartyId << ")";
    }
    out << "\nPatient: " << c.patientId << " " << c.lName << ", " << c.fName
        << "\nHealth Number: " << c.healthNum << " " << c.versionCode << " (" << c.province
        << ")\nBirth Date: " << datetext::slashed(c.dob) << "  Sex: " << c.sex
        << "\nRef. Doctor: " << c.refDoc << "  Facility: " << c.facilityNum
        << "  Admitted: " << datetext::slashed(c.admitDate) << "\nRef. Lab: " << c.refLab
        << "  Reg. Number: " << c.regNum << "  SLI: " << c.sli
        << "\nManual Review: " << (c.manualReview ? "Yes" : "No")
        << "\nCreated: " << c.dateCreated.toString(QStringLiteral("yyyy/MM/dd HH:mm")) << "\n";
    for (const ItemRecord& i : c.items) {
        out << "Item " << i.itemId << ": " << i.serviceCode << " " << i.diagCode << " x"
            << i.numServ << " " << (i.feeSubm ? i.feeSubm->format(opened->money) : "-") << " "
            << datetext::slashed(i.serviceDate) << " " << itemStatusName(c.batchId, i.status);
        if (i.feePaid) {
            out << " paid " << i.feePaid->format(opened->money);
        }
        if (!i.errors.isEmpty()) {
            out << " errors " << i.errors;
        }
        out << "\n";
    }
    return 0;
}

int listPending(CliSession& session, const CliArgs& args) {
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const QString doctor = args.argument(0);
    PendingClaims pending(session.db(), session.settings());
    for (const PendingLine& l : pending.lines(doctor, PendingOrder::Account)) {
        session.out() << l.account << "\t" << l.doc << "\t" << l.patientId << "\t" << l.patient
                      << "\t" << l.chargeTo << "\t" << l.service << "\t" << l.diag << "\t"
                      << l.numServ << "\t" << (l.fee ? l.fee->format(opened->money) : QString())
                      << "\t" << datetext::slashed(l.serviceDate) << "\n";
    }
    session.out() << pending.totalLine(doctor, opened->money) << "\n";
    return 0;
}

QList<CliOption> addOptions() {
    const auto option = [](const char* name, const char* value, const char* help) {
        return CliOption{QString::fromLatin1(name), QString::fromLatin1(value),
                         QString::fromLatin1(help)};
    };
    QList<CliOption> options = {
        {QStringLiteral("doctor"), QStringLiteral("ID"), QStringLiteral("the doctor"), true},
        {QStringLiteral("patient"), QStringLiteral("ID"), QStringLiteral("the patient's number"),
         true},
    };
    options << option("program", "PROG", "the payment program (else \"DefClaim\")")
            << option("third-party", "ID", "the third party payer")
            << option("sli", "SLI", "service location indicator")
            << option("refdoc", "N", "referring doctor (else the patient's)")
            << option("facility", "N", "facility number (else the patient's)")
            << option("admit", "YYYY/MM/DD", "admission date (else the patient's)")
            << option("reflab", "N", "referring laboratory")
            << option("regnum", "N", "registration number")
            << option("version", "VC", "version code (else the patient's)");
    return options;
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("claim add"),
        .summary = QStringLiteral("save a claim and print its numbers"),
        .arguments = {{QStringLiteral("ITEM"),
                       QStringLiteral("CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE], the code as typed"),
                       CliArgument::Count::OneOrMore}},
        .options = addOptions(),
        .details = {QStringLiteral("The fee of an item without FEE is the schedule's, as at the "
                                   "desk.")},
        .run = addClaim,
    }) &&
    cli::add({
        .name = QStringLiteral("claim show"),
        .summary = QStringLiteral("print a claim and its items"),
        .arguments = {{QStringLiteral("ID"), QStringLiteral("the claim number")}},
        .run = showClaim,
    }) &&
    cli::add({
        .name = QStringLiteral("claim pending"),
        .summary = QStringLiteral("print the pending items and their total"),
        .arguments = {{QStringLiteral("DOCTOR"), QStringLiteral("only this doctor's"),
                       CliArgument::Count::Optional}},
        .run = listPending,
    });

}  // namespace

}  // namespace brimsett
