#pragma once

#include <QList>
#include <QString>

namespace brimsett {

class Database;

// A code of a reference table offered for choice, with what it stands for.
struct CodeChoice {
    QString code;
    QString description;
    // "code - description", or the code alone when nothing describes it.
    QString text() const;
};

// The office's specialties (`speccodes`: code and description) and ministry offices
// (`mohoffices`: code and city), in code order. An office that never filled a table gets an
// empty list, and its providers are checked by the form of the code alone.
QList<CodeChoice> specialtyChoices(Database& db);
QList<CodeChoice> officeChoices(Database& db);

// The code a choice's text or a typed entry stands for: the part before " - ", trimmed.
QString codeOfChoiceText(const QString& text);

}  // namespace brimsett
