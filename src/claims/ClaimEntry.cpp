#include "claims/ClaimEntry.h"

#include "claims/PayProgram.h"

namespace brimsett {

bool ItemEntry::isEmpty() const {
    return serviceCode.trimmed().isEmpty() && diagCode.trimmed().isEmpty() &&
           numServ.trimmed().isEmpty() && fee.trimmed().isEmpty() &&
           serviceDate.trimmed().isEmpty();
}

QChar ClaimEntry::claimType() const {
    return payprog::claimType(payProg);
}

QList<ItemEntry> ClaimEntry::filledRows() const {
    QList<ItemEntry> filled;
    for (const ItemEntry& row : rows) {
        if (!row.isEmpty()) {
            filled << row;
        }
    }
    return filled;
}

}  // namespace brimsett
