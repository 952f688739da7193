#pragma once

#include "foundation/Money.h"
#include "ministry/ReceivedFile.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Database;
class SqlLog;

// A remittance advice as read from the ministry's file: what it pays for each claim item,
// with the balance forward, the accounting transactions and the message text. Fields are
// kept as the file has them, trimmed; an amount or date the file got wrong is none/invalid
// and its line is in `errors`.
namespace remittance {

// "HR1": one per file, in the "V03" layout or the older one.
struct Header {
    int line = 0;
    bool v03 = true;
    QString group;
    QString provider;
    QString specialty;
    QString officeCode;
    QString dataSequence;
    QDate paymentDate;
    QString payeeName;
    std::optional<Money> totalPayable;  // signed
    QString chequeNumber;
    // A cheque number beginning with "9" is a direct bank deposit.
    bool directDeposit() const { return chequeNumber.startsWith(QLatin1Char('9')); }
};

// "HR2" and "HR3".
struct Address {
    QString billingAgent;  // "(n/a)" on reports when empty
    QString line1;
    QString line2;
    QString line3;
};

// What reconciling did with one item.
enum class ItemOutcome {
    NotReconciled,  // not reconciled (reconciliation off, or the item's record was faulty)
    Paid,           // status 2
    Rejected,       // status 1
    Unmatched,      // no claim or item of the office answers to it
    // No item answers, but a claim with the account number already records this file in
    // `RA`: an item whose fee the first reading lowered to the payment. Nothing is written.
    AlreadyRead,
};

// "HR5".
struct Item {
    int line = 0;
    QString mohClaim;
    QString transactionType;
    QDate serviceDate;
    int numServ = 0;
    QString serviceCode;
    std::optional<Money> submitted;
    std::optional<Money> paid;  // negative when signed "-"
    QString explCode;
    // False when a fault of the record leaves nothing safe to reconcile (an orphan, a date,
    // code or amount that could not be read): such an item is reported, never written.
    bool usable = true;
    ItemOutcome outcome = ItemOutcome::NotReconciled;
};

// "HR4" with its items.
struct Claim {
    int line = 0;
    QString mohClaim;
    QString transactionType;
    QString provider;
    QString specialty;
    QString acctNum;  // "(none)" on reports when empty
    QString lastName;
    QString firstName;
    QString province;
    QString healthNum;
    QString versionCode;
    QString payProg;
    QList<Item> items;
};

// "HR6": each amount signed; none where the file's amount could not be read.
struct BalanceForward {
    int line = 0;
    std::optional<Money> claimsAdjustment;
    std::optional<Money> advances;
    std::optional<Money> reductions;
    std::optional<Money> otherDeductions;
};

// "HR7".
struct Transaction {
    int line = 0;
    QString code;
    QString indicator;
    QString dateText;  // as the file has it; "(n/a)" on reports when empty
    QDate date;
    std::optional<Money> amount;  // signed
    QString message;              // "(no description)" on reports when empty
};
// "Advance", "Reduction", "Unused", "Advance Repayment", "Accounting Adjustment",
// "Attachments", or "Unknown (" code ")".
QString transactionName(const QString& code);

struct Remittance {
    Header header;
    Address address;
    QList<Claim> claims;
    QList<BalanceForward> balances;
    QList<Transaction> transactions;
    QStringList messages;  // "HR8" lines in order
    QList<received::LineError> errors;
    int lineCount = 0;

    // The amount payable as the records read add it up: the items' payments, the
    // accounting transactions and the balance forward. An amount that does not read adds
    // nothing (its line is listed already).
    Money amountRead() const;
    // Why the header's amount payable does not vouch for a file read whole: it differs from
    // amountRead() (a file cut short or damaged), or there is none that reads. Empty when
    // the two agree.
    QString payableProblem(const MoneyFormat& money = {}) const;

    // What a claim's `RA` records of this file: the file name and the payment date,
    // "PJ272278.001 20121015"; the file name alone when the payment date is unreadable.
    QString reference(const QString& fileName) const;
};

// Reads every line; never stops on a fault, which goes to `errors` instead. A line in `cut`
// is one fault and no record.
Remittance read(const QStringList& lines, const received::Progress& progress = {},
                const received::CutLines& cut = {});

// How reconciliation treats the explanatory code "I2" and the split partners.
struct ReconcileOptions {
    bool i2ToFullSubmitted = false;  // general option 16
    bool autoSplit = false;          // "AutoSplit" of section "Options" is "1"
};

struct ReconcileCounts {
    int paid = 0;
    int rejected = 0;
    int unmatched = 0;
    int alreadyRead = 0;
    bool operator==(const ReconcileCounts&) const = default;
};

// Writes every usable item's payment back into the office's claims, in one transaction
// (the statements go to the SQL log after the commit), and sets each item's outcome.
// Reading the same file again changes nothing. Throws DbError with nothing written when the
// database refuses a statement.
ReconcileCounts reconcile(Database& db, const SqlLog& log, Remittance& remittance,
                          const QString& reference, const ReconcileOptions& options);

}  // namespace remittance
}  // namespace brimsett
