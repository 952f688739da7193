#include "ministry/RemittanceQueries.h"

#include "ministry/ClaimFileRecords.h"

namespace brimsett::remittance::query {

namespace {
QString placeholders(qsizetype count) {
    QStringList marks;
    marks.fill(QStringLiteral("?"), count);
    return QLatin1Char('(') + marks.join(QLatin1Char(',')) + QLatin1Char(')');
}
}  // namespace

Statement claimsOfAccount(const QString& account) {
    const QStringList forms = claimfile::accountForms(account);
    return {QStringLiteral("Select ClaimID, RA, MOHClaim From claims Where AcctNum In ") +
                placeholders(forms.size()) + QStringLiteral(" Order By ClaimID"),
            QVariantList(forms.begin(), forms.end())};
}

Statement itemsOfClaims(const QVariantList& claimIds) {
    return {QStringLiteral("Select * From items Where ClaimID In ") +
                placeholders(claimIds.size()) + QStringLiteral(" Order By ClaimID, ItemID"),
            claimIds};
}

}  // namespace brimsett::remittance::query
