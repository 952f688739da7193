#pragma once

#include "foundation/Money.h"
#include "ministry/ReceivedFile.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace brimsett {

class Database;
class SqlLog;

// The ministry's claim error report: the claims it refused, each with up to five error
// codes per record, and the texts of the explanatory codes. Fields are trimmed.
namespace errorreport {

// What applying did with one "HXT" item.
enum class ItemOutcome {
    NotApplied,      // reconciliation off, or no claim header before it
    MarkedRejected,  // was status 0, now 1 with the error codes
    LeftAsItWas,     // found with another status: not changed
    Unknown,         // "Unknown item": no item of the claim answers to it
};

// "HXT".
struct Item {
    int line = 0;
    QString serviceCode;
    std::optional<Money> fee;
    int numServ = 0;
    QDate serviceDate;
    QString serviceDateText;  // as the file has it, for the report when not a date
    QString diagCode;
    QString explCode;
    QString errors;  // joined with ","
    ItemOutcome outcome = ItemOutcome::NotApplied;
};

// "HXH", or "HXR" for a reciprocal claim (the registration fields filled instead).
struct Claim {
    int line = 0;
    bool reciprocal = false;
    QString healthNum;
    QString versionCode;
    QDate birthDate;
    QString acctNum;
    QString payProg;
    QString payee;
    QString refDoc;
    QString facilityNum;
    QDate admitDate;
    QString refLab;
    QString manualReview;
    QString location;
    QString regNum;
    QString lastName;
    QString firstName;
    QString sex;
    QString province;
    QString errors;  // joined with ","
    QList<Item> items;

    // Filled from the office's records by `lookUp`: the claim with the account number, or
    // the patient with the health number when there is no such claim.
    std::optional<qint64> claimId;
    QString patientName;  // "Last, First"
    QDate patientBirthDate;
};

// "HX1" and the claims after it.
struct ProviderSection {
    int line = 0;
    bool v03 = true;
    QString group;
    QString provider;
    QString specialty;
    QString doctorName;  // filled by `lookUp`; empty when no doctor has the billing number
    QList<Claim> claims;
};

// "HX8".
struct Message {
    int line = 0;
    QString code;
    QString text;
};

struct ErrorReport {
    QList<ProviderSection> providers;
    QList<Message> messages;
    QList<received::LineError> errors;
    int lineCount = 0;
    int itemCount() const;
    // How many items applying left with this outcome.
    int countOf(ItemOutcome outcome) const;
};

// Whether the first record is an error report header this program can read ("V03" or
// "V02" with a valid provider number); otherwise the screen says "This file does not appear
// to be a valid OHIP file." with the title "OHIP EDT Error Report File".
bool firstRecordValid(const QString& line);

// Reads every line; never stops on a fault, which goes to `errors` instead. A line in `cut`
// is one fault and no record.
ErrorReport read(const QStringList& lines, const received::Progress& progress = {},
                 const received::CutLines& cut = {});

// Finds each provider's doctor and each claim (or its patient) for the report, and, when
// `reconcile`, marks the matching pending items rejected with their error codes: one
// transaction, the statements logged after the commit. Throws DbError with nothing written
// when the database refuses a statement.
void lookUp(Database& db, const SqlLog& log, ErrorReport& report, bool reconcile, bool autoSplit);

}  // namespace errorreport
}  // namespace brimsett
