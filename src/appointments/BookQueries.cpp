#include "appointments/BookQueries.h"

#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SqlText.h"
#include "patients/PatientSearch.h"
#include "reports/Report.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett::appointments {

namespace {

QDate dateOf(const QVariant& value) {
    return QDate::fromString(value.toString().left(10), Qt::ISODate);
}

// " In (?,?,?)" with a placeholder for each value.
QString inList(qsizetype count) {
    QStringList marks;
    marks.fill(QStringLiteral("?"), count);
    return QStringLiteral(" In (") + marks.join(QLatin1Char(',')) + QLatin1Char(')');
}

const char* const kFoundColumns =
    "Select A.AppID, A.PatientName, A.AppDate, A.AppTime, A.AppLength, A.DoctorID, A.Notes,"
    " P.LName As LName, P.FName As FName From appointments A"
    " Left Join patients P On P.PatientID=A.PatientID Where";
// Newest first; a row without a date or time goes last on every engine.
const char* const kFoundOrder =
    " Order By A.AppDate Is Null, A.AppDate Desc, A.AppTime Is Null, A.AppTime Desc,"
    " A.AppID Desc";

bool isNumber(const QString& text) {
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
}

// A notes text is used as typed when it begins or ends with "*", else found anywhere.
QString notesPattern(const QString& typed) {
    const QChar star = QLatin1Char('*');
    return typed.startsWith(star) || typed.endsWith(star) ? typed : star + typed + star;
}

struct Condition {
    QString sql;
    QVariantList values;
    void add(const sqltext::LikeCriterion& c, const QString& joiner) {
        sql += (sql.isEmpty() ? QString() : joiner) + c.sql;
        values += c.values;
    }
};

// Registered patients by their last and first names, or any appointment by the name it was
// booked under. The two are gathered apart so that each reaches the appointments through an
// index (Lower(LName), PatientID, Lower(PatientName) for a name's beginning) instead of
// reading the whole book.
Condition nameCondition(const Dialect& dialect, const QString& text, bool contains) {
    const TypedName name = splitTypedName(text);
    const auto around = [contains](const QString& part) {
        return (contains ? QStringLiteral("*") : QString()) + part + QLatin1Char('*');
    };
    Condition patients;
    patients.add(sqltext::lowerPrefixRange(QStringLiteral("LName"), around(name.last)), {});
    patients.add(sqltext::patternCriterion(dialect, QStringLiteral("LName"), around(name.last)),
                 QStringLiteral(" And"));
    // Only a first name typed narrows the list: a patient without one is still found by the
    // last name alone.
    if (!name.first.isEmpty()) {
        patients.add(
            sqltext::patternCriterion(dialect, QStringLiteral("FName"), around(name.first)),
            QStringLiteral(" And"));
    }
    const QString booked = text + QLatin1Char('*');
    Condition caller;
    caller.add(sqltext::lowerPrefixRange(QStringLiteral("PatientName"), booked), {});
    caller.add(sqltext::patternCriterion(dialect, QStringLiteral("PatientName"), booked),
               QStringLiteral(" And"));
    return {QStringLiteral(" A.AppID In (Select AppID From appointments Where PatientID In"
                           " (Select PatientID From patients Where") +
                patients.sql + QStringLiteral(") Union Select AppID From appointments Where") +
                caller.sql + QLatin1Char(')'),
            patients.values + caller.values};
}

}  // namespace

QList<MonthDay> monthCounts(Database& db, const QString& doctorId, const QDate& month) {
    if (!month.isValid()) {
        return {};
    }
    const QDate first(month.year(), month.month(), 1);
    const QDate last = first.addMonths(1).addDays(-1);
    QString sql = QStringLiteral(
        "Select A.AppDate As AppDate, Count(*) As N From appointments A"
        " Where A.AppDate>=? And A.AppDate<=? And A.DoctorID=?");
    QVariantList values{first, last, doctorId};
    // Only appointments proper count; an office without any such type counts every kind.
    QVariantList kinds;
    for (const SlotType& type : LoadSlotTypes(db)) {
        if (type.type == kKindAppointment) {
            kinds << type.id;
        }
    }
    if (!kinds.isEmpty()) {
        sql += QStringLiteral(" And A.SlotType") + inList(kinds.size());
        values += kinds;
    }
    sql += QStringLiteral(" Group By A.AppDate Order By A.AppDate");
    QSqlQuery q =
        db.exec(sql, values, QStringLiteral("counting the appointments of %1").arg(doctorId));
    QList<MonthDay> days;
    while (q.next()) {
        days << MonthDay{dateOf(q.value(0)), q.value(1).toInt()};
    }
    return days;
}

QString monthCellCount(int count, bool wide) {
    return QStringLiteral("(+%1 %2)")
        .arg(count)
        .arg(wide ? QStringLiteral("appt's") : QStringLiteral("apps"));
}

QStringList FoundAppointment::columns() const {
    return {QString::number(appId),
            name,
            datetext::slashed(date),
            TimeText(time),
            QString::number(length),
            doctorId,
            notes};
}

QStringList foundCaptions() {
    return {QStringLiteral("ID"),   QStringLiteral("Name"),   QStringLiteral("Date"),
            QStringLiteral("Time"), QStringLiteral("Length"), QStringLiteral("Doctor"),
            QStringLiteral("Notes")};
}

std::optional<QList<FoundAppointment>> findAppointments(Database& db, Prompter& prompter,
                                                        const QString& text, FindBy by,
                                                        bool contains) {
    const QString typed = text.trimmed();
    // A blank text would list the whole book.
    if (typed.isEmpty()) {
        return QList<FoundAppointment>();
    }
    Condition where;
    if (by == FindBy::Notes) {
        where.add(
            sqltext::patternCriterion(db.dialect(), QStringLiteral("A.Notes"), notesPattern(typed)),
            {});
    } else if (isNumber(typed)) {
        bool ok = false;
        const qint64 patientId = typed.toLongLong(&ok);
        if (!ok || db.scalar(QStringLiteral("Select Count(*) From patients Where PatientID=?"),
                             {patientId}, QStringLiteral("looking up patient %1").arg(typed))
                           .toLongLong() == 0) {
            prompter.error({QStringLiteral("Invalid Patient ID.")});
            return std::nullopt;
        }
        where = {QStringLiteral(" A.PatientID=?"), {patientId}};
    } else {
        where = nameCondition(db.dialect(), typed, contains);
    }
    QSqlQuery q = db.exec(QLatin1String(kFoundColumns) + where.sql + QLatin1String(kFoundOrder),
                          where.values, QStringLiteral("finding appointments"));
    QList<FoundAppointment> found;
    while (q.next()) {
        const Appointment a = Appointment::fromRecord(q.record());
        found << FoundAppointment{a.appId,     a.whoText(), a.appDate, a.appTime,
                                  a.appLength, a.doctorId,  a.notes};
    }
    return found;
}

QString foundCountLine(qsizetype count) {
    return count == 0 ? QStringLiteral("No appointments found.")
                      : QStringLiteral("%1 appointment(s) found.").arg(count);
}

reports::Report foundListReport(const QList<FoundAppointment>& rows, const QDate& printDate) {
    reports::Report report(QStringLiteral("Appointments Found - Print Date: ") +
                           datetext::longDate(printDate));
    reports::ReportTable table;
    for (const QString& caption : foundCaptions()) {
        table.columns << reports::ReportColumn{caption};
    }
    for (const FoundAppointment& row : rows) {
        table.rows << row.columns();
    }
    report.addTable(table);
    report.addParagraph(QStringLiteral("%1 appointment(s).").arg(rows.size()));
    return report;
}

int countDay(Database& db, const QDate& date, const QStringList& doctorIds, int firstMinute,
             int lastMinute) {
    if (doctorIds.isEmpty() || !date.isValid()) {
        return 0;
    }
    QStringList doctors;
    doctors.fill(QStringLiteral("A.DoctorID=?"), doctorIds.size());
    QVariantList values{date, firstMinute, lastMinute};
    for (const QString& id : doctorIds) {
        values << id;
    }
    return db
        .scalar(QStringLiteral("Select Count(A.AppID) From appointments A Where A.AppDate=?"
                               " And A.AppTime>=? And A.AppTime<=? And (") +
                    doctors.join(QStringLiteral(" Or ")) + QLatin1Char(')'),
                values, QStringLiteral("counting the day's appointments"))
        .toInt();
}

QString countLine(int count) {
    return QStringLiteral("# of Appointments: %1").arg(count);
}

}  // namespace brimsett::appointments
