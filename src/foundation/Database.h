#pragma once

#include "foundation/DbError.h"
#include "foundation/Dialect.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

#include <memory>
#include <variant>

namespace brimsett {

// Why the database could not be opened, and the message the user is shown for it.
struct OpenFailure {
    enum class Kind { NotFound, PermissionDenied, OldFormat, Refused, BadAddress };
    Kind kind = Kind::Refused;
    QString location;
    QString engineCode;
    QString engineText;

    QString title() const;
    QStringList lines() const;
};

// The one open database of a process. Every statement goes through exec(), which throws a
// DbError naming what was being done when the engine refuses it.
class Database {
public:
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    using OpenResult = std::variant<std::unique_ptr<Database>, OpenFailure>;
    // Opens an existing SQLite file; a missing file is not created.
    static OpenResult openSqlite(const QString& file);
    // Creates (or opens) an SQLite file; for new databases and tests.
    static std::unique_ptr<Database> createSqlite(const QString& file);
    // Connects to a database on a PostgreSQL server (see ServerAddress).
    static OpenResult openServer(const QString& address);
    // The server's database or the file, as the location names one.
    static OpenResult open(const QString& location);

    // Whether the database is shared through a server rather than a file of this computer.
    bool onServer() const;
    const Dialect& dialect() const { return *m_dialect; }
    QSqlDatabase& connection() { return m_db; }
    QString location() const { return m_location; }

    QSqlQuery exec(const QString& statement, const QVariantList& values = {},
                   const QString& doing = {});
    // First column of the first row; an invalid QVariant when there is no row.
    QVariant scalar(const QString& statement, const QVariantList& values = {},
                    const QString& doing = {});

    bool hasTable(const QString& table) const;
    bool hasColumn(const QString& table, const QString& column) const;

    // The engine's own handle (sqlite3* or PGconn*), for the backup API and custom functions.
    void* nativeHandle() const;
    void close();

    // Used by Transaction.
    int transactionDepth() const { return m_depth; }

    // How many statements exec() has run since the database was opened; benchmarks report
    // statements per unit of work with it.
    qint64 statementCount() const { return m_statements; }

private:
    friend class Transaction;
    Database(std::unique_ptr<Dialect> dialect, QSqlDatabase db, QString location);
    // Whether a server connection no longer answers, and opening it again.
    bool connectionLost();
    bool reconnect();
    // The statement with its values written in as the driver quotes them: one round trip
    // to a server instead of a prepare, an execute and a release.
    QString withValues(const QString& statement, const QVariantList& values) const;

    std::unique_ptr<Dialect> m_dialect;
    QSqlDatabase m_db;
    QString m_location;
    QString m_connectionName;
    int m_depth = 0;
    qint64 m_statements = 0;
};

// One user action is one transaction: rolled back unless commit() was called. Nested
// transactions become savepoints of the outer one.
class Transaction {
public:
    explicit Transaction(Database& db, const QString& doing = {});
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    Database& m_db;
    int m_level = 0;
    bool m_done = false;
};

}  // namespace brimsett
