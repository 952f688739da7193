#include "screens/HcvScreens.h"

#include "foundation/ActionRegistry.h"
#include "hcv/SwipeCard.h"
#include "screens/FrmCheckHealth.h"
#include "screens/ScreenOpener.h"
#include "screens/frmSwipe.h"

#include <QPointer>

namespace brimsett {

namespace {

constexpr int kActionSwipe = 13;

// Opens each health card window once and brings it forward when it is asked for again.
class HcvScreenOpener : public ScreenOpener {
public:
    explicit HcvScreenOpener(const HcvScreenParts& parts)
        : ScreenOpener(parts.db, parts.settings, parts.store, parts.log, parts.prompter,
                       parts.parent),
          m_parts(parts) {}

    frmSwipe* swipe() {
        return bringForward(
            m_swipe, [this] { return new frmSwipe(m_parts); }, QStringLiteral("frmSwipe"));
    }

    FrmCheckHealth* checkHealth() {
        return bringForward(
            m_checkHealth,
            [this] {
                return new FrmCheckHealth(m_db, m_settings, m_store, m_prompter, m_parts.clock,
                                          m_log, m_parts.officeFolder, m_parent);
            },
            QStringLiteral("FrmCheckHealth"));
    }

private:
    HcvScreenParts m_parts;
    QPointer<frmSwipe> m_swipe;
    QPointer<FrmCheckHealth> m_checkHealth;
};

// The refusal of a stripe in one line, as a sibling program shows it.
QString refusalOf(const hcv::SwipeResult& read) {
    return read.problem.value(0, QStringLiteral("This is not a health card."));
}

}  // namespace

OpenCheckHealth registerHcvScreens(ActionRegistry& registry, const HcvScreenParts& parts) {
    auto* opener = new HcvScreenOpener(parts);
    registry.setAction(kActionSwipe, frmSwipe::kTitle, [opener] { opener->swipe(); });
    registry.setCommand(QStringLiteral("SWIPE"), [opener](const QString& stripe) {
        frmSwipe* window = opener->swipe();
        if (stripe.isEmpty()) {
            return QStringLiteral("OK");
        }
        const hcv::SwipeResult read = window->swipe(stripe);
        return read.kind == hcv::SwipeResult::Kind::Card ? QStringLiteral("OK") : refusalOf(read);
    });
    registry.setCommand(QStringLiteral("VSWIPE"), [](const QString& stripe) {
        const hcv::SwipeResult read = hcv::parseSwipe(stripe);
        if (read.kind != hcv::SwipeResult::Kind::Card) {
            return refusalOf(read);
        }
        const hcv::SwipedCard& c = read.card;
        return QStringList{c.healthNum,  c.versionCode, c.lastName, c.firstName,
                           c.middleName, c.expiry,      c.sex,      c.dob}
            .join(QLatin1Char('|'));
    });
    return [opener](const QString& doctorId, const QDate& day) {
        opener->checkHealth()->open(doctorId, day);
    };
}

}  // namespace brimsett
