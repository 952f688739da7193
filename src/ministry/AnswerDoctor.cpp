#include "ministry/AnswerDoctor.h"

#include "foundation/Database.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett::answerdoctor {

namespace {
std::optional<Provider> first(QSqlQuery query) {
    if (!query.next()) {
        return std::nullopt;
    }
    return Provider::fromRecord(query.record());
}
}  // namespace

std::optional<Provider> byBillingNumber(Database& db, const QString& group, const QString& provider,
                                        const QString& specialty) {
    return first(db.exec(QStringLiteral("Select * From Doctors Where GroupNum=? And ProviderNum=?"
                                        " And SpecCode=? Order By DoctorID"),
                         {group, provider, specialty},
                         QStringLiteral("finding the doctor of billing number %1").arg(provider)));
}

std::optional<Provider> byBillingNumberOrProvider(Database& db, const QString& group,
                                                  const QString& provider,
                                                  const QString& specialty) {
    if (auto doctor = byBillingNumber(db, group, provider, specialty)) {
        return doctor;
    }
    return first(db.exec(QStringLiteral("Select * From Doctors Where ProviderNum=? And SpecCode=?"
                                        " Order By DoctorID"),
                         {provider, specialty},
                         QStringLiteral("finding the doctor of provider number %1").arg(provider)));
}

QString nameOf(const std::optional<Provider>& doctor, const QString& provider) {
    if (!doctor) {
        return provider + QStringLiteral(" (Provider not in Brimsett)");
    }
    return doctor->displayName();
}

}  // namespace brimsett::answerdoctor
