#include "appointments/AppointmentTime.h"

#include <QStringList>

namespace brimsett::appointments {

QString StatusName(int status) {
    static const QStringList names = {
        QStringLiteral("(None)"),     QStringLiteral("Booked"),    QStringLiteral("Confirmed"),
        QStringLiteral("Waiting"),    QStringLiteral("Seen"),      QStringLiteral("No Show"),
        QStringLiteral("Billed"),     QStringLiteral("Cancelled"), QStringLiteral("Reschedulled"),
        QStringLiteral("Requisition")};
    return status >= 0 && status < names.size() ? names.at(status) : QString();
}

QString Hour12(int hour) {
    return hour == 0 ? QStringLiteral("12") : QString::number((hour - 1) % 12 + 1);
}

QString AmPm(int hour) {
    return hour < 12 ? QStringLiteral("am") : QStringLiteral("pm");
}

QString TimeText(int minutes) {
    const int hour = minutes / 60;
    return Hour12(hour).rightJustified(2) + QLatin1Char(':') +
           QString::number(minutes % 60).rightJustified(2, QLatin1Char('0')) + QLatin1Char(' ') +
           AmPm(hour);
}

}  // namespace brimsett::appointments
