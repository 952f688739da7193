#include "claims/ClaimFieldForms.h"

#include "patients/HealthNumbers.h"

namespace brimsett::claimform {

bool isProviderNumber(const QString& text) {
    return text.size() == 6 && hn::allDigits(text);
}

bool isReservedProviderNumber(const QString& text) {
    return isProviderNumber(text) && text.startsWith(QLatin1String("99"));
}

bool isFacilityNumber(const QString& text) {
    return text.size() == 4 && hn::allLettersOrDigits(text);
}

bool isRefLabNumber(const QString& text) {
    return text.size() == 4 && hn::allDigits(text);
}

bool isDiagnosticCode(const QString& text) {
    return (text.size() == 3 || text.size() == 4) && hn::allDigits(text);
}

bool isScheduleItemCode(const QString& text) {
    if (text.size() != 5) {
        return false;
    }
    const QChar suffix = text.at(4).toUpper();
    return suffix == QLatin1Char('A') || suffix == QLatin1Char('B') || suffix == QLatin1Char('C');
}

}  // namespace brimsett::claimform
