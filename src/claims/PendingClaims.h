#pragma once

#include "foundation/Money.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;
class Clock;
struct AppSettings;

// One line of the pending claims grid: an item of a claim still in the pending batch.
struct PendingLine {
    QString doc;      // "Doc"
    QString account;  // "Account"
    qint64 patientId = 0;
    QString patient;   // "LName, FName" with switch 8, else "FName LName"
    QString chargeTo;  // the stored program
    QString service;
    QString diag;
    int numServ = 0;  // "NS"
    std::optional<Money> fee;
    QDate serviceDate;
    qint64 claimId = 0;
    int itemId = 0;
};

// The orders the grid offers, first the default.
enum class PendingOrder { Account, Patient, ServiceDate, Doctor };

// The claims to the ministry that wait in the pending batch, for the claim entry screen.
class PendingClaims {
public:
    PendingClaims(Database& db, const AppSettings& settings);

    // Every pending item, of one provider or (empty doctorId) of all, in the order chosen;
    // lines of one claim stay together in ItemID order.
    QList<PendingLine> lines(const QString& doctorId, PendingOrder order);
    // "Total Pending " + the sum in currency form + " " + the count + " items."
    QString totalLine(const QString& doctorId, const MoneyFormat& money = {});

    // Deletes a pending claim with its items after the question (title "Delete Claim",
    // default No); false when the user said No or the claim is no longer pending (then the
    // user is told and nothing changes).
    bool deleteClaim(qint64 claimId, Prompter& prompter, const Clock& clock, const SqlLog& log);

private:
    Database& m_db;
    const AppSettings& m_settings;
};

}  // namespace brimsett
