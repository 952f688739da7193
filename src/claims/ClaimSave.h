#pragma once

#include "claims/ClaimEntry.h"
#include "claims/ClaimEntryOptions.h"
#include "claims/ClaimRecord.h"
#include "foundation/Money.h"

#include <QString>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// Where receipts and invoices are printed once a claim is saved. The printing comes with the
// reports; until one is attached, claim entry asks nothing about prints.
class ClaimPrints {
public:
    virtual ~ClaimPrints() = default;
    virtual void printReceipt(const ClaimRecord& claim, int copies) = 0;
    virtual void printInvoice(const ClaimRecord& claim, int copies) = 0;
};

// Saving the claim on the entry screen, in the office's order:
//  1. an empty program becomes "DefClaim";
//  2. no provider: "A Doctor must be selected."; no province: "A province must be selected."
//     (information boxes; the save stops);
//  3. CheckClaim, CheckRows, CheckExpired, CheckDates, then CheckDouble (unless switch 15);
//  4. in one transaction: the register's version code brought up to the screen's (when it
//     was edited there), the claim written (an edited claim keeps its numbers), the patient's
//     visit on each service date with the provider marked "Billed";
//  5. the receipt and invoice prints, as "RecPrint0/1" and "InvPrint0/1" say;
//  6. "LastSLI" and "LastDoctor" remembered.
// A refusal anywhere before step 4 writes nothing; a database failure in step 4 leaves the
// old claim as it was and throws DbError. An edited claim that was put into a ministry batch
// since it was opened is refused (saving it would bill it twice); one deleted meanwhile is
// saved as a new claim, so the typing is not lost.
class ClaimSave {
public:
    ClaimSave(Database& db, Prompter& prompter, const Clock& clock, AppSettings& settings,
              const ClaimEntryOptions& options, const SqlLog& log, MoneyFormat money = {});

    void setPrints(ClaimPrints* prints) { m_prints = prints; }

    struct Saved {
        ClaimRecord claim;   // as written
        QString statusLine;  // "Last Saved: [10:00 AM] -- PatientID: [12] - Account: [00000001]"
    };
    // versionCodeEdited: the version code on the screen differs from the one copied from the
    // register. The entry is updated as the checks leave it (program, manual review, fees of
    // premiums). None when the save stopped.
    std::optional<Saved> save(ClaimEntry& entry, bool versionCodeEdited);

    // Marks the patient's visit with the provider on the date billed ("Billed", 6): every
    // live appointment of it, or, when it has none, the cancelled ones (a late cancellation
    // charged). Returns how many were marked and adds the statement to logLines when any
    // was. Part of the save's transaction when called inside one.
    int markAsBilled(qint64 patientId, const QString& doctorId, const QDate& date,
                     QStringList* logLines = nullptr);

private:
    void offerPrints(const ClaimRecord& claim);

    Database& m_db;
    Prompter& m_prompter;
    const Clock& m_clock;
    AppSettings& m_settings;
    ClaimEntryOptions m_options;
    const SqlLog& m_log;
    MoneyFormat m_money;
    ClaimPrints* m_prints = nullptr;
};

}  // namespace brimsett
