#include "claims/ClaimEntryRecord.h"

#include "foundation/DateText.h"
#include "patients/PatientEntry.h"

namespace brimsett::claimentry {

ClaimRecord toRecord(const ClaimEntry& entry, const MoneyFormat& money) {
    ClaimRecord c;
    c.claimId = entry.claimId.value_or(0);
    // Doctor ids are kept in capitals: the batches look for them as the register has them.
    c.doctorId = entry.doctorId.trimmed().toUpper();
    c.payProg = entry.payProg.trimmed();
    const QString payer = entry.thirdPartyId.trimmed();
    if (!payer.isEmpty()) {
        bool ok = false;
        const qint64 id = payer.toLongLong(&ok);
        if (ok) {
            c.thirdPartyId = id;
        }
    }
    c.patientId = entry.patientId.trimmed().toLongLong();
    c.healthNum = entry.healthNum.trimmed();
    c.versionCode = entry.versionCode.trimmed().toUpper();
    c.fName = entry.fName.trimmed();
    c.lName = entry.lName.trimmed();
    c.dob = readTypedDate(entry.dob);
    c.sex = entry.sex.trimmed().toUpper();
    c.province = entry.province.trimmed().toUpper();
    c.refDoc = entry.refDoc.trimmed();
    c.facilityNum = entry.facilityNum.trimmed().toUpper();
    c.admitDate = readTypedDate(entry.admitDate);
    c.refLab = entry.refLab.trimmed();
    c.manualReview = entry.manualReview;
    c.regNum = entry.regNum.trimmed();
    c.sli = entry.sli.trimmed().toUpper();
    c.acFlag = entry.acFlag;
    for (const ItemEntry& row : entry.filledRows()) {
        ItemRecord item;
        item.serviceCode = row.serviceCode.trimmed().toUpper();
        item.diagCode = row.diagCode.trimmed();
        const QString numServ = row.numServ.trimmed();
        item.numServ = numServ.isEmpty() ? 1 : numServ.toInt();
        if (!row.fee.trimmed().isEmpty()) {
            item.feeSubm = Money::parse(row.fee, money);
        }
        item.serviceDate = readTypedDate(row.serviceDate);
        c.items << item;
    }
    return c;
}

ClaimEntry fromRecord(const ClaimRecord& claim, const MoneyFormat& money) {
    ClaimEntry e;
    e.claimId = claim.claimId;
    e.doctorId = claim.doctorId;
    e.patientId = claim.patientId != 0 ? QString::number(claim.patientId) : QString();
    e.healthNum = claim.healthNum;
    e.versionCode = claim.versionCode;
    e.fName = claim.fName;
    e.lName = claim.lName;
    e.dob = datetext::slashed(claim.dob);
    e.sex = claim.sex;
    e.province = claim.province;
    e.payProg = claim.payProg;
    e.thirdPartyId = claim.thirdPartyId ? QString::number(*claim.thirdPartyId) : QString();
    e.refDoc = claim.refDoc;
    e.facilityNum = claim.facilityNum;
    e.admitDate = datetext::slashed(claim.admitDate);
    e.refLab = claim.refLab;
    e.regNum = claim.regNum;
    e.sli = claim.sli;
    e.manualReview = claim.manualReview;
    e.acFlag = claim.acFlag;
    for (const ItemRecord& item : claim.items) {
        ItemEntry row;
        row.serviceCode = item.serviceCode;
        row.diagCode = item.diagCode;
        row.numServ = QString::number(item.numServ);
        row.fee = item.feeSubm ? item.feeSubm->format(money) : QString();
        row.serviceDate = datetext::slashed(item.serviceDate);
        e.rows << row;
    }
    return e;
}

void copyPatient(ClaimEntry& entry, const PatientEntry& patient) {
    entry.patientId = patient.patientId;
    entry.healthNum = patient.healthNum;
    entry.versionCode = patient.versionCode;
    entry.fName = patient.fName;
    entry.lName = patient.lName;
    entry.dob = patient.dob;
    entry.sex = patient.sex;
    entry.province = patient.province;
    entry.refDoc = patient.refDoc;
    entry.facilityNum = patient.facilityNum;
    entry.admitDate = patient.admitDate;
}

}  // namespace brimsett::claimentry
