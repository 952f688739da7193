#include "cli/CliSession.h"

#include "cli/CliPassword.h"
#include "foundation/FileModes.h"
#include "foundation/PasswordActions.h"

namespace brimsett {

namespace {

QString settingsPath(const QString& option) {
    if (!option.isEmpty()) {
        return option;
    }
    const QString env = qEnvironmentVariable("BRIMSETT_SETTINGS");
    return env.isEmpty() ? SettingsStore::defaultPath() : env;
}

}  // namespace

CliSession::CliSession(const QString& home, const QString& settingsFile, bool alwaysYes)
    : m_paths(OfficePaths::resolve(home)),
      m_store(settingsPath(settingsFile)),
      m_prompter(alwaysYes),
      m_access(m_store),
      m_out(stdout) {
    // Before anything is written: the settings and every office file are the user's alone.
    filemodes::ownerOnly();
}

CliSession::~CliSession() {
    // The command line is not a running program: leave the "Open" mark as it found it.
    if (m_started) {
        if (!m_hadOpen) {
            m_store.remove(QStringLiteral("General"), QStringLiteral("Open"));
        } else {
            m_store.save(QStringLiteral("General"), QStringLiteral("Open"), m_openBefore);
        }
        m_store.sync();
    }
    m_out.flush();
}

Startup::Result& CliSession::startOnce() {
    if (!m_started) {
        m_started = true;
        m_hadOpen = m_store.contains(QStringLiteral("General"), QStringLiteral("Open"));
        m_openBefore = m_store.get(QStringLiteral("General"), QStringLiteral("Open"));
        m_result = Startup(m_paths, m_store, m_access, m_clock, m_prompter).run();
    }
    return m_result;
}

Startup::Result* CliSession::open() {
    Startup::Result& result = startOnce();
    if (result.outcome == Startup::Outcome::RestartNeeded) {
        m_result = Startup(m_paths, m_store, m_access, m_clock, m_prompter).run();
    }
    return m_result.outcome == Startup::Outcome::Ready ? &m_result : nullptr;
}

bool CliSession::require(int level) {
    if (m_access.isOpen(level)) {
        return true;
    }
    const std::optional<QString> password = cliPassword();
    if (password && !password->isEmpty()) {
        PasswordActions(m_access, m_prompter).login(*password);
    }
    return m_access.require(level, m_prompter);
}

int fail(const QString& reason, int status) {
    QTextStream err(stderr);
    err << "brimsett-cli: " << reason << "\n";
    return status;
}

}  // namespace brimsett
