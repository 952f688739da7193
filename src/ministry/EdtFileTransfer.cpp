#include "ministry/EdtFileTransfer.h"

#include "ministry/ModemLine.h"
#include "ministry/TransferFiles.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <climits>

namespace brimsett {

namespace {

// How often a running transfer looks whether it was cancelled; it sleeps in between.
constexpr int kCancelLookMs = 200;
// A program asked to stop gets this long to tell the far end and put the line back.
constexpr int kStopMs = 3000;
// The program's own messages kept for the log.
constexpr qsizetype kMessageChars = 500;

// The line as a transfer program gets it, and back as the port had it. The port reads
// without blocking, the programs expect to wait; the flag belongs to the open line, which the
// child shares. A program killed midway leaves its own line settings behind.
class LentLine {
public:
    explicit LentLine(int fd) : m_fd(fd), m_saved(tcgetattr(fd, &m_settings) == 0) {
        m_flags = fcntl(fd, F_GETFL);
        if (m_flags >= 0) {
            fcntl(fd, F_SETFL, m_flags & ~O_NONBLOCK);
        }
    }
    ~LentLine() { giveBack(); }
    LentLine(const LentLine&) = delete;
    LentLine& operator=(const LentLine&) = delete;

    void giveBack() const {
        if (m_saved) {
            tcsetattr(m_fd, TCSADRAIN, &m_settings);
        }
        if (m_flags >= 0) {
            fcntl(m_fd, F_SETFL, m_flags);
        }
    }

private:
    int m_fd;
    termios m_settings{};
    bool m_saved;
    int m_flags = -1;
};

}  // namespace

EdtFileTransfer::EdtFileTransfer(ModemLine& line, EdtEventSink sink,
                                 std::chrono::milliseconds second)
    : m_line(line), m_sink(std::move(sink)), m_second(second) {}

void EdtFileTransfer::tell(EdtEvent kind, const QString& text) const {
    if (m_sink) {
        m_sink(kind, text);
    }
}

bool EdtFileTransfer::installed() {
    return !QStandardPaths::findExecutable(kSender).isEmpty() &&
           !QStandardPaths::findExecutable(kReceiver).isEmpty();
}

int EdtFileTransfer::sendSeconds(qint64 bytes, int baud, int timeOutSeconds) {
    const qint64 needed = baud > 0 ? (bytes * 10 + baud - 1) / baud : 0;
    return int(std::min<qint64>(timeOutSeconds + 3 * needed, INT_MAX / 2));
}

TransferOutcome EdtFileTransfer::fail(TransferOutcome outcome, const QString& why) {
    // A line that went says so itself, once, and explains the rest.
    if (outcome == TransferOutcome::Lost || !m_line.check()) {
        return TransferOutcome::Lost;
    }
    if (!why.isEmpty()) {
        tell(EdtEvent::Error, why);
    }
    tell(EdtEvent::Error, kAborted);
    return outcome;
}

TransferOutcome EdtFileTransfer::send(const QString& path, int seconds) {
    const QFileInfo file(path);
    if (!file.isFile()) {
        return fail(TransferOutcome::Aborted,
                    QStringLiteral("%1 could not be read.").arg(QDir::toNativeSeparators(path)));
    }
    tell(EdtEvent::Sent,
         QStringLiteral("ZMODEM: %1 (%2 bytes)").arg(file.fileName()).arg(file.size()));
    return run(kSender, sendOptions() << file.fileName(), file.absolutePath(), seconds);
}

TransferOutcome EdtFileTransfer::receive(const QString& folder, const QDateTime& now, int seconds,
                                         QStringList* received) {
    QString problem;
    // Hidden, so no one takes a file from it half received; inside the folder, so a file
    // is moved into place by a rename.
    QTemporaryDir staging(folder + QStringLiteral(".receiving-XXXXXX"));
    if (!staging.isValid()) {
        return fail(TransferOutcome::Aborted,
                    QStringLiteral("The folder %1 could not be written: %2")
                        .arg(QDir::toNativeSeparators(folder), staging.errorString()));
    }
    const TransferOutcome outcome = run(kReceiver, receiveOptions(), staging.path(), seconds);
    if (outcome != TransferOutcome::Done) {
        return outcome;
    }
    const QString from = staging.path() + QLatin1Char('/');
    for (const QString& name :
         QDir(from).entryList(QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name)) {
        const std::optional<QByteArray> bytes = transferfiles::readAll(from + name, &problem);
        if (bytes) {
            problem = transferfiles::makeRoom(folder, name, *bytes, now);
        }
        if (problem.isEmpty()) {
            problem = transferfiles::place(*bytes, folder + name, folder);
        }
        if (!problem.isEmpty()) {
            tell(EdtEvent::Error, problem);
            return TransferOutcome::Aborted;
        }
        tell(EdtEvent::Received,
             QStringLiteral("ZMODEM: %1 (%2 bytes)").arg(name).arg(bytes->size()));
        if (received) {
            *received << name;
        }
    }
    return TransferOutcome::Done;
}

TransferOutcome EdtFileTransfer::run(const QString& program, const QStringList& arguments,
                                     const QString& folder, int seconds) {
    const int line = m_line.handle();
    if (line < 0 || m_line.lost()) {
        return TransferOutcome::Lost;
    }
    if (m_cancelled) {
        return fail(TransferOutcome::Aborted, {});
    }
    const LentLine lent(line);

    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setWorkingDirectory(folder);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setProcessChannelMode(QProcess::SeparateChannels);
    // In the child, between fork and exec: only async-signal-safe calls.
    process.setChildProcessModifier([line] {
        ::dup2(line, STDIN_FILENO);
        ::dup2(line, STDOUT_FILENO);
    });
    process.start();
    if (!process.waitForStarted()) {
        return fail(
            TransferOutcome::Aborted,
            QStringLiteral("%1 could not be started: %2").arg(program, process.errorString()));
    }
    const QDeadlineTimer deadline(m_second * seconds, Qt::PreciseTimer);
    TransferOutcome stopped = TransferOutcome::Done;
    while (!process.waitForFinished(
        int(std::clamp<qint64>(deadline.remainingTime(), 0, kCancelLookMs)))) {
        if (process.state() == QProcess::NotRunning) {
            break;
        }
        if (m_cancelled || deadline.hasExpired()) {
            stopped = m_cancelled ? TransferOutcome::Aborted : TransferOutcome::TimedOut;
            // Asked first: the program then cancels at the far end and restores the line.
            process.terminate();
            if (!process.waitForFinished(kStopMs)) {
                process.kill();
                process.waitForFinished(kStopMs);
            }
            break;
        }
    }
    lent.giveBack();
    if (stopped != TransferOutcome::Done) {
        return fail(
            stopped,
            stopped == TransferOutcome::TimedOut
                ? QStringLiteral("The file transfer took longer than %1 seconds.").arg(seconds)
                : QString());
    }
    if (process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0) {
        return TransferOutcome::Done;
    }
    const QString said =
        QString::fromLocal8Bit(process.readAllStandardError()).simplified().right(kMessageChars);
    return fail(TransferOutcome::Aborted,
                QStringLiteral("%1 ended with status %2%3")
                    .arg(program)
                    .arg(process.exitCode())
                    .arg(said.isEmpty() ? QStringLiteral(".") : QStringLiteral(": ") + said));
}

}  // namespace brimsett
