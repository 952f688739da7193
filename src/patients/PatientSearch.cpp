#include "patients/PatientSearch.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/SqlText.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

#include <functional>

namespace brimsett {

namespace {

constexpr int kWholeTextSwitch = 7;
constexpr int kLastNameFirstSwitch = 8;

const QString kSelect = QStringLiteral(
    "Select PatientID, FName, LName, HealthNum, VersionCode, DOB, HPhone, WPhone"
    " From patients Where");
// A missing name sorts first on every engine (a server would put it last).
const QString kOrder = QStringLiteral(
    " Order By LName Is Null Desc, Lower(LName), FName Is Null Desc, Lower(FName), PatientID");

enum Column { Id, FName, LName, HealthNum, VersionCode, Dob, HPhone, WPhone };

QString digitsOf(const QString& text) {
    QString digits;
    for (const QChar c : text) {
        if (c >= QLatin1Char('0') && c <= QLatin1Char('9')) {
            digits += c;
        }
    }
    return digits;
}

// Reads rows until the list is full; `keep` may pass over rows the statement could not
// exclude. One row beyond the limit tells that there are more.
PatientMatches collect(QSqlQuery q, bool lastNameFirst,
                       const std::function<bool(const QSqlQuery&)>& keep = {}) {
    PatientMatches matches;
    while (q.next()) {
        if (keep && !keep(q)) {
            continue;
        }
        if (matches.rows.size() == PatientSearch::kLimit) {
            matches.more = true;
            break;
        }
        PatientEntry names;
        names.fName = q.value(FName).toString();
        names.lName = q.value(LName).toString();
        const QString number = q.value(HealthNum).toString();
        const QString version = q.value(VersionCode).toString();
        const QString home = q.value(HPhone).toString();
        matches.rows.append({q.value(Id).toLongLong(), names.displayName(lastNameFirst),
                             version.isEmpty() ? number : number + QLatin1Char(' ') + version,
                             dateTextOf(q.value(Dob)),
                             home.isEmpty() ? q.value(WPhone).toString() : home});
    }
    return matches;
}

}  // namespace

TypedName splitTypedName(const QString& typed) {
    const qsizetype comma = typed.indexOf(QLatin1Char(','));
    if (comma < 0) {
        return {typed.trimmed(), {}};
    }
    return {typed.left(comma).trimmed(), typed.mid(comma + 1).trimmed()};
}

PatientSearch::PatientSearch(Database& db, const AppSettings& settings)
    : m_db(db), m_settings(settings) {}

PatientMatches PatientSearch::byId(qint64 id) {
    return collect(m_db.exec(kSelect + QStringLiteral(" PatientID=?"), {id},
                             QStringLiteral("finding patient %1").arg(id)),
                   m_settings.option[kLastNameFirstSwitch]);
}

PatientMatches PatientSearch::byName(const QString& lastName, const QString& firstName) {
    const bool wholeText = m_settings.option[kWholeTextSwitch];
    const auto last =
        sqltext::likeCriterion(m_db.dialect(), QStringLiteral("LName"), lastName, wholeText);
    QString where = last.sql;
    QVariantList values = last.values;
    if (!firstName.isEmpty()) {
        const auto first =
            sqltext::likeCriterion(m_db.dialect(), QStringLiteral("FName"), firstName, wholeText);
        where += QStringLiteral(" And") + first.sql;
        values += first.values;
    }
    return collect(m_db.exec(kSelect + where + kOrder + QStringLiteral(" Limit %1").arg(kLimit + 1),
                             values, QStringLiteral("finding patients by name")),
                   m_settings.option[kLastNameFirstSwitch]);
}

PatientMatches PatientSearch::byHealthNumber(const QString& typed) {
    const auto c = sqltext::likeCriterion(m_db.dialect(), QStringLiteral("HealthNum"), typed,
                                          m_settings.option[kWholeTextSwitch]);
    return collect(m_db.exec(kSelect + c.sql + kOrder + QStringLiteral(" Limit %1").arg(kLimit + 1),
                             c.values, QStringLiteral("finding patients by health number")),
                   m_settings.option[kLastNameFirstSwitch]);
}

PatientMatches PatientSearch::byPhone(const QString& typed) {
    const QString digits = digitsOf(typed);
    if (digits.isEmpty()) {
        return {};
    }
    // The statement narrows the rows to phones holding these digits in this order with
    // anything between them; only a run of them without other digits between is a match.
    QString pattern = QStringLiteral("*");
    for (const QChar c : digits) {
        pattern += c;
        pattern += QLatin1Char('*');
    }
    const auto home =
        sqltext::likeCriterion(m_db.dialect(), QStringLiteral("HPhone"), pattern, true);
    const auto work =
        sqltext::likeCriterion(m_db.dialect(), QStringLiteral("WPhone"), pattern, true);
    QSqlQuery q =
        m_db.exec(kSelect + QStringLiteral(" (") + home.sql + QStringLiteral(" Or") + work.sql +
                      QStringLiteral(")") + kOrder,
                  home.values + work.values, QStringLiteral("finding patients by telephone"));
    return collect(std::move(q), m_settings.option[kLastNameFirstSwitch],
                   [&digits](const QSqlQuery& row) {
                       return digitsOf(row.value(HPhone).toString()).contains(digits) ||
                              digitsOf(row.value(WPhone).toString()).contains(digits);
                   });
}

}  // namespace brimsett
