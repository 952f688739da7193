#pragma once

#include "claims/ClaimEntry.h"
#include "foundation/Money.h"

#include <QList>
#include <QString>

#include <optional>

// Premium items: a fee that is a percentage of the fees of the items above it in the claim.
// "E083" is always one; "E082" only with switch 26 ("Enable E083 and E082 to only effect one
// code."), which also limits both to the one nearest item.
//
// The base is read upward from the premium row (descending item order): rows with a positive
// fee and the premium row's service date (a row without a date matches any), leaving out
// codes beginning "E" (other premiums and add-ons) and codes beginning "99" (the office's own
// non-fee codes); the walk stops at an earlier row with the same premium code, whose base
// those rows already are. Without switch 26 the base is the sum of every such row; with it,
// the nearest one.
namespace brimsett::premiums {

inline constexpr int kPercent = 30;

bool isPremium(const QString& code, bool switch26);

// The fee of the premium at rows[index]: kPercent of the base, rounded to cents; none when
// the row is not a premium or nothing qualifies as its base.
std::optional<Money> feeOf(const QList<ItemEntry>& rows, int index, bool switch26,
                           const MoneyFormat& money = {});

// Writes the fee ("#,##0.00") of every premium row that has a base; true when a fee changed.
bool applyAll(QList<ItemEntry>& rows, bool switch26, const MoneyFormat& money = {});

}  // namespace brimsett::premiums
