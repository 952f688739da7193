#include "claims/ClaimEntryOptions.h"

#include "foundation/SettingsStore.h"

namespace brimsett {

ClaimEntryOptions ClaimEntryOptions::read(const SettingsStore& store) {
    const QString section = QStringLiteral("Options");
    ClaimEntryOptions o;
    const QString program = store.get(section, QStringLiteral("DefClaim")).trimmed();
    if (!program.isEmpty()) {
        o.defClaim = program;
    }
    o.defaultClaimSuffix = store.get(section, QStringLiteral("DefaultClaimSuffix")).trimmed();
    o.recPrint0 = store.readFlag(section, QStringLiteral("RecPrint0"));
    o.recPrint1 = store.readFlag(section, QStringLiteral("RecPrint1"));
    o.invPrint0 = store.readFlag(section, QStringLiteral("InvPrint0"));
    o.invPrint1 = store.readFlag(section, QStringLiteral("InvPrint1"));
    o.lCopies = qMax(1, store.readNumber(section, QStringLiteral("LCopies"), QStringLiteral("1")));
    o.bagType = store.get(section, QStringLiteral("BagType"));
    return o;
}

void ClaimEntryOptions::save(SettingsStore& store) const {
    const QString section = QStringLiteral("Options");
    store.save(section, QStringLiteral("DefClaim"), defClaim);
    store.save(section, QStringLiteral("DefaultClaimSuffix"), defaultClaimSuffix);
    store.saveFlag(section, QStringLiteral("RecPrint0"), recPrint0);
    store.saveFlag(section, QStringLiteral("RecPrint1"), recPrint1);
    store.saveFlag(section, QStringLiteral("InvPrint0"), invPrint0);
    store.saveFlag(section, QStringLiteral("InvPrint1"), invPrint1);
    store.saveNumber(section, QStringLiteral("LCopies"), lCopies);
    store.save(section, QStringLiteral("BagType"), bagType);
}

QChar ClaimEntryOptions::suffix() const {
    const QString s = defaultClaimSuffix.toUpper();
    if (s == QLatin1String("A") || s == QLatin1String("B") || s == QLatin1String("C")) {
        return s.at(0);
    }
    return QLatin1Char('A');
}

}  // namespace brimsett
