#include "foundation/DatabaseCopy.h"

#include "foundation/Money.h"
#include "foundation/Schema.h"
#include "foundation/SchemaTables.h"

#include <QSqlQuery>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace brimsett {

namespace {

// Statements of many rows: a few hundred rows each, fewer for wide tables, so no statement
// grows past what the server parses quickly.
constexpr int kMaxValuesPerStatement = 8000;
constexpr int kMaxRowsPerStatement = 500;
constexpr int kShownCharacters = 40;

const QString kDoing = QStringLiteral("copying the office database to the server");

// A column of the office file as SQLite declares it.
struct SourceColumn {
    QString name;
    QString type;
    int keyPosition = 0;  // place in the primary key, 0 when not part of it
};

struct TableCopy {
    QString name;
    QList<SourceColumn> columns;
    QStringList keyColumns;  // empty: rows are named by their place in the file
    QStringList moneyColumns;
};

// Names with a blank are bracketed, as the program's own statements write them; the others
// are written bare, so the server folds them as it did when the table was made.
QString nameInStatement(const QString& name) {
    return name.contains(QLatin1Char(' ')) ? QLatin1Char('[') + name + QLatin1Char(']') : name;
}

QString shown(const QString& text) {
    return text.size() > kShownCharacters ? text.left(kShownCharacters) + QStringLiteral("...")
                                          : text;
}

// Columns the current layout declares as money, by table (lower case).
QStringList declaredMoney(const QString& table) {
    for (const schema::TableDefinition& definition : schema::tableDefinitions()) {
        if (QString::fromLatin1(definition.name).compare(table, Qt::CaseInsensitive) != 0) {
            continue;
        }
        QStringList money;
        for (const QString& column :
             QString::fromLatin1(definition.columns).split(QLatin1Char(','))) {
            const QStringList words = column.simplified().split(QLatin1Char(' '));
            if (words.size() >= 2 &&
                words.at(1).compare(QLatin1String("Currency"), Qt::CaseInsensitive) == 0) {
                money << words.at(0).toLower();
            }
        }
        return money;
    }
    return {};
}

TableCopy describeSource(Database& source, const QString& table) {
    TableCopy copy{table, {}, {}, {}};
    QString quoted = table;
    quoted.replace(QLatin1Char('"'), QStringLiteral("\"\""));
    QSqlQuery q = source.exec(QStringLiteral("PRAGMA table_info(\"%1\")").arg(quoted), {},
                              QStringLiteral("reading the columns of %1").arg(table));
    QMap<int, QString> keys;
    const QStringList money = declaredMoney(table);
    while (q.next()) {
        SourceColumn column{q.value(1).toString(), q.value(2).toString().trimmed(),
                            q.value(5).toInt()};
        if (column.keyPosition > 0) {
            keys.insert(column.keyPosition, column.name);
        }
        if (money.contains(column.name.toLower()) ||
            column.type.compare(QLatin1String("Currency"), Qt::CaseInsensitive) == 0) {
            copy.moneyColumns << column.name;
        }
        copy.columns << column;
    }
    copy.keyColumns = keys.values();
    return copy;
}

// The file's tables: those of the layout in its order, then any others by name.
QStringList sourceTables(Database& source) {
    QStringList present = source.dialect().tableNames(source.connection());
    QStringList ordered;
    for (const QString& declared : schema::tableNames()) {
        for (const QString& name : std::as_const(present)) {
            if (name.compare(declared, Qt::CaseInsensitive) == 0) {
                ordered << name;
            }
        }
    }
    QStringList others;
    for (const QString& name : std::as_const(present)) {
        if (!ordered.contains(name)) {
            others << name;
        }
    }
    others.sort(Qt::CaseInsensitive);
    return ordered + others;
}

QString declaredType(const SourceColumn& column) {
    return column.type.isEmpty() ? QStringLiteral("Text") : column.type;
}

// Makes on the server what the file has beyond the current layout, from its own
// declarations, so that nothing of the office is left behind.
void makeBeyondLayout(Database& target, const TableCopy& table, CopyReport& report) {
    const QString doing = QStringLiteral("making table %1 on the server").arg(table.name);
    if (!target.hasTable(table.name)) {
        QStringList parts;
        for (const SourceColumn& column : table.columns) {
            parts << nameInStatement(column.name) + QLatin1Char(' ') + declaredType(column);
        }
        if (!table.keyColumns.isEmpty()) {
            QStringList keys;
            for (const QString& key : table.keyColumns) {
                keys << nameInStatement(key);
            }
            parts << QStringLiteral("PRIMARY KEY (%1)").arg(keys.join(QStringLiteral(", ")));
        }
        target.exec(target.dialect().ddl(
                        QStringLiteral("CREATE TABLE %1 (%2)")
                            .arg(nameInStatement(table.name), parts.join(QStringLiteral(", ")))),
                    {}, doing);
        report.madeBeyondLayout << QStringLiteral("table ") + table.name;
        return;
    }
    for (const SourceColumn& column : table.columns) {
        if (target.hasColumn(table.name, column.name)) {
            continue;
        }
        target.exec(
            target.dialect().ddl(QStringLiteral("ALTER TABLE %1 ADD COLUMN %2 %3")
                                     .arg(nameInStatement(table.name), nameInStatement(column.name),
                                          declaredType(column))),
            {}, doing);
        report.madeBeyondLayout << QStringLiteral("column %1.%2").arg(table.name, column.name);
    }
}

QMap<QString, TargetColumn> targetColumns(Database& target, const QString& table) {
    QSqlQuery q = target.exec(
        QStringLiteral("SELECT column_name, data_type, character_maximum_length, is_nullable "
                       "FROM information_schema.columns WHERE table_schema = current_schema() "
                       "AND lower(table_name) = lower(?)"),
        {table}, QStringLiteral("reading the columns of %1 on the server").arg(table));
    QMap<QString, TargetColumn> columns;
    while (q.next()) {
        TargetColumn column = TargetColumn::of(q.value(1).toString(), q.value(2));
        column.required = q.value(3).toString() == QLatin1String("NO");
        columns.insert(q.value(0).toString().toLower(), column);
    }
    return columns;
}

QString rowName(const TableCopy& table, const QSqlQuery& row, int keyAt) {
    if (table.keyColumns.isEmpty()) {
        return QStringLiteral("row %1").arg(row.value(keyAt).toLongLong());
    }
    QStringList parts;
    for (const QString& key : table.keyColumns) {
        for (int i = 0; i < table.columns.size(); ++i) {
            if (table.columns.at(i).name == key) {
                parts << key + QLatin1Char(' ') + row.value(i).toString();
            }
        }
    }
    return parts.join(QStringLiteral(", "));
}

// Copies the rows of one table; returns how many were read.
void copyRows(Database& source, Database& target, const TableCopy& table) {
    const QString doing = QStringLiteral("copying table %1").arg(table.name);
    const QMap<QString, TargetColumn> columns = targetColumns(target, table.name);
    QStringList names;
    QList<TargetColumn> kinds;
    for (const SourceColumn& column : table.columns) {
        names << nameInStatement(column.name);
        kinds << columns.value(column.name.toLower());
    }
    const int width = int(names.size());
    if (width == 0) {
        return;
    }
    const QString sourceColumns = QLatin1Char('[') + [&] {
        QStringList bare;
        for (const SourceColumn& column : table.columns) {
            bare << column.name;
        }
        return bare.join(QStringLiteral("], ["));
    }() + QLatin1Char(']');
    const bool byPlace = table.keyColumns.isEmpty();
    QSqlQuery rows = source.exec(
        QStringLiteral("SELECT %1%2 FROM [%3]")
            .arg(sourceColumns, byPlace ? QStringLiteral(", rowid") : QString(), table.name),
        {}, doing);
    const int perStatement = std::clamp(kMaxValuesPerStatement / width, 1, kMaxRowsPerStatement);
    QStringList marks(width, QStringLiteral("?"));
    const QString oneRow = QLatin1Char('(') + marks.join(QStringLiteral(", ")) + QLatin1Char(')');
    const QString head = QStringLiteral("INSERT INTO %1 (%2) VALUES ")
                             .arg(nameInStatement(table.name), names.join(QStringLiteral(", ")));
    QVariantList values;
    values.reserve(perStatement * width);
    int pending = 0;
    auto flush = [&] {
        if (pending == 0) {
            return;
        }
        QStringList groups(pending, oneRow);
        target.exec(head + groups.join(QStringLiteral(", ")), values, doing);
        values.clear();
        pending = 0;
    };
    while (rows.next()) {
        for (int i = 0; i < width; ++i) {
            QString problem;
            const std::optional<QVariant> value =
                convertForServer(rows.value(i), kinds.at(i), &problem);
            if (!value) {
                throw DbError(
                    doing, {},
                    QStringLiteral("%1, column %2: %3")
                        .arg(rowName(table, rows, width), table.columns.at(i).name, problem));
            }
            values << *value;
        }
        if (++pending == perStatement) {
            flush();
        }
    }
    flush();
}

qint64 totalOf(const QVariant& value, const QString& table) {
    if (!value.isValid() || value.isNull()) {
        return 0;
    }
    const QString text = value.toString().trimmed();
    bool ok = false;
    const qint64 whole = text.toLongLong(&ok);
    if (ok) {
        return whole;
    }
    const double real = text.toDouble(&ok);
    if (ok && std::isfinite(real) && real == std::trunc(real)) {
        return qint64(real);
    }
    throw DbError(
        kDoing, {},
        QStringLiteral("the money total of %1 is not a whole number: %2").arg(table, text));
}

// Rows and money of a table, each money column summed by the engine itself.
std::pair<qint64, qint64> tally(Database& db, const TableCopy& table, const QString& where) {
    QStringList parts{QStringLiteral("Count(*)")};
    for (const QString& column : table.moneyColumns) {
        parts << QStringLiteral("CAST(Sum(%1) AS VARCHAR(40))").arg(nameInStatement(column));
    }
    QSqlQuery q = db.exec(QStringLiteral("SELECT %1 FROM %2")
                              .arg(parts.join(QStringLiteral(", ")), nameInStatement(table.name)),
                          {}, QStringLiteral("counting table %1 %2").arg(table.name, where));
    if (!q.next()) {
        return {0, 0};
    }
    qint64 money = 0;
    for (int i = 1; i < parts.size(); ++i) {
        money += totalOf(q.value(i), table.name);
    }
    return {q.value(0).toLongLong(), money};
}

}  // namespace

bool CopyReport::equal() const {
    return std::all_of(tables.begin(), tables.end(), [](const TableTally& t) { return t.equal(); });
}

qint64 CopyReport::rows() const {
    qint64 total = 0;
    for (const TableTally& t : tables) {
        total += t.targetRows;
    }
    return total;
}

qint64 CopyReport::money() const {
    qint64 total = 0;
    for (const TableTally& t : tables) {
        total += t.targetMoney;
    }
    return total;
}

CopyReport copyDatabase(Database& source, Database& target,
                        const std::function<void(const CopyReport&)>& review) {
    if (source.onServer() || !target.onServer()) {
        throw DbError(kDoing, {},
                      QStringLiteral("the copy goes from an office file to a server database"));
    }
    if (const QStringList present = target.dialect().tableNames(target.connection());
        !present.isEmpty()) {
        throw DbError({}, {},
                      QStringLiteral("The database at %1 is not empty: it has %2 table(s) (%3).")
                          .arg(target.location())
                          .arg(present.size())
                          .arg(shown(present.join(QStringLiteral(", ")))));
    }
    // The write lock keeps every program off the file until the copy is done; nothing is
    // written to it, so it is let go by rolling back.
    Transaction held(source, QStringLiteral("holding the office database for the copy"));
    Transaction transaction(target, kDoing);
    schema::create(target);

    QList<TableCopy> tables;
    CopyReport report;
    for (const QString& name : sourceTables(source)) {
        tables << describeSource(source, name);
        makeBeyondLayout(target, tables.last(), report);
    }
    for (const TableCopy& table : std::as_const(tables)) {
        // Only what the file holds: rows the layout starts with (provinces) are its own.
        target.exec(QStringLiteral("DELETE FROM %1").arg(nameInStatement(table.name)), {},
                    QStringLiteral("emptying table %1 on the server").arg(table.name));
        copyRows(source, target, table);
    }
    for (const TableCopy& table : std::as_const(tables)) {
        TableTally tallied{table.name, 0, 0, table.moneyColumns, 0, 0};
        std::tie(tallied.sourceRows, tallied.sourceMoney) =
            tally(source, table, QStringLiteral("in the office file"));
        std::tie(tallied.targetRows, tallied.targetMoney) =
            tally(target, table, QStringLiteral("on the server"));
        report.tables << tallied;
    }
    if (review) {
        review(report);
    }
    for (const TableTally& t : std::as_const(report.tables)) {
        if (!t.equal()) {
            throw DbError(kDoing, {},
                          QStringLiteral("the copy of %1 does not match the office file: %2 rows "
                                         "and %3 there, %4 rows and %5 on the server")
                              .arg(t.table)
                              .arg(t.sourceRows)
                              .arg(Money::fromUnits(t.sourceMoney).currency())
                              .arg(t.targetRows)
                              .arg(Money::fromUnits(t.targetMoney).currency()));
        }
    }
    transaction.commit();
    return report;
}

}  // namespace brimsett
