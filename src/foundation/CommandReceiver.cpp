#include "foundation/CommandReceiver.h"

#include "foundation/Backup.h"
#include "foundation/PrivateSocket.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>

#include <exception>

namespace brimsett {

namespace {

// A command line is a word and a record number or two; more is not a sibling program.
constexpr qsizetype kMaxLineBytes = 64 * 1024;
constexpr int kProbeTimeoutMs = 1000;

QString oneLine(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    return text;
}

// A server that accepts a connection is alive; one whose socket belongs to another user is
// taken to be alive too, since its socket cannot be removed anyway.
bool liveServerAt(const QString& name) {
    QLocalSocket probe;
    probe.connectToServer(name);
    if (probe.waitForConnected(kProbeTimeoutMs)) {
        probe.abort();
        return true;
    }
    return probe.error() == QLocalSocket::SocketAccessError;
}

}  // namespace

CommandReceiver::CommandReceiver(Database& db, OfficePaths paths, Clock& clock,
                                 ActionRegistry& registry, QObject* parent)
    : QObject(parent), m_db(db), m_paths(std::move(paths)), m_clock(clock), m_registry(registry) {}

CommandReceiver::~CommandReceiver() {
    if (!m_server) {
        return;
    }
    // The sockets die with the server; they must not call back into a receiver that is going.
    const auto sockets = m_server->findChildren<QLocalSocket*>();
    for (QLocalSocket* socket : sockets) {
        socket->disconnect(this);
    }
    delete m_server;
}

QString CommandReceiver::serverName(const OfficePaths& paths, QString* problem) {
    const QString folder = privatesocket::folder(problem);
    if (folder.isEmpty()) {
        return {};
    }
    const QFileInfo info(paths.folder());
    QString canonical = info.canonicalFilePath();
    if (canonical.isEmpty()) {
        canonical = QDir::cleanPath(info.absoluteFilePath());
    }
    const QByteArray digest =
        QCryptographicHash::hash(canonical.toUtf8(), QCryptographicHash::Sha1).toHex();
    return folder + QStringLiteral("/brimsett-") + QString::fromLatin1(digest.left(16));
}

bool CommandReceiver::listen(QString* error) {
    if (isListening()) {
        return true;
    }
    if (!m_server) {
        m_server = new QLocalServer(this);
        m_server->setSocketOptions(QLocalServer::UserAccessOption);
        connect(m_server, &QLocalServer::newConnection, this, &CommandReceiver::accept);
    }
    // Ask first: listening would quietly replace a live program's socket, since Qt binds
    // a socket with access rights under a temporary name and renames it into place.
    // Two programs starting in the very same instant could both get here; one then loses
    // its receiver, which is all that is at stake.
    QString problem;
    const QString name = serverName(m_paths, &problem);
    if (name.isEmpty()) {
        if (error) {
            *error = QStringLiteral("Cannot receive commands from other programs: ") + problem;
        }
        return false;
    }
    if (liveServerAt(name)) {
        if (error) {
            *error = QStringLiteral(
                         "Another Brimsett is already receiving commands for the office folder "
                         "%1.")
                         .arg(m_paths.folder());
        }
        return false;
    }
    // Whatever is left is a socket of a program that did not end cleanly.
    QLocalServer::removeServer(name);
    if (m_server->listen(name)) {
        return true;
    }
    if (error) {
        *error = QStringLiteral("Cannot receive commands from other programs (%1): %2")
                     .arg(name, m_server->errorString());
    }
    return false;
}

bool CommandReceiver::isListening() const {
    return m_server && m_server->isListening();
}

QString CommandReceiver::fullServerName() const {
    return isListening() ? m_server->fullServerName() : QString();
}

void CommandReceiver::close() {
    if (m_server) {
        m_server->close();
    }
}

void CommandReceiver::accept() {
    while (m_server->hasPendingConnections()) {
        QLocalSocket* socket = m_server->nextPendingConnection();
        // The socket's folder keeps others out; this is the second lock on the door.
        if (!privatesocket::peerIsThisUser(socket->socketDescriptor())) {
            socket->abort();
            socket->deleteLater();
            continue;
        }
        m_pending.insert(socket, {});
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readFrom(socket); });
        connect(socket, &QLocalSocket::disconnected, this, [this, socket] { drop(socket); });
        QTimer::singleShot(m_idleTimeoutMs, socket, [this, socket] {
            if (m_pending.contains(socket)) {
                socket->abort();
                drop(socket);
            }
        });
        if (socket->bytesAvailable() > 0) {
            readFrom(socket);
        }
    }
}

void CommandReceiver::readFrom(QLocalSocket* socket) {
    const auto it = m_pending.find(socket);
    if (it == m_pending.end()) {
        socket->readAll();  // already answered: the rest is ignored
        return;
    }
    it->append(socket->readAll());
    const qsizetype end = it->indexOf('\n');
    if (end < 0) {
        if (it->size() > kMaxLineBytes) {
            socket->abort();
            drop(socket);
        }
        return;
    }
    QByteArray bytes = it->left(end);
    if (bytes.endsWith('\r')) {
        bytes.chop(1);
    }
    m_pending.erase(it);
    // A handler may open a dialog whose event loop lets the client go away meanwhile.
    QPointer<QLocalSocket> guard(socket);
    const QString reply = answer(QString::fromUtf8(bytes));
    if (!guard || guard->state() != QLocalSocket::ConnectedState) {
        return;
    }
    guard->write(reply.toUtf8() + '\n');
    guard->disconnectFromServer();  // sends what is buffered first
}

void CommandReceiver::drop(QLocalSocket* socket) {
    m_pending.remove(socket);
    socket->deleteLater();
}

QString CommandReceiver::answer(const QString& line) {
    const QString trimmed = line.trimmed();
    const qsizetype space = trimmed.indexOf(QLatin1Char(' '));
    const QString word = space < 0 ? trimmed : trimmed.left(space);
    const QString upper = word.toUpper();
    const QString failed = upper + QStringLiteral("FAILED ");
    QString reply;
    try {
        if (upper == QStringLiteral("BACKUP")) {
            backupDatabase(m_db, m_paths, m_clock);
            reply = QStringLiteral("BACKUPDONE!");
        } else if (const auto handled = m_registry.runCommand(trimmed)) {
            reply = *handled;
        } else {
            reply = (QStringLiteral("UNKNOWN ") + word).trimmed();
        }
    } catch (const DbError& e) {
        reply = failed + e.message();
    } catch (const std::exception& e) {
        reply = failed + QString::fromLocal8Bit(e.what());
    }
    reply = oneLine(reply);
    emit commandAnswered(line, reply);
    return reply;
}

}  // namespace brimsett
