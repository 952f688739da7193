#include "foundation/SettingsStore.h"

#include <QDir>
#include <QStandardPaths>

#include <cmath>
#include <limits>

namespace brimsett {

namespace {

const QString kLineBreak = QStringLiteral("\r\n");
const QString kStoredBreak = QStringLiteral("_|_");

QString keyOf(const QString& section, const QString& key) {
    return section + QLatin1Char('/') + key;
}

}  // namespace

QString SettingsStore::defaultPath() {
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return config + QStringLiteral("/Zandor/Zandor.ini");
}

SettingsStore::SettingsStore(const QString& iniPath)
    : m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat)) {}

QString SettingsStore::path() const {
    return m_settings->fileName();
}

QString SettingsStore::get(const QString& section, const QString& key, const QString& def) const {
    const QVariant v = m_settings->value(keyOf(section, key));
    if (!v.isValid()) {
        return def;
    }
    // A hand-edited file may hold a list ("a, b"): keep it as the text it was.
    if (v.typeId() == QMetaType::QStringList) {
        return v.toStringList().join(QStringLiteral(", "));
    }
    return v.toString();
}

void SettingsStore::save(const QString& section, const QString& key, const QString& value) {
    m_settings->setValue(keyOf(section, key), value);
}

void SettingsStore::remove(const QString& section, const QString& key) {
    m_settings->remove(keyOf(section, key));
}

bool SettingsStore::contains(const QString& section, const QString& key) const {
    return m_settings->contains(keyOf(section, key));
}

bool SettingsStore::sync() {
    m_settings->sync();
    return m_settings->status() == QSettings::NoError;
}

bool SettingsStore::readFlag(const QString& section, const QString& key, const QString& def) const {
    return get(section, key, def) == QLatin1String("1");
}

void SettingsStore::saveFlag(const QString& section, const QString& key, bool value) {
    save(section, key, value ? QStringLiteral("1") : QStringLiteral("0"));
}

int SettingsStore::numberOf(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    if (!ok || !std::isfinite(v)) {
        return 0;
    }
    const double whole = std::trunc(v);
    if (whole > std::numeric_limits<int>::max() || whole < std::numeric_limits<int>::min()) {
        return 0;
    }
    return static_cast<int>(whole);
}

int SettingsStore::readNumber(const QString& section, const QString& key,
                              const QString& def) const {
    return numberOf(get(section, key, def));
}

void SettingsStore::saveNumber(const QString& section, const QString& key, long long value) {
    save(section, key, QString::number(value));
}

double SettingsStore::readReal(const QString& section, const QString& key,
                               const QString& def) const {
    bool ok = false;
    const double v = get(section, key, def).trimmed().toDouble(&ok);
    return ok && std::isfinite(v) ? v : 0.0;
}

void SettingsStore::saveReal(const QString& section, const QString& key, double value) {
    save(section, key, QString::number(value));
}

QString SettingsStore::readLines(const QString& section, const QString& key,
                                 const QString& def) const {
    return get(section, key, def).replace(kStoredBreak, kLineBreak);
}

void SettingsStore::saveLines(const QString& section, const QString& key, const QString& text) {
    QString oneLine = text;
    oneLine.replace(kLineBreak, kStoredBreak);
    oneLine.replace(QLatin1Char('\n'), kStoredBreak);  // a bare LF typed on Linux is a break too
    save(section, key, oneLine);
}

}  // namespace brimsett
