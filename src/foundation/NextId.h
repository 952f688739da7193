#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>

namespace brimsett {

class Database;
struct AppSettings;

// Choosing the next free numeric id, and one-value lookups. Table, column and function
// names are written into the statement, so each must be a plain name (std::invalid_argument
// otherwise); values always go in bound.

// The highest value of the column plus one; 1 for an empty table.
qint64 nextId(Database& db, const QString& table, const QString& column);

// The highest PatientID plus one. With NextIDUnder above zero only ids below it count, so
// two computers given separate ranges never choose the same id. A range that is full yields
// the limit itself, which the patient save then finds taken.
qint64 nextPatientId(Database& db, const AppSettings& settings);

// "Select " + function + "(" + column + ") From " + table + " Where " + condition, the
// condition written with "?" for its values. column may be "*" (for Count). An invalid
// QVariant when there is no row.
QVariant scalarLookup(Database& db, const QString& function, const QString& column,
                      const QString& table, const QString& condition,
                      const QVariantList& values = {});

}  // namespace brimsett
