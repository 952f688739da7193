#pragma once

#include "foundation/Money.h"

#include <QChar>
#include <QString>

#include <optional>

class QSqlRecord;

namespace brimsett {

class Database;
class SqlLog;

// The five fees and three unit counts of one `servicecodes` row; NULL reads as 0.
struct ServiceFees {
    QString serviceCode;
    Money feeGeneral;
    Money feeAssistant;
    Money feeSpecialist;
    Money feeAna;
    Money feeNonAna;
    int unitsAssistant = 0;
    int unitsAna = 0;
    int unitsNonAna = 0;

    static ServiceFees fromRecord(const QSqlRecord& record);
};

// What an item takes from the schedule: the fee of one service and its units.
struct ItemFee {
    Money fee;
    int units = 0;
    bool operator==(const ItemFee&) const = default;
};

namespace fees {

// Specialties 0 and 12 are priced in the general practitioner's order. The specialty is
// compared as a number ("00" and "0" alike); like the old program, text without leading
// digits (an empty specialty too) reads as 0.
bool isGeneralPractice(const QString& specialty);

// The fee of an item by its suffix letter (either case):
//  "A": FeeGeneral, or FeeSpecialist when that is 0, for general practice; otherwise
//       FeeSpecialist, or FeeGeneral when that is 0; no units.
//  "B": FeeAssistant with UnitsAssistant.
//  "C": FeeAna with UnitsAna when FeeAna is not 0, otherwise FeeNonAna with UnitsNonAna.
// None for any other suffix: such an item keeps the fee it has. A negative (pinned) fee is
// billed as its amount.
std::optional<ItemFee> bySuffix(const ServiceFees& fees, QChar suffix, const QString& specialty);

}  // namespace fees

// The office's copy of the schedule of benefits, as claim entry and repricing use it.
class FeeSchedule {
public:
    FeeSchedule(Database& db, const SqlLog& log);

    // The row of an item's code: the code without its suffix letter, in any case. None when
    // the schedule has no such code.
    std::optional<ServiceFees> find(const QString& itemCode);

    // The fee and units an item with this code would take for a provider of the specialty;
    // none when the code is not in the schedule or its suffix takes no fee from it.
    std::optional<ItemFee> itemFee(const QString& itemCode, const QString& specialty);

    // Prices every item of the claim from the schedule in the general practitioner's order
    // for "A", whatever the provider's specialty (the order of claims made from lab orders).
    // The fee is that of one service, not multiplied by NumServ. An item whose code is not in
    // the schedule, or whose suffix takes no fee, keeps its fee. One transaction; only fees
    // that change are written, and logged after the commit. Returns how many items took
    // their fee from the schedule.
    int repriceClaim(qint64 claimId);

private:
    Database& m_db;
    const SqlLog& m_log;
};

}  // namespace brimsett
