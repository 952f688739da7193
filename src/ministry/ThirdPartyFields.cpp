// The payer's fields and the checks a payer must pass before it is saved.

#include "foundation/Prompter.h"
#include "ministry/ThirdPartyRegister.h"

#include <QRegularExpression>
#include <QSqlRecord>
#include <QVariant>

#include <algorithm>

namespace brimsett {

namespace {

using Field = ThirdParty::Field;

struct Province {
    const char* code;
    const char* postalLetters;  // the first letters of its postal codes
};

constexpr Province kProvinces[] = {
    {"AB", "T"}, {"BC", "V"},     {"MB", "R"}, {"NB", "E"},   {"NL", "A"}, {"NS", "B"}, {"NT", "X"},
    {"NU", "X"}, {"ON", "KLMNP"}, {"PE", "C"}, {"QC", "GHJ"}, {"SK", "S"}, {"YT", "Y"},
};

const Province* provinceOf(const QString& code) {
    const auto* found = std::find_if(std::begin(kProvinces), std::end(kProvinces),
                                     [&code](const Province& p) { return code == p.code; });
    return found == std::end(kProvinces) ? nullptr : found;
}

QString provinceCodes() {
    QStringList codes;
    for (const Province& p : kProvinces) {
        codes << QLatin1String(p.code);
    }
    return codes.join(QStringLiteral(", "));
}

// "A1A 1A1": D, F, I, O, Q and U are never used, W and Z never first.
const QRegularExpression kPostalCode(
    QStringLiteral("^[ABCEGHJ-NPRSTVXY][0-9][ABCEGHJ-NPRSTV-Z] [0-9][ABCEGHJ-NPRSTV-Z][0-9]$"));
// The same letters and digits typed together, or with a blank or a dash between the halves.
const QRegularExpression kPostalCodeTyped(
    QStringLiteral("^([A-Z][0-9][A-Z])[ -]?([0-9][A-Z][0-9])$"));
// One "@" between a name and a domain of at least two dot-separated parts, no blanks.
const QRegularExpression kEmail(QStringLiteral("^[^@\\s]+@[^@\\s.]+(\\.[^@\\s.]+)+$"));

constexpr int kLeastPhoneDigits = 7;
constexpr qint64 kLargestId = 2147483647;  // `ThirdPartyID` is a Long

}  // namespace

const QList<ThirdParty::Column>& ThirdParty::columns() {
    using T = ThirdParty;
    static const QList<Column> list = {
        {Field::ThirdPartyID, "ThirdPartyID", "Third Party ID", 10, &T::thirdPartyId},
        {Field::Name, "Name", "Company Name", 100, &T::name},
        {Field::Contact, "Contact", "Contact Person", 60, &T::contact},
        {Field::Address, "Address", "Address", 100, &T::address},
        {Field::City, "City", "City", 30, &T::city},
        {Field::Province, "Province", "Province", 30, &T::province},
        {Field::PostalCode, "PostalCode", "Postal Code", 10, &T::postalCode},
        {Field::Country, "Country", "Country", 30, &T::country},
        {Field::Phone, "Phone", "Phone", 20, &T::phone},
        {Field::Email, "Email", "Email", 50, &T::email},
    };
    return list;
}

const ThirdParty::Column& ThirdParty::column(Field field) {
    // The list is written in the order of the enumeration.
    return columns().at(static_cast<int>(field));
}

bool ThirdParty::canadian() const {
    const QString c = country.trimmed();
    return c.isEmpty() || c.compare(QStringLiteral("Canada"), Qt::CaseInsensitive) == 0;
}

ThirdParty ThirdParty::normalised() const {
    ThirdParty t;
    for (const Column& c : columns()) {
        t.*c.member = (this->*c.member).trimmed();
    }
    if (t.canadian()) {
        t.province = t.province.toUpper();
        t.postalCode = t.postalCode.toUpper();
        const QRegularExpressionMatch m = kPostalCodeTyped.match(t.postalCode);
        if (m.hasMatch()) {
            t.postalCode = m.captured(1) + QLatin1Char(' ') + m.captured(2);
        }
    }
    return t;
}

ThirdParty ThirdParty::fromRecord(const QSqlRecord& record) {
    ThirdParty t;
    for (const Column& c : columns()) {
        const int index = record.indexOf(c.name);
        if (index >= 0 && !record.isNull(index)) {
            t.*c.member = record.value(index).toString();
        }
    }
    return t;
}

bool ThirdPartyRegister::mandatory(const ThirdParty& entry, Field field) {
    switch (field) {
        case Field::Name:
        case Field::Address:
        case Field::City:
            return true;
        case Field::Province:
        case Field::PostalCode:
            return entry.canadian();
        default:
            return false;
    }
}

ThirdPartyRegister::Problems ThirdPartyRegister::problems(const ThirdParty& t) {
    Problems found;
    const auto mark = [&found](Field field) {
        if (!found.firstField || field < *found.firstField) {
            found.firstField = field;
        }
    };
    const auto fault = [&found, &mark](Field field, const QString& text) {
        found.faults << text;
        mark(field);
    };

    for (const ThirdParty::Column& c : ThirdParty::columns()) {
        const QString value = t.*c.member;
        if (value.isEmpty() && mandatory(t, c.field)) {
            found.missing << c.label;
            mark(c.field);
        }
    }

    // The number is the program's, never typed; a wrong one would replace another row.
    bool isNumber = false;
    const qint64 id = t.thirdPartyId.toLongLong(&isNumber);
    if (!t.thirdPartyId.isEmpty() && (!isNumber || id <= 0 || id > kLargestId)) {
        fault(Field::ThirdPartyID, QStringLiteral("Third Party ID %1 is not a payer's number.")
                                       .arg(quotedInMessage(t.thirdPartyId)));
    }
    for (const ThirdParty::Column& c : ThirdParty::columns()) {
        if (c.field != Field::ThirdPartyID && (t.*c.member).size() > c.maxLength) {
            fault(c.field,
                  QStringLiteral("%1 can be at most %2 characters.").arg(c.label).arg(c.maxLength));
        }
    }

    if (t.canadian()) {
        const Province* province = provinceOf(t.province);
        if (!t.province.isEmpty() && province == nullptr) {
            fault(Field::Province,
                  QStringLiteral("Province %1 is not a Canadian province or territory (%2).")
                      .arg(quotedInMessage(t.province), provinceCodes()));
        }
        if (!t.postalCode.isEmpty()) {
            if (!kPostalCode.match(t.postalCode).hasMatch()) {
                fault(Field::PostalCode,
                      QStringLiteral("Postal Code %1 is not in the form A1A 1A1.")
                          .arg(quotedInMessage(t.postalCode)));
            } else if (province != nullptr &&
                       !QLatin1String(province->postalLetters).contains(t.postalCode.at(0))) {
                fault(Field::PostalCode, QStringLiteral("Postal Code %1 is not in %2.")
                                             .arg(quotedInMessage(t.postalCode), t.province));
            }
        }
    }

    if (!t.phone.isEmpty() && std::count_if(t.phone.cbegin(), t.phone.cend(), [](QChar c) {
                                  return c.isDigit();
                              }) < kLeastPhoneDigits) {
        fault(Field::Phone, QStringLiteral("Phone %1 needs at least %2 digits.")
                                .arg(quotedInMessage(t.phone))
                                .arg(kLeastPhoneDigits));
    }
    if (!t.email.isEmpty() && !kEmail.match(t.email).hasMatch()) {
        fault(Field::Email,
              QStringLiteral("Email %1 is not an e-mail address.").arg(quotedInMessage(t.email)));
    }
    return found;
}

}  // namespace brimsett
