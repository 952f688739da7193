#include "appointments/AppointmentTime.h"

#include <QRegularExpression>
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

QString invalidTimeProblem(const QString& text) {
    return QStringLiteral("Invalid time: '%1' is not a time of day such as 9:15am.")
        .arg(text.trimmed());
}

std::optional<int> parseTimeText(const QString& text) {
    static const QRegularExpression pattern(
        QStringLiteral("^\\s*(\\d{1,2}):(\\d{2})\\s*(am|pm)?\\s*$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = pattern.match(text);
    if (!m.hasMatch()) {
        return std::nullopt;
    }
    int hour = m.captured(1).toInt();
    const int minute = m.captured(2).toInt();
    const QString half = m.captured(3).toLower();
    if (minute > 59) {
        return std::nullopt;
    }
    if (half.isEmpty()) {
        if (hour > 23) {
            return std::nullopt;
        }
    } else {
        if (hour < 1 || hour > 12) {
            return std::nullopt;
        }
        hour = hour % 12 + (half == QLatin1String("pm") ? 12 : 0);
    }
    return hour * 60 + minute;
}

}  // namespace brimsett::appointments
