#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

class QSqlRecord;

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// A payer of third party claims (a row of `thirdparty`), every column as typed, so that a
// fault can be quoted back. `thirdPartyId` is empty for a payer not yet saved.
struct ThirdParty {
    enum class Field {
        ThirdPartyID,
        Name,
        Contact,
        Address,
        City,
        Province,
        PostalCode,
        Country,
        Phone,
        Email
    };

    // A column of `thirdparty` in screen order: its name, the label the user knows it by,
    // the most characters it holds, and the member that carries it.
    struct Column {
        Field field;
        QString name;
        QString label;
        int maxLength;
        QString ThirdParty::*member;
    };
    static const QList<Column>& columns();
    static const Column& column(Field field);

    QString thirdPartyId;
    QString name;
    QString contact;
    QString address;
    QString city;
    QString province;
    QString postalCode;
    QString country;
    QString phone;
    QString email;

    QString value(Field field) const { return this->*column(field).member; }
    void setValue(Field field, const QString& text) { this->*column(field).member = text; }

    // Whether the address is in Canada: the country empty (the office's own) or Canada.
    bool canadian() const;
    // Blanks trimmed; a Canadian province and postal code in capitals, the postal code as
    // "A1A 1A1" when it has that form.
    ThirdParty normalised() const;
    // A row read with "Select * From thirdparty"; NULL columns are empty.
    static ThirdParty fromRecord(const QSqlRecord& record);

    bool operator==(const ThirdParty&) const = default;
};

// One line of the payer list.
struct ThirdPartyListRow {
    qint64 id = 0;
    QString name;
    QString contact;
};

// What a city quick code stands for.
struct CityQuickCode {
    QString city;
    QString phoneArea;
};

// Keeping the payers of third party claims. Every question and message goes through the
// Prompter; a save or a delete is one transaction, and its statements go to the SQL log
// only after the commit.
//
// Deleting a payer deletes its claims with their items, whatever state they are in: the
// office removes a payer together with everything billed to it.
class ThirdPartyRegister {
public:
    static inline const QString kErrorTitle = QStringLiteral("Error");
    static inline const QString kMandatoryHeading =
        QStringLiteral("You must fill in these mandatory field(s):");
    static inline const QString kProblemsHeading =
        QStringLiteral("Cannot save third party information due to the following problems:");
    static inline const QString kDeleteTitle = QStringLiteral("Delete Third Party");
    static inline const QString kLeaveTitle = QStringLiteral("Third Party");

    // What stops a save: the labels of the mandatory fields left empty, and the other
    // faults, one sentence each; firstField is the field to correct first.
    struct Problems {
        QStringList missing;
        QStringList faults;
        std::optional<ThirdParty::Field> firstField;
        bool isEmpty() const { return missing.isEmpty() && faults.isEmpty(); }
    };

    ThirdPartyRegister(Database& db, Prompter& prompter, const SqlLog& log);

    // Whether the field must be filled before this payer is saved: the name and what an
    // invoice needs to reach it by mail (address and city; province and postal code too for
    // a Canadian address, as other countries may have neither).
    static bool mandatory(const ThirdParty& entry, ThirdParty::Field field);

    // Every payer, by name.
    QList<ThirdPartyListRow> list();
    std::optional<ThirdParty> load(qint64 id);
    // The problems of a normalised payer.
    static Problems problems(const ThirdParty& entry);

    // Saves the payer as typed (normalised first): a new one (empty id) gets the next
    // number, an existing one keeps its own and its row is replaced. Problems are shown
    // at once under "Error" and nothing is written. Returns the payer's number, or none;
    // badField() then names the field to correct, when a check refused.
    std::optional<qint64> save(const ThirdParty& typed);
    std::optional<ThirdParty::Field> badField() const { return m_badField; }

    // Asks (default No), then deletes the payer's claims, their items and the payer, and
    // says so. True when deleted.
    bool remove(qint64 id);

    // The city and telephone area of a quick code (any case), or none.
    std::optional<CityQuickCode> cityQuickCode(const QString& code);

private:
    std::optional<qint64> trySave(const ThirdParty& entry);
    bool tryRemove(qint64 id);

    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    std::optional<ThirdParty::Field> m_badField;
};

// The payers as choice lists show them: `ThirdPartyID` " - " `Name`, by name.
struct ThirdPartyChoice {
    qint64 id = 0;
    QString text;
};
QList<ThirdPartyChoice> thirdPartyChoices(Database& db);

}  // namespace brimsett
