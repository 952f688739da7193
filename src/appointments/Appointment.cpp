#include "appointments/Appointment.h"

#include <QSqlRecord>
#include <QVariant>

namespace brimsett::appointments {

namespace {

QVariant field(const QSqlRecord& r, const char* name) {
    const int i = r.indexOf(QLatin1String(name));
    return i < 0 ? QVariant() : r.value(i);
}

QString text(const QSqlRecord& r, const char* name) {
    return field(r, name).toString();
}

std::optional<qint64> optionalNumber(const QSqlRecord& r, const char* name) {
    const QVariant v = field(r, name);
    bool ok = false;
    const qint64 n = v.toLongLong(&ok);
    return v.isNull() || !ok ? std::nullopt : std::optional<qint64>(n);
}

QDate date(const QSqlRecord& r, const char* name) {
    return QDate::fromString(text(r, name).left(10), Qt::ISODate);
}

}  // namespace

Appointment Appointment::fromRecord(const QSqlRecord& r) {
    Appointment a;
    a.appId = field(r, "AppID").toLongLong();
    a.menuPosition = optionalNumber(r, "MenuPosition");
    a.patientName = text(r, "PatientName");
    a.patientPhone = text(r, "PatientPhone");
    a.appDate = date(r, "AppDate");
    a.appTime = field(r, "AppTime").toInt();
    a.appLength = field(r, "AppLength").toInt();
    a.slotType = field(r, "SlotType").toInt();
    a.notes = text(r, "Notes");
    a.status = field(r, "Status").toInt();
    a.serviceCode = text(r, "ServiceCode");
    a.diagCode = text(r, "DiagCode");
    a.patientId = optionalNumber(r, "PatientID");
    a.doctorId = text(r, "DoctorID");
    a.deleted = field(r, "Deleted").toInt() != 0;
    a.slotName = text(r, "SlotName");
    const QString last = text(r, "LName");
    const QString first = text(r, "FName");
    if (!last.isEmpty() || !first.isEmpty()) {
        a.patientLine = last + QStringLiteral(", ") + first;
    }
    a.patientHPhone = text(r, "HPhone");
    a.patientDob = date(r, "DOB");
    return a;
}

}  // namespace brimsett::appointments
