#include "screens/ClaimScreens.h"

#include "claims/ClaimEntryOptions.h"
#include "foundation/ActionRegistry.h"
#include "screens/SingleWindow.h"
#include "screens/WindowPlace.h"
#include "screens/frmClaim.h"

namespace brimsett {

namespace {

constexpr int kActionClaims = 1;

}  // namespace

std::function<bool(const appointments::BillingStart&)> registerClaimScreen(
    ActionRegistry& registry, Database& db, AppSettings& settings, SettingsStore& store,
    Prompter& prompter, const Clock& clock, const SqlLog& log, const MoneyFormat& money,
    QWidget* parent) {
    auto window = singleWindow<frmClaim>(
        [&registry, &db, &settings, &store, &prompter, &clock, &log, money, parent] {
            auto* made = new frmClaim(db, settings, ClaimEntryOptions::read(store), prompter, clock,
                                      log, money, registry, parent);
            windowplace::remember(made, store, QStringLiteral("frmClaim"));
            return made;
        });
    registry.setAction(kActionClaims, frmClaim::kTitle, [window] { window(); });
    return [window](const appointments::BillingStart& start) {
        return window()->startFromAppointment(start);
    };
}

}  // namespace brimsett
