#include "claims/SobLine.h"

#include "foundation/DateText.h"
#include "patients/HealthNumbers.h"

namespace brimsett::sob {

namespace {

constexpr int kFeeWidth = 11;  // seven digits of dollars, four of ten-thousandths
constexpr int kDollarDigits = 7;

const char* const kFeeNames[SobLine::kFeeCount] = {
    "general practitioner", "assistant", "specialist", "anaesthetist", "non-anaesthetist"};

// "yyyymmdd" or "yymmdd" (the shared two-digit year window); a day of "00" is the first of
// the month.
QDate readDate(QStringView text) {
    if (!hn::allDigits(text)) {
        return {};
    }
    const bool shortYear = text.size() == 6;
    int year = text.left(shortYear ? 2 : 4).toInt();
    if (shortYear) {
        year = datetext::fullYear(year);
    }
    const int month = text.mid(shortYear ? 2 : 4, 2).toInt();
    const int day = std::max(1, text.right(2).toInt());
    return QDate(year, month, day);
}

std::optional<Money> readFee(QStringView text) {
    if (text.size() != kFeeWidth || !hn::allDigits(text)) {
        return std::nullopt;
    }
    const qint64 dollars = text.left(kDollarDigits).toLongLong();
    const qint64 fraction = text.mid(kDollarDigits).toLongLong();
    return Money::fromUnits(dollars * Money::kScale + fraction);
}

int unitsOf(Money fee, std::optional<Money> unitValue) {
    if (fee.isZero()) {
        return 0;
    }
    if (!unitValue || fee.units() % unitValue->units() != 0) {
        return 1;
    }
    return static_cast<int>(fee.units() / unitValue->units());
}

}  // namespace

std::optional<Layout> layoutOf(qsizetype length) {
    if (length == kLongLength) {
        return Layout::Long;
    }
    if (length == kShortLength) {
        return Layout::Short;
    }
    return std::nullopt;
}

int lengthOf(Layout layout) {
    return layout == Layout::Long ? kLongLength : kShortLength;
}

QString lengthProblem(qint64 length, Layout layout) {
    if (length == lengthOf(layout)) {
        return {};
    }
    return QStringLiteral("The line is %1 characters long instead of %2.")
        .arg(length)
        .arg(lengthOf(layout));
}

std::variant<SobLine, QString> readLine(const QString& text, Layout layout) {
    if (const QString problem = lengthProblem(text.size(), layout); !problem.isEmpty()) {
        return problem;
    }
    SobLine line;
    line.code = text.left(4).toUpper();
    if (line.code.trimmed().isEmpty()) {
        return QStringLiteral("The line has no fee code.");
    }
    const int dateWidth = layout == Layout::Long ? 8 : 6;
    const QStringView start = QStringView(text).mid(4, dateWidth);
    line.dateStart = readDate(start);
    if (!line.dateStart.isValid()) {
        return QStringLiteral("The effective date \"%1\" is not a date.").arg(start);
    }
    const QStringView term = QStringView(text).mid(4 + dateWidth, dateWidth);
    line.dateTerm = term.startsWith(QLatin1String("9999")) ? kOpenTermination : readDate(term);
    if (!line.dateTerm.isValid()) {
        return QStringLiteral("The termination date \"%1\" is not a date.").arg(term);
    }
    const int firstFee = 4 + 2 * dateWidth;
    for (int i = 0; i < SobLine::kFeeCount; ++i) {
        const QStringView field = QStringView(text).mid(firstFee + i * kFeeWidth, kFeeWidth);
        const std::optional<Money> fee = readFee(field);
        if (!fee) {
            return QStringLiteral("The %1 fee \"%2\" is not a number.")
                .arg(QLatin1String(kFeeNames[i]), field);
        }
        line.fees[i] = *fee;
    }
    setUnits(line);
    return line;
}

std::optional<Money> unitValueOf(Money fee) {
    const qint64 amount = fee.units();
    if (amount <= 0) {
        return std::nullopt;
    }
    for (int divisor = 10; divisor <= 19; ++divisor) {
        // The nearest whole number of units, halves rounded up.
        const qint64 step = divisor * Money::kScale;
        const qint64 units = (2 * amount + step) / (2 * step);
        if (units < 1 || amount % units != 0) {
            continue;
        }
        const qint64 value = amount / units;
        const bool wholeCents = value % 100 == 0;
        if (wholeCents && value >= 10 * Money::kScale && value < 12 * Money::kScale) {
            return Money::fromUnits(value);
        }
    }
    return std::nullopt;
}

void setUnits(SobLine& line) {
    std::optional<Money> unitValue;
    for (const SobLine::Fee driver : {SobLine::Assistant, SobLine::Ana, SobLine::NonAna}) {
        unitValue = unitValueOf(line.fees[driver]);
        if (unitValue) {
            break;
        }
    }
    line.unitsAssistant = unitsOf(line.fees[SobLine::Assistant], unitValue);
    line.unitsAna = unitsOf(line.fees[SobLine::Ana], unitValue);
    line.unitsNonAna = unitsOf(line.fees[SobLine::NonAna], unitValue);
}

}  // namespace brimsett::sob
