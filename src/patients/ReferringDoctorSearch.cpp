#include "patients/ReferringDoctorSearch.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/SqlText.h"

#include <QSqlRecord>

namespace brimsett {

namespace {

constexpr int kWholeTextSwitch = 7;

}  // namespace

ReferringDoctorMatches ReferringDoctorSearch::find(const QString& typed) {
    const QString text = typed.trimmed();
    const bool wholeText = m_settings.option[kWholeTextSwitch];
    QStringList conditions;
    QVariantList values;
    const auto criterion = [&](const QString& column, const QString& part) {
        const sqltext::LikeCriterion c =
            sqltext::likeCriterion(m_db.dialect(), column, part, wholeText);
        conditions << c.sql;
        values << c.values;
    };

    if (!text.isEmpty() && text.at(0).isDigit()) {
        criterion(QStringLiteral("ProviderNum"), text);
    } else if (!text.isEmpty()) {
        const qsizetype comma = text.indexOf(QLatin1Char(','));
        const QString last = (comma < 0 ? text : text.left(comma)).trimmed();
        const QString first = comma < 0 ? QString() : text.mid(comma + 1).trimmed();
        if (!last.isEmpty()) {
            criterion(QStringLiteral("LName"), last);
        }
        if (!first.isEmpty()) {
            criterion(QStringLiteral("FName"), first);
        }
    }

    QString statement = QStringLiteral("Select * From DoctorsOther");
    if (!conditions.isEmpty()) {
        statement += QStringLiteral(" Where") + conditions.join(QStringLiteral(" And"));
    }
    // A missing name sorts first on every engine (a server would put it last).
    statement += QStringLiteral(
                     " Order By LName Is Null Desc, LName, FName Is Null Desc, FName, ProviderNum "
                     "Limit %1")
                     .arg(kLimit + 1);

    ReferringDoctorMatches matches;
    QSqlQuery q = m_db.exec(statement, values, QStringLiteral("searching the referring doctors"));
    while (q.next()) {
        if (matches.rows.size() == kLimit) {
            matches.more = true;
            break;
        }
        matches.rows << ReferringDoctor::fromRecord(q.record());
    }
    return matches;
}

}  // namespace brimsett
