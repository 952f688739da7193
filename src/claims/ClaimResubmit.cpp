#include "claims/ClaimResubmit.h"

#include "claims/ClaimRecord.h"
#include "claims/ClaimStore.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"

#include <QSqlQuery>

namespace brimsett {

namespace {

const QString kTitle = QStringLiteral("Resubmit");

}  // namespace

ClaimResubmit::ClaimResubmit(Database& db, Prompter& prompter, const Clock& clock,
                             const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_clock(clock), m_log(log) {}

int ClaimResubmit::resubmitAccount(const QString& typedAccount) {
    const QString typed = typedAccount.trimmed();
    bool ok = false;
    const qint64 number = typed.toLongLong(&ok);
    if (!ok || number <= 0) {
        m_prompter.tell(kTitle,
                        {quotedInMessage(typed) + QStringLiteral(" is not an account number.")},
                        Icon::Information);
        return 0;
    }
    const QString account = QStringLiteral("%1").arg(number, 8, 10, QLatin1Char('0'));
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select C.ClaimID, C.BatchID, C.FName, C.LName, Max(Case When I.Status=? "
                       "Then 1 Else 0 End) As Rejected"
                       " From claims C Left Join items I On I.ClaimID=C.ClaimID"
                       " Where C.AcctNum=? Group By C.ClaimID, C.BatchID, C.FName, C.LName"
                       " Order By C.ClaimID"),
        {static_cast<int>(ItemStatus::Rejected), account},
        QStringLiteral("finding account %1").arg(account));
    QList<qint64> rejected;
    QString name;
    bool found = false;
    while (q.next()) {
        found = true;
        name = (q.value(2).toString() + QLatin1Char(' ') + q.value(3).toString()).trimmed();
        if (q.value(4).toInt() != 0 && q.value(1).toString() != kPendingBatch) {
            rejected << q.value(0).toLongLong();
        }
    }
    if (!found) {
        m_prompter.tell(kTitle, {QStringLiteral("Account %1 was not found.").arg(account)},
                        Icon::Information);
        return 0;
    }
    if (rejected.isEmpty()) {
        m_prompter.tell(
            kTitle, {QStringLiteral("Account %1 has no rejected claim to resubmit.").arg(account)},
            Icon::Information);
        return 0;
    }
    if (!m_prompter.confirm(kTitle, {QStringLiteral("Resubmit account %1 (%2)? Its claims go back "
                                                    "to Pending Claims.")
                                         .arg(account, name)})) {
        return 0;
    }
    ClaimStore store(m_db, m_clock, m_log);
    {
        Transaction tx(m_db, QStringLiteral("resubmitting account %1").arg(account));
        for (const qint64 claimId : rejected) {
            store.resubmit(claimId);
        }
        tx.commit();
    }
    return static_cast<int>(rejected.size());
}

}  // namespace brimsett
