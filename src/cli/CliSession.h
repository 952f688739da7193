#pragma once

#include "cli/CliCommand.h"
#include "cli/CliPrompter.h"
#include "foundation/AccessLevels.h"
#include "foundation/Clock.h"
#include "foundation/OfficePaths.h"
#include "foundation/SettingsStore.h"
#include "foundation/Startup.h"

#include <QStringList>
#include <QTextStream>

namespace brimsett {

// What every command of brimsett-cli works with: the office folder, the settings, the
// prompter, and (once opened) the database.
class CliSession {
public:
    CliSession(const QString& home, const QString& settingsFile, bool alwaysYes);
    ~CliSession();

    OfficePaths& paths() { return m_paths; }
    SettingsStore& store() { return m_store; }
    CliPrompter& prompter() { return m_prompter; }
    const Clock& clock() const { return m_clock; }
    QTextStream& out() { return m_out; }

    // Runs the start-up sequence; when it updated the layout, opens again, as the
    // program would after its restart. No value (and the reason printed) on failure.
    Startup::Result* open();
    Database& db() { return *m_result.db; }
    AppSettings& settings() { return m_result.settings; }

    // Runs start-up exactly once, as the program would, and keeps its result.
    Startup::Result& startOnce();

    // Whether a feature needing the access level may run. When it is not open, logs in with
    // the password of $BRIMSETT_PASSWORD, else one typed without echo when standard input
    // is a terminal; a refusal is told through the prompter.
    bool require(int level);

private:
    OfficePaths m_paths;
    SettingsStore m_store;
    CliPrompter m_prompter;
    SystemClock m_clock;
    AccessLevels m_access;
    QTextStream m_out;
    Startup::Result m_result;
    QString m_openBefore;
    bool m_hadOpen = false;
    bool m_started = false;
};

// Prints "brimsett-cli: " + reason to standard error and gives the failure status.
int fail(const QString& reason, int status = 1);

}  // namespace brimsett
