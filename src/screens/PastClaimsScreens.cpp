#include "screens/PastClaimsScreens.h"

#include "foundation/ActionRegistry.h"
#include "foundation/Money.h"
#include "screens/SingleWindow.h"
#include "screens/WindowPlace.h"
#include "screens/frmClaim.h"
#include "screens/frmPastClaims.h"

namespace brimsett {

namespace {

constexpr int kActionClaims = 1;

// The claim entry window is made and kept by its own menu action; running the action shows
// it (made if need be), and it is then the parent's one frmClaim.
bool openInClaimEntry(const ActionRegistry& registry, QWidget* parent, qint64 claimId) {
    if (!registry.runAction(kActionClaims) || parent == nullptr) {
        return false;
    }
    auto* claims = parent->findChild<frmClaim*>(QString(), Qt::FindDirectChildrenOnly);
    return claims != nullptr && claims->openClaim(claimId);
}

}  // namespace

void registerPastClaimsScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                              SettingsStore& store, Prompter& prompter, const Clock& clock,
                              const SqlLog& log, const MoneyFormat& money, QWidget* parent) {
    registry.setAction(kActionPastClaims, frmPastClaims::kTitle,
                       showSingleWindow<frmPastClaims>([&registry, &db, &settings, &store,
                                                        &prompter, &clock, &log, money, parent] {
                           auto* made = new frmPastClaims(db, settings, store, prompter, clock, log,
                                                          money, parent);
                           made->setClaimOpener([&registry, parent](qint64 claimId) {
                               return openInClaimEntry(registry, parent, claimId);
                           });
                           windowplace::remember(made, store, QStringLiteral("frmPastClaims"));
                           return made;
                       }));
}

}  // namespace brimsett
