#include "ministry/EdtPasswordReminder.h"

#include "foundation/DateText.h"
#include "ministry/EdtParams.h"

namespace brimsett {

std::optional<QStringList> passwordReminder(int reminderSetting, const EdtLogin& login,
                                            const QString& doctor, const QDate& today) {
    if (reminderSetting == 0 || !login.hasPassword ||
        login.changeMarker.trimmed() == QLatin1String("1")) {
        return std::nullopt;
    }
    const QString advice = QStringLiteral("Passwords older than %1 days should be changed;")
                               .arg(kEdtPasswordReminderDays);
    const QString where = QStringLiteral("please change it soon in EDT Setup.");
    if (!login.passwordChanged.isValid()) {
        return QStringList{
            QStringLiteral("The EDT password of %1 has no recorded change date.").arg(doctor),
            advice, where};
    }
    const qint64 age = login.passwordChanged.daysTo(today);
    if (age < kEdtPasswordReminderDays) {
        return std::nullopt;
    }
    return QStringList{
        QStringLiteral("The EDT password of %1 was last changed on %2 (%3 days ago).")
            .arg(doctor, datetext::slashed(login.passwordChanged))
            .arg(age),
        advice, where};
}

}  // namespace brimsett
