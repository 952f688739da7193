#include "appointments/AppointmentStore.h"

#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett::appointments {

namespace {

using Kind = SqlStatementBuilder::Kind;

// The row with what the details show beside it, in one reading.
const char* const kReading =
    "Select A.*, T.Name As SlotName, P.LName As LName,"
    " P.FName As FName, P.HPhone As HPhone, P.DOB As DOB From appointments A"
    " Left Join apptimeslots T On T.ID=A.SlotType"
    " Left Join patients P On P.PatientID=A.PatientID";

// The book's save holds the write transaction: the AppID read here stays free only under it,
// and one of its own would only add a savepoint's two round trips to every booking.
void requireTransaction(Database& db, const QString& doing) {
    if (db.transactionDepth() == 0) {
        throw DbError(doing, {},
                      QStringLiteral("an appointment is saved only inside a transaction"));
    }
}

QList<Appointment> readAll(QSqlQuery q) {
    QList<Appointment> rows;
    while (q.next()) {
        rows << Appointment::fromRecord(q.record());
    }
    return rows;
}

QVariant optional(const std::optional<qint64>& value) {
    return value ? QVariant(*value) : QVariant();
}

void addFields(SqlStatementBuilder& b, const Appointment& a) {
    b.addField(QStringLiteral("MenuPosition"), optional(a.menuPosition), Kind::Number);
    b.addField(QStringLiteral("PatientName"), a.patientName, Kind::Text);
    b.addField(QStringLiteral("PatientPhone"), a.patientPhone, Kind::Text);
    b.addField(QStringLiteral("AppDate"), a.appDate.isValid() ? QVariant(a.appDate) : QVariant(),
               Kind::Text);
    b.addField(QStringLiteral("AppTime"), a.appTime, Kind::Number);
    b.addField(QStringLiteral("AppLength"), a.appLength, Kind::Number);
    b.addField(QStringLiteral("SlotType"), a.slotType, Kind::Number);
    b.addField(QStringLiteral("Notes"), a.notes, Kind::Text);
    b.addField(QStringLiteral("Status"), a.status, Kind::Number);
    b.addField(QStringLiteral("ServiceCode"), a.serviceCode, Kind::Text);
    b.addField(QStringLiteral("DiagCode"), a.diagCode, Kind::Text);
    b.addField(QStringLiteral("PatientID"), optional(a.patientId), Kind::Number);
    b.addField(QStringLiteral("DoctorID"), a.doctorId, Kind::Text);
    b.addField(QStringLiteral("Deleted"), a.deleted, Kind::Number);
}

}  // namespace

std::optional<Appointment> AppointmentStore::load(qint64 appId) {
    QList<Appointment> rows =
        readAll(m_db.exec(QLatin1String(kReading) + QStringLiteral(" Where A.AppID=?"), {appId},
                          QStringLiteral("reading appointment %1").arg(appId)));
    if (rows.isEmpty()) {
        return std::nullopt;
    }
    if (const std::optional<SlotType> type = slotTypeById(m_db, rows.first().slotType)) {
        rows.first().slotColor = type->color;
    }
    return rows.first();
}

QList<Appointment> AppointmentStore::day(const QString& doctorId, const QDate& date) {
    return readAll(m_db.exec(
        QLatin1String(kReading) + QStringLiteral(" Where A.AppDate=? And A.DoctorID=?") +
            bookOrder(),
        {date, doctorId}, QStringLiteral("reading the appointments of %1").arg(doctorId)));
}

QList<Appointment> AppointmentStore::days(const QStringList& doctorIds, const QDate& from,
                                          const QDate& to) {
    if (doctorIds.isEmpty()) {
        return {};
    }
    QStringList marks;
    marks.fill(QStringLiteral("?"), doctorIds.size());
    QVariantList values{from, to};
    for (const QString& id : doctorIds) {
        values << id;
    }
    return readAll(m_db.exec(QLatin1String(kReading) +
                                 QStringLiteral(" Where A.AppDate>=? And A.AppDate<=? And"
                                                " A.DoctorID In (%1)")
                                     .arg(marks.join(QLatin1Char(','))) +
                                 bookOrder(),
                             values, QStringLiteral("reading the appointments of the shown days")));
}

QList<Appointment> AppointmentStore::overlapping(const QString& doctorId, const QDate& date,
                                                 int time, int length, qint64 except) {
    return readAll(
        m_db.exec(QLatin1String(kReading) +
                      QStringLiteral(" Where A.AppDate=? And A.DoctorID=? And A.AppTime<?"
                                     " And A.AppTime+A.AppLength>? And A.AppID<>?"
                                     " And (A.Status Is Null Or A.Status<>?)") +
                      bookOrder(),
                  {date, doctorId, time + length, time, except, kStatusCancelled},
                  QStringLiteral("looking for appointments at the same time")));
}

bool AppointmentStore::isRequisition(qint64 appId) {
    // The requisition program keeps the number as text.
    return m_db.scalar(QStringLiteral("Select Count(*) From realreqstage Where apptid=?"),
                       {QString::number(appId)},
                       QStringLiteral("looking up appointment %1").arg(appId))
               .toLongLong() > 0;
}

qint64 AppointmentStore::insert(const Appointment& appointment, QStringList& logLines) {
    requireTransaction(m_db, QStringLiteral("saving a new appointment"));
    const qint64 appId = nextId(m_db, QStringLiteral("appointments"), QStringLiteral("AppID"));
    SqlStatementBuilder b;
    b.beginInsert(QStringLiteral("appointments"));
    b.addField(QStringLiteral("AppID"), appId, Kind::Number);
    addFields(b, appointment);
    const auto bound = b.boundInsert();
    m_db.exec(bound.sql, bound.values, QStringLiteral("saving appointment %1").arg(appId));
    logLines << b.finishInsert();
    return appId;
}

void AppointmentStore::update(const Appointment& appointment, QStringList& logLines) {
    const QString number = QString::number(appointment.appId);
    requireTransaction(m_db, QStringLiteral("saving appointment %1").arg(number));
    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("appointments"));
    addFields(b, appointment);
    const auto bound = b.boundUpdate(QStringLiteral("AppID=?"), {appointment.appId});
    m_db.exec(bound.sql, bound.values, QStringLiteral("saving appointment %1").arg(number));
    logLines << b.finishUpdate(QStringLiteral("AppID=") + number);
}

}  // namespace brimsett::appointments
