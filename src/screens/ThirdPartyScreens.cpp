#include "screens/ThirdPartyScreens.h"

#include "foundation/ActionRegistry.h"
#include "screens/frmThirdParty.h"

#include <QPointer>

namespace brimsett {

void registerThirdPartyScreen(ActionRegistry& registry, Database& db, Prompter& prompter,
                              const SqlLog& log, QWidget* parent) {
    // One window for the run: made on first use, brought forward after; it belongs to
    // parent, so closing the main menu closes it (asking about unsaved changes).
    auto window = std::make_shared<QPointer<frmThirdParty>>();
    registry.setAction(kActionThirdParty, QStringLiteral("Third Party Payers"),
                       [window, &db, &prompter, &log, parent] {
                           if (!*window) {
                               *window = new frmThirdParty(db, prompter, log, parent);
                               (*window)->setAttribute(Qt::WA_DeleteOnClose);
                           }
                           (*window)->show();
                           (*window)->raise();
                           (*window)->activateWindow();
                       });
}

}  // namespace brimsett
