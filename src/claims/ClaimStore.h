#pragma once

#include "claims/ClaimRecord.h"

#include <QString>
#include <QVariantList>
#include <optional>

namespace brimsett {

class Clock;
class Database;
class SqlLog;

// Reading and writing claims with their items. Each write is one transaction (a savepoint
// when the caller already holds one) and its statements go to the SQL log after the commit;
// a statement the database refuses throws DbError with nothing left half written.
class ClaimStore {
public:
    ClaimStore(Database& db, const Clock& clock, const SqlLog& log);

    // The claim with its items in ItemID order; none when there is no such claim.
    std::optional<ClaimRecord> load(qint64 claimId);
    QList<ItemRecord> items(qint64 claimId);

    // One more than the highest ItemID of the claim; 1 for a claim without items.
    int nextItemId(qint64 claimId);
    // One more than the highest ordinary claim number (below 70000000); 10000000 for the
    // first claim.
    qint64 nextClaimId();
    // One more than the highest account number below "70000000", as eight digits.
    QString nextAccountNumber();

    // A new claim: the claim and account numbers are chosen inside the write transaction
    // (claim.claimId and claim.acctNum are ignored), `BatchID` by the program,
    // `DateCreated` now; items are numbered 1 upward with status 0, `FeePaid` and `Errors`
    // NULL. Returns the claim as written.
    ClaimRecord insertNew(ClaimRecord claim);
    // An edited claim: its old rows are deleted and the claim written again under its own
    // claim and account numbers, in one transaction. `BatchID` by the program, `DateCreated`
    // now, items renumbered 1 upward with status 0. Returns the claim as written.
    ClaimRecord replace(ClaimRecord claim);
    // Writes the claim and its items exactly as given (numbers, batch, statuses); for the
    // callers that move or split claims. No transaction of its own beyond a savepoint.
    void write(const ClaimRecord& claim);
    // Deletes the claim and its items.
    void remove(qint64 claimId);
    // The same inside the caller's transaction: the statements are appended to `logLines`
    // for the caller to log after its own commit, never before it.
    ClaimRecord insertNew(ClaimRecord claim, QStringList& logLines);
    ClaimRecord replace(ClaimRecord claim, QStringList& logLines);
    void write(const ClaimRecord& claim, QStringList& logLines);
    void remove(qint64 claimId, QStringList& logLines);

    // Puts a claim back to pending: `BatchID` to pending and `DateCreated` today; every item
    // back to status 0 with `FeePaid` and `Errors` NULL. `AllBatches` keeps the earlier batch.
    void resubmit(qint64 claimId);
    // Closes the claim's rejection: its rejected items (status 1) become "Rejected Closed"
    // (status 3); the others keep their state.
    void closeRejection(qint64 claimId);
    // Confirms every pending automatic claim (`ACFlag` false).
    void confirmAutomatic();

private:
    void writeRows(const ClaimRecord& claim, QStringList& logLines);

    Database& m_db;
    const Clock& m_clock;
    const SqlLog& m_log;
};

// Search conditions for claim lists over "claims C", each beginning " And (" and with its
// values bound, so that a typed text can never become part of the statement.
namespace claimsearch {
struct Condition {
    QString sql;
    QVariantList values;
};
// The invoice number at the start of `InvoiceNum` or between two "!" marks, so that 10 is
// never found inside 104.
Condition invoiceCondition(const QString& invoiceNumber);
// The claim's own batch or any earlier one in `AllBatches`.
Condition batchCondition(const QString& batchId);
}  // namespace claimsearch

}  // namespace brimsett
