#include "claims/ServiceCodeRows.h"

#include "foundation/Database.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"

#include <QSqlError>

namespace brimsett {

namespace {

const QString kTable = QStringLiteral("servicecodes");
const char* const kFeeColumns[SobLine::kFeeCount] = {"FeeGeneral", "FeeAssistant", "FeeSpecialist",
                                                     "FeeAna", "FeeNonAna"};
const char* const kUnitColumns[3] = {"UnitsAssistant", "UnitsAna", "UnitsNonAna"};

QString keyOf(const QString& code) {
    return code.trimmed().toUpper();
}

QDate dateOf(const QVariant& value) {
    return QDate::fromString(value.toString().left(10), Qt::ISODate);
}

std::array<int, 3> unitsOf(const SobLine& line) {
    return {line.unitsAssistant, line.unitsAna, line.unitsNonAna};
}

using Kind = SqlStatementBuilder::Kind;

}  // namespace

ServiceCodeRows::ServiceCodeRows(Database& db) : m_db(db) {
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select ServiceCode, FeeGeneral, FeeAssistant, FeeSpecialist, FeeAna, "
                       "FeeNonAna, UnitsAssistant, UnitsAna, UnitsNonAna, DateStart, DateTerm "
                       "From servicecodes"),
        {}, QStringLiteral("reading the schedule of benefits"));
    while (q.next()) {
        Stored row;
        row.key = q.value(0).toString();
        for (int i = 0; i < SobLine::kFeeCount; ++i) {
            row.fees[i] = Money::fromVariant(q.value(1 + i));
        }
        for (int i = 0; i < 3; ++i) {
            const QVariant v = q.value(6 + i);
            row.units[i] = v.isNull() ? std::nullopt : std::optional<int>(v.toInt());
        }
        row.dateStart = dateOf(q.value(9));
        row.dateTerm = dateOf(q.value(10));
        m_rows.insert(keyOf(row.key), row);
    }
}

ServiceCodeRows::Stored ServiceCodeRows::storedOf(const SobLine& line, const QString& key) {
    Stored row;
    row.key = key;
    for (int i = 0; i < SobLine::kFeeCount; ++i) {
        row.fees[i] = line.fees[i];
    }
    const std::array<int, 3> units = unitsOf(line);
    for (int i = 0; i < 3; ++i) {
        row.units[i] = units[i];
    }
    row.dateStart = line.dateStart;
    row.dateTerm = line.dateTerm;
    return row;
}

ServiceCodeRows::Change ServiceCodeRows::write(const SobLine& line, QStringList* logged) {
    const QString key = keyOf(line.code);
    const auto found = m_rows.find(key);
    const std::array<int, 3> units = unitsOf(line);
    SqlStatementBuilder builder;

    if (found == m_rows.end()) {
        builder.beginInsert(kTable);
        builder.addField(QStringLiteral("ServiceCode"), line.code, Kind::Text);
        builder.addField(QStringLiteral("Description"), QStringLiteral("New Code"), Kind::Text);
        for (int i = 0; i < SobLine::kFeeCount; ++i) {
            builder.addField(QLatin1String(kFeeColumns[i]), line.fees[i].toVariant(), Kind::Number);
        }
        for (int i = 0; i < 3; ++i) {
            builder.addField(QLatin1String(kUnitColumns[i]), units[i], Kind::Number);
        }
        builder.addField(QStringLiteral("DateStart"), line.dateStart, Kind::Text);
        builder.addField(QStringLiteral("DateTerm"), line.dateTerm, Kind::Text);
        for (const char* flag : {"ReqDiagCode", "ReqRefDoctor", "ReqFacilityNum", "ReqAdmitDate",
                                 "ReqManualReview", "Modifier"}) {
            builder.addField(QLatin1String(flag), false, Kind::Number);
        }
        builder.addField(QStringLiteral("SpecCode"), QString(), Kind::Text);
        builder.addField(QStringLiteral("InterVal"), QString(), Kind::Text);
        builder.addField(QStringLiteral("MinimumAge"), 0, Kind::Number);
        builder.addField(QStringLiteral("MaximumAge"), 999, Kind::Number);
        builder.addField(QStringLiteral("Sex"), QStringLiteral("B"), Kind::Text);
        const auto bound = builder.boundInsert();
        add(bound.sql, bound.values, line.code);
        if (logged) {
            *logged << builder.finishInsert();
        }
        m_rows.insert(key, storedOf(line, line.code));
        return Change::Added;
    }

    Stored& row = *found;
    Stored wanted = storedOf(line, row.key);
    bool changed = false;
    builder.beginUpdate(kTable);
    for (int i = 0; i < SobLine::kFeeCount; ++i) {
        // A negative amount is the office's pin against the ministry's fee.
        if (row.fees[i] && *row.fees[i] < Money()) {
            wanted.fees[i] = row.fees[i];
            continue;
        }
        changed = changed || row.fees[i] != wanted.fees[i];
        builder.addField(QLatin1String(kFeeColumns[i]), line.fees[i].toVariant(), Kind::Number);
    }
    for (int i = 0; i < 3; ++i) {
        changed = changed || row.units[i] != wanted.units[i];
        builder.addField(QLatin1String(kUnitColumns[i]), units[i], Kind::Number);
    }
    changed = changed || row.dateStart != wanted.dateStart || row.dateTerm != wanted.dateTerm;
    if (!changed) {
        return Change::None;
    }
    builder.addField(QStringLiteral("DateStart"), line.dateStart, Kind::Text);
    builder.addField(QStringLiteral("DateTerm"), line.dateTerm, Kind::Text);
    const auto bound = builder.boundUpdate(QStringLiteral("ServiceCode=?"), {row.key});
    flush();  // the code may be one this file added
    run(bound.sql, bound.values, QStringLiteral("updating code ") + row.key);
    if (logged) {
        *logged << builder.finishUpdate(QStringLiteral("ServiceCode=") +
                                        sqltext::quoteValue(row.key));
    }
    row = wanted;
    return Change::Updated;
}

// New codes on a server go a few hundred to a statement, one round trip each; a file takes
// them one at a time through the prepared statement, quicker there than a long statement.
void ServiceCodeRows::add(const QString& sql, const QVariantList& values, const QString& code) {
    if (!m_db.onServer()) {
        run(sql, values, QStringLiteral("adding code ") + code);
        return;
    }
    m_pendingInsert = sql;
    m_pendingValues << values;
    m_pendingCodes << code;
    if (m_pendingCodes.size() == kRowsPerInsert) {
        flush();
    }
}

void ServiceCodeRows::flush() {
    if (m_pendingCodes.isEmpty()) {
        return;
    }
    const QString values = QStringLiteral(" Values");
    const qsizetype at = m_pendingInsert.lastIndexOf(values + QLatin1Char('('));
    QStringList rows;
    rows.fill(m_pendingInsert.mid(at + values.size()), m_pendingCodes.size());
    const QString doing = m_pendingCodes.size() == 1
                              ? QStringLiteral("adding code ") + m_pendingCodes.first()
                              : QStringLiteral("adding codes %1 to %2")
                                    .arg(m_pendingCodes.first(), m_pendingCodes.last());
    const QVariantList bound = m_pendingValues;
    m_pendingValues.clear();
    m_pendingCodes.clear();
    m_db.exec(m_pendingInsert.left(at) + values + QLatin1Char(' ') + rows.join(QLatin1Char(',')),
              bound, doing);
}

QSqlQuery& ServiceCodeRows::prepared(const QString& sql) {
    auto it = m_statements.find(sql);
    if (it == m_statements.end()) {
        QSqlQuery q(m_db.connection());
        if (!q.prepare(sql)) {
            const QSqlError e = q.lastError();
            throw DbError(QStringLiteral("preparing the schedule of benefits update"), sql,
                          e.databaseText().isEmpty() ? e.text() : e.databaseText(),
                          e.nativeErrorCode());
        }
        it = m_statements.insert(sql, q);
    }
    return *it;
}

void ServiceCodeRows::run(const QString& sql, const QVariantList& values, const QString& doing) {
    QSqlQuery& q = prepared(sql);
    for (int i = 0; i < values.size(); ++i) {
        q.bindValue(i, values.at(i));
    }
    if (!q.exec()) {
        const QSqlError e = q.lastError();
        throw DbError(doing, sql, e.databaseText().isEmpty() ? e.text() : e.databaseText(),
                      e.nativeErrorCode());
    }
}

}  // namespace brimsett
