#pragma once

#include "foundation/Money.h"

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariantList>

// The statements that match a remittance's lines to the office's claims and items, with their
// bound values: the reconciler runs them and the benchmark checks their plans.
namespace brimsett::remittance::query {

struct Statement {
    QString sql;
    QVariantList values;
};

// ClaimID, RA, MOHClaim of the claims of an account number, by ClaimID.
Statement claimsOfAccount(const QString& account);

// The item queries in the order they are tried, most exact first; an item already paid or
// closed is found again only by the last. Each gives ClaimID, ItemID, FeeSubm, FeePaid,
// Status, Errors of the items of `claimIds` on the service date, by ClaimID and ItemID.
inline constexpr int kItemQueries = 4;
Statement item(int which, const QVariantList& claimIds, const QDate& serviceDate,
               const Money& submitted, const QString& serviceCode);

// The items (every column) of `claimIds` still unanswered; the caller keeps those of the
// service date under another suffix. Asking the engine for the date too would have it search
// every item of that day by the date's index instead of the few items of the claims.
Statement partners(const QVariantList& claimIds);

}  // namespace brimsett::remittance::query
