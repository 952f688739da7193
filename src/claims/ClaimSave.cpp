#include "claims/ClaimSave.h"

#include "claims/ClaimChecks.h"
#include "claims/ClaimEntryRecord.h"
#include "claims/ClaimStore.h"
#include "claims/PayProgram.h"
#include "claims/Premiums.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"

#include <QSet>

#include <algorithm>

namespace brimsett {

namespace {

constexpr int kDuplicateCheckOffSwitch = 15;
constexpr int kPremiumOneCodeSwitch = 26;
// The appointment book's "Billed" status.
constexpr int kBilledStatus = 6;
constexpr int kCancelledStatus = 7;

const QString kTitle = QStringLiteral("Claims");

// A claim that has left the pending batch for the ministry must not be put back by a save
// from a screen that opened it before the batch was made: it would be billed twice.
bool wasSubmitted(const ClaimRecord& stored) {
    return stored.batchId != kPendingBatch && stored.batchId != kDirectBatch &&
           stored.batchId != kThirdPartyBatch;
}

}  // namespace

ClaimSave::ClaimSave(Database& db, Prompter& prompter, const Clock& clock, AppSettings& settings,
                     const ClaimEntryOptions& options, const SqlLog& log, MoneyFormat money)
    : m_db(db),
      m_prompter(prompter),
      m_clock(clock),
      m_settings(settings),
      m_options(options),
      m_log(log),
      m_money(money) {}

std::optional<ClaimSave::Saved> ClaimSave::save(ClaimEntry& entry, bool versionCodeEdited) {
    if (entry.payProg.trimmed().isEmpty()) {
        entry.payProg = m_options.defClaim;
    }
    // A program is one of the list (in any case); any other text would be kept and billed
    // as a third party's claim. None at all is the claim check's to tell.
    if (const QString typed = entry.payProg.trimmed(); !typed.isEmpty()) {
        const QStringList& programs = payprog::storedForms();
        const auto program = std::find_if(programs.begin(), programs.end(), [&](const QString& p) {
            return p.compare(typed, Qt::CaseInsensitive) == 0;
        });
        if (program == programs.end()) {
            m_prompter.error({quotedInMessage(typed) +
                              QStringLiteral(" is not a payment program (") +
                              programs.join(QStringLiteral(", ")) + QStringLiteral(").")});
            return std::nullopt;
        }
        entry.payProg = *program;
    }
    if (entry.doctorId.trimmed().isEmpty()) {
        m_prompter.tell(kTitle, {QStringLiteral("A Doctor must be selected.")}, Icon::Information);
        return std::nullopt;
    }
    if (entry.province.trimmed().isEmpty()) {
        m_prompter.tell(kTitle, {QStringLiteral("A province must be selected.")},
                        Icon::Information);
        return std::nullopt;
    }
    // A premium follows the items above it, so an edit of those since it was typed counts.
    premiums::applyAll(entry.rows, m_settings.option[kPremiumOneCodeSwitch], m_money);

    ClaimChecks checks(m_db, m_prompter, m_clock, m_settings, m_money);
    if (!checks.checkBeforeSave(entry)) {
        return std::nullopt;
    }
    // Asked before anything is written, so that No leaves the register as it was too.
    if (!m_settings.option[kDuplicateCheckOffSwitch] && !checks.CheckDouble(entry)) {
        return std::nullopt;
    }

    ClaimRecord claim = claimentry::toRecord(entry, m_money);
    ClaimStore store(m_db, m_clock, m_log);
    QStringList logLines;
    {
        Transaction tx(m_db, QStringLiteral("saving the claim"));
        std::optional<ClaimRecord> stored;
        if (entry.claimId) {
            stored = store.load(*entry.claimId);
            if (stored && wasSubmitted(*stored)) {
                m_prompter.error({QStringLiteral("Claim %1 was submitted in batch %2 after it "
                                                 "was opened here; it was not saved again.")
                                      .arg(*entry.claimId)
                                      .arg(stored->batchId.trimmed())});
                return std::nullopt;
            }
        }
        if (versionCodeEdited && claim.patientId != 0) {
            m_db.exec(QStringLiteral("Update patients Set VersionCode=? Where PatientID=?"),
                      {claim.versionCode, claim.patientId},
                      QStringLiteral("updating the patient's version code"));
            logLines << QStringLiteral("Update patients set VersionCode = ") +
                            sqltext::quoteValue(claim.versionCode) +
                            QStringLiteral(" where patientid = ") +
                            QString::number(claim.patientId);
        }
        QSet<QDate> dates;
        for (const ItemRecord& item : claim.items) {
            if (item.serviceDate.isValid() && !dates.contains(item.serviceDate)) {
                dates.insert(item.serviceDate);
                markAsBilled(claim.patientId, claim.doctorId, item.serviceDate, &logLines);
            }
        }
        claim = stored ? store.replace(claim, logLines) : store.insertNew(claim, logLines);
        tx.commit();
    }
    for (const QString& line : logLines) {
        m_log.write(line);
    }

    if (m_prints != nullptr) {
        offerPrints(claim);
    }
    m_settings.lastSLI = claim.sli;
    if (claim.doctorId.size() <= 3) {
        m_settings.lastDoctor = claim.doctorId;
    }
    Saved saved;
    saved.claim = claim;
    saved.statusLine = QStringLiteral("Last Saved: [%1] -- PatientID: [%2] - Account: [%3]")
                           .arg(m_clock.now().time().toString(QStringLiteral("HH:mm")))
                           .arg(claim.patientId)
                           .arg(claim.acctNum);
    return saved;
}

void ClaimSave::offerPrints(const ClaimRecord& claim) {
    const int program = payprog::indexOf(claim.payProg);
    const auto wanted = [this](bool printAlways, bool askFirst, const QString& question) {
        if (printAlways) {
            return true;
        }
        return askFirst && m_prompter.confirm(kTitle, {question});
    };
    // The patient who pays at the desk takes a receipt; the office invoices whoever pays it.
    if (program == payprog::Direct &&
        wanted(m_options.recPrint1, m_options.recPrint0,
               QStringLiteral("Would you like a receipt to be printed?"))) {
        m_prints->printReceipt(claim, m_options.lCopies);
    }
    if ((program == payprog::Direct || program == payprog::ThirdParty) &&
        wanted(m_options.invPrint1, m_options.invPrint0,
               QStringLiteral("Would you like an invoice to be printed?"))) {
        m_prints->printInvoice(claim, m_options.lCopies);
    }
}

int ClaimSave::markAsBilled(qint64 patientId, const QString& doctorId, const QDate& date,
                            QStringList* logLines) {
    if (patientId == 0 || !date.isValid()) {
        return 0;
    }
    const QString visit = QStringLiteral(
        " Where PatientID=? And DoctorID=? And date(AppDate)=? And (Deleted Is Null Or Deleted=0)");
    const QVariantList keys{patientId, doctorId, datetext::isoDate(date)};
    const QString notCancelled = QStringLiteral(" And (Status Is Null Or Status<>?)");
    // A visit cancelled and booked again the same day: the booking is the one billed, the
    // cancellation stays as it was. A cancelled visit alone (a late cancellation charged)
    // is marked.
    const bool anyLive =
        m_db.scalar(QStringLiteral("Select Count(*) From appointments") + visit + notCancelled,
                    keys + QVariantList{kCancelledStatus},
                    QStringLiteral("looking for the visit to mark billed"))
            .toLongLong() > 0;
    QSqlQuery q = m_db.exec(QStringLiteral("Update appointments Set Status=?") + visit +
                                (anyLive ? notCancelled : QString()),
                            QVariantList{kBilledStatus} + keys +
                                (anyLive ? QVariantList{kCancelledStatus} : QVariantList()),
                            QStringLiteral("marking the visit billed"));
    const int marked = q.numRowsAffected();
    if (marked > 0 && logLines != nullptr) {
        *logLines << QStringLiteral(
                         "Update appointments Set Status=%1 Where PatientID=%2 And "
                         "DoctorID=%3 And AppDate=%4 And (Deleted Is Null Or "
                         "Deleted=0)%5")
                         .arg(kBilledStatus)
                         .arg(patientId)
                         .arg(sqltext::quoteValue(doctorId),
                              sqltext::quoteValue(datetext::isoDate(date)),
                              anyLive ? QStringLiteral(" And (Status Is Null Or Status<>%1)")
                                            .arg(kCancelledStatus)
                                      : QString());
    }
    return marked;
}

}  // namespace brimsett
