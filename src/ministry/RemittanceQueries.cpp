#include "ministry/RemittanceQueries.h"

#include <algorithm>

namespace brimsett::remittance::query {

namespace {
QString placeholders(qsizetype count) {
    QStringList marks;
    marks.fill(QStringLiteral("?"), count);
    return QLatin1Char('(') + marks.join(QLatin1Char(',')) + QLatin1Char(')');
}
}  // namespace

QStringList accountForms(const QString& account) {
    const bool digits =
        !account.isEmpty() && std::all_of(account.begin(), account.end(), [](QChar c) {
            return c >= QLatin1Char('0') && c <= QLatin1Char('9');
        });
    if (!digits) {
        return {account};
    }
    QString core = account;
    while (core.size() > 1 && core.startsWith(QLatin1Char('0'))) {
        core.remove(0, 1);
    }
    QStringList forms;
    for (qsizetype width = core.size(); width <= std::max<qsizetype>(8, account.size()); ++width) {
        forms << core.rightJustified(width, QLatin1Char('0'));
    }
    return forms;
}

Statement claimsOfAccount(const QString& account) {
    const QStringList forms = accountForms(account);
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
