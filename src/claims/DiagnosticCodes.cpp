#include "claims/DiagnosticCodes.h"

#include "claims/ClaimFieldForms.h"
#include "foundation/Database.h"

namespace brimsett::diagcodes {

bool isListed(Database& db, const QString& code, const QString& doing) {
    return db.scalar(QStringLiteral("Select Case When Exists (Select 1 From diagcodes"
                                    " Where Trim(DiagCode)=?) Or Not Exists (Select 1"
                                    " From diagcodes) Then 1 Else 0 End"),
                     {code}, doing)
               .toInt() != 0;
}

bool isValid(Database& db, const QString& code, const QString& doing) {
    return claimform::isDiagnosticCode(code) && isListed(db, code, doing);
}

}  // namespace brimsett::diagcodes
