#include "cli/CliSession.h"
#include "patients/HealthNumbers.h"

namespace brimsett {

// The province rules alone, as the program applies them with every province checked: a
// script asking about a number wants the rule's answer, not this office's switch.
int commandHn(CliSession& session, const QStringList& args) {
    if (args.size() == 3 && args[0] == QLatin1String("check")) {
        const bool valid =
            hn::checkByProvince(hn::fromTyped(args[2]), args[1].trimmed().toUpper(), false);
        session.out() << (valid ? "valid" : "not valid") << "\n";
        return valid ? 0 : 1;
    }
    if (args.size() == 2 && args[0] == QLatin1String("guess")) {
        session.out() << hn::guessProvince(hn::fromTyped(args[1])) << "\n";
        return 0;
    }
    return fail(QStringLiteral("usage: hn check PROVINCE NUMBER | hn guess NUMBER"), 2);
}

}  // namespace brimsett
