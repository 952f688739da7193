#include "cli/CliSession.h"

namespace brimsett {

// Settings are read and written straight in the store; the database is not needed.
int commandSettings(CliSession& session, const QStringList& args) {
    if (args.size() == 3 && args[0] == QLatin1String("get")) {
        if (!session.store().contains(args[1], args[2])) {
            return fail(QStringLiteral("%1/%2 is not set").arg(args[1], args[2]));
        }
        session.out() << session.store().get(args[1], args[2]) << "\n";
        return 0;
    }
    if (args.size() == 4 && args[0] == QLatin1String("set")) {
        session.store().save(args[1], args[2], args[3]);
        if (!session.store().sync()) {
            return fail(QStringLiteral("the settings file %1 could not be written")
                            .arg(session.store().path()));
        }
        return 0;
    }
    return fail(QStringLiteral("usage: settings get SECTION KEY | settings set SECTION KEY VALUE"),
                2);
}

}  // namespace brimsett
