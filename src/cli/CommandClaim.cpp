#include "claims/ClaimStore.h"
#include "claims/PendingClaims.h"
#include "cli/CliClaimSave.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"
#include "patients/PatientRegister.h"

namespace brimsett {

namespace {

int addClaim(CliSession& session, const CliArgs& options) {
    QList<cli::TypedItem> items;
    QString problem;
    if (!cli::readItems(options.positional(), items, problem)) {
        return options.usageError(problem);
    }
    const std::optional<qint64> patientId = PatientRegister::readId(options.value("patient"));
    if (!patientId) {
        return fail(QLatin1String(kNoSuchPatient));
    }
    return cli::saveClaim(session, options, *patientId, options.value("doctor").trimmed(), items);
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
    return QList<CliOption>{
               {QStringLiteral("doctor"), QStringLiteral("ID"), QStringLiteral("the doctor"), true},
               {QStringLiteral("patient"), QStringLiteral("ID"),
                QStringLiteral("the patient's number"), true},
           } +
           cli::claimHeaderOptions();
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
