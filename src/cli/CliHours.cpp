#include "cli/CliHours.h"

#include "cli/CliCommand.h"
#include "cli/CliSession.h"

namespace brimsett {

std::variant<appointments::ShownHours, int> hoursOption(CliSession& session, const CliArgs& args) {
    appointments::ShownHours hours =
        appointments::readShownHours(session.store(), session.settings());
    for (const auto& [name, hour] :
         {std::pair{"from", &hours.first}, std::pair{"to", &hours.last}}) {
        const QString option = QLatin1String(name);
        if (!args.isSet(option)) {
            continue;
        }
        const std::optional<int> typed = appointments::hourOfText(args.value(option));
        if (!typed) {
            return args.usageError(
                QStringLiteral("--%1 %2 is not an hour such as 8, 8am, 17 or 5pm")
                    .arg(option, args.value(option)));
        }
        *hour = *typed;
    }
    if (hours.last < hours.first) {
        return args.usageError(QStringLiteral("the last hour %1 comes before the first hour %2")
                                   .arg(hours.last)
                                   .arg(hours.first));
    }
    return hours;
}

}  // namespace brimsett
