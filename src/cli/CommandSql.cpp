#include "cli/CliSession.h"

#include <QSqlRecord>

#include <optional>

#include <sqlite3.h>

namespace brimsett {

namespace {

// One row per line: tabs, line breaks and backslashes inside values are escaped.
QString field(const QVariant& value) {
    if (value.isNull()) {
        return {};
    }
    QString text = value.toString();
    text.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    text.replace(QLatin1Char('\t'), QStringLiteral("\\t"));
    text.replace(QLatin1Char('\r'), QStringLiteral("\\r"));
    text.replace(QLatin1Char('\n'), QStringLiteral("\\n"));
    return text;
}

// The engine's own answer, asked before the statement runs: whether it may write to the
// database. What it cannot prepare, a second statement or another engine count as changes.
bool mayChange(Database& db, const QString& statement) {
    auto* handle = static_cast<sqlite3*>(db.nativeHandle());
    if (handle == nullptr || db.dialect().name() != QLatin1String("SQLite")) {
        return true;
    }
    const QByteArray text = statement.toUtf8();
    sqlite3_stmt* prepared = nullptr;
    const char* rest = nullptr;
    const int rc = sqlite3_prepare_v2(handle, text.constData(), static_cast<int>(text.size()),
                                      &prepared, &rest);
    const bool readOnly = rc == SQLITE_OK && prepared != nullptr &&
                          sqlite3_stmt_readonly(prepared) != 0 &&
                          QByteArray(rest).trimmed().isEmpty();
    sqlite3_finalize(prepared);
    return !readOnly;
}

// Where the engine has read-only transactions it is asked by running the statement in one:
// what it runs there changed nothing; a refusal means the statement would change data.
std::optional<QSqlQuery> runReadOnly(Database& db, const QString& statement) {
    const QString begin = db.dialect().beginReadOnly();
    if (begin.isEmpty() || db.transactionDepth() > 0) {
        return std::nullopt;
    }
    const QString doing = QStringLiteral("running the statement");
    db.exec(begin, {}, doing);
    try {
        QSqlQuery q = db.exec(statement, {}, doing);
        db.exec(QStringLiteral("COMMIT"), {}, doing);
        return q;
    } catch (const DbError& e) {
        db.exec(QStringLiteral("ROLLBACK"), {}, doing);
        if (db.dialect().isChangeRefused(e.engineCode())) {
            return std::nullopt;
        }
        throw;
    }
}

int sql(CliSession& session, const CliArgs& args) {
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const QString statement = args.argument(0);
    std::optional<QSqlQuery> ran = runReadOnly(session.db(), statement);
    // Changing data by hand is the Master's, as the options screen; reading is for everyone.
    if (!ran && mayChange(session.db(), statement) && !session.require(AccessLevels::kMaster)) {
        return 1;
    }
    QSqlQuery q = ran ? std::move(*ran)
                      : session.db().exec(statement, {}, QStringLiteral("running the statement"));
    if (!q.isSelect()) {
        session.out() << q.numRowsAffected() << " row(s) changed\n";
        return 0;
    }
    const QSqlRecord record = q.record();
    QStringList header;
    for (int i = 0; i < record.count(); ++i) {
        header << record.fieldName(i);
    }
    session.out() << header.join(QLatin1Char('\t')) << "\n";
    while (q.next()) {
        QStringList row;
        for (int i = 0; i < record.count(); ++i) {
            row << field(q.value(i));
        }
        session.out() << row.join(QLatin1Char('\t')) << "\n";
    }
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("sql"),
    .summary = QStringLiteral("run one statement; a query prints tab-separated rows"),
    .arguments = {{QStringLiteral("STATEMENT"),
                   QStringLiteral("the statement, quoted as one argument")}},
    .details = {QStringLiteral("A query prints a header and one line per row: a NULL is an empty "
                               "field; a tab, line break or"),
                QStringLiteral("backslash inside a value is written \\t, \\n, \\r, \\\\. A "
                               "statement that changes data needs the"),
                QStringLiteral("[Master] password when passwords are set.")},
    .run = sql,
});

}  // namespace

}  // namespace brimsett
