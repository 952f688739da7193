#include "cli/CliClaimSave.h"

#include "claims/ClaimEntryRecord.h"
#include "claims/ClaimSave.h"
#include "claims/ServiceCodeCell.h"
#include "cli/CliSession.h"
#include "foundation/SqlLog.h"
#include "patients/PatientRegister.h"
#include "patients/ProviderRegister.h"

namespace brimsett::cli {

bool readItems(const QStringList& texts, QList<TypedItem>& items, QString& problem) {
    for (const QString& text : texts) {
        const QStringList parts = text.split(QLatin1Char(':'));
        if (parts.size() < 4 || parts.size() > 5 || parts.at(0).trimmed().isEmpty()) {
            problem = QStringLiteral("'%1' is not CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE]").arg(text);
            return false;
        }
        items << TypedItem{parts.at(0),
                           ItemEntry{QString(), parts.at(1), parts.at(2), QString(), parts.at(3)},
                           parts.value(4)};
    }
    return true;
}

QList<CliOption> claimHeaderOptions() {
    const auto option = [](const char* name, const char* value, const char* help) {
        return CliOption{QString::fromLatin1(name), QString::fromLatin1(value),
                         QString::fromLatin1(help)};
    };
    return {option("program", "PROG", "the payment program (else \"DefClaim\")"),
            option("third-party", "ID", "the third party payer"),
            option("sli", "SLI", "service location indicator"),
            option("refdoc", "N", "referring doctor (else the patient's)"),
            option("facility", "N", "facility number (else the patient's)"),
            option("admit", "YYYY/MM/DD", "admission date (else the patient's)"),
            option("reflab", "N", "referring laboratory"),
            option("regnum", "N", "registration number"),
            option("version", "VC", "version code (else the patient's)")};
}

int saveClaim(CliSession& session, const CliArgs& options, qint64 patientId,
              const QString& doctorId, const QList<TypedItem>& items) {
    const Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    PatientRegister patients(session.db(), session.settings(), session.prompter(), session.clock(),
                             log);
    const std::optional<PatientEntry> patient = patients.load(patientId);
    if (!patient) {
        return fail(QLatin1String(kNoSuchPatient));
    }
    ProviderRegister providers(session.db(), session.settings(), session.prompter(), log);
    const std::optional<Provider> doctor = providers.load(doctorId);

    ClaimEntry entry;
    claimentry::copyPatient(entry, *patient);
    entry.doctorId = doctorId;
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

    // The rows as the screen makes them from the typed codes.
    const MoneyFormat money = opened->money;
    ServiceCodeCell cell(session.db(), entryOptions, money);
    const QString specialty = doctor ? doctor->specCode : QString();
    QStringList notes;
    for (const TypedItem& item : items) {
        const ServiceCodeCell::Result made =
            cell.normalise(item.code, item.row, entry.claimType(), specialty);
        notes += made.notes;
        QList<ItemEntry> rows = made.rows;
        if (!item.fee.isNull() && !rows.isEmpty()) {
            rows.first().fee = item.fee;
        }
        entry.rows += rows;
    }
    if (!notes.isEmpty()) {
        session.prompter().tell(QStringLiteral("Claims"), notes, Icon::Information);
    }
    ClaimSave saver(session.db(), session.prompter(), session.clock(), session.settings(),
                    entryOptions, log, money);
    const std::optional<ClaimSave::Saved> saved = saver.save(entry, versionEdited);
    if (!saved) {
        return 1;
    }
    session.out() << "Claim " << saved->claim.claimId << " Account " << saved->claim.acctNum
                  << "\n";
    return 0;
}

}  // namespace brimsett::cli
