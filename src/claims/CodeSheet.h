#pragma once

#include "claims/CodeTables.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantList>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// The rows of one code table as the user edits them: read with an optional find text,
// changed cell by cell, rows added and removed, then checked and saved together.
//
// A save is one transaction: the removed rows are deleted, the changed cells of stored rows
// updated, the new rows inserted; its statements go to the SQL log after the commit. Every
// problem of the edits is shown at once under "Error" and nothing is written.
class CodeSheet {
public:
    static inline const QString kHeading =
        QStringLiteral("Cannot save the changes due to the following problem(s):");

    struct Problem {
        int row;
        int column;
        QString text;  // "Row 3, A007: GP Fee is not an amount: \"12..5\"."
    };

    CodeSheet(const CodeTable& table, Database& db, Prompter& prompter, const SqlLog& log,
              MoneyFormat money = {});

    const CodeTable& table() const { return m_table; }
    const MoneyFormat& money() const { return m_money; }

    // Reads the rows whose key begins with the typed text or whose description holds it
    // (every row for an empty text; a leading ">", ">=", "<" or "<=" compares the key), in
    // key order. Unsaved edits are dropped. False, with the reason shown, when the table
    // could not be read: the rows and the find text are then kept as they were.
    bool load(const QString& find = {});
    const QString& find() const { return m_find; }

    int rowCount() const { return int(m_rows.size()); }
    // The text of a cell as the grid shows it.
    QString cell(int row, int column) const;
    bool isNew(int row) const { return m_rows.at(row).isNew; }
    bool isChanged(int row) const;
    // The key of a row as stored; empty for a new row.
    const QString& storedKey(int row) const { return m_rows.at(row).storedKey; }

    // Takes what was typed into a cell, tidied (CodeTable::tidied); true when it changed.
    bool setCell(int row, int column, const QString& typed);
    // An empty row at the end, with the columns' initial texts; returns its index.
    int addRow();
    // A stored row is deleted by the next save; a new one simply goes.
    void removeRow(int row);
    bool hasChanges() const;

    // Everything that would stop a save, in row order.
    QList<Problem> problems() const;
    // Checks and writes the edits; true when saved (or when there was nothing to save).
    // The rows are then read again with the same find text.
    bool save();
    // The problems that stopped the last save; empty after a save that went through.
    const QList<Problem>& refused() const { return m_refused; }

private:
    struct Row {
        QVariantList stored;  // as read; empty for a new row
        QStringList cells;    // every cell's text once one is edited; empty while unchanged
        QString storedKey;
        bool isNew = false;
    };
    QString storedText(const Row& row, int column) const;
    bool cellChanged(const Row& row, int column) const;
    QString rowLabel(int row) const;
    // Stored keys (capitals) of rows outside the sheet that a new or changed key would meet.
    bool keyTakenOutside(const QString& key) const;
    bool write();

    const CodeTable& m_table;
    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    MoneyFormat m_money;
    QString m_find;
    QList<Row> m_rows;
    QStringList m_removed;   // stored keys of the rows removed since the last read
    QSet<QString> m_loaded;  // stored keys (capitals) read, removed ones included
    QList<Problem> m_refused;
};

}  // namespace brimsett
