#pragma once

#include <QDateTime>
#include <QString>

namespace brimsett {

// The office data folder (the old program's "program folder") and the files in it.
class OfficePaths {
public:
    // --home DIR, else $BRIMSETT_HOME, else $XDG_DATA_HOME/Brimsett.
    static OfficePaths resolve(const QString& homeOption = {});
    explicit OfficePaths(const QString& folder);

    // Always ends with "/".
    const QString& folder() const { return m_folder; }
    QString file(const QString& name) const { return m_folder + name; }

    QString blankTemplate() const { return file(QStringLiteral("bsblank.db")); }
    QString restoreHandOver() const { return file(QStringLiteral("medical-r.mdb")); }
    QString defaultDatabase() const { return file(QStringLiteral("medical.mdb")); }
    // The name of a dated copy of the database: "medical-YYYYMMDD-HHMMSS.mdb". Backups and
    // the database replaced by a restore are kept under it.
    static QString datedDatabaseName(const QDateTime& moment);

    // A "dbPath" that names a folder gets "medical.mdb" appended; one naming a file is used
    // as it stands. An empty one means this folder.
    QString databaseFile(const QString& dbPath) const;

    // Creates the folder (and sub-folder) when missing; returns the path with "/".
    QString ensureFolder(const QString& subFolder = {}) const;

private:
    QString m_folder;
};

}  // namespace brimsett
