#pragma once

#include "foundation/AppSettings.h"

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Database;
class Prompter;
class SettingsStore;

// What the options screen edits: a copy of the settings, the numbers as the user typed them
// and the next placer id kept in table OtherParams. Nothing reaches the store or the
// database until every typed number is a number.
class OptionsEditor {
public:
    enum class Field {
        NextIDUnder,
        PrintInvoice,
        PrintReceipt,
        PrintLabelCount,
        MenuSize,
        MenuSkip,
        PlacerID,
        DbPath,
        DbPPath
    };

    static inline const QString kTitle = QStringLiteral("Options");
    static inline const QString kPlacerRefusal =
        QStringLiteral("Please Enter a valid number for next Placer ID");

    // Reads the next placer id; a database without one shows an empty field.
    OptionsEditor(const AppSettings& settings, Database& db, Prompter& prompter);

    AppSettings& settings() { return m_settings; }
    const AppSettings& settings() const { return m_settings; }

    // The text of a typed number as the user sees it; setting it changes nothing else
    // until save(). DbPath and DbPPath live in settings() and have no text here.
    QString text(Field field) const { return m_texts.value(field); }
    void setText(Field field, const QString& text) { m_texts.insert(field, text); }

    // The problems with the typed numbers, one line each, in the order of the fields.
    QStringList problems() const;

    // Checks the typed numbers (every problem told at once), asks about a changed database
    // location that leads nowhere, then writes the options to the store and the placer id
    // to the database as one action. False when nothing was saved; badField() then names
    // the field to correct.
    bool save(SettingsStore& store);
    std::optional<Field> badField() const { return m_badField; }

private:
    bool locationAccepted(Field field, const QString& label, const QString& path);
    bool serverAccepted(Field field, const QString& address);
    // The typed number put into the settings copy.
    void applyNumbers();
    void writePlacerId(const QString& value);

    AppSettings m_settings;
    Database& m_db;
    Prompter& m_prompter;
    QHash<Field, QString> m_texts;
    QString m_loadedPlacerId;
    QString m_loadedDbPath;
    QString m_loadedDbPPath;
    std::optional<Field> m_badField;
};

}  // namespace brimsett
