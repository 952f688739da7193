#pragma once

#include <QSettings>
#include <QString>

#include <memory>

namespace brimsett {

// The per-user key/value store of application "Zandor": an INI file with one group per
// section, every value kept as text. Reading never fails: an absent key gives its default.
class SettingsStore {
public:
    static constexpr const char* kApplication = "Zandor";

    // The user's own file ($XDG_CONFIG_HOME/Zandor/Zandor.ini), or the named one.
    static QString defaultPath();
    explicit SettingsStore(const QString& iniPath = defaultPath());

    QString path() const;
    QString get(const QString& section, const QString& key, const QString& def = {}) const;
    void save(const QString& section, const QString& key, const QString& value);
    void remove(const QString& section, const QString& key);
    bool contains(const QString& section, const QString& key) const;
    // Writes pending changes; false when the file could not be written.
    bool sync();

    // The four typed helpers.
    bool readFlag(const QString& section, const QString& key, const QString& def = {}) const;
    void saveFlag(const QString& section, const QString& key, bool value);
    int readNumber(const QString& section, const QString& key, const QString& def = {}) const;
    void saveNumber(const QString& section, const QString& key, long long value);
    double readReal(const QString& section, const QString& key, const QString& def = {}) const;
    void saveReal(const QString& section, const QString& key, double value);

    // Multi-line texts are kept on one line with "_|_" for each line break.
    QString readLines(const QString& section, const QString& key, const QString& def = {}) const;
    void saveLines(const QString& section, const QString& key, const QString& text);

    // The integer part of a text's numeric value; a text that is not a number is 0.
    static int numberOf(const QString& text);

private:
    std::unique_ptr<QSettings> m_settings;
};

}  // namespace brimsett
