#include "claims/ServiceCodeCell.h"

#include "claims/DirectCodes.h"
#include "claims/FeeSchedule.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "foundation/SqlLog.h"
#include "patients/HealthNumbers.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>
#include <QSqlRecord>

#include <array>

namespace brimsett {

namespace {

// In Qt's day-of-week order, Monday first.
constexpr std::array<const char*, 7> kWeekdays = {"MONDAY", "TUESDAY",  "WEDNESDAY", "THURSDAY",
                                                  "FRIDAY", "SATURDAY", "SUNDAY"};

bool isDirectType(QChar type) {
    return type == QLatin1Char('D') || type == QLatin1Char('T');
}

// One letter and at least one digit: "A7", "a007".
bool isFeeCodeForm(const QString& text) {
    return text.size() >= 2 && text.at(0) >= QLatin1Char('A') && text.at(0) <= QLatin1Char('Z') &&
           hn::allDigits(QStringView(text).mid(1));
}

// A count of services the checks accept; anything else prices one service.
int servicesOf(const QString& text) {
    const QString t = text.trimmed();
    const int n = hn::allDigits(t) ? t.toInt() : 0;
    return n >= 1 && n <= 99 ? n : 1;
}

struct QuickCode {
    QString key;
    QString code;
    QString diagCode;
    int percent = 100;
    QString numServString;
    int numServ = 0;
};

std::optional<QuickCode> findQuickCode(Database& db, const QString& entry) {
    QSqlQuery q =
        db.exec(QStringLiteral("Select * From quickservcodes Where Upper(Trim(QuickCode))=?"),
                {entry.toUpper()}, QStringLiteral("looking up the quick code ") + entry);
    if (!q.next()) {
        return std::nullopt;
    }
    const QSqlRecord r = q.record();
    QuickCode quick;
    quick.key = recordvalue::textOf(r, "QuickCode").trimmed();
    quick.code = recordvalue::textOf(r, "Code").trimmed();
    quick.diagCode = recordvalue::textOf(r, "DiagCode").trimmed();
    const int percent = recordvalue::of(r, "FeePercent").toInt();
    quick.percent = percent == 0 ? 100 : percent;
    quick.numServString = recordvalue::textOf(r, "NumServString").trimmed();
    quick.numServ = recordvalue::of(r, "NumServ").toInt();
    return quick;
}

}  // namespace

ServiceCodeCell::ServiceCodeCell(Database& db, const ClaimEntryOptions& options, MoneyFormat money)
    : m_db(db), m_options(options), m_money(money) {}

QString ServiceCodeCell::normaliseCode(const QString& entry, QChar claimType, QChar defaultSuffix) {
    QString code = entry.trimmed().toUpper();
    if (isDirectType(claimType.toUpper()) && hn::allDigits(code) && !code.isEmpty()) {
        return code.size() < 5 ? code.rightJustified(5, QLatin1Char('0')) : code;
    }
    if (!isFeeCodeForm(code)) {
        return code;
    }
    if (code.size() < 4) {
        code = code.left(1) + code.mid(1).rightJustified(3, QLatin1Char('0'));
    }
    if (code.size() == 4) {
        code += defaultSuffix.toUpper();
    }
    return code;
}

std::optional<Money> ServiceCodeCell::feeFor(const QString& code, QChar claimType,
                                             const QString& specialty, int numServ, int percent) {
    std::optional<Money> one;
    if (isDirectType(claimType.toUpper())) {
        if (const auto direct = directcodes::find(
                m_db, code, QStringLiteral("looking up the direct fee of ") + code)) {
            one = direct->fee;
        }
    } else {
        const SqlLog noLog(OfficePaths(QString()), false);  // looking up writes nothing
        if (const auto fee = FeeSchedule(m_db, noLog).itemFee(code, specialty)) {
            one = fee->fee;
        }
    }
    if (!one) {
        return std::nullopt;
    }
    return Money::fromCents((*one * numServ).scaled(percent, 100).roundedCents());
}

ServiceCodeCell::Result ServiceCodeCell::normalise(const QString& typed, const ItemEntry& row,
                                                   QChar claimType, const QString& specialty) {
    const QChar type = claimType.isNull() ? QLatin1Char('H') : claimType.toUpper();
    const QDate serviceDate = readTypedDate(row.serviceDate);
    Result result;
    for (const QString& part : typed.split(QLatin1Char(','))) {
        const QString entry = part.trimmed();
        if (entry.isEmpty()) {
            continue;
        }
        ItemEntry out = row;
        int percent = 100;
        if (const std::optional<QuickCode> quick = findQuickCode(m_db, entry)) {
            const QString limit = quick->numServString.toUpper();
            const auto day = std::find_if(kWeekdays.begin(), kWeekdays.end(),
                                          [&](const char* name) { return limit == name; });
            if (day != kWeekdays.end()) {
                const int dayOfWeek = static_cast<int>(day - kWeekdays.begin()) + 1;
                if (!serviceDate.isValid() || serviceDate.dayOfWeek() != dayOfWeek) {
                    result.notes << QStringLiteral("Quick code ") + quotedInMessage(quick->key) +
                                        QStringLiteral(" is only for services on a ") +
                                        limit.left(1) + limit.mid(1).toLower() +
                                        QStringLiteral("; it was left out.");
                    continue;
                }
                out.numServ = QStringLiteral("1");
            } else if (!limit.isEmpty() && hn::allDigits(limit)) {
                out.numServ = limit;
            } else {
                out.numServ = QString::number(quick->numServ > 0 ? quick->numServ : 1);
            }
            out.serviceCode = normaliseCode(quick->code, type, m_options.suffix());
            if (!quick->diagCode.isEmpty()) {
                out.diagCode = quick->diagCode;
            }
            percent = quick->percent;
        } else {
            out.serviceCode = normaliseCode(entry, type, m_options.suffix());
            if (out.numServ.trimmed().isEmpty()) {
                out.numServ = QStringLiteral("1");
            }
        }
        const std::optional<Money> fee =
            feeFor(out.serviceCode, type, specialty, servicesOf(out.numServ), percent);
        out.fee = fee ? fee->format(m_money) : QString();
        if (!fee) {
            result.notes << QStringLiteral("No fee was found for service code ") +
                                quotedInMessage(out.serviceCode) + QLatin1Char('.');
        }
        result.rows << out;
        result.percents << percent;
    }
    if (result.rows.isEmpty()) {
        // Nothing left to bill on this row: the code goes, the rest stays as typed.
        ItemEntry out = row;
        out.serviceCode.clear();
        out.fee.clear();
        result.rows << out;
        result.percents << 100;
    }
    return result;
}

}  // namespace brimsett
