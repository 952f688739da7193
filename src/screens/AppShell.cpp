#include "screens/AppShell.h"

#include "foundation/CommandReceiver.h"
#include "foundation/MenuModel.h"
#include "foundation/ServerAddress.h"
#include "screens/AppBookScreen.h"
#include "screens/AppDetailsScreen.h"
#include "screens/AppSetupScreens.h"
#include "screens/CardCheckTimers.h"
#include "screens/ClaimScreens.h"
#include "screens/CodeScreens.h"
#include "screens/HcvScreens.h"
#include "screens/PastClaimsScreens.h"
#include "screens/PatientScreens.h"
#include "screens/ProviderScreens.h"
#include "screens/SlotGuard.h"
#include "screens/ThirdPartyScreens.h"
#include "screens/TransferScreens.h"
#include "screens/frmBMain.h"
#include "screens/frmLogin.h"
#include "screens/frmOptions.h"
#include "screens/frmPasswords.h"

#include <QApplication>
#include <QDesktopServices>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QUrl>

namespace brimsett {

namespace {

// Menu actions this part of the program answers itself.
constexpr int kActionOptions = 21;
constexpr int kActionAbout = 23;
constexpr int kActionOpenFolder = 24;
constexpr int kActionLogin = 32;

}  // namespace

AppShell::AppShell(OfficePaths paths, const QString& settingsFile)
    : m_paths(std::move(paths)),
      m_store(settingsFile),
      m_access(m_store),
      m_sqlLog(m_paths, false) {}

AppShell::~AppShell() {
    shutDown();
}

bool AppShell::start() {
    for (;;) {
        m_session = Startup(m_paths, m_store, m_access, m_clock, m_prompter).run();
        switch (m_session.outcome) {
            case Startup::Outcome::Ready:
                break;
            case Startup::Outcome::OpenFailed:
                if (chooseDatabaseLocation()) {
                    continue;
                }
                m_exitCode = 1;
                return false;
            case Startup::Outcome::RestartNeeded:
                m_exitCode = 0;
                return false;
            case Startup::Outcome::UpgradeFailed:
            case Startup::Outcome::SetupFailed:
                m_exitCode = 1;
                return false;
        }
        break;
    }

    registerFoundationActions();
    QList<MenuEntry> menu;
    try {
        menu = loadMenu(*m_session.db);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The menu could not be read from the database:"),
                          e.message(), QString(),
                          QStringLiteral("Brimsett shows its standard menu.")});
        menu = defaultMenu();
    }
    m_main = std::make_unique<frmBMain>(menu, m_session.settings, m_registry, m_prompter);
    m_prompter.setParent(m_main.get());
    connect(m_main.get(), &frmBMain::shuttingDown, this, guarded(this, &AppShell::shutDown));
    m_sqlLog.setOn(m_session.settings.sqlLogOn());
    registerScreens();

    m_receiver = std::make_unique<CommandReceiver>(*m_session.db, m_paths, m_clock, m_registry);
    QString error;
    if (!m_receiver->listen(&error)) {
        // The program still works; only sibling programs cannot reach this copy.
        m_main->setStatusText(error);
    }
    m_main->show();
    return true;
}

bool AppShell::chooseDatabaseLocation() {
    // A workstation of a server office asks again for the server: it may be back, or its
    // address may need correcting; a folder would be the wrong question.
    const QString failed = m_session.openFailure ? m_session.openFailure->location : QString();
    if (ServerAddress::names(failed)) {
        bool ok = false;
        const QString address = QInputDialog::getText(
            nullptr, QStringLiteral("Database server"),
            QStringLiteral("Try again, or correct the address of the office's database:"),
            QLineEdit::Normal, failed, &ok);
        if (!ok || address.trimmed().isEmpty()) {
            return false;
        }
        m_store.save(QStringLiteral("General"), QStringLiteral("dbPath"), address.trimmed());
        m_store.sync();
        return true;
    }
    const QString folder = QFileDialog::getExistingDirectory(
        nullptr, QStringLiteral("Choose the folder of medical.mdb"), m_paths.folder());
    if (folder.isEmpty()) {
        return false;
    }
    m_store.save(QStringLiteral("General"), QStringLiteral("dbPath"), folder + QLatin1Char('/'));
    m_store.sync();
    return true;
}

void AppShell::registerFoundationActions() {
    m_registry.setAction(kActionOptions, QStringLiteral("Options"), [this] { openOptions(); });
    m_registry.setAction(kActionLogin, QStringLiteral("Login"), [this] {
        frmLogin login(m_access, m_prompter, m_main.get());
        login.exec();
    });
    m_registry.setAction(kActionAbout, QStringLiteral("About Brimsett"), [this] {
        QMessageBox::about(
            m_main.get(), QStringLiteral("About Brimsett"),
            QStringLiteral("Brimsett %1\nBilling and appointments for the physician's "
                           "office.\n\nOffice folder: %2\nDatabase: %3")
                .arg(QApplication::applicationVersion(), m_paths.folder(),
                     m_session.db->location()));
    });
    m_registry.setAction(kActionOpenFolder, QStringLiteral("Open Brimsett Folder"), [this] {
        QDesktopServices::openUrl(QUrl::fromLocalFile(m_paths.folder()));
    });
}

void AppShell::registerScreens() {
    m_patients = std::make_unique<PatientScreens>(*m_session.db, m_session.settings, m_store,
                                                  m_prompter, m_clock, m_sqlLog, m_main.get());
    m_patients->registerIn(m_registry);
    m_cardChecks = new CardCheckTimers(
        *m_session.db, m_store, m_clock, m_prompter, m_sqlLog, m_paths.folder(),
        [this](const QString& healthNum) { m_patients->cardAnswered(healthNum); }, m_main.get());
    hcv::CardExchange& cards = m_cardChecks->exchange();
    appointments::CardCheck appCard;
    if (cards.pollingOn()) {
        m_patients->setCardCheck([this](const QString& healthNum, const QString& versionCode) {
            m_cardChecks->requestAsked(healthNum, versionCode);
        });
        appCard.pollingOn = true;
        appCard.request = [this](const QString& healthNum, const QString& versionCode) {
            if (m_cardChecks) {
                m_cardChecks->exchange().RequestCardCheck(healthNum, versionCode, false);
            }
        };
    }
    registerProviderScreens(m_registry, *m_session.db, m_session.settings, m_store, m_sqlLog,
                            m_prompter, m_main.get());
    auto appDetails =
        registerAppDetailsScreen(m_registry, *m_session.db, m_session.settings, m_store, m_sqlLog,
                                 m_prompter, m_main.get(), std::move(appCard));
    const OpenCheckHealth overnight = registerHcvScreens(
        m_registry, HcvScreenParts{*m_session.db, m_session.settings, m_store, m_sqlLog, m_prompter,
                                   m_clock, cards, *m_patients, m_paths.folder(), m_main.get()});
    registerAppSetupScreens(m_registry, *m_session.db, m_session.settings, m_store, m_sqlLog,
                            m_prompter, m_main.get());
    registerCodeScreens(m_registry, *m_session.db, m_session.settings, m_sqlLog, m_prompter,
                        m_session.money, m_access, m_main.get());
    registerThirdPartyScreen(m_registry, *m_session.db, m_prompter, m_sqlLog, m_main.get());
    const auto billAppointment =
        registerClaimScreen(m_registry, *m_session.db, m_session.settings, m_store, m_prompter,
                            m_clock, m_sqlLog, m_session.money, m_main.get());
    registerAppBookScreen(m_registry, *m_session.db, m_session.settings, m_store, m_sqlLog,
                          m_prompter, m_clock, appDetails, billAppointment, m_main.get(),
                          overnight);
    registerTransferScreens(m_registry, *m_session.db, m_session.settings, m_store, m_prompter,
                            m_clock, m_sqlLog, m_session.money, m_paths.folder(), m_main.get());
    registerPastClaimsScreen(m_registry, *m_session.db, m_session.settings, m_store, m_prompter,
                             m_clock, m_sqlLog, m_session.money, m_main.get());
}

void AppShell::openOptions() {
    // The options hold the database location and the SQL log: the Master's business.
    if (!m_access.require(AccessLevels::kMaster, m_prompter)) {
        return;
    }
    frmOptions options(m_session.settings, m_store, *m_session.db, m_prompter, m_main.get());
    connect(&options, &frmOptions::passwordsRequested, this,
            guarded(this, &AppShell::openPasswords));
    if (options.exec() == QDialog::Accepted) {
        m_session.settings = options.settings();
        m_main->applySettings(m_session.settings);
        m_sqlLog.setOn(m_session.settings.sqlLogOn());
    }
}

void AppShell::openPasswords() {
    frmPasswords passwords(m_access, m_prompter, m_main.get());
    passwords.exec();
}

void AppShell::shutDown() {
    if (m_shutDown || !m_session.db) {
        return;
    }
    m_shutDown = true;
    if (m_receiver) {
        m_receiver->close();
    }
    // The timers call into the patient window: they go first.
    delete m_cardChecks;
    m_cardChecks = nullptr;
    m_patients.reset();
    m_session.settings.saveAll(m_store, m_clock);
    m_session.db->close();
}

}  // namespace brimsett
