#include "ministry/ThirdPartyRegister.h"

#include "foundation/Database.h"
#include "foundation/RecordValues.h"

#include <QSqlRecord>

namespace brimsett {

QList<ThirdPartyChoice> thirdPartyChoices(Database& db) {
    QSqlQuery q =
        db.exec(QStringLiteral(
                    "Select ThirdPartyID, Name From thirdparty Order By Lower(Name), ThirdPartyID"),
                {}, QStringLiteral("reading the third party payers"));
    QList<ThirdPartyChoice> choices;
    while (q.next()) {
        const qint64 id = q.value(0).toLongLong();
        choices.append({id, QString::number(id) + QStringLiteral(" - ") + q.value(1).toString()});
    }
    return choices;
}

}  // namespace brimsett
