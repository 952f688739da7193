#pragma once

#include "foundation/Database.h"
#include "foundation/SettingsStore.h"

#include <QSqlQuery>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <type_traits>

namespace brimsett::test {

// A fresh office folder with its own settings file, removed when the test ends.
class TempOffice {
public:
    TempOffice();
    ~TempOffice();
    TempOffice(const TempOffice&) = delete;
    TempOffice& operator=(const TempOffice&) = delete;
    QString folder() const;  // ends with "/"
    QString file(const QString& name) const;
    QString settingsFile() const;
    SettingsStore& store() { return *m_store; }
    // A new database with no tables: an SQLite file in the folder, or, when the tests run
    // on the PostgreSQL test server (BRIMSETT_TEST_PG names its socket folder), a fresh
    // database there, dropped with the office.
    std::unique_ptr<Database> emptyDatabase(
        const QString& name = QStringLiteral("medical.mdb")) const;
    // The location emptyDatabase(name) opened, for a test that opens it again.
    QString databaseLocation(const QString& name = QStringLiteral("medical.mdb")) const;

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SettingsStore> m_store;
    mutable QStringList m_serverDatabases;
};

// The PostgreSQL test server's socket folder; empty when the tests run on SQLite.
QString testServer();

// A second connection to the database at `location` (a file or a server's address), as
// another program or computer opens it; throws DbError when it cannot be opened.
std::unique_ptr<Database> openAgain(const QString& location);

// Makes the engine refuse a row event ("Insert", "Update" or "Delete") on a table with
// `message`, for rows meeting `condition` (NEW./OLD. columns; empty for every row): a disk
// that fills in the middle of a save, on either engine.
void refuseRows(Database& db, const QString& event, const QString& table, const QString& condition,
                const QString& message);

// Whole file as text; empty when missing.
QString readText(const QString& path);
void writeText(const QString& path, const QByteArray& bytes);

// Adds a row to a Qt Test data table; C strings go in as QString (nullptr as a null one),
// other values as they are, so their types must be the columns' own.
template <typename... Values>
void row(const char* name, const Values&... values) {
    QTestData& data = QTest::newRow(name);
    const auto column = [](const auto& value) {
        if constexpr (std::is_convertible_v<decltype(value), const char*>) {
            return QString::fromUtf8(static_cast<const char*>(value));
        } else {
            return value;
        }
    };
    (data << ... << column(values));
}

// Every row a query gives, as "value|value|...", with "<null>" for NULL and dates and moments
// as SQLite's text ("2026-11-22", "2026-11-22 10:00:00") on either engine.
QStringList rowsOf(QSqlQuery query);

// The ministry's public sample files, when the shared folder is beside the project.
QString samplesFolder();

}  // namespace brimsett::test
