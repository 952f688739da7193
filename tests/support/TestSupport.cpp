#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlRecord>

namespace brimsett::test {

TempOffice::TempOffice()
    : m_store(
          std::make_unique<SettingsStore>(m_dir.path() + QStringLiteral("/settings/Zandor.ini"))) {}

QString TempOffice::folder() const {
    return m_dir.path() + QLatin1Char('/');
}

QString TempOffice::file(const QString& name) const {
    return folder() + name;
}

QString TempOffice::settingsFile() const {
    return m_dir.path() + QStringLiteral("/settings/Zandor.ini");
}

std::unique_ptr<Database> TempOffice::emptyDatabase(const QString& name) const {
    return Database::createSqlite(file(name));
}

QString readText(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(f.readAll());
}

void writeText(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        f.write(bytes);
    }
}

QStringList rowsOf(QSqlQuery query) {
    QStringList rows;
    while (query.next()) {
        QStringList values;
        for (int i = 0; i < query.record().count(); ++i) {
            const QVariant v = query.value(i);
            values << (v.isNull() ? QStringLiteral("<null>") : v.toString());
        }
        rows << values.join(QLatin1Char('|'));
    }
    return rows;
}

QString samplesFolder() {
    const QString dir = QStringLiteral(BRIMSETT_SAMPLES);
    return QDir(dir).exists() ? dir : QString();
}

}  // namespace brimsett::test
