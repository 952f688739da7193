#include "screens/ClaimScreens.h"

#include "claims/ClaimEntryOptions.h"
#include "foundation/ActionRegistry.h"
#include "screens/frmClaim.h"

#include <QPointer>

#include <memory>

namespace brimsett {

namespace {

constexpr int kActionClaims = 1;

}  // namespace

void registerClaimScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                         const SettingsStore& store, Prompter& prompter, const Clock& clock,
                         const SqlLog& log, const MoneyFormat& money, QWidget* parent) {
    auto window = std::make_shared<QPointer<frmClaim>>();
    registry.setAction(
        kActionClaims, frmClaim::kTitle,
        [window, &registry, &db, &settings, &store, &prompter, &clock, &log, money, parent] {
            if (!*window) {
                *window = new frmClaim(db, settings, ClaimEntryOptions::read(store), prompter,
                                       clock, log, money, registry, parent);
                (*window)->setAttribute(Qt::WA_DeleteOnClose);
            }
            (*window)->show();
            (*window)->raise();
            (*window)->activateWindow();
        });
}

}  // namespace brimsett
