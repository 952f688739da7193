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

void registerClaimScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                         SettingsStore& store, Prompter& prompter, const Clock& clock,
                         const SqlLog& log, const MoneyFormat& money, QWidget* parent) {
    registry.setAction(kActionClaims, frmClaim::kTitle,
                       showSingleWindow<frmClaim>([&registry, &db, &settings, &store, &prompter,
                                                   &clock, &log, money, parent] {
                           auto* window =
                               new frmClaim(db, settings, ClaimEntryOptions::read(store), prompter,
                                            clock, log, money, registry, parent);
                           windowplace::remember(window, store, QStringLiteral("frmClaim"));
                           return window;
                       }));
}

}  // namespace brimsett
