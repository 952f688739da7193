#include "screens/TransferScreens.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/SingleWindow.h"
#include "screens/frmPrepare.h"
#include "screens/frmReceive.h"

namespace brimsett {

namespace {

// Both screens take the same office objects.
template <class Window>
void registerWindow(int action, ActionRegistry& registry, Database& db, AppSettings& settings,
                    SettingsStore& store, Prompter& prompter, const Clock& clock, const SqlLog& log,
                    const MoneyFormat& money, const QString& officeFolder, QWidget* parent) {
    registry.setAction(action, Window::kTitle,
                       showSingleWindow<Window>([&db, &settings, &store, &prompter, &clock, &log,
                                                 money, officeFolder, parent] {
                           return new Window(db, settings, store, prompter, clock, log, money,
                                             officeFolder, parent);
                       }));
}

}  // namespace

void registerTransferScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, Prompter& prompter, const Clock& clock,
                             const SqlLog& log, const MoneyFormat& money,
                             const QString& officeFolder, QWidget* parent) {
    registerWindow<frmPrepare>(kActionSubmitClaims, registry, db, settings, store, prompter, clock,
                               log, money, officeFolder, parent);
    registerWindow<frmReceive>(kActionReconcile, registry, db, settings, store, prompter, clock,
                               log, money, officeFolder, parent);
}

}  // namespace brimsett
