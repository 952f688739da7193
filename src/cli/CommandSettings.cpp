#include "cli/CliSession.h"

namespace brimsett {

namespace {

// Settings are read and written straight in the store; the database is not needed.
int get(CliSession& session, const CliArgs& args) {
    const QString section = args.argument(0);
    const QString key = args.argument(1);
    if (!session.store().contains(section, key)) {
        return fail(QStringLiteral("%1/%2 is not set").arg(section, key));
    }
    session.out() << session.store().get(section, key) << "\n";
    return 0;
}

int set(CliSession& session, const CliArgs& args) {
    session.store().save(args.argument(0), args.argument(1), args.argument(2));
    if (!session.store().sync()) {
        return fail(QStringLiteral("the settings file %1 could not be written")
                        .arg(session.store().path()));
    }
    return 0;
}

const QList<CliArgument> kPlace = {
    {QStringLiteral("SECTION"), QStringLiteral("the section, e.g. General or Options")},
    {QStringLiteral("KEY"), QStringLiteral("the key within it")},
};

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("settings get"),
        .summary = QStringLiteral("print a setting (exit 1 when it is not set)"),
        .arguments = kPlace,
        .run = get,
    }) &&
    cli::add({
        .name = QStringLiteral("settings set"),
        .summary = QStringLiteral("store a setting"),
        .arguments =
            kPlace + QList<CliArgument>{{QStringLiteral("VALUE"), QStringLiteral("its new text")}},
        // The settings are the options screen's, and hold the level passwords themselves.
        .level = AccessLevels::kMaster,
        .run = set,
    });

}  // namespace

}  // namespace brimsett
