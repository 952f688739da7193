#include "foundation/Backup.h"

#include "foundation/DateText.h"
#include "foundation/OfficePaths.h"
#include "foundation/Prompter.h"
#include "foundation/ServerAddress.h"
#include "foundation/ServerBackup.h"

#include <QFile>
#include <QFileInfo>

#include <cstdio>

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
QString claimBackupFile(const QString& folder, const QDateTime& moment,
                        const QString& ending = QStringLiteral(".mdb")) {
    for (int attempt = 0; attempt < kMaxNameAttempts; ++attempt) {
        QString path = folder + OfficePaths::datedDatabaseName(moment.addSecs(attempt));
        path.replace(path.size() - 4, 4, ending);
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

// pg_dump's file in the office folder, under the dated name with its own ending.
QString backupServer(const QString& location, const OfficePaths& paths, const Clock& clock) {
    QString problem;
    const std::optional<ServerAddress> address = ServerAddress::parse(location, &problem);
    if (!address) {
        throw DbError(kDoing, {}, problem);
    }
    const QString target =
        claimBackupFile(paths.ensureFolder(), clock.now(), QLatin1String(kServerBackupEnding));
    try {
        serverbackup::dump(*address, target);
    } catch (...) {
        QFile::remove(target);
        throw;
    }
    return target;
}

}  // namespace

QString backupDatabase(Database& db, const OfficePaths& paths, const Clock& clock) {
    if (db.onServer()) {
        return backupServer(db.location(), paths, clock);
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

namespace {

const QString kRestoring = QStringLiteral("restoring the database");

bool askToRestore(const QString& location, const QString& file, Prompter& prompter) {
    const QDateTime made = QFileInfo(file).lastModified();
    return prompter.confirm(
        QStringLiteral("Restore"),
        {QStringLiteral("The database at %1 will be replaced by the backup").arg(location), file,
         QStringLiteral("made %1 %2.")
             .arg(datetext::slashed(made.date()), made.time().toString(QStringLiteral("HH:mm"))),
         QString(),
         QStringLiteral("Everything entered since then will be lost. Close Brimsett on every "
                        "other computer first."),
         QStringLiteral("Are you sure?")},
        Icon::Warning);
}

// The file goes in beside the hand-over name and is renamed into place, so the next start
// never finds half a copy.
void handOver(const QString& file, const OfficePaths& paths) {
    const QString target = paths.restoreHandOver();
    const QString part = target + QStringLiteral(".part");
    QFile::remove(part);
    QFile source(file);
    if (!source.copy(part)) {
        throw DbError(
            kRestoring, {},
            QStringLiteral("cannot copy %1 to %2: %3").arg(file, part, source.errorString()));
    }
    if (std::rename(QFile::encodeName(part).constData(), QFile::encodeName(target).constData()) !=
        0) {
        QFile::remove(part);
        throw DbError(kRestoring, {}, QStringLiteral("cannot rename %1 to %2").arg(part, target));
    }
}

}  // namespace

std::optional<QString> restoreDatabase(const QString& location, const OfficePaths& paths,
                                       const QString& file, Prompter& prompter) {
    if (!QFileInfo(file).isFile()) {
        throw DbError(kRestoring, {}, QStringLiteral("%1 is not a file").arg(file));
    }
    if (ServerAddress::names(location)) {
        QString problem;
        const std::optional<ServerAddress> address = ServerAddress::parse(location, &problem);
        if (!address) {
            throw DbError(kRestoring, {}, problem);
        }
        serverbackup::contents(file);
        if (!askToRestore(location, file, prompter)) {
            return std::nullopt;
        }
        serverbackup::restore(*address, file);
        return QStringLiteral("Restored the database at %1 from %2").arg(location, file);
    }
    if (QFileInfo(location).absoluteFilePath() !=
        QFileInfo(paths.defaultDatabase()).absoluteFilePath()) {
        throw DbError(kRestoring, {},
                      QStringLiteral("a restore replaces medical.mdb in the office folder, but "
                                     "this office's database is %1")
                          .arg(location));
    }
    {
        auto opened = Database::openSqlite(file);
        const auto* db = std::get_if<std::unique_ptr<Database>>(&opened);
        if (db == nullptr || !(*db)->hasTable(QStringLiteral("Patients"))) {
            throw DbError(kRestoring, {},
                          QStringLiteral("%1 is not a backup of a Brimsett office file").arg(file));
        }
    }
    if (!askToRestore(location, file, prompter)) {
        return std::nullopt;
    }
    handOver(file, paths);
    return QStringLiteral("The backup %1 replaces %2 at the next start").arg(file, location);
}

}  // namespace brimsett
