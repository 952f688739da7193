#pragma once

#include "appointments/Appointment.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {
class Database;
class SqlLog;
}  // namespace brimsett

// The columns of the book's day grid (AppColumns): which show, which print, how wide and how
// aligned, in the order the desk arranged them.
namespace brimsett::appointments {

struct GridColumn {
    int id = 0;
    QString name;
    bool visible = true;
    bool print = true;
    int width = 0;                           // pixels
    QString align = QStringLiteral("Left");  // "Left", "Right" or "Center"
    int order = 0;                           // ColumnOrder
};

// The set shipped with the program, used until the desk saves its own.
QList<GridColumn> defaultColumns();

// The saved columns by ID, or the shipped set when none are saved; nothing is written.
QList<GridColumn> LoadColumns(Database& db);

// Replaces every saved column with these, in one transaction: each is written with its
// position in the list as ID (from 1) and ColumnOrder (from 0), so they load back in this
// order. An alignment other than the three is written as "Left". Logged after the commit.
void SaveColumns(Database& db, const SqlLog& log, const QList<GridColumn>& columns);

// What a booking's block in the day grid shows after the name, in the desk's column order:
// the visible ones of "Phone", "Type", "Status", "Notes", "Service" and "Diagnosis", the codes
// only where "ColumnServCode" and "ColumnDiagCode" allow. Time, length and patient are the
// block itself.
QStringList blockFields(const QList<GridColumn>& columns, bool serviceCode, bool diagCode);
// The appointment's texts of those fields, empty ones left out; a status shows as its tag
// ("[Booked]"), none for status 0.
QStringList blockTexts(const Appointment& appointment, const QStringList& fields);

}  // namespace brimsett::appointments
