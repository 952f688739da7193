#pragma once

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

// Every item (every column) of `claimIds`, by ClaimID and ItemID: read once for a claim
// header, whose lines are then matched to them in memory instead of one query per line.
Statement itemsOfClaims(const QVariantList& claimIds);

}  // namespace brimsett::remittance::query
