#include "ministry/ClaimFileBatch.h"

#include "claims/ClaimRecord.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/SqlText.h"
#include "ministry/ClaimFileRecords.h"
#include "patients/PatientEntry.h"

#include <QHash>
#include <QSqlRecord>

namespace brimsett {

namespace {

// "DoctorID In (?,?)" with one bound value per doctor, and its text for the log.
QString doctorCondition(const QStringList& doctors, const QString& column) {
    QStringList marks;
    for (int i = 0; i < doctors.size(); ++i) {
        marks << QStringLiteral("?");
    }
    return column + QStringLiteral(" In (") + marks.join(QLatin1Char(',')) + QLatin1Char(')');
}

QString doctorConditionText(const QStringList& doctors) {
    QStringList quoted;
    for (const QString& d : doctors) {
        quoted << sqltext::quoteValue(d);
    }
    return QStringLiteral("DoctorID In (") + quoted.join(QLatin1Char(',')) + QLatin1Char(')');
}

QVariantList valuesOf(const QStringList& doctors, QVariantList before = {}) {
    for (const QString& d : doctors) {
        before << d;
    }
    return before;
}

// A stored date or moment as "YYYYMMDD"; empty when there is none.
QString dateKeyOf(const QVariant& stored) {
    return datetext::yyyymmdd(readTypedDate(dateTextOf(stored)));
}

QString noItemsLine(const ClaimRecord& claim) {
    return QStringList{claim.acctNum, claim.lName, claim.fName, claim.healthNum,
                       datetext::slashed(claim.dateCreated.date())}
        .join(QLatin1Char('\t'));
}

}  // namespace

ClaimFileBatch::ClaimFileBatch(Database& db, std::function<void(int)> progress)
    : m_db(db), m_writer(claimfile::kRecordLength) {
    m_writer.setProgress(std::move(progress));
}

void ClaimFileBatch::holdBack(const QStringList& doctors, const Dates& dates) {
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select c.ClaimID, Max(c.DateCreated), Max(i.ServiceDate) From claims c "
                       "Left Join items i On i.ClaimID=c.ClaimID Where c.BatchID=? And ") +
            doctorCondition(doctors, QStringLiteral("c.DoctorID")) +
            QStringLiteral(" Group By c.ClaimID"),
        valuesOf(doctors, {kPendingBatch}), QStringLiteral("reading the pending claims' dates"));
    QVariantList held;
    while (q.next()) {
        const QString date =
            dateKeyOf(q.value(dates.by == PrepareRequest::DateBy::Created ? 1 : 2));
        // A claim without a date compares as empty text: never after the cut-off, always
        // before a start date.
        if (date > dates.cutOff || (!dates.start.isEmpty() && date < dates.start)) {
            held << q.value(0);
        }
    }
    for (const QVariant& claimId : held) {
        m_db.exec(QStringLiteral("Update claims Set BatchID=? Where ClaimID=?"),
                  {kSelectingBatch, claimId}, QStringLiteral("holding back a claim"));
    }
}

ClaimFileBatch::Written ClaimFileBatch::write(const QStringList& doctors, const Dates& dates,
                                              const QDate& today, const Header& header) {
    holdBack(doctors, dates);

    QHash<qint64, QList<ItemRecord>> items;
    {
        QSqlQuery q = m_db.exec(
            QStringLiteral("Select i.* From items i Inner Join claims c On c.ClaimID=i.ClaimID "
                           "Where c.BatchID=? And ") +
                doctorCondition(doctors, QStringLiteral("c.DoctorID")) +
                QStringLiteral(" Order By i.ClaimID, i.ItemID"),
            valuesOf(doctors, {kPendingBatch}), QStringLiteral("reading the pending items"));
        while (q.next()) {
            const ItemRecord item = ItemRecord::fromRecord(q.record());
            items[item.claimId].append(item);
        }
    }

    Written out;
    out.batch.specCode = header.specCode;
    m_writer.startBatch();
    m_writer.write(claimfile::batchHeader(header.mohOffice, today, header.groupNum,
                                          header.providerNum, header.specCode));
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select * From claims Where BatchID=? And ") +
                      doctorCondition(doctors, QStringLiteral("DoctorID")) +
                      QStringLiteral(" Order By AcctNum"),
                  valuesOf(doctors, {kPendingBatch}), QStringLiteral("reading the pending claims"));
    while (q.next()) {
        const ClaimRecord claim = ClaimRecord::fromRecord(q.record());
        if (!claimfile::goesIntoFile(claim)) {
            continue;
        }
        const QList<ItemRecord> claimItems = items.value(claim.claimId);
        if (claimItems.isEmpty()) {
            out.withoutItems << noItemsLine(claim);
            continue;
        }
        m_writer.write(claimfile::claimHeader(claim));
        if (claim.payProg.startsWith(QLatin1String("RMB"))) {
            m_writer.write(claimfile::reciprocalHeader(claim));
            ++out.batch.reciprocal;
        }
        for (const ItemRecord& item : claimItems) {
            if (item.serviceCode.isEmpty()) {
                continue;
            }
            m_writer.write(claimfile::itemRecord(item));
            ++out.batch.items;
            if (item.feeSubm) {
                out.batch.total += *item.feeSubm;
            }
        }
        ++out.batch.claims;
    }
    m_writer.write(
        claimfile::batchTrailer(out.batch.claims, out.batch.reciprocal, out.batch.items));
    out.batch.records = m_writer.count();
    out.bytes = m_writer.take();
    return out;
}

void ClaimFileBatch::record(const PreparedBatch& batch, const Header& header,
                            const QString& fileName, const QStringList& doctors,
                            QStringList& logLines) {
    // The operator column is never used; it is written empty rather than NULL.
    const QVariantList row{batch.batchId,   header.mohOffice,        QStringLiteral(""),
                           header.groupNum, header.providerNum,      header.specCode,
                           batch.claims,    batch.reciprocal,        batch.items,
                           batch.records,   batch.total.toVariant(), fileName};
    m_db.exec(QStringLiteral("Insert Into batches (BatchID, MOHOffice, Operator, GroupNum, "
                             "ProviderNum, SpecCode, H, R, T, Records, Total, FileName) "
                             "Values (?,?,?,?,?,?,?,?,?,?,?,?)"),
              row, QStringLiteral("recording batch ") + batch.batchId);
    QStringList texts;
    for (const QVariant& v : row) {
        texts << (v.typeId() == QMetaType::QString ? sqltext::quoteValue(v.toString())
                                                   : v.toString());
    }
    logLines << QStringLiteral(
                    "Insert Into batches (BatchID, MOHOffice, Operator, GroupNum, "
                    "ProviderNum, SpecCode, H, R, T, Records, Total, FileName) "
                    "Values (") +
                    texts.join(QLatin1Char(',')) + QLatin1Char(')');

    // Every pending claim of the doctors joins the batch, those without a record in the file
    // (no items, billed directly) included, as the office has always had it.
    m_db.exec(QStringLiteral("Update claims Set BatchID=? Where BatchID=? And ") +
                  doctorCondition(doctors, QStringLiteral("DoctorID")),
              valuesOf(doctors, {batch.batchId, kPendingBatch}),
              QStringLiteral("moving claims into batch ") + batch.batchId);
    logLines << QStringLiteral("Update claims Set BatchID=") + sqltext::quoteValue(batch.batchId) +
                    QStringLiteral(" Where BatchID=") + sqltext::quoteValue(kPendingBatch) +
                    QStringLiteral(" And ") + doctorConditionText(doctors);
    const QString mark = batch.batchId + QLatin1Char('!');
    m_db.exec(
        QStringLiteral("Update claims Set AllBatches=Coalesce(AllBatches,'') || ? "
                       "Where BatchID=? And ") +
            doctorCondition(doctors, QStringLiteral("DoctorID")),
        valuesOf(doctors, {mark, batch.batchId}),
        QStringLiteral("recording batch ") + batch.batchId + QStringLiteral(" on its claims"));
    logLines << QStringLiteral("Update claims Set AllBatches=Coalesce(AllBatches,'') || ") +
                    sqltext::quoteValue(mark) + QStringLiteral(" Where BatchID=") +
                    sqltext::quoteValue(batch.batchId) + QStringLiteral(" And ") +
                    doctorConditionText(doctors);
}

void ClaimFileBatch::restoreHeldBack(const QStringList& doctors) {
    m_db.exec(QStringLiteral("Update claims Set BatchID=? Where BatchID=? And ") +
                  doctorCondition(doctors, QStringLiteral("DoctorID")),
              valuesOf(doctors, {kPendingBatch, kSelectingBatch}),
              QStringLiteral("putting held-back claims back"));
}

}  // namespace brimsett
