#pragma once

#include "claims/SobLine.h"

#include <QHash>
#include <QSqlQuery>
#include <QStringList>

namespace brimsett {

class Database;

// The fee columns of every `servicecodes` row, read once, so that an import writes only the
// rows its lines change. Statements are prepared once and reused; the caller holds the
// transaction.
class ServiceCodeRows {
public:
    // Reads the rows; a code is found again without regard to case or trailing blanks.
    explicit ServiceCodeRows(Database& db);

    enum class Change { None, Added, Updated };

    // Adds the line's code with the defaults of a new code, or writes its fees, units and
    // dates where they differ from the row's. A fee column holding a negative amount is left
    // as it is. The statement's text is appended to `logged` when something was written.
    Change write(const SobLine& line, QStringList* logged);
    // Writes the new codes still held back; before the caller commits.
    void flush();

private:
    struct Stored {
        QString key;  // ServiceCode as stored
        std::array<std::optional<Money>, SobLine::kFeeCount> fees;
        std::array<std::optional<int>, 3> units;
        QDate dateStart;
        QDate dateTerm;
    };
    static Stored storedOf(const SobLine& line, const QString& key);
    QSqlQuery& prepared(const QString& sql);
    void run(const QString& sql, const QVariantList& values, const QString& doing);
    void add(const QString& sql, const QVariantList& values, const QString& code);

    Database& m_db;
    QHash<QString, Stored> m_rows;
    QHash<QString, QSqlQuery> m_statements;
    static constexpr int kRowsPerInsert = 500;
    QString m_pendingInsert;
    QVariantList m_pendingValues;
    QStringList m_pendingCodes;
};

}  // namespace brimsett
