#pragma once

#include <QString>
#include <QVariant>

namespace brimsett {

class Database;
class Prompter;

// The health number rules of each province, and the guess of a province from a bare number.
// Every check answers "not valid" for anything it cannot read; none of them throws.
namespace hn {

// A number as typed from the card, which prints it in groups: blanks and dashes dropped,
// letters in capitals.
QString fromTyped(const QString& typed);

// Character classes; the empty text is never valid.
bool allDigits(QStringView text);
bool allLetters(QStringView text);  // A-Z and a-z only
bool allLettersOrDigits(QStringView text);

// Kinds of the typed value check.
enum class ValueKind { Digits = 0, Letters = 1, LettersOrDigits = 2, Date = 3 };

// Valid when the value is not null, has the required length (0 = any) and is of the kind.
// A date is a QDate, a QDateTime, or a text in the "YYYY/MM/DD" form.
bool typedValueCheck(const QVariant& value, ValueKind kind, int requiredLength = 0);

bool ontarioCheck(const QString& number);
bool britishColumbiaCheck(const QString& number);
bool saskatchewanCheck(const QString& number);
bool newBrunswickCheck(const QString& number);
bool novaScotiaCheck(const QString& number);
bool northwestTerritoriesForm(const QString& number);
bool quebecForm(const QString& number);
bool generalLuhnCheck(const QString& number);

// The rule of the province; with onlyOntario (switch 1) every other province is accepted.
bool checkByProvince(const QString& number, const QString& province, bool onlyOntario);

// The province a number most likely belongs to by its length and check digits; empty when
// no province fits.
QString guessProvince(const QString& number);

// Compares the number's length with the province's `provincodes` row and, when they
// differ, asks whether to keep the number. True when the number is accepted.
bool checkLengthAgainstTable(Database& db, Prompter& prompter, const QString& number,
                             const QString& province);

}  // namespace hn
}  // namespace brimsett
