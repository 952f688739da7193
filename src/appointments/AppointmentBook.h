#pragma once

#include "appointments/AppointmentDetails.h"
#include "appointments/AppointmentStore.h"

namespace brimsett {
class Database;
class Prompter;
class SqlLog;
}  // namespace brimsett

// The book's rules: a doctor's day laid out from the template, booking with the question
// before a double booking, moving and cancelling.
namespace brimsett::appointments {

// One line of a doctor's day: a stored appointment, or an empty slot of the template.
struct DayLine {
    int time = 0;
    int length = 0;
    int slotType = 0;
    QString slotName;
    int color = 0;                           // 0xRRGGBB
    std::optional<Appointment> appointment;  // none for an empty template slot
};

// The day's lines: the appointments (cancelled ones too) and the template's slots that no
// live appointment covers, in the book's order (time, longer first, number; an empty slot
// after the appointments of its minute). Reads only.
QList<DayLine> dayLines(Database& db, const QString& doctorId, const QDate& date);

// A doctor's day, as a key of several read at once.
struct DayKey {
    QString doctorId;
    QDate date;
};
// The lines of each day (in the keys' order), as dayLines gives them, read in three
// statements whatever the number of doctors and days: the book's views ask for many.
QList<QList<DayLine>> dayLinesOf(Database& db, const QList<DayKey>& keys);

class AppointmentBook {
public:
    AppointmentBook(Database& db, Prompter& prompter, const SqlLog& log, CardCheck card = {});

    // Checks the details, refuses a requisition's appointment, asks before a double booking
    // and writes the row, all in one transaction. The appointment's number, or none when
    // nothing was written (the reason told through the prompter).
    std::optional<qint64> save(const DetailsInput& input);
    // Sets status "Cancelled" through the same save; the row stays in the book.
    bool cancel(qint64 appId);

    // The question before a booking that shares time with other live appointments.
    static QStringList overlapQuestion(const QList<Appointment>& others);

private:
    bool refusedAsRequisition(qint64 appId);

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    CardCheck m_card;
    AppointmentStore m_store;
};

}  // namespace brimsett::appointments
