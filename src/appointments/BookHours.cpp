#include "appointments/BookHours.h"

#include "appointments/AppointmentTime.h"
#include "foundation/AppSettings.h"
#include "foundation/SettingsStore.h"

#include <QRegularExpression>

#include <array>

namespace brimsett::appointments {

namespace {

const QString kSection = QStringLiteral("Appointment");

}  // namespace

std::optional<int> hourOfText(const QString& text) {
    if (const std::optional<int> minutes = parseTimeText(text)) {
        return *minutes / 60;
    }
    static const QRegularExpression pattern(QStringLiteral("^\\s*(\\d{1,2})\\s*(am|pm)?\\s*$"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch m = pattern.match(text);
    if (!m.hasMatch()) {
        return std::nullopt;
    }
    const int hour = m.captured(1).toInt();
    const QString half = m.captured(2).toLower();
    if (half.isEmpty()) {
        return hour <= 23 ? std::optional<int>(hour) : std::nullopt;
    }
    if (hour < 1 || hour > 12) {
        return std::nullopt;
    }
    return hour24(hour, half == QLatin1String("pm"));
}

ShownHours readShownHours(const SettingsStore& store, const AppSettings& settings) {
    const auto read = [&](const QString& ownKey, const QString& officeText) {
        const QString own = store.get(kSection, ownKey);
        return hourOfText(own.trimmed().isEmpty() ? officeText : own);
    };
    const std::optional<int> first = read(QStringLiteral("HourS"), settings.hourStart);
    const std::optional<int> last = read(QStringLiteral("HourE"), settings.hourEnd);
    if (!first || !last || *last < *first) {
        return {};
    }
    return {*first, *last};
}

void saveShownHours(SettingsStore& store, const ShownHours& hours) {
    store.save(kSection, QStringLiteral("HourS"), QString::number(hours.first));
    store.save(kSection, QStringLiteral("HourE"), QString::number(hours.last));
}

int slotStepMinutes(int timeSlotChoice) {
    static constexpr std::array<int, 6> kSteps{5, 10, 15, 20, 30, 60};
    if (timeSlotChoice < 0 || timeSlotChoice >= int(kSteps.size())) {
        return 15;
    }
    return kSteps[size_t(timeSlotChoice)];
}

QString typedHour(const QString& text) {
    bool ok = false;
    const int hour = text.trimmed().toInt(&ok);
    return ok && hour >= 13 ? QStringLiteral("12") : text;
}

int hour24(int hour12, bool pm) {
    return hour12 % 12 + (pm ? 12 : 0);
}

}  // namespace brimsett::appointments
