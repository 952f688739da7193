#include "claims/ClaimRecord.h"

#include "foundation/RecordValues.h"
#include "patients/PatientEntry.h"

#include <QSqlRecord>

namespace brimsett {

namespace {

using recordvalue::textOf;
const auto valueOf = recordvalue::of;

qint64 numberOf(const QSqlRecord& record, const char* column) {
    return valueOf(record, column).toLongLong();
}

bool flagOf(const QSqlRecord& record, const char* column) {
    const QVariant v = valueOf(record, column);
    // The old engine wrote True as -1; any non-zero value is set.
    return v.isValid() && v.toLongLong() != 0;
}

QDate dateOf(const QSqlRecord& record, const char* column) {
    return readTypedDate(dateTextOf(valueOf(record, column)));
}

QDateTime momentOf(const QSqlRecord& record, const char* column) {
    const QVariant v = valueOf(record, column);
    if (!v.isValid()) {
        return {};
    }
    if (v.typeId() == QMetaType::QDateTime) {
        return v.toDateTime();
    }
    const QString text = v.toString();
    QDateTime moment = QDateTime::fromString(text, QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    if (!moment.isValid()) {
        moment = QDateTime::fromString(text, Qt::ISODate);
    }
    if (!moment.isValid()) {
        const QDate day = dateOf(record, column);
        moment = day.isValid() ? QDateTime(day, QTime(0, 0)) : QDateTime();
    }
    return moment;
}

}  // namespace

QString itemStatusName(const QString& batchId, int status) {
    if (batchId == kPendingBatch) {
        return QStringLiteral("Pending");
    }
    switch (status) {
        case 0:
            return QStringLiteral("Out./Submitted");
        case 1:
            return QStringLiteral("Rejected");
        case 2:
            return QStringLiteral("Paid");
        case 3:
            return QStringLiteral("Rejected Closed");
        default:
            return {};
    }
}

QString batchIdForProgram(const QString& payProg) {
    if (payProg.startsWith(QLatin1Char('T'))) {
        return kThirdPartyBatch;
    }
    if (payProg.startsWith(QLatin1Char('D'))) {
        return kDirectBatch;
    }
    return kPendingBatch;
}

ItemRecord ItemRecord::fromRecord(const QSqlRecord& r) {
    ItemRecord item;
    item.claimId = numberOf(r, "ClaimID");
    item.itemId = static_cast<int>(numberOf(r, "ItemID"));
    item.serviceCode = textOf(r, "ServiceCode");
    item.diagCode = textOf(r, "DiagCode");
    item.numServ = static_cast<int>(numberOf(r, "NumServ"));
    item.feeSubm = Money::fromVariant(valueOf(r, "FeeSubm"));
    item.serviceDate = dateOf(r, "ServiceDate");
    item.feePaid = Money::fromVariant(valueOf(r, "FeePaid"));
    item.status = static_cast<int>(numberOf(r, "Status"));
    item.errors = textOf(r, "Errors");
    item.orderId = textOf(r, "OrderID");
    item.orderNum = textOf(r, "OrderNum");
    item.orderStatus = textOf(r, "Orderstatus");
    item.placerId = textOf(r, "PlacerID");
    item.description1 = textOf(r, "Description1");
    item.description2 = textOf(r, "Description2");
    item.facility = textOf(r, "facility");
    return item;
}

ClaimRecord ClaimRecord::fromRecord(const QSqlRecord& r) {
    ClaimRecord c;
    c.claimId = numberOf(r, "ClaimID");
    c.batchId = textOf(r, "BatchID");
    c.acctNum = textOf(r, "AcctNum");
    c.doctorId = textOf(r, "DoctorID");
    c.payProg = textOf(r, "PayProg");
    const QVariant payer = valueOf(r, "ThirdPartyID");
    if (payer.isValid()) {
        c.thirdPartyId = payer.toLongLong();
    }
    c.patientId = numberOf(r, "PatientID");
    c.healthNum = textOf(r, "HealthNum");
    c.versionCode = textOf(r, "VersionCode");
    c.fName = textOf(r, "FName");
    c.lName = textOf(r, "LName");
    c.dob = dateOf(r, "DOB");
    c.sex = textOf(r, "Sex");
    c.province = textOf(r, "Province");
    c.refDoc = textOf(r, "RefDoc");
    c.facilityNum = textOf(r, "FacilityNum");
    c.admitDate = dateOf(r, "AdmitDate");
    c.refLab = textOf(r, "RefLab");
    c.manualReview = flagOf(r, "ManualReview");
    c.regNum = textOf(r, "RegNum");
    c.dateCreated = momentOf(r, "DateCreated");
    c.sli = textOf(r, "SLI");
    c.splitFlag = flagOf(r, "SplitFlag");
    c.acFlag = flagOf(r, "ACFlag");
    c.invoiceNum = textOf(r, "InvoiceNum");
    c.mohClaim = textOf(r, "MOHClaim");
    c.allBatches = textOf(r, "AllBatches");
    c.ra = textOf(r, "RA");
    return c;
}

}  // namespace brimsett
