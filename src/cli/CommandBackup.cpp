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

}  // namespace

int commandBackup(CliSession& session, const QStringList& args) {
    if (!args.isEmpty()) {
        return fail(QStringLiteral("backup takes no arguments"), 2);
    }
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

int commandSend(CliSession& session, const QStringList& args) {
    if (args.isEmpty()) {
        return fail(QStringLiteral("send needs a command word"), 2);
    }
    QString error;
    const auto answer =
        sendCommand(session.paths(), args.join(QLatin1Char(' ')), kSendTimeoutMs, &error);
    if (!answer) {
        return fail(error);
    }
    session.out() << *answer << "\n";
    return 0;
}

}  // namespace brimsett
