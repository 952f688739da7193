#pragma once

#include "foundation/Database.h"
#include "foundation/ServerValues.h"

#include <QString>
#include <QStringList>

#include <functional>

namespace brimsett {

// What one table holds on each side once copied: rows, and the total of its money columns
// in ten-thousandths (empty when the table has none).
struct TableTally {
    QString table;
    qint64 sourceRows = 0;
    qint64 targetRows = 0;
    QStringList moneyColumns;
    qint64 sourceMoney = 0;
    qint64 targetMoney = 0;

    bool equal() const { return sourceRows == targetRows && sourceMoney == targetMoney; }
};

struct CopyReport {
    QList<TableTally> tables;
    // Tables and columns the office's file has beyond the current layout, made on the server.
    QStringList madeBeyondLayout;

    bool equal() const;
    qint64 rows() const;
    qint64 money() const;
};

// Copies an SQLite office database into an empty PostgreSQL database in one transaction of
// the target: the current layout made by schema::create, then every table of the file
// (tables and columns beyond the layout made from the file's own declarations), in
// statements of many rows each. The file is held under its write lock meanwhile, so no
// program changes it during the copy. Every table's rows and money are then counted on
// both sides; `review` sees the counts before anything is committed, and the copy commits
// only when all of them agree.
//
// Throws DbError when the target is not empty, a value does not fit (naming table, row,
// column and value), the counts differ or the engine refuses; nothing is then written.
CopyReport copyDatabase(Database& source, Database& target,
                        const std::function<void(const CopyReport&)>& review = {});

}  // namespace brimsett
