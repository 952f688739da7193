#include "hcv/ResponseCodes.h"

#include <QHash>

namespace brimsett::hcv {

namespace {

bool allDigits(const QString& code) {
    if (code.isEmpty()) {
        return false;
    }
    for (const QChar c : code) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return false;
        }
    }
    return true;
}

const QHash<QString, QString>& messages() {
    static const QHash<QString, QString> table{
        {"05", "Incorrect health number - The HN is not 10 numeric digits"},
        {"10", "Incorrect health number - The HN was not found on RPDB"},
        {"15", "Pre-assigned newborn health number"},
        {"20", "Eligibility does not exists for this health number"},
        {"25", "Unknown card; Invalid stripe"},
        {"50", "Card passed validation"},
        {"51", "Card passed validation"},
        {"52", "Card passed validation; No response to 'notice to register'"},
        {"53", "Card passed validation; Card is expired"},
        {"54", "Card passed validation; Card is future dated"},
        {"55", "Card passed validation; returned mail indicator on inactive card"},
        {"60", "Inactive card"},
        {"65", "Invalid version code"},
        {"70", "Stolen Card"},
        {"75", "Cancelled or voided card"},
        // "80" is "Damaged card" in the printed legend, but the on-screen answer has always
        // shown it without a message; offices know it by its code.
        {"83", "Lost Card"},
        {"90", "Infomration not available"},
        {"99", "System not available"},
    };
    return table;
}

}  // namespace

QString ResponseMessage(const QString& code) {
    if (code.size() == 2 && code.at(0) == QLatin1Char('9') && code.at(1) >= QLatin1Char('A') &&
        code.at(1) <= QLatin1Char('M')) {
        return QStringLiteral("Health care provider/facility not authorized for HCV");
    }
    return messages().value(code);
}

int statusClass(const QString& code) {
    if (!allDigits(code)) {
        return 2;
    }
    const int value = code.toInt();
    if (value >= 50 && value <= 55) {
        return 1;
    }
    if (value == 90 || value == 99) {
        return 4;
    }
    return code.startsWith(QLatin1Char('9')) ? 5 : 2;
}

bool isRejected(int status) {
    return status == 2 || status == 5;
}

QStringList legendLines() {
    return {
        QStringLiteral(" 05 --- Incorrect health number - The HN is not 10 numberic digits"),
        QStringLiteral(" 15 --- Pre-assigned newborn health number"),
        QStringLiteral(" 20 --- Eligibility does not exist for this health number"),
        QStringLiteral(" 25 --- Unknown card; Invalid stripe"),
        QStringLiteral(" 50 --- Card passed validation"),
        QStringLiteral(" 51 --- Card passed validation"),
        QStringLiteral(" 52 --- Card passed validation; No response to 'notice to register'"),
        QStringLiteral(" 53 --- Card passed validation; Card is expired"),
        QStringLiteral(" 54 --- Card passed validation; Card is future dated"),
        QStringLiteral(" 55 --- Card passed validation; returned mail indicator on inactive card"),
        QStringLiteral(" 60 --- Inactive card"),
        QStringLiteral(" 65 --- Invalid version code"),
        QStringLiteral(" 70 --- Stolen card"),
        QStringLiteral(" 75 --- Cancelled or voided card"),
        QStringLiteral(" 80 --- Damaged card"),
        QStringLiteral(" 83 --- Lost card"),
        QStringLiteral(" 90 --- Information not available"),
        QStringLiteral(" 99 --- System not available"),
        QStringLiteral(" 9_ --- Health care provider/facility not authorized for HCV"),
    };
}

}  // namespace brimsett::hcv
