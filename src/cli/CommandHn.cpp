#include "cli/CliSession.h"
#include "patients/HealthNumbers.h"

namespace brimsett {

namespace {

// The province rules alone, as the program applies them with every province checked: a
// script asking about a number wants the rule's answer, not this office's switch.
int check(CliSession& session, const CliArgs& args) {
    const bool valid = hn::checkByProvince(hn::fromTyped(args.argument(1)),
                                           args.argument(0).trimmed().toUpper(), false);
    session.out() << (valid ? "valid" : "not valid") << "\n";
    return valid ? 0 : 1;
}

int guess(CliSession& session, const CliArgs& args) {
    session.out() << hn::guessProvince(hn::fromTyped(args.argument(0))) << "\n";
    return 0;
}

const CliArgument kNumber = {QStringLiteral("NUMBER"), QStringLiteral("the health number")};

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("hn check"),
        .summary = QStringLiteral("\"valid\" (exit 0) or \"not valid\" (exit 1) by the "
                                  "province's rule"),
        .arguments = {{QStringLiteral("PROVINCE"), QStringLiteral("two letters, e.g. ON")},
                      kNumber},
        .run = check,
    }) &&
    cli::add({
        .name = QStringLiteral("hn guess"),
        .summary = QStringLiteral("the province the number most likely belongs to"),
        .arguments = {kNumber},
        .run = guess,
    });

}  // namespace

}  // namespace brimsett
