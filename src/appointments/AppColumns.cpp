#include "appointments/AppColumns.h"

#include "appointments/AppointmentTime.h"
#include "foundation/Database.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlRecord>

#include <algorithm>

namespace brimsett::appointments {

namespace {

QString knownAlign(const QString& align) {
    for (const char* known : {"Left", "Right", "Center"}) {
        if (align.compare(QLatin1String(known), Qt::CaseInsensitive) == 0) {
            return QLatin1String(known);
        }
    }
    return QStringLiteral("Left");
}

}  // namespace

QList<GridColumn> defaultColumns() {
    struct Shipped {
        const char* name;
        bool visible;
        bool print;
        int width;
        const char* align;
    };
    static const Shipped shipped[] = {
        {"Time", true, true, 70, "Right"},         {"Length", true, true, 50, "Right"},
        {"Patient", true, true, 180, "Left"},      {"Phone", true, true, 100, "Left"},
        {"Type", true, true, 90, "Left"},          {"Status", true, true, 80, "Left"},
        {"Notes", true, true, 220, "Left"},        {"Service", false, false, 60, "Center"},
        {"Diagnosis", false, false, 60, "Center"},
    };
    QList<GridColumn> columns;
    for (const Shipped& s : shipped) {
        const int n = int(columns.size());
        columns << GridColumn{n + 1,   QLatin1String(s.name),  s.visible, s.print,
                              s.width, QLatin1String(s.align), n};
    }
    return columns;
}

QList<GridColumn> LoadColumns(Database& db) {
    if (db.scalar(QStringLiteral("Select Count(*) From appcolumns")).toInt() == 0) {
        return defaultColumns();
    }
    QList<GridColumn> columns;
    QSqlQuery q = db.exec(QStringLiteral("Select * From appcolumns Order By ID"), {},
                          QStringLiteral("reading the book's columns"));
    while (q.next()) {
        const QSqlRecord r = q.record();
        columns << GridColumn{r.value(QStringLiteral("ID")).toInt(),
                              r.value(QStringLiteral("Name")).toString(),
                              r.value(QStringLiteral("Visible")).toBool(),
                              r.value(QStringLiteral("Print")).toBool(),
                              r.value(QStringLiteral("Width")).toInt(),
                              knownAlign(r.value(QStringLiteral("Align")).toString()),
                              r.value(QStringLiteral("ColumnOrder")).toInt()};
    }
    return columns;
}

void SaveColumns(Database& db, const SqlLog& log, const QList<GridColumn>& columns) {
    using Kind = SqlStatementBuilder::Kind;
    QStringList logged = {QStringLiteral("Delete From appcolumns")};
    Transaction transaction(db, QStringLiteral("saving the book's columns"));
    db.exec(logged.first(), {}, QStringLiteral("saving the book's columns"));
    for (int i = 0; i < columns.size(); ++i) {
        const GridColumn& c = columns.at(i);
        SqlStatementBuilder b;
        b.beginInsert(QStringLiteral("appcolumns"));
        b.addField(QStringLiteral("ID"), i + 1, Kind::Number);
        b.addField(QStringLiteral("Name"), c.name, Kind::Text);
        b.addField(QStringLiteral("Visible"), c.visible, Kind::Number);
        b.addField(QStringLiteral("Print"), c.print, Kind::Number);
        b.addField(QStringLiteral("Width"), c.width, Kind::Number);
        b.addField(QStringLiteral("Align"), knownAlign(c.align), Kind::Text);
        b.addField(QStringLiteral("ColumnOrder"), i, Kind::Number);
        const SqlStatementBuilder::Bound bound = b.boundInsert();
        db.exec(bound.sql, bound.values, QStringLiteral("saving the book's column ") + c.name);
        logged << b.finishInsert();
    }
    transaction.commit();
    for (const QString& statement : std::as_const(logged)) {
        log.write(statement);
    }
}

QStringList blockFields(const QList<GridColumn>& columns, bool serviceCode, bool diagCode) {
    static const QStringList kShowable{QStringLiteral("Phone"),   QStringLiteral("Type"),
                                       QStringLiteral("Status"),  QStringLiteral("Notes"),
                                       QStringLiteral("Service"), QStringLiteral("Diagnosis")};
    QList<GridColumn> ordered = columns;
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const GridColumn& a, const GridColumn& b) { return a.order < b.order; });
    QStringList fields;
    for (const GridColumn& column : ordered) {
        const QString name = column.name.trimmed();
        const bool allowed =
            (name.compare(QLatin1String("Service"), Qt::CaseInsensitive) != 0 || serviceCode) &&
            (name.compare(QLatin1String("Diagnosis"), Qt::CaseInsensitive) != 0 || diagCode);
        for (const QString& known : kShowable) {
            if (column.visible && allowed && name.compare(known, Qt::CaseInsensitive) == 0 &&
                !fields.contains(known)) {
                fields << known;
            }
        }
    }
    return fields;
}

QStringList blockTexts(const Appointment& appointment, const QStringList& fields) {
    QStringList texts;
    for (const QString& field : fields) {
        QString text;
        if (field == QLatin1String("Phone")) {
            text = appointment.patientPhone;
        } else if (field == QLatin1String("Type")) {
            text = appointment.slotName;
        } else if (field == QLatin1String("Status") && appointment.status != 0) {
            text = QLatin1Char('[') + StatusName(appointment.status) + QLatin1Char(']');
        } else if (field == QLatin1String("Notes")) {
            text = QString(appointment.notes).replace(QLatin1Char('\n'), QLatin1Char(' '));
        } else if (field == QLatin1String("Service")) {
            text = appointment.serviceCode;
        } else if (field == QLatin1String("Diagnosis")) {
            text = appointment.diagCode;
        }
        if (!text.simplified().isEmpty()) {
            texts << text.simplified();
        }
    }
    return texts;
}

}  // namespace brimsett::appointments
