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

const QString kAddUsage = QStringLiteral(
    "usage: claim add --doctor ID --patient ID [--program PROG] [--third-party ID] [--sli SLI]"
    " [--refdoc N] [--facility N] [--admit YYYY/MM/DD] [--reflab N] [--regnum N]"
    " [--version VC] ITEM...   (ITEM: CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE])");

// "--name value" options before the items; false (and the reason) for anything else.
bool readOptions(QStringList& args, QMap<QString, QString>& options, QString& problem) {
    static const QStringList known = {"doctor", "patient", "program",  "third-party",
                                      "sli",    "refdoc",  "facility", "admit",
                                      "reflab", "regnum",  "version"};
    while (!args.isEmpty() && args.first().startsWith(QStringLiteral("--"))) {
        const QString name = args.takeFirst().mid(2);
        if (!known.contains(name) || args.isEmpty()) {
            problem = QStringLiteral("unknown or incomplete option --") + name;
            return false;
        }
        options.insert(name, args.takeFirst());
    }
    return true;
}

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

int addClaim(CliSession& session, QStringList args) {
    QMap<QString, QString> options;
    QString problem;
    if (!readOptions(args, options, problem) || !options.contains("doctor") ||
        !options.contains("patient") || args.isEmpty()) {
        return fail(problem.isEmpty() ? kAddUsage : problem + QLatin1Char('\n') + kAddUsage, 2);
    }
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
        if (options.contains(name)) {
            entry.*member = options.value(name);
        }
    }
    const bool versionEdited =
        options.contains("version") && options.value("version") != entry.versionCode;
    if (options.contains("version")) {
        entry.versionCode = options.value("version");
    }
    ServiceCodeCell cell(session.db(), entryOptions, opened->money);
    QStringList notes;
    if (!readItems(args, entry, cell, doctor ? doctor->specCode : QString(), problem, notes)) {
        return fail(problem, 2);
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

int showClaim(CliSession& session, const QStringList& args) {
    bool ok = false;
    const qint64 id = args.size() == 1 ? args.first().toLongLong(&ok) : 0;
    if (!ok) {
        return fail(QStringLiteral("usage: claim show ID"), 2);
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

int listPending(CliSession& session, const QStringList& args) {
    if (args.size() > 1) {
        return fail(QStringLiteral("usage: claim pending [DOCTOR]"), 2);
    }
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const QString doctor = args.value(0);
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

}  // namespace

int commandClaim(CliSession& session, const QStringList& args) {
    const QString what = args.value(0);
    if (what == QLatin1String("add")) {
        return addClaim(session, args.mid(1));
    }
    if (what == QLatin1String("show")) {
        return showClaim(session, args.mid(1));
    }
    if (what == QLatin1String("pending")) {
        return listPending(session, args.mid(1));
    }
    return fail(QStringLiteral("usage: claim add ... | claim show ID | claim pending [DOCTOR]"), 2);
}

}  // namespace brimsett
