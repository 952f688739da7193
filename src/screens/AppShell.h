#pragma once

#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "foundation/Clock.h"
#include "foundation/OfficePaths.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "foundation/Startup.h"
#include "screens/MessageBoxPrompter.h"

#include <QObject>

#include <memory>

namespace brimsett {

class CardCheckTimers;
class CommandReceiver;
class PatientScreens;
class frmBMain;

// The running program: starts up, shows the main menu, answers sibling programs, and saves
// the settings and closes the database when the menu closes. Later screens register their
// menu actions and command words in registry().
class AppShell : public QObject {
    Q_OBJECT

public:
    AppShell(OfficePaths paths, const QString& settingsFile);
    ~AppShell() override;

    // The start-up; false when the program must end (the status is in exitCode()).
    bool start();
    int exitCode() const { return m_exitCode; }

    ActionRegistry& registry() { return m_registry; }
    Prompter& prompter() { return m_prompter; }
    frmBMain* mainWindow() { return m_main.get(); }
    Database& db() { return *m_session.db; }
    AppSettings& settings() { return m_session.settings; }
    AccessLevels& access() { return m_access; }
    const Clock& clock() const { return m_clock; }
    // Follows the "Track0" setting as the options screen changes it.
    const SqlLog& sqlLog() const { return m_sqlLog; }

private:
    bool chooseDatabaseLocation();
    void registerFoundationActions();
    void registerScreens();
    void openOptions();
    void openPasswords();
    void shutDown();

    OfficePaths m_paths;
    SettingsStore m_store;
    SystemClock m_clock;
    MessageBoxPrompter m_prompter;
    AccessLevels m_access;
    ActionRegistry m_registry;
    Startup::Result m_session;
    // Before the main window, whose screens hold it, so that it outlives them.
    SqlLog m_sqlLog;
    std::unique_ptr<frmBMain> m_main;
    std::unique_ptr<CommandReceiver> m_receiver;
    std::unique_ptr<PatientScreens> m_patients;
    CardCheckTimers* m_cardChecks = nullptr;  // belongs to the main window
    int m_exitCode = 0;
    bool m_shutDown = false;
};

}  // namespace brimsett
