#include "foundation/PrivateSocket.h"

#include <QDir>
#include <QFile>

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brimsett::privatesocket {

bool isPrivateFolder(const QString& path) {
    struct stat info {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::geteuid() && (info.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

QString folder(QString* problem) {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && isPrivateFolder(runtime)) {
        return QDir::cleanPath(runtime);
    }
    const QString own =
        QDir::tempPath() + QStringLiteral("/brimsett-%1").arg(static_cast<qulonglong>(::geteuid()));
    // mkdir fails on anything already there, which is then judged as it stands.
    ::mkdir(QFile::encodeName(own).constData(), S_IRWXU);
    if (isPrivateFolder(own)) {
        return own;
    }
    if (problem) {
        *problem = QStringLiteral("%1 is not a folder of this user's alone.").arg(own);
    }
    return {};
}

bool peerIsThisUser(qintptr socketDescriptor) {
    struct ucred peer {};
    socklen_t size = sizeof peer;
    return socketDescriptor >= 0 &&
           ::getsockopt(static_cast<int>(socketDescriptor), SOL_SOCKET, SO_PEERCRED, &peer,
                        &size) == 0 &&
           peer.uid == ::geteuid();
}

}  // namespace brimsett::privatesocket
