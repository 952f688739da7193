#include "screens/ThirdPartyScreens.h"

#include "foundation/ActionRegistry.h"
#include "screens/SingleWindow.h"
#include "screens/frmThirdParty.h"

namespace brimsett {

void registerThirdPartyScreen(ActionRegistry& registry, Database& db, Prompter& prompter,
                              const SqlLog& log, QWidget* parent) {
    // One window for the run: made on first use, brought forward after; it belongs to
    // parent, so closing the main menu closes it (asking about unsaved changes).
    registry.setAction(kActionThirdParty, QStringLiteral("Third Party Payers"),
                       showSingleWindow<frmThirdParty>([&db, &prompter, &log, parent] {
                           return new frmThirdParty(db, prompter, log, parent);
                       }));
}

}  // namespace brimsett
