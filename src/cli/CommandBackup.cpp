#include "cli/CliSession.h"
#include "foundation/Backup.h"
#include "foundation/ReceiverClient.h"

#include <QDir>
#include <QFileInfo>

namespace brimsett {

namespace {

constexpr int kBackupTimeoutMs = 120000;
constexpr int kSendTimeoutMs = 10000;

// The receiver only answers "BACKUPDONE!"; the file it made is the newest dated copy.
QString newestBackup(const QString& folder) {
    const QFileInfoList files = QDir(folder).entryInfoList(
        {QStringLiteral("medical-[0-9]*-[0-9]*.mdb")}, QDir::Files, QDir::Time);
    return files.isEmpty() ? QString() : files.first().absoluteFilePath();
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
        const QString location = session.paths().databaseFile(session.store().get(
            QStringLiteral("General"), QStringLiteral("dbPath"), session.paths().folder()));
        session.out() << newestBackup(QFileInfo(location).absolutePath()) << "\n";
        return 0;
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    session.out() << backupDatabase(session.db(), session.paths(), session.clock()) << "\n";
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
        .name = QStringLiteral("send"),
        .summary = QStringLiteral("send a command word to the running program; prints the answer"),
        .arguments = {{QStringLiteral("WORD"), QStringLiteral("the command word, e.g. PATIENT")},
                      {QStringLiteral("ARGS"), QStringLiteral("what follows the word"),
                       CliArgument::Count::AnyNumber}},
        .run = sendWord,
    });

}  // namespace

}  // namespace brimsett
