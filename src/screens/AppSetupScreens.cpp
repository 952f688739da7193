#include "screens/AppSetupScreens.h"

#include "foundation/ActionRegistry.h"
#include "screens/ScreenOpener.h"
#include "screens/SlotGuard.h"
#include "screens/frmAppDoctors.h"
#include "screens/frmAppSetup.h"
#include "screens/frmAppTimeSlots.h"
#include "screens/frmManageCodes.h"

#include <QPointer>

namespace brimsett {

namespace {

enum Window { kSlotTypes, kTemplates, kColumns };

// Opens the list and each setup window once, and brings them forward when asked again.
class AppSetupOpener : public ScreenOpener {
public:
    using ScreenOpener::ScreenOpener;

    void showList() {
        bringForward(m_list, [this] {
            auto* list =
                new frmManageCodes({QStringLiteral("Slot Types"), QStringLiteral("Templates"),
                                    QStringLiteral("Book Columns")},
                                   m_parent, QStringLiteral("Appointment Setup"));
            connect(list, &frmManageCodes::chosen, this, guarded(this, &AppSetupOpener::open));
            return list;
        });
    }

    void open(int window) {
        switch (window) {
            case kSlotTypes:
                bringForward(
                    m_slotTypes,
                    [this] {
                        auto* screen = new frmAppSetup(m_db, m_prompter, m_log, m_parent);
                        connect(screen, &frmAppSetup::slotTypesChanged, this, guarded(this, [this] {
                                    if (m_templates) {
                                        m_templates->reloadSlotTypes();
                                    }
                                }));
                        return screen;
                    },
                    QStringLiteral("frmAppSetup"));
                break;
            case kTemplates:
                bringForward(
                    m_templates,
                    [this] {
                        return new frmAppTimeSlots(m_db, m_settings, m_prompter, m_log, m_parent);
                    },
                    QStringLiteral("frmAppTimeSlots"));
                break;
            case kColumns:
                bringForward(
                    m_columns,
                    [this] { return new frmAppDoctors(m_db, m_prompter, m_log, m_parent); },
                    QStringLiteral("frmAppDoctors"));
                break;
            default:
                break;
        }
    }

private:
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
