#pragma once

#include <QChar>
#include <QString>
#include <QVariant>

#include <compare>
#include <cstdint>
#include <optional>

namespace brimsett {

// How amounts are written: the decimal separator is decided once at start-up from the
// system's currency format; the grouping character is the other of "," and ".".
struct MoneyFormat {
    QChar decimal = QLatin1Char('.');
    QChar group() const {
        return decimal == QLatin1Char(',') ? QLatin1Char('.') : QLatin1Char(',');
    }
};

// An exact amount of money: a signed count of ten-thousandths of a dollar.
class Money {
public:
    static constexpr std::int64_t kScale = 10000;

    constexpr Money() = default;
    static constexpr Money fromUnits(std::int64_t tenThousandths) { return Money(tenThousandths); }
    static constexpr Money fromCents(std::int64_t cents) { return Money(cents * 100); }

    // Parses typed or stored text: optional sign, digits with optional grouping, the given
    // decimal separator, up to four decimals; "$", blanks and parentheses for a negative
    // amount are accepted. Anything else gives no value.
    static std::optional<Money> parse(const QString& text, const MoneyFormat& format = {});

    // The stored form: an INTEGER of ten-thousandths; NULL reads as no value.
    static std::optional<Money> fromVariant(const QVariant& value);
    QVariant toVariant() const { return QVariant::fromValue<qlonglong>(m_units); }

    constexpr std::int64_t units() const { return m_units; }
    // Rounded half away from zero to whole cents.
    std::int64_t roundedCents() const;
    bool isZero() const { return m_units == 0; }

    // "#,##0.00": grouped, two decimals, leading "-" when negative.
    QString format(const MoneyFormat& format = {}) const;
    // "0.00": two decimals, no grouping (for editing fields and files).
    QString plain(const MoneyFormat& format = {}) const;
    // Currency form: "$1,234.50", negative "-$1,234.50".
    QString currency(const MoneyFormat& format = {}) const;

    // Percent given in ten-thousandths of a percent is avoided on purpose: callers scale
    // with an exact numerator/denominator and get half-away-from-zero rounding to units.
    Money scaled(std::int64_t numerator, std::int64_t denominator) const;

    constexpr Money operator+(Money o) const { return Money(m_units + o.m_units); }
    constexpr Money operator-(Money o) const { return Money(m_units - o.m_units); }
    constexpr Money operator-() const { return Money(-m_units); }
    constexpr Money operator*(std::int64_t n) const { return Money(m_units * n); }
    Money& operator+=(Money o) {
        m_units += o.m_units;
        return *this;
    }
    Money& operator-=(Money o) {
        m_units -= o.m_units;
        return *this;
    }
    constexpr auto operator<=>(const Money&) const = default;

private:
    constexpr explicit Money(std::int64_t units) : m_units(units) {}
    std::int64_t m_units = 0;
};

}  // namespace brimsett
