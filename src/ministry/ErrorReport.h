#pragma once

#include "foundation/Money.h"
#include "ministry/ReceivedFile.h"

#include <QDate>
#include <QList>
#include <QString>

#include <array>
#include <functional>
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

// The group, provider number and specialty of an "HX1".
struct BillingNumber {
    QString group;
    QString provider;
    QString specialty;
    bool operator==(const BillingNumber&) const = default;
};
// The two places a file header is found to hold them: at 21-24, 25-30 and 31-32 by the
// V03 record layout, and at 24-27, 28-33 and 34-35 as the ministry's own files have them.
std::array<BillingNumber, 2> placementsOf(const QString& line);
// Which placement a file header is read by: the one whose numbers `isOfficeDoctor` finds,
// else the V03 layout's one when it holds a valid provider number, else the other when it
// does; none when neither does.
using DoctorTest = std::function<bool(const BillingNumber&)>;
std::optional<BillingNumber> chooseBillingNumber(const std::array<BillingNumber, 2>& placements,
                                                 const DoctorTest& isOfficeDoctor = {});

// Whether the office has a doctor of the billing number (by group, provider number and
// specialty, or by provider number and specialty).
DoctorTest officeDoctors(Database& db);

// "HX1" and the claims after it.
struct ProviderSection {
    int line = 0;
    bool v03 = true;
    std::array<BillingNumber, 2> placements;  // as read; `lookUp` chooses by the doctors
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
// "V02" with a valid provider number in either placement); otherwise the screen says "This
// file does not appear to be a valid OHIP file." with the title "OHIP EDT Error Report File".
bool firstRecordValid(const QString& line);

// Reads every line; never stops on a fault, which goes to `errors` instead. A line in `cut`
// is one fault and no record.
ErrorReport read(const QStringList& lines, const received::Progress& progress = {},
                 const received::CutLines& cut = {});

// Reads each file header by the placement that finds a doctor of the office, then finds
// each provider's doctor and each claim (or its patient) for the report, and, when
// `reconcile`, marks the matching pending items rejected with their error codes: one
// transaction, the statements logged after the commit. Throws DbError with nothing written
// when the database refuses a statement.
void lookUp(Database& db, const SqlLog& log, ErrorReport& report, bool reconcile, bool autoSplit);

}  // namespace errorreport
}  // namespace brimsett
