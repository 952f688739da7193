#include "claims/ClaimRecord.h"
#include "claims/ClaimStore.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "ministry/PastClaims.h"

#include <QSqlQuery>

namespace brimsett::pastclaims {

std::optional<int> markInvoicePaid(Database& db, Prompter& prompter, const SqlLog& log,
                                   const QString& invoiceNum) {
    const QString invoice = invoiceNum.trimmed();
    if (invoice.isEmpty()) {
        prompter.tell(kTitle, {QStringLiteral("Please Select an Invoice.")}, Icon::Warning);
        return std::nullopt;
    }
    if (!invoiceOnFile(db, invoice)) {
        prompter.tell(kTitle, {invoiceNotFound(invoice)}, Icon::Warning);
        return std::nullopt;
    }
    const int paid = static_cast<int>(ItemStatus::Paid);
    const claimsearch::Condition holding = claimsearch::invoiceCondition(invoice);
    const QString doing = QStringLiteral("marking invoice %1 paid").arg(invoice);
    QList<qint64> claims;
    int items = 0;
    {
        Transaction tx(db, doing);
        QSqlQuery q = db.exec(QStringLiteral("Select C.ClaimID From claims C Where 1=1") +
                                  holding.sql + QStringLiteral(" Order By C.ClaimID"),
                              holding.values, doing);
        while (q.next()) {
            claims << q.value(0).toLongLong();
        }
        q.finish();
        for (const qint64 claim : claims) {
            items += db.scalar(QStringLiteral("Select Count(*) From items Where ClaimID=?"),
                               {claim}, doing)
                         .toInt();
            // Whatever was paid before, the invoice settles the whole fee claimed.
            db.exec(QStringLiteral("Update items Set Status=?, FeePaid=FeeSubm Where ClaimID=?"),
                    {paid, claim}, doing);
        }
        tx.commit();
    }
    for (const qint64 claim : claims) {
        log.write(QStringLiteral("Update items Set Status=%1,FeePaid=FeeSubm Where ClaimID=%2")
                      .arg(paid)
                      .arg(claim));
    }
    return items;
}

}  // namespace brimsett::pastclaims
