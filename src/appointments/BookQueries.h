#pragma once

#include "appointments/Appointment.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {
class Database;
class Prompter;
namespace reports {
class Report;
}
}  // namespace brimsett

// What the appointment book asks of the database beyond a doctor's day: the month's counts,
// finding appointments, and counting a day.
namespace brimsett::appointments {

// A day of the month view: its date and how many appointments of kind 0 (Type 0 slot types)
// the doctor has that day. Days without any are not listed.
struct MonthDay {
    QDate date;
    int count = 0;
};
// The doctor's counts for the month of `month` (any day of it), by date.
QList<MonthDay> monthCounts(Database& db, const QString& doctorId, const QDate& month);
// The second line of a month cell: "(+" n " apps)" or, where the cell is wide enough for it,
// "(+" n " appt's)".
QString monthCellCount(int count, bool wide);

// How a find reads its text.
enum class FindBy {
    Patient,  // a number alone is a patient number, anything else a name ("Last, First")
    Notes,    // the notes, with "*" at either end unless the text has one there already
};

// One row of the find grid: "ID", "Name", "Date", "Time", "Length", "Doctor", "Notes".
struct FoundAppointment {
    qint64 appId = 0;
    QString name;  // "Last, First" of the patient, else the appointment's PatientName
    QDate date;
    int time = 0;
    int length = 0;
    QString doctorId;
    QString notes;

    // The seven columns as the grid and the printed list show them (time as TimeText).
    QStringList columns() const;
};
// The find grid's captions, in order.
QStringList foundCaptions();

// Newest first. None when the find was refused, the reason told through the prompter
// ("Invalid Patient ID.", title "Error"); an empty list is an honest "nothing found". Typed
// quotes, "*", "?" and "%" never reach the statement as SQL.
std::optional<QList<FoundAppointment>> findAppointments(Database& db, Prompter& prompter,
                                                        const QString& text, FindBy by,
                                                        bool contains);
// n " appointment(s) found." or "No appointments found.".
QString foundCountLine(qsizetype count);
// "Appointments Found - Print Date: " with the long date, the seven columns, and the closing
// n " appointment(s).". The caller says "Nothing to print." for an empty list.
reports::Report foundListReport(const QList<FoundAppointment>& rows, const QDate& printDate);

// The appointments of the doctors on the day whose start lies in [firstMinute, lastMinute].
// An empty doctor list counts nothing (0).
int countDay(Database& db, const QDate& date, const QStringList& doctorIds, int firstMinute,
             int lastMinute);
// "# of Appointments: " n
QString countLine(int count);

}  // namespace brimsett::appointments
