#include "hcv/SwipeCard.h"

#include "foundation/DateText.h"
#include "patients/HealthNumbers.h"
#include "patients/NameCase.h"

namespace brimsett::hcv {

namespace {

constexpr int kPrefixLength = 8;
constexpr int kNumberLength = 10;
// The number is followed by a check character and the field separator.
constexpr int kNameOffset = 12;

// Field widths after the name field, in the order the stripe holds them.
constexpr int kExpiryWidth = 4;
constexpr int kFirstSkip = 3;
constexpr int kSexWidth = 1;
constexpr int kDobWidth = 8;
constexpr int kVersionWidth = 2;
constexpr int kSecondSkip = 5;
constexpr int kCardDateWidth = 6;

// Reads fixed-width fields one after another; a field the text is too short for is empty,
// and so is every one after it.
class Cutter {
public:
    Cutter(const QString& text, qsizetype from) : m_text(text), m_at(from) {}
    QString next(int width) {
        if (m_at < 0 || m_at + width > m_text.size()) {
            m_at = -1;
            return {};
        }
        const QString field = m_text.mid(m_at, width);
        m_at += width;
        return field;
    }

private:
    const QString& m_text;
    qsizetype m_at;
};

// The name field ends at the first "^", or at a "6" before it (a reader that lost its shift
// types "6" for "^"); -1 when it has no end.
qsizetype nameEnd(const QString& text, qsizetype from) {
    const qsizetype caret = text.indexOf(QLatin1Char('^'), from);
    const qsizetype six = text.indexOf(QLatin1Char('6'), from);
    if (six >= 0 && (caret < 0 || six < caret)) {
        return six;
    }
    return caret;
}

void splitName(const QString& field, SwipedCard& card) {
    qsizetype separator = field.indexOf(QLatin1Char('/'));
    if (separator < 0) {
        separator = field.indexOf(QLatin1Char('?'));
    }
    if (separator < 0) {
        card.lastName = nameCase(field);
        return;
    }
    card.lastName = nameCase(field.left(separator));
    const QString given = field.mid(separator + 1).trimmed();
    const qsizetype blank = given.indexOf(QLatin1Char(' '));
    card.firstName = nameCase(blank < 0 ? given : given.left(blank));
    card.middleName = blank < 0 ? QString() : nameCase(given.mid(blank + 1));
}

}  // namespace

bool hasCardPrefix(const QString& text) {
    static const QStringList prefixes = {
        QStringLiteral("%B610054"), QStringLiteral("%b610054"), QStringLiteral("%B^10054"),
        QStringLiteral("%b^10054"), QStringLiteral("5B610054"), QStringLiteral("5b610054"),
        QStringLiteral("5B^10054"), QStringLiteral("5b^10054"),
    };
    return prefixes.contains(text.left(kPrefixLength));
}

SwipeResult parseSwipe(const QString& typed) {
    QString text = typed;
    text.remove(QLatin1Char('\r'));

    SwipeResult result;
    if (!hasCardPrefix(text)) {
        result.kind = SwipeResult::Kind::NotHealthCard;
        result.problem = {QStringLiteral("This is not a health card.")};
        return result;
    }
    SwipedCard& card = result.card;
    card.healthNum = text.mid(kPrefixLength, kNumberLength);
    if (!hn::ontarioCheck(card.healthNum)) {
        result.kind = SwipeResult::Kind::InvalidNumber;
        result.problem = {QStringLiteral("Invalid Health Card Number ") + card.healthNum};
        return result;
    }
    const qsizetype nameStart = kPrefixLength + kNameOffset;
    const qsizetype end = nameStart <= text.size() ? nameEnd(text, nameStart) : -1;
    if (end < 0) {
        result.kind = SwipeResult::Kind::InvalidCard;
        result.problem = {QStringLiteral("Invalid Card")};
        return result;
    }
    result.kind = SwipeResult::Kind::Card;
    splitName(text.mid(nameStart, end - nameStart), card);

    Cutter fields(text, end + 1);
    const QString expiry = fields.next(kExpiryWidth);
    if (expiry != QLatin1String("0000") && !expiry.isEmpty()) {
        card.expiry = widenShortDate(expiry + QStringLiteral("01"));
    }
    fields.next(kFirstSkip);
    const QString sex = fields.next(kSexWidth);
    if (!sex.isEmpty()) {
        card.sex = sex == QLatin1String("1") ? QStringLiteral("M") : QStringLiteral("F");
    }
    card.dob = datetext::slashed(datetext::fromYyyymmdd(fields.next(kDobWidth)));
    card.versionCode = fields.next(kVersionWidth).toUpper().trimmed();
    fields.next(kSecondSkip);
    card.cardDate = widenShortDate(fields.next(kCardDateWidth));
    return result;
}

QString widenShortDate(const QString& yymmdd) {
    return datetext::slashed(datetext::fromYymmdd(yymmdd));
}

CardState cardState(const SwipedCard& card, const QDate& today) {
    if (card.expiry.isEmpty()) {
        return CardState::NoExpiry;
    }
    return card.expiry < datetext::slashed(today) ? CardState::Expired : CardState::Valid;
}

QString birthDateShown(const QString& dob) {
    if (dob.size() < 10) {
        return QStringLiteral("(n/a)");
    }
    return QStringLiteral("YYYY ") + dob.left(4) + QStringLiteral(" MM ") + dob.mid(5, 2) +
           QStringLiteral(" DD") + dob.mid(8, 2);
}

}  // namespace brimsett::hcv
