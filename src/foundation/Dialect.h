#pragma once

#include <QSqlDatabase>
#include <QString>
#include <QStringList>

#include <memory>

namespace brimsett {

// Everything in SQL that differs between the database engines the office may use.
// Logic writes its statements once; the dialect supplies the engine's words for the rest.
class Dialect {
public:
    virtual ~Dialect() = default;
    virtual QString name() const = 0;
    virtual QString driver() const = 0;

    // Table-definition text is written with the old engine's column types ("Text(12)",
    // "Long", "Currency", "DateTime", "Bit", "YesNo"); this gives the engine's own form.
    virtual QString ddl(const QString& statement) const = 0;

    // Names as the engine reports them; callers compare them without regard to case.
    virtual QStringList tableNames(const QSqlDatabase& db) const;
    virtual QStringList columnNames(const QSqlDatabase& db, const QString& table) const;

    // The program's statement in the engine's words. Statements are written once, with
    // "[name]" for a name holding a space and LIKE meaning case-insensitive.
    virtual QString statement(const QString& text) const { return text; }

    // Statements that begin a write transaction, and those of a nested one. Every engine
    // gives writers their turn one at a time, so a number read inside the transaction
    // (the highest id plus one) is still free when the row is added.
    virtual QStringList beginTransaction() const { return {QStringLiteral("BEGIN")}; }
    virtual QString savepoint(const QString& name) const {
        return QStringLiteral("SAVEPOINT ") + name;
    }
    virtual QString releaseSavepoint(const QString& name) const {
        return QStringLiteral("RELEASE SAVEPOINT ") + name;
    }
    virtual QString rollbackToSavepoint(const QString& name) const {
        return QStringLiteral("ROLLBACK TO SAVEPOINT ") + name;
    }

    // The operator of a case-insensitive LIKE and the escape clause that follows a pattern.
    virtual QString caseInsensitiveLike() const = 0;
    QString likeEscape() const { return QStringLiteral(" ESCAPE '\\'"); }

    // Set-up right after the connection opens (journal mode, time-outs, functions).
    virtual void prepareConnection(QSqlDatabase& db) const = 0;

    // Whether the engine's error code says another writer held its lock past the wait.
    virtual bool isBusy(const QString& nativeCode) const = 0;

    // The statement that begins a transaction in which the engine refuses every change, and
    // whether an error code is that refusal; empty where the engine has no such transaction.
    virtual QString beginReadOnly() const { return {}; }
    virtual bool isChangeRefused(const QString& nativeCode) const {
        Q_UNUSED(nativeCode);
        return false;
    }
};

class SqliteDialect : public Dialect {
public:
    QString name() const override { return QStringLiteral("SQLite"); }
    QString driver() const override { return QStringLiteral("QSQLITE"); }
    QString ddl(const QString& statement) const override;
    QStringList tableNames(const QSqlDatabase& db) const override;
    QStringList columnNames(const QSqlDatabase& db, const QString& table) const override;
    // IMMEDIATE takes the write lock at once, so two writers wait their turn instead of
    // failing half-way when both try to upgrade a read lock.
    QStringList beginTransaction() const override { return {QStringLiteral("BEGIN IMMEDIATE")}; }
    QString caseInsensitiveLike() const override { return QStringLiteral(" LIKE "); }
    void prepareConnection(QSqlDatabase& db) const override;
    bool isBusy(const QString& nativeCode) const override;
};

// A server shared by the office's computers. Names are unquoted (folded to lower case)
// except those holding a space, which keep their case in double quotes.
class PostgresDialect : public Dialect {
public:
    QString name() const override { return QStringLiteral("PostgreSQL"); }
    QString driver() const override { return QStringLiteral("QPSQL"); }
    QString ddl(const QString& statement) const override;
    QString statement(const QString& text) const override;
    QStringList tableNames(const QSqlDatabase& db) const override;
    QStringList columnNames(const QSqlDatabase& db, const QString& table) const override;
    // BEGIN takes no lock there; the office-wide transaction lock gives writers their turn
    // as SQLite's IMMEDIATE does, so no statement can fail for a concurrent update.
    QStringList beginTransaction() const override;
    QString caseInsensitiveLike() const override { return QStringLiteral(" ILIKE "); }
    void prepareConnection(QSqlDatabase& db) const override;
    bool isBusy(const QString& nativeCode) const override;
    QString beginReadOnly() const override { return QStringLiteral("BEGIN READ ONLY"); }
    bool isChangeRefused(const QString& nativeCode) const override {
        return nativeCode == QLatin1String("25006");
    }

    // The advisory lock key every writer of an office takes.
    static constexpr qint64 kWriteLock = 0x4272696d73657474;  // "Brimsett"
};

}  // namespace brimsett
