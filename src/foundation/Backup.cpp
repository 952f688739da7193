#include "foundation/Backup.h"

#include "foundation/OfficePaths.h"

#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

namespace brimsett {

namespace {

// Enough to step past any burst of backups; reaching it means something else is wrong.
constexpr int kMaxNameAttempts = 120;
// Another program may hold the write lock for a moment; the busy timeout is ten seconds.
constexpr int kBusyRetries = 200;
constexpr int kBusyPauseMs = 50;

const QString kDoing = QStringLiteral("making a backup of the database");

// Claims the first free dated name by creating the file exclusively, so that two
// programs backing up at the same moment cannot both pick the same name.
QString claimBackupFile(const QString& folder, const QDateTime& moment) {
    for (int attempt = 0; attempt < kMaxNameAttempts; ++attempt) {
        const QString path = folder + OfficePaths::datedDatabaseName(moment.addSecs(attempt));
        QFile file(path);
        if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
            return path;
        }
        if (!file.exists()) {
            throw DbError(kDoing, {},
                          QStringLiteral("cannot create %1: %2").arg(path, file.errorString()));
        }
    }
    throw DbError(kDoing, {},
                  QStringLiteral("no free backup name in %1 after %2 tries")
                      .arg(folder)
                      .arg(kMaxNameAttempts));
}

QString engineText(sqlite3* handle, int code) {
    const char* text = handle ? sqlite3_errmsg(handle) : sqlite3_errstr(code);
    return QString::fromUtf8(text ? text : sqlite3_errstr(code));
}

// Copies every page of the source's main database into the file at target.
void copyPages(sqlite3* source, const QString& target) {
    sqlite3* dest = nullptr;
    int rc = sqlite3_open_v2(QFile::encodeName(target).constData(), &dest,
                             SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    auto fail = [&](int code) {
        const QString text = engineText(dest, code);
        sqlite3_close(dest);
        throw DbError(kDoing, {}, text, QString::number(code));
    };
    if (rc != SQLITE_OK) {
        fail(rc);
    }
    sqlite3_backup* backup = sqlite3_backup_init(dest, "main", source, "main");
    if (!backup) {
        fail(sqlite3_errcode(dest));
    }
    for (int retries = 0;;) {
        rc = sqlite3_backup_step(backup, -1);
        if ((rc == SQLITE_BUSY || rc == SQLITE_LOCKED) && retries++ < kBusyRetries) {
            sqlite3_sleep(kBusyPauseMs);
            continue;
        }
        if (rc != SQLITE_OK) {
            break;
        }
    }
    sqlite3_backup_finish(backup);
    if (rc != SQLITE_DONE) {
        // backup_finish leaves the step's error on the destination handle.
        fail(rc);
    }
    // The copied header keeps the live file's WAL mode; a backup is one file on its own.
    char* message = nullptr;
    rc = sqlite3_exec(dest, "PRAGMA journal_mode=DELETE", nullptr, nullptr, &message);
    sqlite3_free(message);
    if (rc != SQLITE_OK) {
        fail(rc);
    }
    rc = sqlite3_close(dest);
    if (rc != SQLITE_OK) {
        throw DbError(kDoing, {}, QString::fromUtf8(sqlite3_errstr(rc)), QString::number(rc));
    }
}

}  // namespace

QString backupDatabase(Database& db, const OfficePaths& paths, const Clock& clock) {
    if (db.dialect().driver() != QStringLiteral("QSQLITE")) {
        throw DbError(kDoing, {},
                      QStringLiteral("a shared %1 database is backed up on its server")
                          .arg(db.dialect().name()));
    }
    auto* source = static_cast<sqlite3*>(db.nativeHandle());
    if (!source || !db.connection().isOpen()) {
        throw DbError(kDoing, {}, QStringLiteral("the database is not open"));
    }
    const QString location = db.location();
    const bool hasFile = !location.isEmpty() && location != QStringLiteral(":memory:");
    const QString folder =
        hasFile ? QFileInfo(location).absolutePath() + QLatin1Char('/') : paths.folder();
    const QString target = claimBackupFile(folder, clock.now());
    try {
        copyPages(source, target);
    } catch (...) {
        QFile::remove(target);
        QFile::remove(target + QStringLiteral("-journal"));
        throw;
    }
    return target;
}

}  // namespace brimsett
