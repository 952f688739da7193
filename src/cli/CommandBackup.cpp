#include "cli/CliSession.h"
#include "foundation/Backup.h"
#include "foundation/ReceiverClient.h"
#include "foundation/ServerAddress.h"

#include <QDir>
#include <QFileInfo>

namespace brimsett {

namespace {

constexpr int kBackupTimeoutMs = 120000;
constexpr int kSendTimeoutMs = 10000;

// The receiver only answers "BACKUPDONE!"; the file it made is the newest dated copy.
QString newestBackup(const QString& folder, const QString& ending) {
    const QFileInfoList files = QDir(folder).entryInfoList(
        {QStringLiteral("medical-[0-9]*-[0-9]*") + ending}, QDir::Files, QDir::Time);
    return files.isEmpty() ? QString() : files.first().absoluteFilePath();
}

QString databaseLocation(CliSession& session) {
    return session.paths().databaseFile(session.store().get(
        QStringLiteral("General"), QStringLiteral("dbPath"), session.paths().folder()));
}

int backup(CliSession& session, const CliArgs&) {
    if (receiverRunning(session.paths())) {
        QString error;
        const auto answer =
            sendCommand(session.paths(), QStringLiteral("BACKUP"), kBackupTimeoutMs, &error);
        if (!answer) {
            return fail(error);
        }
        if (*answer != QLatin1String("BACKUPDONE!")) {
            return fail(QStringLiteral("the running program answered: ") + *answer);
        }
        const QString location = databaseLocation(session);
        // A server's dump goes to the office folder, a file's copy beside the file.
        session.out()
            << (ServerAddress::names(location)
                    ? newestBackup(session.paths().folder(), QLatin1String(kServerBackupEnding))
                    : newestBackup(QFileInfo(location).absolutePath(), QStringLiteral(".mdb")))
            << "\n";
        return 0;
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    try {
        session.out() << backupDatabase(session.db(), session.paths(), session.clock()) << "\n";
    } catch (const DbError& e) {
        return fail(e.message());
    }
    return 0;
}

int restore(CliSession& session, const CliArgs& args) {
    if (receiverRunning(session.paths())) {
        return fail(
            QStringLiteral("Brimsett is running on this office; close it before "
                           "restoring a backup."));
    }
    const QString location = databaseLocation(session);
    try {
        const std::optional<QString> done =
            restoreDatabase(location, session.paths(), args.argument(0), session.prompter());
        if (!done) {
            return fail(QStringLiteral("Nothing was restored."));
        }
        session.out() << *done << "\n";
    } catch (const DbError& e) {
        return fail(e.message() + QStringLiteral(". Nothing was restored."));
    }
    if (!ServerAddress::names(location)) {
        // The start-up puts the handed-over file in place, as the program's restart would.
        Startup::Result* opened = session.open();
        if (!opened) {
            return fail(QStringLiteral("the database is not available"));
        }
        for (const QString& line : std::as_const(opened->done)) {
            if (line.startsWith(QLatin1String("Restored")) ||
                line.startsWith(QLatin1String("Kept"))) {
                session.out() << line << "\n";
            }
        }
    }
    return 0;
}

int sendWord(CliSession& session, const CliArgs& args) {
    QString error;
    const auto answer = sendCommand(session.paths(), args.positional().join(QLatin1Char(' ')),
                                    kSendTimeoutMs, &error);
    if (!answer) {
        return fail(error);
    }
    session.out() << *answer << "\n";
    return 0;
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("backup"),
        .summary = QStringLiteral("make a dated backup of the database; prints its name"),
        .details = {QStringLiteral("A running program makes it; otherwise this command does.")},
        .run = backup,
    }) &&
    cli::add({
        .name = QStringLiteral("restore"),
        .summary = QStringLiteral("put a backup back in place of the database, after asking"),
        .arguments = {{QStringLiteral("FILE"),
                       QStringLiteral("a backup: medical-...mdb, or medical-...dump of a server")}},
        .details = {QStringLiteral("What was entered since the backup is lost; the replaced "
                                   "office file is kept under its dated name.")},
        // The whole database is replaced.
        .level = AccessLevels::kMaster,
        .run = restore,
    }) &&
    cli::add({
        .name = QStringLiteral("send"),
        .summary = QStringLiteral("send a command word to the running program; prints the answer"),
        .arguments = {{QStringLiteral("WORD"), QStringLiteral("the command word, e.g. PATIENT")},
                      {QStringLiteral("ARGS"), QStringLiteral("what follows the word"),
                       CliArgument::Count::AnyNumber}},
        .run = sendWord,
    });

}  // namespace

}  // namespace brimsett
