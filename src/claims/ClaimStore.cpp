#include "claims/ClaimStore.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DbError.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett {

namespace {

using Kind = SqlStatementBuilder::Kind;

QVariant moneyValue(const std::optional<Money>& amount) {
    return amount ? amount->toVariant() : QVariant();
}

QVariant dateValue(const QDate& date) {
    return date.isValid() ? QVariant(date) : QVariant();
}

void addClaimFields(SqlStatementBuilder& b, const ClaimRecord& c) {
    b.addField(QStringLiteral("ClaimID"), c.claimId, Kind::Number);
    b.addField(QStringLiteral("AcctNum"), c.acctNum, Kind::Text);
    b.addField(QStringLiteral("BatchID"), c.batchId, Kind::Text);
    b.addField(QStringLiteral("DoctorID"), c.doctorId, Kind::Text);
    b.addField(QStringLiteral("HealthNum"), c.healthNum, Kind::Text);
    b.addField(QStringLiteral("VersionCode"), c.versionCode, Kind::Text);
    b.addField(QStringLiteral("FName"), c.fName, Kind::Text);
    b.addField(QStringLiteral("LName"), c.lName, Kind::Text);
    b.addField(QStringLiteral("DOB"), dateValue(c.dob), Kind::Text);
    b.addField(QStringLiteral("Province"), c.province, Kind::Text);
    b.addField(QStringLiteral("Sex"), c.sex, Kind::Text);
    b.addField(QStringLiteral("SLI"), c.sli, Kind::Text);
    b.addField(QStringLiteral("PatientID"), c.patientId, Kind::Number);
    b.addField(QStringLiteral("PayProg"), c.payProg, Kind::Text);
    b.addField(QStringLiteral("ThirdPartyID"),
               c.thirdPartyId ? QVariant(*c.thirdPartyId) : QVariant(), Kind::Number);
    b.addField(QStringLiteral("RegNum"), c.regNum, Kind::Text);
    b.addField(QStringLiteral("RefDoc"), c.refDoc, Kind::Text);
    b.addField(QStringLiteral("FacilityNum"), c.facilityNum, Kind::Text);
    b.addField(QStringLiteral("AdmitDate"), dateValue(c.admitDate), Kind::Text);
    b.addField(QStringLiteral("RefLab"), c.refLab, Kind::Text);
    b.addField(QStringLiteral("ManualReview"), c.manualReview, Kind::Number);
    b.addField(QStringLiteral("DateCreated"), c.dateCreated, Kind::Text);
    b.addField(QStringLiteral("ACFlag"), c.acFlag, Kind::Number);
    b.addField(QStringLiteral("SplitFlag"), c.splitFlag, Kind::Number);
    b.addField(QStringLiteral("InvoiceNum"), c.invoiceNum, Kind::Text);
    b.addField(QStringLiteral("MOHClaim"), c.mohClaim, Kind::Text);
    b.addField(QStringLiteral("AllBatches"), c.allBatches, Kind::Text);
    b.addField(QStringLiteral("RA"), c.ra, Kind::Text);
}

void addItemFields(SqlStatementBuilder& b, const ItemRecord& i) {
    b.addField(QStringLiteral("ClaimID"), i.claimId, Kind::Number);
    b.addField(QStringLiteral("ItemID"), i.itemId, Kind::Number);
    b.addField(QStringLiteral("ServiceCode"), i.serviceCode, Kind::Text);
    b.addField(QStringLiteral("DiagCode"), i.diagCode, Kind::Text);
    b.addField(QStringLiteral("NumServ"), i.numServ, Kind::Number);
    b.addField(QStringLiteral("FeeSubm"), moneyValue(i.feeSubm), Kind::Number);
    b.addField(QStringLiteral("ServiceDate"), dateValue(i.serviceDate), Kind::Text);
    b.addField(QStringLiteral("FeePaid"), moneyValue(i.feePaid), Kind::Number);
    b.addField(QStringLiteral("Status"), i.status, Kind::Number);
    b.addField(QStringLiteral("Errors"), i.errors, Kind::Text);
    b.addField(QStringLiteral("OrderID"), i.orderId, Kind::Text);
    b.addField(QStringLiteral("OrderNum"), i.orderNum, Kind::Text);
    b.addField(QStringLiteral("Orderstatus"), i.orderStatus, Kind::Text);
    b.addField(QStringLiteral("PlacerID"), i.placerId, Kind::Text);
    b.addField(QStringLiteral("Description1"), i.description1, Kind::Text);
    b.addField(QStringLiteral("Description2"), i.description2, Kind::Text);
    b.addField(QStringLiteral("facility"), i.facility, Kind::Text);
}

// A freshly written claim: its items numbered 1 upward and not yet answered.
void freshItems(ClaimRecord& claim) {
    int next = 1;
    for (ItemRecord& item : claim.items) {
        item.claimId = claim.claimId;
        item.itemId = next++;
        item.status = static_cast<int>(ItemStatus::Unanswered);
        item.feePaid.reset();
        item.errors.clear();
    }
}

void writeLog(const SqlLog& log, const QStringList& lines) {
    for (const QString& line : lines) {
        log.write(line);
    }
}

QString likeEscaped(QString text) {
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('%'), QStringLiteral("\\%"));
    text.replace(QLatin1Char('_'), QStringLiteral("\\_"));
    return text;
}

}  // namespace

ClaimStore::ClaimStore(Database& db, const Clock& clock, const SqlLog& log)
    : m_db(db), m_clock(clock), m_log(log) {}

std::optional<ClaimRecord> ClaimStore::load(qint64 claimId) {
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From claims Where ClaimID=?"), {claimId},
                            QStringLiteral("reading claim %1").arg(claimId));
    if (!q.next()) {
        return std::nullopt;
    }
    ClaimRecord claim = ClaimRecord::fromRecord(q.record());
    claim.items = items(claimId);
    return claim;
}

QList<ItemRecord> ClaimStore::items(qint64 claimId) {
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select * From items Where ClaimID=? Order By ItemID"), {claimId},
                  QStringLiteral("reading the items of claim %1").arg(claimId));
    QList<ItemRecord> list;
    while (q.next()) {
        list << ItemRecord::fromRecord(q.record());
    }
    return list;
}

int ClaimStore::nextItemId(qint64 claimId) {
    const QVariant max = m_db.scalar(
        QStringLiteral("Select Max(ItemID) As MaxItem From items Where ClaimID=?"), {claimId});
    return static_cast<int>(max.toLongLong()) + 1;
}

qint64 ClaimStore::nextClaimId() {
    const QVariant max = m_db.scalar(
        QStringLiteral("Select Max(ClaimID) From claims Where ClaimID < ?"), {kFirstSplitClaimId});
    const qint64 next = max.isNull() ? kFirstClaimId : max.toLongLong() + 1;
    if (next >= kFirstSplitClaimId) {
        throw DbError(QStringLiteral("numbering a new claim"), QString(),
                      QStringLiteral("no claim number is left below %1").arg(kFirstSplitClaimId));
    }
    return next;
}

QString ClaimStore::nextAccountNumber() {
    const QVariant max =
        m_db.scalar(QStringLiteral("Select Max(AcctNum) From claims Where AcctNum < '70000000'"));
    const qint64 next = max.toString().trimmed().toLongLong() + 1;
    return QStringLiteral("%1").arg(next, 8, 10, QLatin1Char('0'));
}

ClaimRecord ClaimStore::insertNew(ClaimRecord claim) {
    QStringList logLines;
    claim = insertNew(std::move(claim), logLines);
    writeLog(m_log, logLines);
    return claim;
}

ClaimRecord ClaimStore::insertNew(ClaimRecord claim, QStringList& logLines) {
    QStringList lines;
    Transaction tx(m_db, QStringLiteral("saving a new claim"));
    claim.claimId = nextClaimId();
    claim.acctNum = nextAccountNumber();
    claim.batchId = batchIdForProgram(claim.payProg);
    claim.dateCreated = m_clock.now();
    freshItems(claim);
    writeRows(claim, lines);
    tx.commit();
    logLines << lines;
    return claim;
}

ClaimRecord ClaimStore::replace(ClaimRecord claim) {
    QStringList logLines;
    claim = replace(std::move(claim), logLines);
    writeLog(m_log, logLines);
    return claim;
}

ClaimRecord ClaimStore::replace(ClaimRecord claim, QStringList& logLines) {
    QStringList lines;
    Transaction tx(m_db, QStringLiteral("saving claim %1").arg(claim.claimId));
    const std::optional<ClaimRecord> old = load(claim.claimId);
    if (!old) {
        throw DbError(QStringLiteral("saving claim %1").arg(claim.claimId), QString(),
                      QStringLiteral("the claim is no longer in the database"));
    }
    // What the entry screen never shows stays with the claim: its earlier batches,
    // invoices, split mark and the ministry's answers.
    claim.acctNum = old->acctNum;
    claim.splitFlag = old->splitFlag;
    claim.invoiceNum = old->invoiceNum;
    claim.mohClaim = old->mohClaim;
    claim.allBatches = old->allBatches;
    claim.ra = old->ra;
    claim.batchId = batchIdForProgram(claim.payProg);
    claim.dateCreated = m_clock.now();
    freshItems(claim);
    const QString number = QString::number(claim.claimId);
    m_db.exec(QStringLiteral("Delete From items Where ClaimID=?"), {claim.claimId});
    m_db.exec(QStringLiteral("Delete From claims Where ClaimID=?"), {claim.claimId});
    lines << QStringLiteral("Delete From items Where ClaimID=") + number
          << QStringLiteral("Delete From claims Where ClaimID=") + number;
    writeRows(claim, lines);
    tx.commit();
    logLines << lines;
    return claim;
}

void ClaimStore::write(const ClaimRecord& claim) {
    QStringList logLines;
    write(claim, logLines);
    writeLog(m_log, logLines);
}

void ClaimStore::write(const ClaimRecord& claim, QStringList& logLines) {
    QStringList lines;
    Transaction tx(m_db, QStringLiteral("writing claim %1").arg(claim.claimId));
    writeRows(claim, lines);
    tx.commit();
    logLines << lines;
}

void ClaimStore::writeRows(const ClaimRecord& claim, QStringList& logLines) {
    const QString doing = QStringLiteral("writing claim %1").arg(claim.claimId);
    SqlStatementBuilder b;
    b.beginInsert(QStringLiteral("claims"));
    addClaimFields(b, claim);
    const auto claimRow = b.boundInsert();
    m_db.exec(claimRow.sql, claimRow.values, doing);
    logLines << b.finishInsert();
    for (const ItemRecord& item : claim.items) {
        b.beginInsert(QStringLiteral("items"));
        addItemFields(b, item);
        const auto itemRow = b.boundInsert();
        m_db.exec(itemRow.sql, itemRow.values, doing);
        logLines << b.finishInsert();
    }
}

void ClaimStore::remove(qint64 claimId) {
    QStringList logLines;
    remove(claimId, logLines);
    writeLog(m_log, logLines);
}

void ClaimStore::remove(qint64 claimId, QStringList& logLines) {
    {
        Transaction tx(m_db, QStringLiteral("deleting claim %1").arg(claimId));
        m_db.exec(QStringLiteral("Delete From items Where ClaimID=?"), {claimId});
        m_db.exec(QStringLiteral("Delete From claims Where ClaimID=?"), {claimId});
        tx.commit();
    }
    const QString number = QString::number(claimId);
    logLines << QStringLiteral("Delete From items Where ClaimID=") + number
             << QStringLiteral("Delete From claims Where ClaimID=") + number;
}

void ClaimStore::resubmit(qint64 claimId) {
    const QDate today = m_clock.today();
    SqlStatementBuilder claimUpdate;
    claimUpdate.beginUpdate(QStringLiteral("claims"));
    claimUpdate.addField(QStringLiteral("BatchID"), kPendingBatch, Kind::Text);
    claimUpdate.addField(QStringLiteral("DateCreated"), today, Kind::Text);
    SqlStatementBuilder itemUpdate;
    itemUpdate.beginUpdate(QStringLiteral("items"));
    itemUpdate.addField(QStringLiteral("FeePaid"), QVariant(), Kind::Number);
    itemUpdate.addField(QStringLiteral("Status"), 0, Kind::Number);
    itemUpdate.addField(QStringLiteral("Errors"), QVariant(), Kind::Text);
    const QString condition = QStringLiteral("ClaimID=");
    {
        Transaction tx(m_db, QStringLiteral("resubmitting claim %1").arg(claimId));
        for (const auto* b : {&claimUpdate, &itemUpdate}) {
            const auto bound = b->boundUpdate(condition + QLatin1Char('?'), {claimId});
            m_db.exec(bound.sql, bound.values);
        }
        tx.commit();
    }
    const QString number = QString::number(claimId);
    writeLog(m_log, {claimUpdate.finishUpdate(condition + number),
                     itemUpdate.finishUpdate(condition + number)});
}

void ClaimStore::closeRejection(qint64 claimId) {
    const auto rejected = static_cast<int>(ItemStatus::Rejected);
    const auto closed = static_cast<int>(ItemStatus::RejectedClosed);
    {
        Transaction tx(m_db, QStringLiteral("closing the rejection of claim %1").arg(claimId));
        m_db.exec(QStringLiteral("Update items Set Status=? Where ClaimID=? And Status=?"),
                  {closed, claimId, rejected});
        tx.commit();
    }
    m_log.write(QStringLiteral("Update items Set Status=%1 Where ClaimID=%2 And Status=%3")
                    .arg(closed)
                    .arg(claimId)
                    .arg(rejected));
}

void ClaimStore::confirmAutomatic() {
    m_db.exec(QStringLiteral("Update claims Set ACFlag=0 Where BatchID=?"), {kPendingBatch},
              QStringLiteral("confirming automatic claims"));
    m_log.write(QStringLiteral("Update Claims Set ACFlag = False where batchid = '") +
                kPendingBatch + QLatin1Char('\''));
}

namespace claimsearch {

Condition invoiceCondition(const QString& invoiceNumber) {
    const QString number = likeEscaped(invoiceNumber.trimmed());
    return {QStringLiteral(" And (C.InvoiceNum LIKE ? ESCAPE '\\' Or C.InvoiceNum LIKE ? ESCAPE "
                           "'\\')"),
            {number + QStringLiteral("!%"), QStringLiteral("%!") + number + QStringLiteral("!%")}};
}

Condition batchCondition(const QString& batchId) {
    return {QStringLiteral(" And (C.BatchID = ? Or C.AllBatches LIKE ? ESCAPE '\\')"),
            {batchId, QLatin1Char('%') + likeEscaped(batchId) + QLatin1Char('%')}};
}

}  // namespace claimsearch

}  // namespace brimsett
