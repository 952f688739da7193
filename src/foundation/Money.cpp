#include "foundation/Money.h"

#include <cstdlib>
#include <limits>

namespace brimsett {

namespace {

std::int64_t roundDiv(std::int64_t value, std::int64_t divisor) {
    // Half away from zero; divisor is positive.
    const std::int64_t q = value / divisor;
    const std::int64_t r = value % divisor;
    if (2 * std::llabs(r) >= divisor) {
        return value < 0 ? q - 1 : q + 1;
    }
    return q;
}

QString groupDigits(const QString& digits, QChar group) {
    QString out;
    const int n = digits.size();
    for (int i = 0; i < n; ++i) {
        if (i > 0 && (n - i) % 3 == 0) {
            out += group;
        }
        out += digits[i];
    }
    return out;
}

}  // namespace

std::optional<Money> Money::parse(const QString& text, const MoneyFormat& format) {
    QString t = text.trimmed();
    bool negative = false;
    if (t.startsWith(QLatin1Char('(')) && t.endsWith(QLatin1Char(')'))) {
        negative = true;
        t = t.mid(1, t.size() - 2).trimmed();
    }
    if (t.startsWith(QLatin1Char('-'))) {
        negative = !negative;
        t = t.mid(1).trimmed();
    } else if (t.startsWith(QLatin1Char('+'))) {
        t = t.mid(1).trimmed();
    }
    if (t.startsWith(QLatin1Char('$'))) {
        t = t.mid(1).trimmed();
    }
    if (t.endsWith(QLatin1Char('$'))) {
        t.chop(1);
        t = t.trimmed();
    }
    if (t.isEmpty()) {
        return std::nullopt;
    }
    const int point = t.indexOf(format.decimal);
    QString whole = point < 0 ? t : t.left(point);
    const QString fraction = point < 0 ? QString() : t.mid(point + 1);
    // Grouping characters only between digits of the whole part, in groups of three.
    if (whole.contains(format.group())) {
        const QStringList groups = whole.split(format.group());
        for (int i = 0; i < groups.size(); ++i) {
            const int len = groups[i].size();
            if ((i == 0 && (len < 1 || len > 3)) || (i > 0 && len != 3)) {
                return std::nullopt;
            }
        }
        whole = groups.join(QString());
    }
    if (whole.isEmpty() && fraction.isEmpty()) {
        return std::nullopt;
    }
    if (fraction.size() > 4) {
        return std::nullopt;
    }
    std::int64_t units = 0;
    for (QChar c : whole) {
        if (!c.isDigit() || c.unicode() > '9') {
            return std::nullopt;
        }
        if (units > (std::numeric_limits<std::int64_t>::max() / 10 - 9) / kScale) {
            return std::nullopt;
        }
        units = units * 10 + (c.unicode() - '0');
    }
    units *= kScale;
    std::int64_t place = kScale / 10;
    for (QChar c : fraction) {
        if (!c.isDigit() || c.unicode() > '9') {
            return std::nullopt;
        }
        units += (c.unicode() - '0') * place;
        place /= 10;
    }
    return Money(negative ? -units : units);
}

std::optional<Money> Money::fromVariant(const QVariant& value) {
    if (value.isNull() || !value.isValid()) {
        return std::nullopt;
    }
    bool ok = false;
    const qlonglong units = value.toLongLong(&ok);
    if (!ok) {
        return std::nullopt;
    }
    return Money(units);
}

std::int64_t Money::roundedCents() const {
    return roundDiv(m_units, 100);
}

QString Money::plain(const MoneyFormat& format) const {
    const std::int64_t cents = roundedCents();
    const std::uint64_t abs = cents < 0 ? static_cast<std::uint64_t>(-cents) : cents;
    return QStringLiteral("%1%2%3%4")
        .arg(cents < 0 ? QStringLiteral("-") : QString())
        .arg(abs / 100)
        .arg(format.decimal)
        .arg(static_cast<int>(abs % 100), 2, 10, QLatin1Char('0'));
}

QString Money::format(const MoneyFormat& format) const {
    const std::int64_t cents = roundedCents();
    const std::uint64_t abs = cents < 0 ? static_cast<std::uint64_t>(-cents) : cents;
    return QStringLiteral("%1%2%3%4")
        .arg(cents < 0 ? QStringLiteral("-") : QString())
        .arg(groupDigits(QString::number(abs / 100), format.group()))
        .arg(format.decimal)
        .arg(static_cast<int>(abs % 100), 2, 10, QLatin1Char('0'));
}

QString Money::currency(const MoneyFormat& format) const {
    const QString grouped = Money(m_units < 0 ? -m_units : m_units).format(format);
    return (roundedCents() < 0 ? QStringLiteral("-$") : QStringLiteral("$")) + grouped;
}

Money Money::scaled(std::int64_t numerator, std::int64_t denominator) const {
    if (denominator < 0) {
        numerator = -numerator;
        denominator = -denominator;
    }
    return Money(roundDiv(m_units * numerator, denominator));
}

}  // namespace brimsett
