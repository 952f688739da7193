#include "claims/DirectCodes.h"

#include "claims/ClaimFieldForms.h"
#include "foundation/Database.h"

#include <QSqlQuery>

namespace brimsett::directcodes {

std::optional<DirectCode> find(Database& db, const QString& code, const QString& doing) {
    const QString typed = code.trimmed().toUpper();
    const QString feeCode = claimform::isScheduleItemCode(typed) ? typed.left(4) : typed;
    // The code as typed wins over its fee code when the office priced both.
    QSqlQuery q = db.exec(QStringLiteral("Select ServiceCode, Fee From servicecodesdirect"
                                         " Where Upper(Trim(ServiceCode)) In (?, ?)"
                                         " Order By Case When Upper(Trim(ServiceCode))=?"
                                         " Then 0 Else 1 End"),
                          {typed, feeCode, typed}, doing);
    if (!q.next()) {
        return std::nullopt;
    }
    return DirectCode{q.value(0).toString(), Money::fromVariant(q.value(1))};
}

}  // namespace brimsett::directcodes
