#include "hcv/HcvSettings.h"

#include "foundation/SettingsStore.h"

namespace brimsett::hcv {

HcvSettings HcvSettings::read(const SettingsStore& store) {
    const QString general = QStringLiteral("General");
    HcvSettings s;
    s.hx = store.get(general, QStringLiteral("HX"));
    s.fx = store.get(general, QStringLiteral("FX"));
    s.px = store.get(general, QStringLiteral("PX"));
    s.mx = store.get(general, QStringLiteral("MX"));
    s.ho = store.get(general, QStringLiteral("HO"));
    s.hi = store.get(general, QStringLiteral("HI"));
    s.pollingOn =
        store.get(QStringLiteral("Options"), QStringLiteral("TCP1")) == QLatin1String("1");
    return s;
}

void HcvSettings::save(SettingsStore& store) const {
    const QString general = QStringLiteral("General");
    store.save(general, QStringLiteral("HX"), hx);
    store.save(general, QStringLiteral("FX"), fx);
    store.save(general, QStringLiteral("PX"), px);
    store.save(general, QStringLiteral("MX"), mx);
    store.save(general, QStringLiteral("HO"), ho);
    store.save(general, QStringLiteral("HI"), hi);
    store.save(QStringLiteral("Options"), QStringLiteral("TCP1"),
               pollingOn ? QStringLiteral("1") : QStringLiteral("0"));
}

}  // namespace brimsett::hcv
