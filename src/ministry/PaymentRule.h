#pragma once

#include "claims/ClaimRecord.h"
#include "foundation/Money.h"

#include <QString>

namespace brimsett {

// How a remittance item's payment settles the item: the one rule that reconciling writes
// and the remittance report counts by.
namespace paymentrule {

struct Settled {
    Money submitted;  // lowered to the payment when the shortfall is forgiven
    Money paid;       // raised to the submitted amount for "I2" when the option says so
    bool submittedLowered = false;
    ItemStatus status = ItemStatus::Rejected;
};

// "I2" is always paid in full (the payment raised to the submitted amount with
// `i2ToFullSubmitted`, else the submitted amount lowered to the payment); any other payment
// above zero, short of the submitted amount but above the whole cents of 95% of it, lowers the
// submitted amount to the payment. Then the item is paid when the payment is not less than
// the submitted amount or the explanatory code is "55" or "66", rejected otherwise.
Settled settle(Money submitted, Money paid, const QString& explCode, bool i2ToFullSubmitted);

// Whether the item ends paid; the option does not change that.
inline bool accepted(Money submitted, Money paid, const QString& explCode) {
    return settle(submitted, paid, explCode, false).status == ItemStatus::Paid;
}

}  // namespace paymentrule
}  // namespace brimsett
