#include "foundation/ReceiverClient.h"

#include "foundation/CommandReceiver.h"
#include "foundation/PrivateSocket.h"

#include <QDeadlineTimer>
#include <QLocalSocket>

namespace brimsett {

namespace {

constexpr int kRunningProbeMs = 1000;

void setError(QString* error, const QString& text) {
    if (error) {
        *error = text;
    }
}

}  // namespace

std::optional<QString> sendCommand(const OfficePaths& paths, const QString& line, int timeoutMs,
                                   QString* error) {
    const QDeadlineTimer deadline(timeoutMs);
    QString problem;
    const QString name = CommandReceiver::serverName(paths, &problem);
    if (name.isEmpty()) {
        setError(error, QStringLiteral("Cannot reach Brimsett: ") + problem);
        return std::nullopt;
    }
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(timeoutMs)) {
        const bool absent = socket.error() == QLocalSocket::ServerNotFoundError ||
                            socket.error() == QLocalSocket::ConnectionRefusedError;
        setError(error, absent ? QStringLiteral("Brimsett is not running on the office folder %1.")
                                     .arg(paths.folder())
                               : QStringLiteral("Cannot reach Brimsett on the office folder %1: %2")
                                     .arg(paths.folder(), socket.errorString()));
        return std::nullopt;
    }
    if (!privatesocket::peerIsThisUser(socket.socketDescriptor())) {
        socket.abort();
        setError(error, QStringLiteral("The program at %1 is not run by this user; it is not "
                                       "trusted and was sent nothing.")
                            .arg(name));
        return std::nullopt;
    }
    // The line must stay one line, or the receiver would run only its first part.
    QString sent = line;
    sent.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    socket.write(sent.toUtf8() + '\n');
    socket.waitForBytesWritten(int(deadline.remainingTime()));
    QByteArray received;
    for (;;) {
        received.append(socket.readAll());
        if (received.contains('\n')) {
            break;
        }
        if (socket.state() != QLocalSocket::ConnectedState ||
            !socket.waitForReadyRead(int(deadline.remainingTime()))) {
            received.append(socket.readAll());
            if (received.contains('\n')) {
                break;
            }
            setError(error,
                     deadline.hasExpired()
                         ? QStringLiteral("Brimsett did not answer within %1 ms.").arg(timeoutMs)
                         : QStringLiteral("Brimsett closed the connection without answering."));
            return std::nullopt;
        }
    }
    QByteArray answer = received.left(received.indexOf('\n'));
    if (answer.endsWith('\r')) {
        answer.chop(1);
    }
    socket.disconnectFromServer();
    return QString::fromUtf8(answer);
}

bool receiverRunning(const OfficePaths& paths) {
    const QString name = CommandReceiver::serverName(paths);
    if (name.isEmpty()) {
        return false;
    }
    QLocalSocket socket;
    socket.connectToServer(name);
    if (!socket.waitForConnected(kRunningProbeMs) ||
        !privatesocket::peerIsThisUser(socket.socketDescriptor())) {
        return false;
    }
    socket.abort();
    return true;
}

}  // namespace brimsett
