#pragma once

#include "foundation/Money.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <optional>

namespace brimsett {
class Database;
class Prompter;
class SqlLog;
namespace reports {
class Report;
}
}  // namespace brimsett

// Past claims: finding claim items of any state by a combination of filters, their totals,
// the patients behind them, the rejected ones with their codes' texts, the export, and
// marking an invoice's claims paid.
namespace brimsett::pastclaims {

// The title of the screen and of the messages its searches give.
inline const QString kTitle = QStringLiteral("Past Claims");

enum class DateBasis { ServiceDate, BilledDate };
enum class StatusFilter { All, Pending, Submitted, Rejected, RejectedClosed, Paid };

// The filters as the desk typed or chose them; an empty text is "all".
struct Filters {
    QString doctorId;
    bool includeNoDoctor = false;  // "OptPCNoDoc": the doctor's claims and those without one
    QString payProg;               // the stored form ("HCP - P", "Third Party", ...)
    QString thirdPartyId;          // with "Third Party": the payer's number
    DateBasis dateBasis = DateBasis::ServiceDate;
    QString from;  // "YYYY/MM/DD"
    QString to;
    QString diagCode;
    QString servicePrefix;
    QString invoiceNum;
    StatusFilter status = StatusFilter::All;
    QString batchId;
    QString ra;
    QString facility;
};

// The condition over "claims C" joined with "items I" (each filter's part joined with
// " And "), its bound values, and the problems that refuse the search, in this order:
// "'AB' is not a valid doctor.", "Please select a Third Party", "Invalid Start Date.",
// "Invalid End Date.", "Invalid diagnostic code.", and an invoice that does not exist.
struct Condition {
    QString sql;  // empty when every filter is "all"
    QVariantList values;
    QStringList problems;
};
Condition buildCondition(Database& db, const Filters& filters);

// Whether the invoice number is in `Invoices`, and what is said when it is not.
bool invoiceOnFile(Database& db, const QString& invoiceNum);
QString invoiceNotFound(const QString& invoiceNum);

// One row of the grid: "Doc.", "Account", "Pat.ID", "Patient Name", "Ch. To", "Service",
// "Diag", "Date", "Fee", "Paid".
struct PastItem {
    qint64 claimId = 0;
    int itemId = 0;
    QString doctorId;
    QString acctNum;
    qint64 patientId = 0;
    QString patientName;  // "Last, First"
    QString payProg;      // the short form ("HCP-P", "3rd.P.")
    QString serviceCode;
    QString serviceDescription;
    QString diagCode;
    QDate serviceDate;
    std::optional<Money> feeSubm;
    std::optional<Money> feePaid;
    int status = 0;
    QString batchId;
    QString invoiceNum;
    QString errors;  // the item's error codes, as stored
};
QStringList gridCaptions();

// The sort keys the grid's headings sort by; the default (and after Clear) is
// "LName,FName,C.ClaimID Asc,I.ItemID Asc". A key not among these is refused (no text
// typed or clicked ever reaches the statement).
QString defaultSort();
QStringList sortKeys();  // one per grid column, in the captions' order

struct Found {
    QList<PastItem> items;
    Money fee;   // the sum of "Fee"
    Money paid;  // the sum of "Paid"
};
// None when the filters were refused (the problems told through the prompter under
// "Past Claims"). Reads only.
std::optional<Found> findItems(Database& db, Prompter& prompter, const Filters& filters,
                               const QString& sort = defaultSort());

// One line per patient: "Pat.ID", "Patient Name", "Last Serv.", "Date", "Period Fees", "Paid".
struct PatientLine {
    qint64 patientId = 0;
    QString name;
    QString lastService;  // the code of the latest service in the period
    QDate lastDate;
    Money fees;
    Money paid;
};
std::optional<QList<PatientLine>> patientList(Database& db, Prompter& prompter,
                                              const Filters& filters);
// The lines under the list: the count with " unique patients found." and "Grand Total:"
// with the period's fees and what was paid of them.
QStringList patientListTotals(const QList<PatientLine>& lines, const MoneyFormat& format = {});

// The rejected items of the filters (status 1) with "Error Code", "Items", the fee and
// "Errors": each code's `Description` from `ExplCodes`.
struct RejectedLine {
    QString errorCode;
    int items = 0;
    Money fee;
    QString description;
};
std::optional<QList<RejectedLine>> rejectedItems(Database& db, Prompter& prompter,
                                                 const Filters& filters);

// The export: a header line, then one line per item, fields separated by ";". The file is
// written whole under a temporary name and put in place, owner-only; an empty text when done,
// else the reason ("Error: " is the caller's).
QString exportItems(const QList<PastItem>& items, const QString& path);

// Every item of the invoice's claims becomes paid (status 2, `FeePaid` = `FeeSubm`), in one
// transaction, logged after its commit. Returns how many items; none when refused ("Please
// Select an Invoice." for an empty number, or the invoice not on file).
std::optional<int> markInvoicePaid(Database& db, Prompter& prompter, const SqlLog& log,
                                   const QString& invoiceNum);

// The printed list: "Claims for " doctor (or "All"), "Claims from " start " to " end in the
// long date form, the batch ("All Batch Files" or its number in parentheses), the grid and
// its totals.
reports::Report pastClaimsReport(const Found& found, const Filters& filters,
                                 const QString& doctorName);

}  // namespace brimsett::pastclaims
