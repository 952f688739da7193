#include "ministry/ClaimFilePlacement.h"

#include "foundation/Database.h"
#include "foundation/SettingsStore.h"
#include "ministry/ClaimFileNames.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <fcntl.h>
#include <unistd.h>
#include <cerrno>
#include <cstring>

namespace brimsett::claimfileplacement {

namespace {

const QString kTempPrefix = QStringLiteral(".claimfile-");
const QString kBatchSection = QStringLiteral("Batch");

QString systemError(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

bool writeWhole(QFile& file, const QByteArray& bytes) {
    return file.write(bytes) == bytes.size() && file.flush() && ::fsync(file.handle()) == 0;
}

// A folder's entries are only durable once the folder itself is synced.
void syncFolder(const QString& folder) {
    const int fd = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY);
    if (fd >= 0) {
        ::fsync(fd);
        ::close(fd);
    }
}

// Media without hard links (a FAT stick, some shares): created exclusively instead, which
// never replaces a file either; a part-written one is an unrecorded file the next
// preparation sets aside.
QString createExclusively(const QByteArray& bytes, const QString& target) {
    QFile file(target);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return file.exists() ? QString() : file.errorString();
    }
    if (!writeWhole(file, bytes)) {
        const QString problem = file.errorString();
        file.close();
        QFile::remove(target);
        return problem;
    }
    return {};
}

}  // namespace

QString placeNew(const QByteArray& bytes, const QString& folder, const QString& name) {
    const QString target = folder + name;
    const QString taken = QStringLiteral("A file named %1 is already in %2; it was left as it is.")
                              .arg(name, QDir::toNativeSeparators(folder));
    if (QFileInfo::exists(target)) {
        return taken;
    }
    QTemporaryFile temp(folder + kTempPrefix + QStringLiteral("XXXXXX"));
    if (!temp.open()) {
        return temp.errorString();
    }
    if (!writeWhole(temp, bytes)) {
        return temp.errorString();
    }
    if (::link(QFile::encodeName(temp.fileName()).constData(),
               QFile::encodeName(target).constData()) == 0) {
        syncFolder(folder);
        return {};  // the temporary name goes with `temp`
    }
    const int error = errno;
    if (error == EEXIST) {
        return taken;
    }
    if (error == EPERM || error == ENOTSUP || error == EOPNOTSUPP || error == EMLINK) {
        const QString problem = createExclusively(bytes, target);
        if (problem.isEmpty() && QFileInfo(target).size() == bytes.size()) {
            return {};
        }
        return problem.isEmpty() ? taken : problem;
    }
    return systemError(error);
}

QStringList setAsideOrphans(Database& db, SettingsStore& store, const QString& folder) {
    const QDir dir(folder);
    for (const QString& temp :
         dir.entryList({kTempPrefix + QStringLiteral("*")}, QDir::Files | QDir::Hidden)) {
        QFile::remove(folder + temp);
    }
    store.sync();
    QStringList moved;
    for (const QString& name : dir.entryList({QStringLiteral("H*")}, QDir::Files, QDir::Name)) {
        if (!claimfilenames::isClaimFileName(name) ||
            store.get(kBatchSection, name) != QLatin1String("1")) {
            continue;
        }
        if (claimfilenames::nameInBatches(db, name)) {
            continue;
        }
        const QString aside = folder + setAsideFolder() + QLatin1Char('/');
        if (!QDir().mkpath(aside)) {
            throw DbError(QStringLiteral("setting aside the unrecorded claim file ") + name, {},
                          QStringLiteral("cannot make the folder %1").arg(aside));
        }
        QString target = aside + name;
        if (QFileInfo::exists(target)) {
            target += QLatin1Char('.') +
                      QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss"));
        }
        if (!QFile::rename(folder + name, target)) {
            throw DbError(QStringLiteral("setting aside the unrecorded claim file ") + name, {},
                          QStringLiteral("cannot move it to %1").arg(aside));
        }
        store.remove(kBatchSection, name);
        moved << name;
    }
    if (!moved.isEmpty()) {
        store.sync();
    }
    return moved;
}

}  // namespace brimsett::claimfileplacement
