#include "patients/HealthNumbers.h"

#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"

#include <QDate>
#include <QDateTime>

namespace brimsett::hn {

namespace {

bool isAsciiDigit(QChar c) {
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isAsciiLetter(QChar c) {
    return (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) ||
           (c >= QLatin1Char('a') && c <= QLatin1Char('z'));
}

bool isUpperLetter(QChar c) {
    return c >= QLatin1Char('A') && c <= QLatin1Char('Z');
}

template <typename Pred>
bool every(QStringView text, Pred pred) {
    if (text.isEmpty()) {
        return false;
    }
    for (const QChar c : text) {
        if (!pred(c)) {
            return false;
        }
    }
    return true;
}

int digitAt(const QString& number, int position) {  // position counts from 1
    return number.at(position - 1).unicode() - '0';
}

// A product of 10 or more counts as the sum of its two digits.
int digitSum(int product) {
    return product / 10 + product % 10;
}

bool digitsOfLength(const QString& number, int length) {
    return number.size() == length && allDigits(number);
}

// New Brunswick and Nova Scotia: alternating weights over all but the last digit, products
// folded to their digit sum, the last digit completing the sum to a multiple of ten.
bool alternatingCheck(const QString& number, int length, int oddWeight, int evenWeight) {
    if (!digitsOfLength(number, length)) {
        return false;
    }
    int sum = 0;
    for (int position = 1; position < length; ++position) {
        sum += digitSum(digitAt(number, position) * (position % 2 == 1 ? oddWeight : evenWeight));
    }
    return (10 - sum % 10) % 10 == digitAt(number, length);
}

}  // namespace

QString fromTyped(const QString& typed) {
    QString number = typed.toUpper();
    number.remove(QLatin1Char(' ')).remove(QLatin1Char('-'));
    return number;
}

bool allDigits(QStringView text) {
    return every(text, isAsciiDigit);
}

bool allLetters(QStringView text) {
    return every(text, isAsciiLetter);
}

bool allLettersOrDigits(QStringView text) {
    return every(text, [](QChar c) { return isAsciiDigit(c) || isAsciiLetter(c); });
}

bool typedValueCheck(const QVariant& value, ValueKind kind, int requiredLength) {
    if (value.isNull() || !value.isValid()) {
        return false;
    }
    const bool isDateValue =
        value.typeId() == QMetaType::QDate || value.typeId() == QMetaType::QDateTime;
    const QString text = isDateValue ? datetext::slashed(value.toDate()) : value.toString();
    if (requiredLength > 0 && text.size() != requiredLength) {
        return false;
    }
    switch (kind) {
        case ValueKind::Digits:
            return allDigits(text);
        case ValueKind::Letters:
            return allLetters(text);
        case ValueKind::LettersOrDigits:
            return allLettersOrDigits(text);
        case ValueKind::Date:
            return isDateValue ? value.toDate().isValid() : datetext::fromSlashed(text).isValid();
    }
    return false;
}

bool ontarioCheck(const QString& number) {
    if (!digitsOfLength(number, 10)) {
        return false;
    }
    int total = 0;
    for (int position = 1; position <= 10; ++position) {
        const int digit = digitAt(number, position);
        total += position % 2 == 1 ? digitSum(digit * 2) : digit;
    }
    return total % 10 == 0;
}

bool britishColumbiaCheck(const QString& number) {
    if (!digitsOfLength(number, 10) || number.at(0) != QLatin1Char('9')) {
        return false;
    }
    static constexpr int kWeights[] = {2, 4, 8, 5, 10, 9, 7, 3};
    int total = 0;
    for (int position = 2; position <= 9; ++position) {
        total += digitAt(number, position) * kWeights[position - 2] % 11;
    }
    // A check value of 10 or 11 is no digit, so such numbers never pass.
    return 11 - total % 11 == digitAt(number, 10);
}

bool saskatchewanCheck(const QString& number) {
    if (!digitsOfLength(number, 9)) {
        return false;
    }
    int sum = 0;
    for (int position = 1; position <= 8; ++position) {
        sum += digitAt(number, position) * (10 - position);
    }
    return 11 - sum % 11 == digitAt(number, 9);
}

bool newBrunswickCheck(const QString& number) {
    return alternatingCheck(number, 9, 1, 2);
}

bool novaScotiaCheck(const QString& number) {
    return alternatingCheck(number, 10, 2, 1);
}

bool northwestTerritoriesForm(const QString& number) {
    return number.size() == 8 && isUpperLetter(number.at(0)) && allDigits(number.mid(1));
}

bool quebecForm(const QString& number) {
    return number.size() == 12 && every(number.left(4), isUpperLetter) && allDigits(number.mid(4));
}

bool generalLuhnCheck(const QString& number) {
    if (number.size() < 2 || !allDigits(number)) {
        return false;
    }
    static const QString kDoubled = QStringLiteral("0246813579");
    static const QString kCheck = QStringLiteral("0987654321");
    int total = 0;
    bool doubled = true;
    for (int i = number.size() - 2; i >= 0; --i, doubled = !doubled) {
        const int digit = number.at(i).unicode() - '0';
        total += doubled ? kDoubled.at(digit).unicode() - '0' : digit;
    }
    return kCheck.at(total % 10) == number.back();
}

bool checkByProvince(const QString& number, const QString& province, bool onlyOntario) {
    if (onlyOntario) {
        return province != QLatin1String("ON") || ontarioCheck(number);
    }
    if (province == QLatin1String("ON"))
        return ontarioCheck(number);
    if (province == QLatin1String("AB"))
        return allDigits(number);
    if (province == QLatin1String("BC"))
        return britishColumbiaCheck(number);
    if (province == QLatin1String("MB"))
        return digitsOfLength(number, 6);
    if (province == QLatin1String("NL"))
        return digitsOfLength(number, 12);
    if (province == QLatin1String("NB"))
        return newBrunswickCheck(number);
    if (province == QLatin1String("NT"))
        return northwestTerritoriesForm(number);
    if (province == QLatin1String("NS"))
        return novaScotiaCheck(number);
    if (province == QLatin1String("PE"))
        return digitsOfLength(number, 8);
    if (province == QLatin1String("SK"))
        return saskatchewanCheck(number);
    if (province == QLatin1String("YT"))
        return digitsOfLength(number, 9);
    // Quebec and unknown codes: a ten-character number is most likely Ontario's.
    if (number.size() == 10) {
        return ontarioCheck(number);
    }
    return number.size() >= 6 && number.size() <= 12;
}

QString guessProvince(const QString& number) {
    switch (number.size()) {
        case 6:
            return QStringLiteral("MB");
        case 8:
            return northwestTerritoriesForm(number) ? QStringLiteral("NT") : QStringLiteral("PE");
        case 9:
            if (saskatchewanCheck(number))
                return QStringLiteral("SK");
            if (newBrunswickCheck(number))
                return QStringLiteral("NB");
            return QStringLiteral("YT");
        case 10:
            // Nova Scotia's check agrees with Ontario's on every ten-digit number, so a
            // number that fails Ontario's fails it too: Ontario stays the answer.
            if (ontarioCheck(number))
                return QStringLiteral("ON");
            if (britishColumbiaCheck(number))
                return QStringLiteral("BC");
            if (novaScotiaCheck(number))
                return QStringLiteral("NS");
            return QStringLiteral("ON");
        case 11:
            return generalLuhnCheck(number) ? QStringLiteral("AB") : QString();
        case 12:
            return quebecForm(number) ? QStringLiteral("QU") : QStringLiteral("NL");
        default:
            return {};
    }
}

bool checkLengthAgainstTable(Database& db, Prompter& prompter, const QString& number,
                             const QString& province) {
    QSqlQuery row =
        db.exec(QStringLiteral("Select ProvName, Format From provincodes Where ProvinCode=?"),
                {province}, QStringLiteral("reading the health number length of the province"));
    if (!row.next()) {
        return true;
    }
    // A NULL length reads as 0 from some engines' integer columns; it means any length.
    const QString format = row.isNull(1) ? QString() : row.value(1).toString().trimmed();
    if (format.isEmpty() || format == QString::number(number.size())) {
        return true;
    }
    return prompter.confirm(
        QStringLiteral("Invalid Health Number"),
        {QStringLiteral("Health card number (registration number)"),
         QStringLiteral("should be ") + format + QStringLiteral(" digits for ") +
             row.value(0).toString() + QLatin1Char('.'),
         QString(), QStringLiteral("If you are sure that the Health Number is correct,"),
         QStringLiteral("click Yes. To correct it, click No.")});
}

}  // namespace brimsett::hn
