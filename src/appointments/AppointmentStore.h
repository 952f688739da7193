#pragma once

#include "appointments/Appointment.h"

#include <QList>
#include <QStringList>

namespace brimsett {
class Database;
class SqlLog;
}  // namespace brimsett

namespace brimsett::appointments {

// Reading and writing appointment rows. The writes run inside the caller's transaction (a
// savepoint of it) and append the statements to logLines, for the caller to log after its
// commit; a statement the database refuses throws DbError.
class AppointmentStore {
public:
    explicit AppointmentStore(Database& db) : m_db(db) {}

    // The row with its slot type's name and colour and the patient's name, phone and
    // birth date; none when there is no such appointment. The rows of day() and
    // overlapping() leave the colour to the caller, who has the slot types at hand.
    std::optional<Appointment> load(qint64 appId);
    // A doctor's appointments of a day, cancelled ones included, in the book's order.
    QList<Appointment> day(const QString& doctorId, const QDate& date);
    // The same for several doctors over the days from `from` to `to`, in one reading.
    QList<Appointment> days(const QStringList& doctorIds, const QDate& from, const QDate& to);
    // The doctor's appointments of the day that are not cancelled and share a minute with
    // [time, time + length), other than `except`.
    QList<Appointment> overlapping(const QString& doctorId, const QDate& date, int time, int length,
                                   qint64 except);
    // Whether the lab-requisition program made the appointment (its rows are read-only here).
    bool isRequisition(qint64 appId);

    // Inside the caller's write transaction: writes a new row under the next AppID and returns
    // that number.
    qint64 insert(const Appointment& appointment, QStringList& logLines);
    // Inside the caller's write transaction: writes every stored field of an existing row back.
    void update(const Appointment& appointment, QStringList& logLines);

    // The book's order of a day's rows; a missing time or length sorts as the smallest on
    // every engine (a server would put it at the other end).
    static QString bookOrder() {
        return QStringLiteral(
            " Order By A.AppTime Is Null Desc,A.AppTime Asc,A.AppLength Is Null,A.AppLength Desc,"
            "A.AppID Asc");
    }

private:
    Database& m_db;
};

}  // namespace brimsett::appointments
