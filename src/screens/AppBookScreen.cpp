#include "screens/AppBookScreen.h"

#include "foundation/ActionRegistry.h"
#include "screens/AppSetupScreens.h"
#include "screens/ScreenOpener.h"
#include "screens/SlotGuard.h"

#include <QTimer>

namespace brimsett {

namespace {

constexpr int kActionAppointments = 3;
constexpr int kActionTodaysAppts = 4;

class AppBookOpener : public ScreenOpener {
public:
    AppBookOpener(Database& db, AppSettings& settings, SettingsStore& store, const SqlLog& log,
                  Prompter& prompter, const Clock& clock, frmAppBook::DetailsWindow details,
                  frmAppBook::BillAppointment bill, QWidget* parent)
        : ScreenOpener(db, settings, store, log, prompter, parent),
          m_clock(clock),
          m_details(std::move(details)),
          m_bill(std::move(bill)) {}

    // The book, made hidden on first use.
    frmAppBook* book() {
        if (!m_book) {
            m_book = new frmAppBook(m_db, m_settings, m_store, m_prompter, m_clock, m_log,
                                    m_details, m_bill, m_parent);
            m_book->setOvernightCheck(m_overnight);
            connect(m_book, &frmAppBook::setupRequested, this, [this] {
                if (m_setup) {
                    m_setup();
                }
            });
            windowplace::remember(m_book, m_store, QStringLiteral("frmAppBook"));
        }
        return m_book;
    }
    frmAppBook::OvernightCheck m_overnight;
    // What the book's Setup button opens.
    void setSetup(std::function<void()> setup) { m_setup = std::move(setup); }
    frmAppBook* shown() {
        frmAppBook* window = book();
        window->show();
        window->raise();
        window->activateWindow();
        return window;
    }

private:
    const Clock& m_clock;
    frmAppBook::DetailsWindow m_details;
    frmAppBook::BillAppointment m_bill;
    QPointer<frmAppBook> m_book;
    std::function<void()> m_setup;
};

}  // namespace

void registerAppBookScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                           SettingsStore& store, const SqlLog& log, Prompter& prompter,
                           const Clock& clock, frmAppBook::DetailsWindow details,
                           frmAppBook::BillAppointment bill, QWidget* parent,
                           frmAppBook::OvernightCheck overnight) {
    auto* opener = new AppBookOpener(db, settings, store, log, prompter, clock, std::move(details),
                                     std::move(bill), parent);
    opener->m_overnight = std::move(overnight);
    opener->setSetup([&registry] { registry.runAction(kActionAppointmentSetup); });
    registry.setAction(kActionAppointments, QStringLiteral("Appointments"),
                       guarded(opener, [opener] { opener->shown(); }));
    registry.setAction(kActionTodaysAppts, QStringLiteral("Today's Appts"),
                       guarded(opener, [opener] { opener->book()->printTodaysAppointments(); }));
    registry.setCommand(QStringLiteral("FINDAPPOINTMENT"), [opener](const QString& argument) {
        bool ok = false;
        const qint64 appId = argument.trimmed().toLongLong(&ok);
        if (!ok || appId <= 0) {
            return QStringLiteral("NOT FOUND");
        }
        try {
            frmAppBook* book = opener->shown();
            return book->findAppointment(appId) ? QStringLiteral("OK")
                                                : QStringLiteral("NOT FOUND");
        } catch (const DbError& e) {
            reportRefusal(opener->book(), e);
            return QStringLiteral("NOT FOUND");
        }
    });
    // Loaded in the background: made once the main menu is up, shown on the first F5.
    QTimer::singleShot(0, opener, guarded(opener, [opener] { opener->book(); }));
}

}  // namespace brimsett
