#include "screens/ReceiveScreens.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/frmReceive.h"

#include <QPointer>

#include <memory>

namespace brimsett {

void registerReceiveScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                           SettingsStore& store, Prompter& prompter, const Clock& clock,
                           const SqlLog& log, const MoneyFormat& money, const QString& officeFolder,
                           QWidget* parent) {
    auto window = std::make_shared<QPointer<frmReceive>>();
    registry.setAction(
        kActionReconcile, frmReceive::kTitle,
        [window, &db, &settings, &store, &prompter, &clock, &log, money, officeFolder, parent] {
            if (!*window) {
                *window = new frmReceive(db, settings, store, prompter, clock, log, money,
                                         officeFolder, parent);
                (*window)->setAttribute(Qt::WA_DeleteOnClose);
            }
            (*window)->show();
            (*window)->raise();
            (*window)->activateWindow();
        });
}

}  // namespace brimsett
