#pragma once

#include "claims/ClaimEntry.h"
#include "foundation/Money.h"

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
struct AppSettings;

// The checks a claim passes before it is written. Each Check... method returns whether the
// save may go on and talks to the user itself; nothing is written to the database here.
//
// Claim entry runs them in this order, each only when the one before let the save go on:
// CheckClaim, CheckRows, CheckExpired, CheckDates (checkBeforeSave), then, after the
// patient's version code has been brought up to date, CheckDouble.
//
// The two blocking checks collect every problem into one list (claimProblems, rowProblems)
// so that other callers can show or print them their own way. The confirming checks ask a
// Yes/No question whose default is No. A database failure throws DbError naming the check.
class ClaimChecks {
public:
    static inline const QString kErrorTitle = QStringLiteral("Error");
    static inline const QString kProblemsHeading =
        QStringLiteral("Cannot save this claim due to the following problem(s):");
    static inline const QString kSaveAnyway =
        QStringLiteral("If you would like to save this claim anyway, press 'Yes'");
    static inline const QString kSureToSave =
        QStringLiteral("Are you sure you want to save this claim?");

    ClaimChecks(Database& db, Prompter& prompter, const Clock& clock, const AppSettings& settings,
                MoneyFormat money = {});

    // The claim's header: patient, program, health number, birth, sex, payer, province,
    // referring doctor, facility, admission, referring lab and provider. Problems are shown
    // under "Error" with the question whether to save anyway; Yes lets the save go on.
    bool CheckClaim(const ClaimEntry& claim);
    // The item rows against the schedule (or the office's direct prices). Problems are
    // shown under "Error" and stop the save. A code that needs manual review sets the
    // claim's mark.
    bool CheckRows(ClaimEntry& claim);
    // The patient's health card expiry (from the register) against today.
    bool CheckExpired(const ClaimEntry& claim);
    // Service dates in the future, or (for claims to the ministry) more than six months ago.
    bool CheckDates(const ClaimEntry& claim);
    // Items already billed for the patient by the same provider under the same program.
    bool CheckDouble(const ClaimEntry& claim);

    // CheckClaim, CheckRows, CheckExpired and CheckDates, stopping at the first refusal.
    bool checkBeforeSave(ClaimEntry& claim);

    // The problem lists of the blocking checks, in rule order. Row problems read
    // "Row: " + the row's place in the grid (counted from 1, empty rows included) + " - " +
    // the problem; the claim-wide "You must enter at least one service code." comes last.
    QStringList claimProblems(const ClaimEntry& claim) const;
    struct RowReview {
        QStringList problems;
        bool manualReview = false;  // some code asks for the ministry's manual review
    };
    RowReview reviewRows(const ClaimEntry& claim) const;
    QStringList rowProblems(const ClaimEntry& claim) const { return reviewRows(claim).problems; }

    // The lines CheckDates and CheckDouble would list; empty when there is nothing to ask.
    QStringList dateWarnings(const ClaimEntry& claim) const;
    QStringList duplicateItems(const ClaimEntry& claim) const;

    // The oldest service date that is not "more than 6 months ago": today moved back six
    // calendar months (a day that month lacks becomes its last day).
    QDate sixMonthLimit() const;

private:
    struct CodeRules;
    // The rule columns of an item code's schedule row; none when the code is not there.
    std::optional<CodeRules> scheduleRules(const QString& code) const;
    bool inDirectList(const QString& code) const;
    QStringList problemsOfRow(const ClaimEntry& claim, const ItemEntry& row,
                              const QString& specialty, bool& manualReview) const;
    QString doctorSpecialty(const QString& doctorId) const;

    Database& m_db;
    Prompter& m_prompter;
    const Clock& m_clock;
    const AppSettings& m_settings;
    MoneyFormat m_money;
};

}  // namespace brimsett
