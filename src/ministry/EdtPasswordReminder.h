#pragma once

#include <QDate>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

struct EdtLogin;

// A transfer password this many days old is reminded before the session dials.
constexpr int kEdtPasswordReminderDays = 60;

// The reminder's lines when the office wants reminders ("EDTPasswordReminder" not 0) and the
// doctor's stored password is kEdtPasswordReminderDays old or its change date is unknown; none
// otherwise, and none while a newly typed password still waits to be given to the host.
std::optional<QStringList> passwordReminder(int reminderSetting, const EdtLogin& login,
                                            const QString& doctor, const QDate& today);

}  // namespace brimsett
