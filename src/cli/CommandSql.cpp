#include "cli/CliSession.h"

#include <QSqlRecord>

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

}  // namespace

int commandSql(CliSession& session, const QStringList& args) {
    if (args.size() != 1) {
        return fail(QStringLiteral("sql takes one statement (quote it)"), 2);
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    QSqlQuery q = session.db().exec(args.first(), {}, QStringLiteral("running the statement"));
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

}  // namespace brimsett
