#include "foundation/SqlLog.h"

#include <QFile>

namespace brimsett {

namespace {

const QString kFolder = QStringLiteral("Sync-Send");

}  // namespace

QString SqlLog::path() const {
    return m_paths.folder() + kFolder + QStringLiteral("/LOG.TXT");
}

bool SqlLog::write(const QString& statement) const {
    if (!m_on) {
        return false;
    }
    QString line = statement;
    line.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    line.replace(QLatin1Char('\r'), QLatin1Char(' '));
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    line += QStringLiteral("\r\n");

    m_paths.ensureFolder(kFolder);
    QFile file(path());
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return false;
    }
    const QByteArray bytes = line.toUtf8();
    return file.write(bytes) == bytes.size() && file.flush();
}

}  // namespace brimsett
