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
    QString folder() const;  // ends with "/"
    QString file(const QString& name) const;
    QString settingsFile() const;
    SettingsStore& store() { return *m_store; }
    // A new SQLite database in the folder (empty, no tables).
    std::unique_ptr<Database> emptyDatabase(
        const QString& name = QStringLiteral("medical.mdb")) const;

private:
    QTemporaryDir m_dir;
    std::unique_ptr<SettingsStore> m_store;
};

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

// Every row a query gives, as "value|value|...", with "<null>" for NULL.
QStringList rowsOf(QSqlQuery query);

// The ministry's public sample files, when the shared folder is beside the project.
QString samplesFolder();

}  // namespace brimsett::test
