#include "claims/CodeSheet.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"

#include <QHash>

namespace brimsett {

namespace {

using Kind = CodeColumn::Kind;

SqlStatementBuilder::Kind builderKind(const CodeColumn& column) {
    return column.isNumber() || column.kind == Kind::YesNo ? SqlStatementBuilder::Kind::Number
                                                           : SqlStatementBuilder::Kind::Text;
}

}  // namespace

CodeSheet::CodeSheet(const CodeTable& table, Database& db, Prompter& prompter, const SqlLog& log,
                     MoneyFormat money)
    : m_table(table), m_db(db), m_prompter(prompter), m_log(log), m_money(money) {}

bool CodeSheet::load(const QString& find) {
    const QString typed = find.trimmed();
    QStringList names;
    for (const CodeColumn& c : m_table.columns) {
        names << c.name;
    }
    const QString key = m_table.key().name;
    QString sql =
        QStringLiteral("Select %1 From %2").arg(names.join(QLatin1Char(',')), m_table.table);
    QVariantList values;
    if (!typed.isEmpty()) {
        const Dialect& dialect = m_db.dialect();
        // Codes are stored in capitals, and a comparison follows the column's own order.
        const auto byKey = sqltext::likeCriterion(
            dialect, key, m_table.key().kind == CodeColumn::Kind::Code ? typed.toUpper() : typed,
            false);
        sql += QStringLiteral(" Where") + byKey.sql;
        values << byKey.values;
        // A comparison is about the key; otherwise the description may hold the text anywhere.
        if (!sqltext::criterionOperator(typed).isEmpty()) {
            const bool pattern =
                typed.contains(QLatin1Char('*')) || typed.contains(QLatin1Char('?'));
            const auto byText = sqltext::likeCriterion(
                dialect, m_table.columns.at(m_table.descriptionColumn).name,
                pattern ? typed : QLatin1Char('*') + typed + QLatin1Char('*'), false);
            sql += QStringLiteral(" Or") + byText.sql;
            values << byText.values;
        }
    }
    sql += QStringLiteral(" Order By ") + key;

    // Read aside and kept only when complete: a failed read leaves the rows on screen as they
    // were.
    QList<Row> rows;
    QSet<QString> loaded;
    try {
        QSqlQuery q = m_db.exec(sql, values, QStringLiteral("reading ") + m_table.table);
        const int columns = int(m_table.columns.size());
        while (q.next()) {
            // Kept as stored and shown as text only when asked: a grid shows a screenful of
            // the schedule's thousands of rows.
            Row row;
            row.stored.reserve(columns);
            for (int c = 0; c < columns; ++c) {
                row.stored << q.value(c);
            }
            row.storedKey = q.value(m_table.keyColumn).toString();
            loaded.insert(row.storedKey.toUpper());
            rows << std::move(row);
        }
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("The %1 could not be read.").arg(m_table.title), e.message()});
        return false;
    }
    m_find = typed;
    m_rows = std::move(rows);
    m_loaded = std::move(loaded);
    m_removed.clear();
    return true;
}

QString CodeSheet::cell(int row, int column) const {
    const Row& r = m_rows.at(row);
    return r.cells.isEmpty() ? storedText(r, column) : r.cells.at(column);
}

QString CodeSheet::storedText(const Row& row, int column) const {
    return row.isNew ? QString() : m_table.cellOf(column, row.stored.at(column), m_money);
}

bool CodeSheet::cellChanged(const Row& row, int column) const {
    return row.isNew || (!row.cells.isEmpty() && row.cells.at(column) != storedText(row, column));
}

bool CodeSheet::setCell(int row, int column, const QString& typed) {
    Row& r = m_rows[row];
    const QString tidied = m_table.tidied(column, typed, m_money);
    if (cell(row, column) == tidied) {
        return false;
    }
    if (r.cells.isEmpty()) {
        for (int c = 0; c < m_table.columns.size(); ++c) {
            r.cells << storedText(r, c);
        }
    }
    r.cells[column] = tidied;
    // A row typed back to what is stored is no longer a change.
    bool differs = r.isNew;
    for (int c = 0; c < m_table.columns.size() && !differs; ++c) {
        differs = cellChanged(r, c);
    }
    if (!differs) {
        r.cells.clear();
    }
    return true;
}

int CodeSheet::addRow() {
    Row row;
    row.isNew = true;
    for (int c = 0; c < m_table.columns.size(); ++c) {
        row.cells << m_table.tidied(c, m_table.columns.at(c).initial, m_money);
    }
    m_rows << std::move(row);
    return rowCount() - 1;
}

void CodeSheet::removeRow(int row) {
    if (!m_rows.at(row).isNew) {
        m_removed << m_rows.at(row).storedKey;
    }
    m_rows.removeAt(row);
}

bool CodeSheet::isChanged(int row) const {
    const Row& r = m_rows.at(row);
    return r.isNew || !r.cells.isEmpty();
}

bool CodeSheet::hasChanges() const {
    if (!m_removed.isEmpty()) {
        return true;
    }
    for (int r = 0; r < rowCount(); ++r) {
        if (isChanged(r)) {
            return true;
        }
    }
    return false;
}

QString CodeSheet::rowLabel(int row) const {
    const QString key = cell(row, m_table.keyColumn);
    return key.isEmpty() ? QStringLiteral("Row %1").arg(row + 1)
                         : QStringLiteral("Row %1, %2").arg(row + 1).arg(key);
}

bool CodeSheet::keyTakenOutside(const QString& key) const {
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select %1 From %2 Where Upper(%1)=?")
                      .arg(m_table.key().name, m_table.table),
                  {key.toUpper()}, QStringLiteral("looking for %1 %2").arg(m_table.rowWord, key));
    while (q.next()) {
        // A row read into the sheet is judged by what the sheet now holds for it.
        if (!m_loaded.contains(q.value(0).toString().toUpper())) {
            return true;
        }
    }
    return false;
}

QList<CodeSheet::Problem> CodeSheet::problems() const {
    QList<Problem> found;
    QHash<QString, int> firstRowOfKey;
    for (int r = 0; r < rowCount(); ++r) {
        const QString key = cell(r, m_table.keyColumn).toUpper();
        if (!key.isEmpty() && !firstRowOfKey.contains(key)) {
            firstRowOfKey.insert(key, r);
        }
    }
    for (int r = 0; r < rowCount(); ++r) {
        if (!isChanged(r)) {
            continue;  // what is stored already was accepted once
        }
        const Row& row = m_rows.at(r);
        const QString label = rowLabel(r);
        const QString key = cell(r, m_table.keyColumn);
        const auto add = [&](int column, const QString& text) {
            found << Problem{r, column, label + QStringLiteral(": ") + text};
        };
        if (key.isEmpty()) {
            add(m_table.keyColumn, m_table.key().caption + QStringLiteral(" is required."));
        } else if (const int first = firstRowOfKey.value(key.toUpper()); first != r) {
            add(m_table.keyColumn,
                QStringLiteral("this %1 is also on row %2.").arg(m_table.rowWord).arg(first + 1));
        } else if ((row.isNew || key.toUpper() != row.storedKey.toUpper()) &&
                   keyTakenOutside(key)) {
            add(m_table.keyColumn, QStringLiteral("this %1 is already in the table (clear the "
                                                  "find box to see it).")
                                       .arg(m_table.rowWord));
        }
        for (int c = 0; c < m_table.columns.size(); ++c) {
            if (cellChanged(row, c)) {
                const QString problem = m_table.storedOf(c, row.cells.at(c), m_money).problem;
                if (!problem.isEmpty()) {
                    add(c, problem);
                }
            }
        }
    }
    return found;
}

bool CodeSheet::save() {
    m_refused.clear();
    if (!hasChanges()) {
        return true;
    }
    try {
        m_refused = problems();
        if (!m_refused.isEmpty()) {
            QStringList lines{kHeading};
            for (const Problem& p : std::as_const(m_refused)) {
                lines << p.text;
            }
            m_prompter.error(lines);
            return false;
        }
        if (!write()) {
            return false;
        }
    } catch (const DbError& e) {
        // The transaction, if one was open, has been rolled back.
        m_prompter.error(
            {QStringLiteral("The changes were not saved; nothing was changed."), e.message()});
        return false;
    }
    load(m_find);
    return true;
}

bool CodeSheet::write() {
    const QString& table = m_table.table;
    const QString keyName = m_table.key().name;
    const auto where = [&keyName](const QString& storedKey) {
        return keyName + QLatin1Char('=') + sqltext::quoteValue(storedKey);
    };
    QStringList logged;
    Transaction transaction(m_db, QStringLiteral("saving the ") + m_table.title);
    for (const QString& storedKey : std::as_const(m_removed)) {
        m_db.exec(QStringLiteral("Delete From %1 Where %2=?").arg(table, keyName), {storedKey},
                  QStringLiteral("deleting %1 %2").arg(m_table.rowWord, storedKey));
        logged << QStringLiteral("Delete From %1 Where ").arg(table) + where(storedKey);
    }
    SqlStatementBuilder builder;
    for (int r = 0; r < rowCount(); ++r) {
        if (!isChanged(r)) {
            continue;
        }
        const Row& row = m_rows.at(r);
        if (row.isNew) {
            builder.beginInsert(table);
        } else {
            builder.beginUpdate(table);
        }
        for (int c = 0; c < m_table.columns.size(); ++c) {
            // Only what the user changed is written, so a column changed meanwhile on another
            // computer keeps its value.
            if (cellChanged(row, c)) {
                const CodeColumn& column = m_table.columns.at(c);
                builder.addField(column.name, m_table.storedOf(c, row.cells.at(c), m_money).value,
                                 builderKind(column));
            }
        }
        const QString doing =
            QStringLiteral("saving %1 %2").arg(m_table.rowWord, cell(r, m_table.keyColumn));
        if (row.isNew) {
            const auto bound = builder.boundInsert();
            m_db.exec(bound.sql, bound.values, doing);
            logged << builder.finishInsert();
            continue;
        }
        const auto bound = builder.boundUpdate(keyName + QStringLiteral("=?"), {row.storedKey});
        if (m_db.exec(bound.sql, bound.values, doing).numRowsAffected() == 0) {
            m_prompter.error(
                {QStringLiteral("The %1 %2 is no longer in the table; it may have been "
                                "deleted on another computer.")
                     .arg(m_table.rowWord, row.storedKey),
                 QStringLiteral("Nothing was saved.")});
            return false;
        }
        logged << builder.finishUpdate(where(row.storedKey));
    }
    transaction.commit();
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
    return true;
}

}  // namespace brimsett
