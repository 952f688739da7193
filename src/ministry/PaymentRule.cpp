#include "ministry/PaymentRule.h"

namespace brimsett::paymentrule {

Settled settle(Money submitted, Money paid, const QString& explCode, bool i2ToFullSubmitted) {
    Settled s{submitted, paid, false, ItemStatus::Rejected};
    if (explCode == QLatin1String("I2")) {
        if (i2ToFullSubmitted) {
            s.paid = submitted;
        } else {
            s.submitted = paid;
            s.submittedLowered = true;
        }
    } else if (paid > Money() && paid < submitted &&
               paid.roundedCents() > submitted.roundedCents() * 95 / 100) {
        // Within 5% counts as paid: the office would not chase the difference.
        s.submitted = paid;
        s.submittedLowered = true;
    }
    const bool fullCode = explCode == QLatin1String("55") || explCode == QLatin1String("66");
    s.status = s.paid >= s.submitted || fullCode ? ItemStatus::Paid : ItemStatus::Rejected;
    return s;
}

}  // namespace brimsett::paymentrule
