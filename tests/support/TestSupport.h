#pragma once

#include "foundation/Database.h"
#include "foundation/SettingsStore.h"

#include <QString>
#include <QTemporaryDir>

#include <memory>

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

// The ministry's public sample files, when the shared folder is beside the project.
QString samplesFolder();

}  // namespace brimsett::test
