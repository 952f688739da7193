#include "foundation/Dialect.h"

#include <QRegularExpression>
#include <QSqlQuery>

namespace brimsett {

namespace {

bool isNameChar(QChar c) {
    return c.isLetterOrNumber() || c == QLatin1Char('_');
}

// The moments among the old "DateTime" columns; every other one holds a date.
bool holdsMoment(const QString& column) {
    static const QStringList moments = {QStringLiteral("datecreated"), QStringLiteral("submitdate"),
                                        QStringLiteral("hncheckdate")};
    return moments.contains(column.toLower());
}

}  // namespace

// Outside quoted literals: "[name]" becomes "\"name\"", and LIKE becomes ILIKE, since the
// program's LIKE has always ignored case.
QString PostgresDialect::statement(const QString& text) const {
    QString out;
    out.reserve(text.size() + 8);
    const qsizetype n = text.size();
    for (qsizetype i = 0; i < n; ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            const qsizetype end = text.indexOf(c, i + 1);
            const qsizetype stop = end < 0 ? n - 1 : end;
            out += text.mid(i, stop - i + 1);
            i = stop;
            continue;
        }
        if (c == QLatin1Char('[')) {
            const qsizetype end = text.indexOf(QLatin1Char(']'), i + 1);
            if (end > i) {
                out += QLatin1Char('"') + text.mid(i + 1, end - i - 1) + QLatin1Char('"');
                i = end;
                continue;
            }
        }
        if ((c == QLatin1Char('l') || c == QLatin1Char('L')) && i + 4 <= n &&
            text.mid(i, 4).compare(QLatin1String("like"), Qt::CaseInsensitive) == 0 &&
            (i == 0 || !isNameChar(text.at(i - 1))) &&
            (i + 4 == n || !isNameChar(text.at(i + 4)))) {
            out += QStringLiteral("ILIKE");
            i += 3;
            continue;
        }
        out += c;
    }
    return out;
}

// The old type words in PostgreSQL's types: money in ten-thousandths stays an exact
// integer, flags are small integers (the program compares them with 0 and 1), lengths kept.
QString PostgresDialect::ddl(const QString& text) const {
    QString s = statement(text);
    // Text compares, orders and folds case byte by byte ("C"), as in an office file, whatever
    // the server's language: the same lists in the same order on either engine, and ILIKE
    // without the locale's folding, which made every find several times slower.
    // The lists a claim gathers over its life (every batch it was sent in, every remittance
    // that answered it) keep each entry however long they grow, as they do in SQLite.
    static const QRegularExpression texts(QStringLiteral("(\\w+)\\s+Text\\b(\\s*\\((\\d+)\\))?"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression growing(QStringLiteral("^(AllBatches|RA)$"),
                                            QRegularExpression::CaseInsensitiveOption);
    {
        QString typed;
        qsizetype from = 0;
        for (auto it = texts.globalMatch(s); it.hasNext();) {
            const auto m = it.next();
            typed += s.mid(from, m.capturedStart() - from) + m.captured(1);
            typed += m.captured(3).isEmpty() || growing.match(m.captured(1)).hasMatch()
                         ? QStringLiteral(" text COLLATE \"C\"")
                         : QStringLiteral(" varchar(%1) COLLATE \"C\"").arg(m.captured(3));
            from = m.capturedEnd();
        }
        s = typed + s.mid(from);
    }
    static const QRegularExpression dated(QStringLiteral("(\\w+)\\s+DateTime\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    QString result;
    qsizetype from = 0;
    for (auto it = dated.globalMatch(s); it.hasNext();) {
        const auto m = it.next();
        result += s.mid(from, m.capturedStart() - from);
        result += m.captured(1) + (holdsMoment(m.captured(1)) ? QStringLiteral(" timestamp(0)")
                                                              : QStringLiteral(" date"));
        from = m.capturedEnd();
    }
    result += s.mid(from);
    const std::pair<const char*, const char*> words[] = {
        {"Long", "integer"},   {"Currency", "bigint"},         {"Bit", "smallint"},
        {"YesNo", "smallint"}, {"Double", "double precision"}, {"Single", "real"}};
    for (const auto& [from, to] : words) {
        result.replace(QRegularExpression(QStringLiteral("\\b%1\\b").arg(QLatin1String(from)),
                                          QRegularExpression::CaseInsensitiveOption),
                       QLatin1String(to));
    }
    return result;
}

QStringList PostgresDialect::tableNames(const QSqlDatabase& db) const {
    QStringList names;
    QSqlQuery q(db);
    if (q.exec(QStringLiteral("SELECT table_name FROM information_schema.tables "
                              "WHERE table_schema = current_schema() "
                              "AND table_type = 'BASE TABLE'"))) {
        while (q.next()) {
            names << q.value(0).toString();
        }
    }
    return names;
}

QStringList PostgresDialect::columnNames(const QSqlDatabase& db, const QString& table) const {
    QStringList names;
    QSqlQuery q(db);
    q.prepare(
        QStringLiteral("SELECT column_name FROM information_schema.columns "
                       "WHERE table_schema = current_schema() "
                       "AND lower(table_name) = lower(?) ORDER BY ordinal_position"));
    q.addBindValue(table);
    if (q.exec()) {
        while (q.next()) {
            names << q.value(0).toString();
        }
    }
    return names;
}

QStringList PostgresDialect::beginTransaction() const {
    return {QStringLiteral("BEGIN"),
            QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(kWriteLock)};
}

void PostgresDialect::prepareConnection(QSqlDatabase& db) const {
    QSqlQuery q(db);
    // Wait for another computer's save as long as SQLite does, then say the office is busy.
    q.exec(QStringLiteral("SET lock_timeout = '10s'"));
    q.exec(QStringLiteral("SET client_min_messages = warning"));
    q.exec(QStringLiteral("SET datestyle = 'ISO, YMD'"));
}

// Lock not available, and the two a concurrent transaction may cause.
bool PostgresDialect::isBusy(const QString& nativeCode) const {
    return nativeCode == QLatin1String("55P03") || nativeCode == QLatin1String("40001") ||
           nativeCode == QLatin1String("40P01");
}

}  // namespace brimsett
