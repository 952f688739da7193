#include "foundation/ServerBackup.h"

#include "foundation/DbError.h"
#include "foundation/ServerAddress.h"

#include <QProcess>
#include <QStandardPaths>

namespace brimsett::serverbackup {

namespace {

// A large office takes minutes; a program still silent after this is stuck.
constexpr int kTimeoutMs = 60 * 60 * 1000;

QString quotedValue(const QString& value) {
    if (!value.isEmpty() && !value.contains(QLatin1Char(' ')) &&
        !value.contains(QLatin1Char('\'')) && !value.contains(QLatin1Char('\\'))) {
        return value;
    }
    QString escaped = value;
    escaped.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    escaped.replace(QLatin1Char('\''), QStringLiteral("\\'"));
    return QLatin1Char('\'') + escaped + QLatin1Char('\'');
}

// Runs one of the server's client programs; its standard output, or DbError with what it
// said on failure.
QByteArray run(const QString& program, const QStringList& arguments, const QString& doing) {
    const QString path = QStandardPaths::findExecutable(program);
    if (path.isEmpty()) {
        throw DbError(doing, {},
                      QStringLiteral("%1 was not found on this computer; install PostgreSQL's "
                                     "client programs (Debian: postgresql-client)")
                          .arg(program));
    }
    QProcess process;
    process.setProgram(path);
    process.setArguments(arguments);
    // Never a prompt for a password on the terminal: libpq's own files supply it or the
    // login fails with the server's reason.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("PGCONNECT_TIMEOUT"), QStringLiteral("10"));
    process.setProcessEnvironment(environment);
    process.start();
    if (!process.waitForStarted()) {
        throw DbError(
            doing, {},
            QStringLiteral("%1 could not be started: %2").arg(program, process.errorString()));
    }
    process.closeWriteChannel();
    if (!process.waitForFinished(kTimeoutMs)) {
        process.kill();
        process.waitForFinished();
        throw DbError(doing, {}, QStringLiteral("%1 did not finish").arg(program));
    }
    const QByteArray output = process.readAllStandardOutput();
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        QString said = QString::fromUtf8(process.readAllStandardError()).trimmed();
        said.replace(QLatin1Char('\n'), QStringLiteral(" / "));
        throw DbError(doing, {},
                      QStringLiteral("%1 failed (exit %2): %3")
                          .arg(program)
                          .arg(process.exitCode())
                          .arg(said.isEmpty() ? QStringLiteral("no reason given") : said));
    }
    return output;
}

}  // namespace

QString connectionString(const ServerAddress& address) {
    QStringList parts;
    if (!address.host.isEmpty()) {
        parts << QStringLiteral("host=") + quotedValue(address.host);
    }
    if (address.port > 0) {
        parts << QStringLiteral("port=%1").arg(address.port);
    }
    if (!address.user.isEmpty()) {
        parts << QStringLiteral("user=") + quotedValue(address.user);
    }
    if (!address.database.isEmpty()) {
        parts << QStringLiteral("dbname=") + quotedValue(address.database);
    }
    for (const QString& option : address.options) {
        const qsizetype eq = option.indexOf(QLatin1Char('='));
        parts << option.left(eq + 1) + quotedValue(option.mid(eq + 1));
    }
    return parts.join(QLatin1Char(' '));
}

void dump(const ServerAddress& address, const QString& file) {
    const QString doing = QStringLiteral("making a backup of the server database");
    run(QStringLiteral("pg_dump"),
        {QStringLiteral("--format=custom"), QStringLiteral("--no-password"),
         QStringLiteral("--file=") + file, QStringLiteral("--dbname=") + connectionString(address)},
        doing);
    contents(file);
}

QStringList contents(const QString& file) {
    const QString doing = QStringLiteral("reading the backup %1").arg(file);
    const QStringList lines = QString::fromUtf8(run(QStringLiteral("pg_restore"),
                                                    {QStringLiteral("--list"), file}, doing))
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    if (!lines.join(QLatin1Char('\n')).contains(QLatin1String("Format: CUSTOM"))) {
        throw DbError(doing, {}, QStringLiteral("the file is not a backup of a server database"));
    }
    return lines;
}

void restore(const ServerAddress& address, const QString& file) {
    contents(file);
    // Objects become the restoring user's: the office's login on another server may differ.
    run(QStringLiteral("pg_restore"),
        {QStringLiteral("--clean"), QStringLiteral("--if-exists"),
         QStringLiteral("--single-transaction"), QStringLiteral("--exit-on-error"),
         QStringLiteral("--no-owner"), QStringLiteral("--no-password"),
         QStringLiteral("--dbname=") + connectionString(address), file},
        QStringLiteral("restoring the server database from %1").arg(file));
}

}  // namespace brimsett::serverbackup
