#include "ministry/TransferFiles.h"

#include "foundation/DateText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace brimsett::transferfiles {

QString makeFolders(const QString& base, const QStringList& folders) {
    for (const QString& folder : folders) {
        const QString path = base + folder;
        if (!QFileInfo(path).isDir() && !QDir().mkpath(path)) {
            return QStringLiteral("The folder %1 could not be created.").arg(path);
        }
    }
    return {};
}

std::optional<QByteArray> readAll(const QString& path, QString* problem) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *problem = QStringLiteral("%1 could not be read: %2").arg(path, file.errorString());
        return std::nullopt;
    }
    return file.readAll();
}

QString place(const QByteArray& bytes, const QString& target, const QString& stagingFolder) {
    const QString staged =
        QDir(stagingFolder)
            .filePath(QStringLiteral(".%1.%2.part")
                          .arg(QFileInfo(target).fileName())
                          .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0')));
    QFile file(staged);
    const QString cannotWrite = QStringLiteral("%1 could not be written: %2");
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return cannotWrite.arg(target, file.errorString());
    }
    if (file.write(bytes) != bytes.size() || !file.flush()) {
        const QString problem = cannotWrite.arg(target, file.errorString());
        file.close();
        file.remove();
        return problem;
    }
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    file.close();
    // One rename replaces an earlier file of the name: there is no moment without either.
    if (std::rename(QFile::encodeName(staged).constData(), QFile::encodeName(target).constData()) !=
        0) {
        const QString problem =
            cannotWrite.arg(target, QString::fromLocal8Bit(std::strerror(errno)));
        file.remove();
        return problem;
    }
    return {};
}

QString makeRoom(const QString& folder, const QString& name, const QByteArray& bytes,
                 const QDateTime& now) {
    if (!QFileInfo::exists(folder + name)) {
        return {};
    }
    QString problem;
    const std::optional<QByteArray> earlier = readAll(folder + name, &problem);
    if (!earlier || *earlier == bytes) {
        return problem;
    }
    const QString stem = name + QLatin1Char('.') + datetext::stamp(now);
    QString kept = stem;
    for (int n = 2; QFileInfo::exists(folder + kept); ++n) {
        kept = stem + QLatin1Char('-') + QString::number(n);
    }
    if (!QFile::rename(folder + name, folder + kept)) {
        return QStringLiteral("The earlier %1 in %2 could not be kept as %3.")
            .arg(name, folder, kept);
    }
    return {};
}

QStringList filesIn(const QString& folder) {
    return QDir(folder).entryList(QDir::Files | QDir::NoDotAndDotDot, QDir::Name);
}

}  // namespace brimsett::transferfiles
