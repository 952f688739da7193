#pragma once

#include "foundation/Money.h"

#include <QDate>
#include <QString>

#include <array>
#include <optional>
#include <variant>

namespace brimsett {

// One code of the ministry's schedule of benefits master file, as read from its line.
struct SobLine {
    // The five fees in the order of the file (and of ServiceFees' columns).
    enum Fee { General, Assistant, Specialist, Ana, NonAna };
    static constexpr int kFeeCount = 5;

    QString code;  // four characters, upper case
    QDate dateStart;
    QDate dateTerm;  // 1980/01/01 for a fee without termination
    std::array<Money, kFeeCount> fees;
    int unitsAssistant = 0;
    int unitsAna = 0;
    int unitsNonAna = 0;
};

namespace sob {

// The long layout has four-digit years, the short one two-digit years; the length of the
// file's first line tells them apart.
enum class Layout { Long, Short };
inline constexpr int kLongLength = 75;
inline constexpr int kShortLength = 71;
std::optional<Layout> layoutOf(qsizetype length);
int lengthOf(Layout layout);

// The termination date the schedule uses for "never terminated".
inline const QDate kOpenTermination(1980, 1, 1);

// Why a line of `length` characters is not one of the layout's; empty when it is.
QString lengthProblem(qint64 length, Layout layout);

// Reads one line (without its line break) of the layout, units included. A line that does
// not read gives the reason, one sentence quoting the bad text.
std::variant<SobLine, QString> readLine(const QString& line, Layout layout);

// The value of one unit of a fee billed in units, found by trying unit counts; none when no
// trial gives whole cents between 10.00 and 12.00.
std::optional<Money> unitValueOf(Money fee);

// The unit counts of the line's assistant and anaesthesia fees. The unit value comes from the
// assistant fee, or when that gives none from the anaesthetist's, then the non-anaesthetist's
// fee. A fee of 0 has 0 units; a fee the unit value does not divide (or any fee of a line
// without a unit value) counts as 1 unit.
void setUnits(SobLine& line);

}  // namespace sob
}  // namespace brimsett
