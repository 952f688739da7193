#include "screens/AppSetupScreens.h"

#include "foundation/ActionRegistry.h"
#include "screens/SlotGuard.h"
#include "screens/WindowPlace.h"
#include "screens/frmAppDoctors.h"
#include "screens/frmAppSetup.h"
#include "screens/frmAppTimeSlots.h"
#include "screens/frmManageCodes.h"

#include <QPointer>

namespace brimsett {

namespace {

enum Window { kSlotTypes, kTemplates, kColumns };

// Opens the list and each setup window once, and brings them forward when asked again.
class AppSetupOpener : public QObject {
public:
    AppSetupOpener(Database& db, AppSettings& settings, SettingsStore& store, const SqlLog& log,
                   Prompter& prompter, QWidget* parent)
        : QObject(parent),
          m_db(db),
          m_settings(settings),
          m_store(store),
          m_log(log),
          m_prompter(prompter),
          m_parent(parent) {}

    void showList() {
        if (!m_list) {
            m_list = new frmManageCodes({QStringLiteral("Slot Types"), QStringLiteral("Templates"),
                                         QStringLiteral("Book Columns")},
                                        m_parent, QStringLiteral("Appointment Setup"));
            m_list->setAttribute(Qt::WA_DeleteOnClose);
            connect(m_list, &frmManageCodes::chosen, this, guarded(this, &AppSetupOpener::open));
        }
        bringForward(m_list);
    }

    void open(int window) {
        switch (window) {
            case kSlotTypes:
                if (!m_slotTypes) {
                    m_slotTypes = made(new frmAppSetup(m_db, m_prompter, m_log, m_parent),
                                       QStringLiteral("frmAppSetup"));
                    connect(m_slotTypes, &frmAppSetup::slotTypesChanged, this,
                            guarded(this, [this] {
                                if (m_templates) {
                                    m_templates->reloadSlotTypes();
                                }
                            }));
                }
                bringForward(m_slotTypes);
                break;
            case kTemplates:
                if (!m_templates) {
                    m_templates =
                        made(new frmAppTimeSlots(m_db, m_settings, m_prompter, m_log, m_parent),
                             QStringLiteral("frmAppTimeSlots"));
                }
                bringForward(m_templates);
                break;
            case kColumns:
                if (!m_columns) {
                    m_columns = made(new frmAppDoctors(m_db, m_prompter, m_log, m_parent),
                                     QStringLiteral("frmAppDoctors"));
                }
                bringForward(m_columns);
                break;
            default:
                break;
        }
    }

private:
    template <typename Screen>
    Screen* made(Screen* screen, const QString& key) {
        screen->setAttribute(Qt::WA_DeleteOnClose);
        windowplace::remember(screen, m_store, key);
        return screen;
    }

    static void bringForward(QWidget* window) {
        window->show();
        window->raise();
        window->activateWindow();
    }

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    const SqlLog& m_log;
    Prompter& m_prompter;
    QWidget* m_parent;
    QPointer<frmManageCodes> m_list;
    QPointer<frmAppSetup> m_slotTypes;
    QPointer<frmAppTimeSlots> m_templates;
    QPointer<frmAppDoctors> m_columns;
};

}  // namespace

void registerAppSetupScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, const SqlLog& log, Prompter& prompter,
                             QWidget* parent) {
    auto* opener = new AppSetupOpener(db, settings, store, log, prompter, parent);
    registry.setAction(kActionAppointmentSetup, QStringLiteral("Appointment Setup"),
                       [opener] { opener->showList(); });
}

}  // namespace brimsett
