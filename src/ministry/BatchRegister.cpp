#include "ministry/BatchRegister.h"

#include "claims/FeeSchedule.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"
#include "patients/PatientEntry.h"

#include <QHash>
#include <QSqlRecord>

namespace brimsett {

namespace {

BatchRow rowOf(const QSqlRecord& r) {
    using recordvalue::of;
    using recordvalue::textOf;
    BatchRow b;
    b.batchId = textOf(r, "BatchID");
    b.mohOffice = textOf(r, "MOHOffice");
    b.groupNum = textOf(r, "GroupNum");
    b.providerNum = textOf(r, "ProviderNum");
    b.specCode = textOf(r, "SpecCode");
    b.claims = of(r, "H").toInt();
    b.reciprocal = of(r, "R").toInt();
    b.items = of(r, "T").toInt();
    b.records = of(r, "Records").toInt();
    b.total = Money::fromVariant(of(r, "Total")).value_or(Money());
    b.fileName = textOf(r, "FileName");
    b.submitDate = readTypedDate(dateTextOf(of(r, "SubmitDate")));
    return b;
}

std::vector<BatchRow> rowsOf(QSqlQuery q) {
    std::vector<BatchRow> rows;
    while (q.next()) {
        rows.push_back(rowOf(q.record()));
    }
    return rows;
}

// The number of services an item's fee is multiplied by; a missing count is one.
int servicesOf(const ItemRecord& item) {
    return item.numServ > 0 ? item.numServ : 1;
}

}  // namespace

QString BatchRow::doctorText() const {
    return groupNum + QLatin1Char('-') + providerNum + QLatin1Char('-') + specCode;
}

QString BatchRow::countsText() const {
    return QString::number(claims) + QLatin1Char('/') + QString::number(records);
}

QString BatchRow::submittedText() const {
    return submitDate.isValid() ? datetext::slashed(submitDate) : QStringLiteral("Not Submitted");
}

BatchRegister::BatchRegister(Database& db, Prompter& prompter, const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_log(log) {}

std::vector<BatchRow> BatchRegister::list() {
    return rowsOf(m_db.exec(QStringLiteral("Select * From batches Order By BatchID Desc"), {},
                            QStringLiteral("reading the batches")));
}

std::optional<BatchRow> BatchRegister::find(const QString& batchId) {
    std::vector<BatchRow> rows =
        rowsOf(m_db.exec(QStringLiteral("Select * From batches Where BatchID=?"), {batchId},
                         QStringLiteral("reading batch ") + batchId));
    if (rows.empty()) {
        return std::nullopt;
    }
    return rows.front();
}

std::vector<BatchRow> BatchRegister::ofFile(const QString& fileName) {
    return rowsOf(
        m_db.exec(QStringLiteral("Select * From batches Where FileName=? Order By BatchID"),
                  {fileName}, QStringLiteral("reading the batches of ") + fileName));
}

std::vector<ClaimRecord> BatchRegister::claimsOf(const QString& batchId) {
    std::vector<ClaimRecord> claims;
    QHash<qint64, std::size_t> where;
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From claims Where BatchID=? Order By ClaimID"),
                            {batchId}, QStringLiteral("reading the claims of batch ") + batchId);
    while (q.next()) {
        claims.push_back(ClaimRecord::fromRecord(q.record()));
        where.insert(claims.back().claimId, claims.size() - 1);
    }
    QSqlQuery items = m_db.exec(
        QStringLiteral("Select I.* From items I Inner Join claims C On C.ClaimID=I.ClaimID "
                       "Where C.BatchID=? Order By I.ClaimID,I.ItemID"),
        {batchId}, QStringLiteral("reading the items of batch ") + batchId);
    while (items.next()) {
        const ItemRecord item = ItemRecord::fromRecord(items.record());
        const auto it = where.constFind(item.claimId);
        if (it != where.constEnd()) {
            claims[*it].items.append(item);
        }
    }
    return claims;
}

bool BatchRegister::deleteRecord(const QString& batchId) {
    if (!m_prompter.confirm(QStringLiteral("Delete Batch"), {QStringLiteral("Are you sure?")})) {
        return false;
    }
    Transaction tx(m_db, QStringLiteral("deleting batch ") + batchId);
    m_db.exec(QStringLiteral("Delete From batches Where BatchID=?"), {batchId},
              QStringLiteral("deleting batch ") + batchId);
    tx.commit();
    m_log.write(QStringLiteral("Delete From batches Where BatchID=") +
                sqltext::quoteValue(batchId));
    return true;
}

bool BatchRegister::reverse(const QString& batchId) {
    if (!m_prompter.confirm(
            QStringLiteral("Reverse Submission"),
            {QStringLiteral("This will reverse (undo) your submission"),
             QStringLiteral("by changing all claims"), QStringLiteral("in this batch to Pending."),
             QString(), QStringLiteral("Are you sure?")})) {
        return false;
    }
    QStringList logLines;
    Transaction tx(m_db, QStringLiteral("reversing batch ") + batchId);
    FeeSchedule schedule(m_db, m_log);
    QHash<QString, QString> specialtyOf;
    for (const ClaimRecord& claim : claimsOf(batchId)) {
        if (!specialtyOf.contains(claim.doctorId)) {
            QSqlQuery d =
                m_db.exec(QStringLiteral("Select SpecCode, Modifier From doctors Where DoctorID=?"),
                          {claim.doctorId}, QStringLiteral("reading the doctor"));
            QString specialty;
            if (d.next()) {
                // A modifier names the specialty the doctor bills under; without one the
                // doctor's own specialty decides.
                const QString modifier = d.value(1).toString().trimmed();
                specialty = modifier.isEmpty() ? d.value(0).toString() : modifier;
            }
            specialtyOf.insert(claim.doctorId, specialty);
        }
        for (const ItemRecord& item : claim.items) {
            const auto fees =
                item.serviceCode.isEmpty() ? std::nullopt : schedule.find(item.serviceCode);
            const auto fee = fees ? fees::bySuffix(*fees, item.serviceCode.back(),
                                                   specialtyOf.value(claim.doctorId))
                                  : std::nullopt;
            if (!fee) {
                continue;  // not in the schedule: the fee billed stands
            }
            const Money priced = fee->fee * servicesOf(item);
            if (item.feeSubm == priced) {
                continue;
            }
            m_db.exec(QStringLiteral("Update items Set FeeSubm=? Where ClaimID=? And ItemID=?"),
                      {priced.toVariant(), claim.claimId, item.itemId},
                      QStringLiteral("repricing claim ") + QString::number(claim.claimId));
            logLines << QStringLiteral("Update items Set FeeSubm=%1 Where ClaimID=%2 And ItemID=%3")
                            .arg(priced.units())
                            .arg(claim.claimId)
                            .arg(item.itemId);
        }
    }
    m_db.exec(QStringLiteral("Update claims Set BatchID=? Where BatchID=?"),
              {kPendingBatch, batchId},
              QStringLiteral("putting the claims of batch ") + batchId + QStringLiteral(" back"));
    m_db.exec(QStringLiteral("Delete From batches Where BatchID=?"), {batchId},
              QStringLiteral("deleting batch ") + batchId);
    tx.commit();
    logLines << QStringLiteral("Update claims Set BatchID=") + sqltext::quoteValue(kPendingBatch) +
                    QStringLiteral(" Where BatchID=") + sqltext::quoteValue(batchId)
             << QStringLiteral("Delete From batches Where BatchID=") + sqltext::quoteValue(batchId);
    for (const QString& line : logLines) {
        m_log.write(line);
    }
    return true;
}

std::optional<QDate> BatchRegister::submittedOn(const QString& fileName) {
    const QVariant first =
        m_db.scalar(QStringLiteral("Select Min(SubmitDate) From batches Where FileName=?"),
                    {fileName}, QStringLiteral("reading the batches of ") + fileName);
    const QDate day = readTypedDate(dateTextOf(first));
    if (!day.isValid()) {
        return std::nullopt;
    }
    return day;
}

int BatchRegister::markSubmitted(const QString& fileName, const QDate& day) {
    Transaction tx(m_db, QStringLiteral("recording the submission of ") + fileName);
    const QSqlQuery q = m_db.exec(
        QStringLiteral("Update batches Set SubmitDate=? Where FileName=? And SubmitDate Is Null"),
        {datetext::isoDate(day), fileName},
        QStringLiteral("recording the submission of ") + fileName);
    const int marked = q.numRowsAffected();
    tx.commit();
    m_log.write(QStringLiteral("Update batches Set SubmitDate=") +
                sqltext::quoteValue(datetext::isoDate(day)) + QStringLiteral(" Where FileName=") +
                sqltext::quoteValue(fileName) + QStringLiteral(" And SubmitDate Is Null"));
    return marked;
}

}  // namespace brimsett
