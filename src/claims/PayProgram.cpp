#include "claims/PayProgram.h"

namespace brimsett::payprog {

const QStringList& storedForms() {
    static const QStringList forms = {
        QStringLiteral("HCP - P"), QStringLiteral("HCP - S"), QStringLiteral("RMB"),
        QStringLiteral("WCB"),     QStringLiteral("Direct"),  QStringLiteral("Third Party"),
    };
    return forms;
}

int indexOf(const QString& stored) {
    const int index = storedForms().indexOf(stored);
    return index < 0 ? ThirdParty : index;
}

QString storedForm(int index) {
    return storedForms().value(index, storedForms().at(ThirdParty));
}

QString shortForm(int index) {
    static const QStringList forms = {
        QStringLiteral("HCP-P"), QStringLiteral("HCP-S"),  QStringLiteral("RMB"),
        QStringLiteral("WCB"),   QStringLiteral("Direct"), QStringLiteral("3rd.P."),
    };
    return forms.value(index, forms.at(ThirdParty));
}

QChar claimType(const QString& stored) {
    if (stored.trimmed().isEmpty()) {
        return {};
    }
    static const QString letters = QStringLiteral("HHRWDT");
    return letters.at(indexOf(stored));
}

bool goesToMinistry(const QString& stored) {
    const QChar type = claimType(stored);
    return type == QLatin1Char('H') || type == QLatin1Char('R') || type == QLatin1Char('W');
}

}  // namespace brimsett::payprog
