#include "cli/CliSession.h"

namespace brimsett {

namespace {

// Exit status 3 tells a script that the layout was updated: the program would stop here
// and ask for a restart.
int init(CliSession& session, const CliArgs&) {
    Startup::Result& result = session.startOnce();
    for (const QString& line : result.done) {
        session.out() << line << "\n";
    }
    switch (result.outcome) {
        case Startup::Outcome::Ready:
            return 0;
        case Startup::Outcome::RestartNeeded:
            return 3;
        case Startup::Outcome::OpenFailed:
            return fail(QStringLiteral("the database could not be opened"));
        case Startup::Outcome::UpgradeFailed:
            return fail(QStringLiteral("the database could not be updated: ") + result.error);
        case Startup::Outcome::SetupFailed:
            break;
    }
    return fail(QStringLiteral("the database could not be created: ") + result.error);
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("init"),
    .summary = QStringLiteral("create or open the database, apply a restore, update it"),
    .details = {QStringLiteral("Exit status 3: the layout was updated; the program would ask "
                               "for a restart.")},
    .run = init,
});

}  // namespace

}  // namespace brimsett
