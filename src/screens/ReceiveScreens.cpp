#include "screens/ReceiveScreens.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/SingleWindow.h"
#include "screens/frmReceive.h"

namespace brimsett {

void registerReceiveScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                           SettingsStore& store, Prompter& prompter, const Clock& clock,
                           const SqlLog& log, const MoneyFormat& money, const QString& officeFolder,
                           QWidget* parent) {
    registry.setAction(kActionReconcile, frmReceive::kTitle,
                       showSingleWindow<frmReceive>([&db, &settings, &store, &prompter, &clock,
                                                     &log, money, officeFolder, parent] {
                           return new frmReceive(db, settings, store, prompter, clock, log, money,
                                                 officeFolder, parent);
                       }));
}

}  // namespace brimsett
