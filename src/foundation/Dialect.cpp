#include "foundation/Dialect.h"

#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>

#include <sqlite3.h>

namespace brimsett {

QStringList Dialect::tableNames(const QSqlDatabase& db) const {
    return db.tables(QSql::Tables);
}

QStringList Dialect::columnNames(const QSqlDatabase& db, const QString& table) const {
    QStringList names;
    const QSqlRecord record = db.record(table);
    for (int i = 0; i < record.count(); ++i) {
        names << record.fieldName(i);
    }
    return names;
}

// SQLite takes the old type names as they stand: "Text(4)" has text affinity, "Long",
// "Bit", "YesNo", "DateTime" and "Currency" numeric affinity, so integers (money in
// ten-thousandths included) stay integers and ISO date texts stay texts.
QString SqliteDialect::ddl(const QString& statement) const {
    return statement;
}

QStringList SqliteDialect::tableNames(const QSqlDatabase& db) const {
    QStringList names;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT name FROM sqlite_master WHERE type='table' "
                              "AND name NOT LIKE 'sqlite\\_%' ESCAPE '\\'"))) {
        while (q.next()) {
            names << q.value(0).toString();
        }
    }
    return names;
}

QStringList SqliteDialect::columnNames(const QSqlDatabase& db, const QString& table) const {
    QStringList names;
    QSqlQuery q(db);
    QString quoted = table;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    if (q.exec(QStringLiteral("PRAGMA table_info(\"%1\")").arg(quoted))) {
        while (q.next()) {
            names << q.value(1).toString();
        }
    }
    return names;
}

// The "busy" and "locked" families, extended codes included.
bool SqliteDialect::isBusy(const QString& nativeCode) const {
    bool ok = false;
    const int code = nativeCode.toInt(&ok) & 0xff;
    return ok && (code == SQLITE_BUSY || code == SQLITE_LOCKED);
}

void SqliteDialect::prepareConnection(QSqlDatabase& db) const {
    QSqlQuery q(db);
    q.exec(QStringLiteral("PRAGMA journal_mode=WAL"));
    q.exec(QStringLiteral("PRAGMA synchronous=NORMAL"));
}

}  // namespace brimsett
