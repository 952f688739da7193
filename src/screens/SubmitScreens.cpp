#include "screens/SubmitScreens.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/SingleWindow.h"
#include "screens/frmPrepare.h"

namespace brimsett {

void registerSubmitScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                          SettingsStore& store, Prompter& prompter, const Clock& clock,
                          const SqlLog& log, const MoneyFormat& money, const QString& officeFolder,
                          QWidget* parent) {
    registry.setAction(kActionSubmitClaims, frmPrepare::kTitle,
                       showSingleWindow<frmPrepare>([&db, &settings, &store, &prompter, &clock,
                                                     &log, money, officeFolder, parent] {
                           return new frmPrepare(db, settings, store, prompter, clock, log, money,
                                                 officeFolder, parent);
                       }));
}

}  // namespace brimsett
