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

    // Statements of a write transaction and of a nested one.
    virtual QString beginTransaction() const { return QStringLiteral("BEGIN"); }
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
    QString beginTransaction() const override { return QStringLiteral("BEGIN IMMEDIATE"); }
    QString caseInsensitiveLike() const override { return QStringLiteral(" LIKE "); }
    void prepareConnection(QSqlDatabase& db) const override;
};

}  // namespace brimsett
