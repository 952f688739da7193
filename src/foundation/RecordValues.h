#pragma once

#include <QSqlRecord>
#include <QString>
#include <QVariant>

// Reading a row's columns by name, without regard to case (tables written by older versions
// of the program spell their columns their own way).
namespace brimsett::recordvalue {

// The column's value; an invalid QVariant when the column is NULL or not in the row.
inline QVariant of(const QSqlRecord& record, const char* column) {
    const int i = record.indexOf(QLatin1String(column));
    return i < 0 || record.isNull(i) ? QVariant() : record.value(i);
}

// The column as text; empty for NULL or a missing column.
inline QString textOf(const QSqlRecord& record, const char* column) {
    return of(record, column).toString();
}

}  // namespace brimsett::recordvalue
