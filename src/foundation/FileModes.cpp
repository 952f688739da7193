#include "foundation/FileModes.h"

#include <QFile>

#include <sys/stat.h>
#include <unistd.h>

namespace brimsett::filemodes {

void ownerOnly() {
    ::umask(S_IRWXG | S_IRWXO);
}

void makePrivate(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat info {};
    if (::lstat(name.constData(), &info) != 0 || S_ISLNK(info.st_mode) ||
        info.st_uid != ::geteuid()) {
        return;
    }
    if ((info.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        ::chmod(name.constData(), info.st_mode & S_IRWXU);
    }
}

}  // namespace brimsett::filemodes
