#include "foundation/OfficePaths.h"

#include "foundation/DateText.h"
#include "foundation/ServerAddress.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace brimsett {

namespace {

QString withSlash(QString path) {
    path = QDir::fromNativeSeparators(path);
    if (!path.endsWith(QLatin1Char('/'))) {
        path += QLatin1Char('/');
    }
    return path;
}

}  // namespace

OfficePaths OfficePaths::resolve(const QString& homeOption) {
    if (!homeOption.isEmpty()) {
        return OfficePaths(QFileInfo(homeOption).absoluteFilePath());
    }
    const QString env = qEnvironmentVariable("BRIMSETT_HOME");
    if (!env.isEmpty()) {
        return OfficePaths(QFileInfo(env).absoluteFilePath());
    }
    return OfficePaths(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
                       QStringLiteral("/Brimsett"));
}

QString OfficePaths::datedDatabaseName(const QDateTime& moment) {
    return QStringLiteral("medical-") + datetext::stamp(moment) + QStringLiteral(".mdb");
}

OfficePaths::OfficePaths(const QString& folder) : m_folder(withSlash(folder)) {}

QString OfficePaths::databaseFile(const QString& dbPath) const {
    if (ServerAddress::names(dbPath)) {
        return dbPath.trimmed();
    }
    const QString path = QDir::fromNativeSeparators(dbPath.trimmed());
    if (path.isEmpty()) {
        return defaultDatabase();
    }
    const QFileInfo info(path);
    const bool namesFile = path.endsWith(QStringLiteral(".mdb"), Qt::CaseInsensitive) ||
                           path.endsWith(QStringLiteral(".db"), Qt::CaseInsensitive) ||
                           info.isFile();
    if (namesFile) {
        return path;
    }
    return withSlash(path) + QStringLiteral("medical.mdb");
}

QString OfficePaths::ensureFolder(const QString& subFolder) const {
    const QString path = subFolder.isEmpty() ? m_folder : withSlash(m_folder + subFolder);
    QDir().mkpath(path);
    return path;
}

}  // namespace brimsett
