#include "patients/PatientEntry.h"

#include "foundation/DateText.h"
#include "foundation/RecordValues.h"

#include <QDateTime>
#include <QSqlRecord>

namespace brimsett {

namespace {

using recordvalue::textOf;

QString dateOf(const QSqlRecord& record, const char* column) {
    return dateTextOf(recordvalue::of(record, column));
}

}  // namespace

QDate readTypedDate(const QString& text) {
    const QString t = text.trimmed();
    QDate date = datetext::fromSlashed(t);
    if (!date.isValid()) {
        date = datetext::fromYyyymmdd(t);
    }
    if (!date.isValid() && t.size() == 10 && t.at(4) == QLatin1Char('-') &&
        t.at(7) == QLatin1Char('-')) {
        QString slashed = t;
        slashed[4] = QLatin1Char('/');
        slashed[7] = QLatin1Char('/');
        date = datetext::fromSlashed(slashed);
    }
    return date;
}

QString dateTextOf(const QVariant& stored) {
    if (stored.isNull() || !stored.isValid()) {
        return {};
    }
    if (stored.typeId() == QMetaType::QDate) {
        return datetext::slashed(stored.toDate());
    }
    if (stored.typeId() == QMetaType::QDateTime) {
        return datetext::slashed(stored.toDateTime().date());
    }
    const QString text = stored.toString();
    // Stored as "YYYY-MM-DD", or "YYYY-MM-DD HH:MM:SS" for a moment.
    const QDate date = readTypedDate(text.left(10));
    return date.isValid() ? datetext::slashed(date) : text;
}

PatientEntry PatientEntry::fromRecord(const QSqlRecord& record) {
    PatientEntry e;
    e.patientId = textOf(record, "PatientID");
    e.healthNum = textOf(record, "HealthNum");
    e.versionCode = textOf(record, "VersionCode");
    e.expYear = dateOf(record, "ExpYear");
    e.fName = textOf(record, "FName");
    e.lName = textOf(record, "LName");
    e.dob = dateOf(record, "DOB");
    e.sex = textOf(record, "Sex");
    e.address = textOf(record, "Address");
    e.city = textOf(record, "City");
    e.province = textOf(record, "Province");
    e.postalCode = textOf(record, "PostalCode");
    e.country = textOf(record, "Country");
    e.hPhone = textOf(record, "HPhone");
    e.wPhone = textOf(record, "WPhone");
    e.refDoc = textOf(record, "RefDoc");
    e.famDoc = textOf(record, "FamDoc");
    e.facilityNum = textOf(record, "FacilityNum");
    e.admitDate = dateOf(record, "AdmitDate");
    e.notes = textOf(record, "Notes");
    const int flag = record.indexOf(QLatin1String("Flag"));
    // The old engine wrote True as -1; any value but 0 (or NULL) is set.
    e.flag = flag >= 0 && !record.isNull(flag) && record.value(flag).toBool();
    e.batchId = textOf(record, "BatchID");
    e.hnCheckDate = dateOf(record, "HNCheckDate");
    e.response = textOf(record, "Response");
    e.status = textOf(record, "Status");
    e.hl7PatId = textOf(record, "HL7PatID");
    return e;
}

QString PatientEntry::displayName(bool lastNameFirst) const {
    if (fName.isEmpty() || lName.isEmpty()) {
        return fName.isEmpty() ? lName : fName;
    }
    return lastNameFirst ? lName + QStringLiteral(", ") + fName : fName + QLatin1Char(' ') + lName;
}

}  // namespace brimsett
