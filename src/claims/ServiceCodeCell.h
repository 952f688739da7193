#pragma once

#include "claims/ClaimEntry.h"
#include "claims/ClaimEntryOptions.h"
#include "foundation/Money.h"

#include <QChar>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Database;

// What the user typed in a row's service code cell, made into grid rows when the cell is
// left. The text may hold several entries separated by ","; each is a quick code (table
// `quickservcodes`) or a fee code:
//  - Claims to the ministry: a letter and digits; with fewer than four characters the digits
//    are padded to three ("a7" -> "A007"), a four-character code takes the suffix of
//    "DefaultClaimSuffix" ("A" unless that is "B" or "C"); upper case.
//  - Direct and third-party claims (types "D" and "T") use the office's own codes: an entry of
//    digits only is padded to five with "00000" ("7" -> "00007"); a letter and digits are
//    read as for the ministry.
// A quick code fills the code, the diagnostic code (when it has one), the number of services
// and a fee percentage: `FeePercent` of 0 or NULL is 100; `NumServString` of digits is the
// number of services, a weekday name ("SUNDAY", any case) limits the quick code to service
// dates on that day (1 service; on another day, or on a row without a date, the entry is
// left out with a note); anything else takes the `NumServ` column, else 1. Quick codes are
// found without regard to case, before the typed entry is read as a fee code.
// The fee shown is the fee of one service times the number of services, scaled by the
// percentage, in the form "#,##0.00": from the schedule by the suffix rule for ministry
// claims, from `servicecodesdirect` (as typed, or by the four-character fee code) for direct
// and third-party claims. A code with no fee leaves the fee empty.
class ServiceCodeCell {
public:
    struct Result {
        // The rows that replace the row typed in: the first takes its place, the others go
        // right after it. Each keeps the typed row's service date; the typed row's diagnostic
        // code and number of services are kept unless a quick code gives its own (an empty
        // number of services becomes "1"). Never empty: when no entry is left (nothing typed,
        // or a weekday quick code on another day), the typed row with code and fee cleared.
        QList<ItemEntry> rows;
        // The fee percentage of each row (its quick code's; 100 otherwise), for pricing the
        // row again when its number of services changes.
        QList<int> percents;
        // Lines for the status bar: a weekday quick code left out, a code without a fee.
        QStringList notes;
    };

    ServiceCodeCell(Database& db, const ClaimEntryOptions& options, MoneyFormat money = {});

    // claimType: "H", "R", "W", "D", "T" (null: as "H"); specialty: the provider's `SpecCode`.
    Result normalise(const QString& typed, const ItemEntry& row, QChar claimType,
                     const QString& specialty);

    // The code an entry that is not a quick code becomes (no database needed); the entry as
    // typed, upper-cased and trimmed, when it is neither form.
    static QString normaliseCode(const QString& entry, QChar claimType, QChar defaultSuffix);

    // The fee of a row with this code: one service's fee times numServ, scaled by
    // percent / 100, rounded to cents; none when the code has no fee.
    std::optional<Money> feeFor(const QString& code, QChar claimType, const QString& specialty,
                                int numServ, int percent = 100);

private:
    Database& m_db;
    ClaimEntryOptions m_options;
    MoneyFormat m_money;
};

}  // namespace brimsett
