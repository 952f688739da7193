#include "claims/CodeTables.h"

#include "foundation/DateText.h"
#include "patients/PatientEntry.h"

#include <limits>

namespace brimsett {

namespace {

using Kind = CodeColumn::Kind;

CodeColumn text(QString name, QString caption, int maxLength, int width) {
    return {std::move(name), std::move(caption), Kind::Text, maxLength, width};
}
CodeColumn code(QString name, QString caption, int maxLength, int width) {
    return {std::move(name), std::move(caption), Kind::Code, maxLength, width};
}
CodeColumn money(QString name, QString caption) {
    return {std::move(name), std::move(caption), Kind::Money, 0, 10};
}
CodeColumn whole(QString name, QString caption, Kind kind = Kind::Integer) {
    return {std::move(name), std::move(caption), kind, 0, 6};
}
CodeColumn date(QString name, QString caption) {
    return {std::move(name), std::move(caption), Kind::Date, 0, 10};
}
CodeColumn yesNo(QString name, QString caption) {
    return {std::move(name), std::move(caption), Kind::YesNo, 0, 0};
}
CodeColumn hinted(CodeColumn column, QString hint) {
    column.hint = std::move(hint);
    return column;
}
CodeColumn initially(CodeColumn column, QString initial) {
    column.initial = std::move(initial);
    return column;
}

const QString kOne = QStringLiteral("1");
const QString kZero = QStringLiteral("0");

// "#,##0.00", with the third and fourth decimals when the amount has them.
QString moneyText(const Money& amount, const MoneyFormat& format) {
    const std::int64_t subCents = amount.units() % 100;
    if (subCents == 0) {
        return amount.format(format);
    }
    const Money cents = Money::fromUnits(amount.units() - subCents);
    return cents.format(format) +
           QStringLiteral("%1").arg(std::abs(subCents), 2, 10, QLatin1Char('0'));
}

std::optional<qint64> wholeOf(const QString& text, Kind kind) {
    bool ok = false;
    const qint64 n = text.toLongLong(&ok);
    const qint64 limit = kind == Kind::Integer ? std::numeric_limits<qint16>::max()
                                               : std::numeric_limits<qint32>::max();
    if (!ok || n > limit || n < -limit - 1) {
        return std::nullopt;
    }
    return n;
}

}  // namespace

int CodeTable::columnOf(const QString& name) const {
    for (int i = 0; i < columns.size(); ++i) {
        if (columns.at(i).name.compare(name, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

QString CodeTable::cellOf(int column, const QVariant& stored, const MoneyFormat& format) const {
    const CodeColumn& c = columns.at(column);
    if (c.kind == Kind::YesNo) {
        return stored.toBool() ? kOne : kZero;
    }
    if (stored.isNull() || !stored.isValid()) {
        return {};
    }
    switch (c.kind) {
        case Kind::Money:
            if (const auto amount = Money::fromVariant(stored)) {
                return moneyText(*amount, format);
            }
            break;
        case Kind::Date:
            return dateTextOf(stored);
        default:
            break;
    }
    return stored.toString();
}

QString CodeTable::tidied(int column, const QString& typed, const MoneyFormat& format) const {
    const CodeColumn& c = columns.at(column);
    const QString t = typed.trimmed();
    switch (c.kind) {
        case Kind::Code:
            return t.toUpper();
        case Kind::Money:
            if (const auto amount = Money::parse(t, format)) {
                return moneyText(*amount, format);
            }
            return t;
        case Kind::Integer:
        case Kind::Long:
            if (const auto n = wholeOf(t, c.kind)) {
                return QString::number(*n);
            }
            return t;
        case Kind::Date:
            if (const QDate d = readTypedDate(t); d.isValid()) {
                return datetext::slashed(d);
            }
            return t;
        case Kind::YesNo:
            return t == kOne ? kOne : kZero;
        case Kind::Text:
            break;
    }
    return t;
}

CodeTable::Stored CodeTable::storedOf(int column, const QString& cell,
                                      const MoneyFormat& format) const {
    const CodeColumn& c = columns.at(column);
    const QString t = cell.trimmed();
    if (c.kind == Kind::YesNo) {
        return {t == kOne, {}};
    }
    if (t.isEmpty()) {
        return {};
    }
    const auto refused = [&c, &t](const QString& what) {
        return Stored{{}, QStringLiteral("%1 %2: \"%3\".").arg(c.caption, what, t)};
    };
    switch (c.kind) {
        case Kind::Text:
        case Kind::Code:
            if (t.size() > c.maxLength) {
                return {{},
                        QStringLiteral("%1 is longer than %2 characters.")
                            .arg(c.caption)
                            .arg(c.maxLength)};
            }
            if (!c.choices.isEmpty() && !c.choices.contains(t, Qt::CaseInsensitive)) {
                return {{},
                        QStringLiteral("%1 must be one of %2, not \"%3\".")
                            .arg(c.caption, c.choices.join(QStringLiteral(", ")), t)};
            }
            return {c.kind == Kind::Code ? t.toUpper() : t, {}};
        case Kind::Money:
            if (const auto amount = Money::parse(t, format)) {
                return {amount->toVariant(), {}};
            }
            return refused(QStringLiteral("is not an amount"));
        case Kind::Integer:
        case Kind::Long:
            if (const auto n = wholeOf(t, c.kind)) {
                return {*n, {}};
            }
            return refused(c.kind == Kind::Integer
                               ? QStringLiteral("is not a whole number up to 32767")
                               : QStringLiteral("is not a whole number"));
        case Kind::Date:
            if (const QDate d = readTypedDate(t); d.isValid()) {
                return {d, {}};
            }
            return refused(QStringLiteral("is not a date (YYYY/MM/DD)"));
        case Kind::YesNo:
            break;
    }
    return {};
}

namespace codetables {

const CodeTable& serviceCodes() {
    // Fees first, as the office reads a code; the rules the claim checks use after them.
    // PatientID and KeyWords are not the office's to edit.
    static const CodeTable table{
        QStringLiteral("ServiceCodes"),
        QStringLiteral("OHIP Service Codes"),
        QStringLiteral("service code"),
        {code("ServiceCode", "Code", 5, 6),
         text("Description", "Description", 255, 44),
         money("FeeGeneral", "GP Fee"),
         money("FeeSpecialist", "Specialist Fee"),
         money("FeeAssistant", "Assistant Fee"),
         whole("UnitsAssistant", "Asst. Units"),
         money("FeeAna", "Anaesthetist Fee"),
         whole("UnitsAna", "Anaes. Units"),
         money("FeeNonAna", "Non-Anaes. Fee"),
         whole("UnitsNonAna", "Non-Anaes. Units"),
         date("DateStart", "Effective"),
         hinted(date("DateTerm", "Terminates"), "1980/01/01: the fee has no termination date"),
         hinted(yesNo("ReqDiagCode", "Needs Diag."), "An item needs a diagnostic code"),
         hinted(yesNo("ReqRefDoctor", "Needs Referral"), "An item needs a referring doctor"),
         hinted(yesNo("ReqFacilityNum", "Needs Facility"), "An item needs a facility number"),
         hinted(yesNo("ReqAdmitDate", "Needs Admission"), "An item needs an admission date"),
         hinted(yesNo("ReqManualReview", "Manual Review"),
                "The claim is flagged for the ministry's manual review"),
         hinted(yesNo("Modifier", "Modifier"), "The code takes a modifier"),
         hinted(code("SpecCode", "Specialty", 2, 5), "Only this specialty may bill it; blank: any"),
         CodeColumn{
             "Sex", "Sex", Kind::Code, 1, 4, {"B", "F", "M"}, "B: both, F: female, M: male", "B"},
         initially(whole("MinimumAge", "Min. Age"), "0"),
         initially(whole("MaximumAge", "Max. Age"), "999"),
         whole("MinAge2", "Min. Age 2", Kind::Long),
         whole("MaxAge2", "Max. Age 2", Kind::Long),
         whole("MinAge3", "Min. Age 3", Kind::Long),
         whole("MaxAge3", "Max. Age 3", Kind::Long),
         text("InterVal", "Interval", 8, 8),
         code("Prereq", "Prerequisites", 200, 16),
         yesNo("Q200Flag", "Q200")}};
    return table;
}

const CodeTable& serviceCodesDirect() {
    static const CodeTable table{QStringLiteral("ServiceCodesDirect"),
                                 QStringLiteral("Direct Service Codes"),
                                 QStringLiteral("service code"),
                                 {code("ServiceCode", "Code", 5, 6),
                                  text("Description", "Description", 50, 44), money("Fee", "Fee")}};
    return table;
}

const CodeTable& diagCodes() {
    static const CodeTable table{
        QStringLiteral("DiagCodes"),
        QStringLiteral("Diagnostic Codes"),
        QStringLiteral("diagnostic code"),
        {code("DiagCode", "Code", 4, 6), text("Description", "Description", 200, 60)}};
    return table;
}

const CodeTable& explCodes() {
    static const CodeTable table{
        QStringLiteral("ExplCodes"),
        QStringLiteral("Explanatory Codes"),
        QStringLiteral("explanatory code"),
        {code("ExplCode", "Code", 2, 5), text("Description", "Description", 120, 60),
         text("Section", "Section", 60, 24)}};
    return table;
}

const CodeTable& quickServCodes() {
    static const CodeTable table{
        QStringLiteral("QuickServCodes"),
        QStringLiteral("Quick Service Codes"),
        QStringLiteral("quick code"),
        {code("QuickCode", "Quick Code", 10, 10), text("Description", "Description", 50, 30),
         code("Code", "Service Code", 5, 9), code("DiagCode", "Diag. Code", 4, 8),
         hinted(whole("FeePercent", "Fee %", Kind::Long), "Percent of the schedule's fee"),
         whole("NumServ", "Services", Kind::Long),
         hinted(text("NumServString", "Services Text", 50, 14), "A weekday such as SUNDAY"),
         text("Colour", "Colour", 20, 10),
         hinted(whole("length", "Length", Kind::Long), "Minutes in the appointment book")}};
    return table;
}

const CodeTable& quickDiagCodes() {
    static const CodeTable table{
        QStringLiteral("QuickDiagCodes"),
        QStringLiteral("Quick Diagnostic Codes"),
        QStringLiteral("quick code"),
        {code("QuickCode", "Quick Code", 10, 10), text("Description", "Description", 50, 40),
         code("DiagCode", "Diag. Code", 4, 8)}};
    return table;
}

const CodeTable& quickCityCodes() {
    static const CodeTable table{
        QStringLiteral("QuickCityCodes"),
        QStringLiteral("Quick City Codes"),
        QStringLiteral("quick code"),
        {code("QuickCode", "Quick Code", 10, 10), text("City", "City", 30, 30),
         text("PhoneArea", "Area Code", 5, 8)}};
    return table;
}

const CodeTable& quickFacCodes() {
    static const CodeTable table{
        QStringLiteral("QuickFacCodes"),
        QStringLiteral("Quick Facility Codes"),
        QStringLiteral("quick code"),
        {code("QuickCode", "Quick Code", 10, 10), text("Description", "Description", 50, 40),
         code("FacilityNum", "Facility No.", 4, 10)}};
    return table;
}

}  // namespace codetables
}  // namespace brimsett
