#include "ministry/RemittanceQueries.h"

#include "ministry/ClaimFileRecords.h"

#include <algorithm>

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

Statement item(int which, const QVariantList& claimIds, const QDate& serviceDate,
               const Money& submitted, const QString& serviceCode) {
    const QString open = QStringLiteral(" And (Status<>2 And Status<>3)");
    const QString fee = QStringLiteral(" And FeeSubm=?");
    const QString code = QStringLiteral(" And ServiceCode=?");
    const QVariant date(serviceDate);
    const QVariant feeValue = submitted.toVariant();
    const QVariant codeValue(serviceCode);
    QString conditions;
    QVariantList values = claimIds;
    switch (which) {
        case 0:
            conditions = fee + open + code;
            values << date << feeValue << codeValue;
            break;
        case 1:
            conditions = open + code;
            values << date << codeValue;
            break;
        case 2:
            conditions = fee + open;
            values << date << feeValue;
            break;
        default:
            conditions = fee + code;
            values << date << feeValue << codeValue;
            break;
    }
    return {QStringLiteral("Select ClaimID, ItemID, FeeSubm, FeePaid, Status, Errors From items "
                           "Where ClaimID In ") +
                placeholders(claimIds.size()) + QStringLiteral(" And ServiceDate=?") + conditions +
                QStringLiteral(" Order By ClaimID, ItemID"),
            values};
}

Statement partners(const QVariantList& claimIds) {
    return {QStringLiteral("Select * From items Where ClaimID In ") +
                placeholders(claimIds.size()) + QStringLiteral(" And Status=0"),
            claimIds};
}

}  // namespace brimsett::remittance::query
