#include "claims/Premiums.h"

#include "patients/PatientEntry.h"

namespace brimsett::premiums {

namespace {

// The four-character fee code of an item code, "E083" of "E083A".
QString feeCodeOf(const QString& code) {
    const QString c = code.trimmed().toUpper();
    return c.size() == 4 || c.size() == 5 ? c.left(4) : c;
}

bool sameDay(const ItemEntry& a, const ItemEntry& b) {
    const QDate first = readTypedDate(a.serviceDate);
    const QDate second = readTypedDate(b.serviceDate);
    return !first.isValid() || !second.isValid() || first == second;
}

}  // namespace

bool isPremium(const QString& code, bool switch26) {
    const QString feeCode = feeCodeOf(code);
    return feeCode == QLatin1String("E083") || (switch26 && feeCode == QLatin1String("E082"));
}

std::optional<Money> feeOf(const QList<ItemEntry>& rows, int index, bool switch26,
                           const MoneyFormat& money) {
    if (index < 0 || index >= rows.size() || !isPremium(rows.at(index).serviceCode, switch26)) {
        return std::nullopt;
    }
    const ItemEntry& premium = rows.at(index);
    const QString premiumCode = feeCodeOf(premium.serviceCode);
    std::optional<Money> base;
    for (int i = index - 1; i >= 0; --i) {
        const ItemEntry& row = rows.at(i);
        const QString code = feeCodeOf(row.serviceCode);
        if (code == premiumCode) {
            break;  // the rows above belong to that earlier premium
        }
        if (code.startsWith(QLatin1Char('E')) || code.startsWith(QLatin1String("99")) ||
            !sameDay(row, premium)) {
            continue;
        }
        const std::optional<Money> fee = Money::parse(row.fee.trimmed(), money);
        if (!fee || *fee <= Money()) {
            continue;
        }
        base = base.value_or(Money()) + *fee;
        if (switch26) {
            break;  // only the nearest code
        }
    }
    if (!base) {
        return std::nullopt;
    }
    return Money::fromCents(base->scaled(kPercent, 100).roundedCents());
}

bool applyAll(QList<ItemEntry>& rows, bool switch26, const MoneyFormat& money) {
    bool changed = false;
    for (int i = 0; i < rows.size(); ++i) {
        const std::optional<Money> fee = feeOf(rows, i, switch26, money);
        if (!fee) {
            continue;
        }
        const QString text = fee->format(money);
        if (rows.at(i).fee != text) {
            rows[i].fee = text;
            changed = true;
        }
    }
    return changed;
}

}  // namespace brimsett::premiums
