#pragma once

// What the benchmarks share: a made-up office removed at the end (an SQLite file in a temporary
// folder, or a fresh database on a PostgreSQL server when BRIMSETT_BENCH_PG names the socket
// folder of one), multi-row inserts to fill it, the plans of the statements they time, and the
// step lines tools/bench-engines.sh puts side by side.
#include "foundation/Database.h"
#include "foundation/DbError.h"
#include "foundation/Schema.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextStream>

#include <sqlite3.h>

#include <algorithm>
#include <memory>

namespace brimsett::bench {

// The socket folder of the PostgreSQL server to measure instead of SQLite, or empty.
inline QString server() {
    return qEnvironmentVariable("BRIMSETT_BENCH_PG");
}

inline std::unique_ptr<Database> connect(const QString& location) {
    auto opened = Database::openServer(location);
    if (auto* failure = std::get_if<OpenFailure>(&opened)) {
        throw DbError(QStringLiteral("connecting to the benchmark server"), {},
                      failure->lines().join(QLatin1Char(' ')));
    }
    return std::move(std::get<std::unique_ptr<Database>>(opened));
}

// An office database of the current layout, empty.
struct Office {
    QTemporaryDir dir;
    std::unique_ptr<Database> admin;  // the server's maintenance database, to create and drop
    QString serverDatabase;
    std::unique_ptr<Database> db;

    Office() {
        if (server().isEmpty()) {
            db = Database::createSqlite(folder() + QStringLiteral("medical.mdb"));
        } else {
            admin =
                connect(QStringLiteral("postgresql://postgres@/postgres?host=%1").arg(server()));
            serverDatabase = QStringLiteral("bench_%1").arg(QCoreApplication::applicationPid());
            admin->exec(QStringLiteral("DROP DATABASE IF EXISTS %1").arg(serverDatabase));
            admin->exec(QStringLiteral("CREATE DATABASE %1").arg(serverDatabase));
            db = connect(
                QStringLiteral("postgresql://postgres@/%1?host=%2").arg(serverDatabase, server()));
        }
        schema::create(*db);
    }
    ~Office() {
        db.reset();
        if (admin) {
            try {
                admin->exec(
                    QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(serverDatabase));
            } catch (const DbError& e) {
                qWarning("%s", qPrintable(e.message()));  // the throwaway server goes anyway
            }
        }
    }
    QString folder() const { return dir.path() + QLatin1Char('/'); }

    // Fills the office; the milliseconds it took. An SQLite file gets room for the indexes while
    // a million rows go in, the office's own cache setting after. The server's planner is given
    // its statistics after, as its autovacuum would in an office in use.
    template <typename Fill>
    qint64 fill(Fill&& fillWith) {
        if (!db->onServer()) {
            db->exec(QStringLiteral("PRAGMA cache_size=-262144"));
        }
        QElapsedTimer timer;
        timer.start();
        fillWith(*db);
        const qint64 ms = timer.elapsed();
        if (db->onServer()) {
            db->exec(QStringLiteral("VACUUM ANALYZE"));
        } else {
            db->exec(QStringLiteral("PRAGMA cache_size=-2000"));
        }
        return ms;
    }
};

// Rows added to a table: on a server a few hundred to a statement with bound values (one round
// trip each), on a file one prepared statement run for every row, the quickest there.
class Rows {
public:
    Rows(Database& db, QString head, int columns)
        : m_db(db), m_head(std::move(head)), m_columns(columns), m_single(db.connection()) {
        QStringList marks;
        marks.fill(QStringLiteral("?"), columns);
        m_row = QLatin1Char('(') + marks.join(QLatin1Char(',')) + QLatin1Char(')');
        if (!m_db.onServer() && !m_single.prepare(m_head + QStringLiteral(" Values ") + m_row)) {
            throw DbError(QStringLiteral("filling the office"), m_head,
                          m_single.lastError().text());
        }
    }
    ~Rows() { flush(); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    void add(std::initializer_list<QVariant> row) {
        Q_ASSERT(int(row.size()) == m_columns);
        if (!m_db.onServer()) {
            int i = 0;
            for (const QVariant& v : row) {
                m_single.bindValue(i++, v);
            }
            if (!m_single.exec()) {
                throw DbError(QStringLiteral("filling the office"), m_head,
                              m_single.lastError().text());
            }
            return;
        }
        m_values.append(QVariantList(row));
        if (m_values.size() >= kRows * m_columns) {
            flush();
        }
    }
    void flush() {
        if (m_values.isEmpty()) {
            return;
        }
        QStringList rows;
        rows.fill(m_row, m_values.size() / m_columns);
        m_db.exec(m_head + QStringLiteral(" Values ") + rows.join(QLatin1Char(',')), m_values);
        m_values.clear();
    }

private:
    static constexpr int kRows = 500;
    Database& m_db;
    QString m_head;
    int m_columns;
    QString m_row;
    QSqlQuery m_single;
    QVariantList m_values;
};

// A statement's plan, step by step, and the tables it reads whole. Placeholders are left
// unbound: the plan asked for is the one for any values. A server is asked with sequential
// scans discouraged, so a small table read whole still tells whether an index would serve.
struct Plan {
    QStringList steps;
    QStringList scanned;
    bool planned = false;
};

inline Plan sqlitePlan(Database& db, const QString& sql) {
    Plan plan;
    sqlite3_stmt* statement = nullptr;
    const QByteArray text = QByteArrayLiteral("Explain Query Plan ") + sql.toUtf8();
    sqlite3_prepare_v2(static_cast<sqlite3*>(db.nativeHandle()), text.constData(), -1, &statement,
                       nullptr);
    plan.planned = statement != nullptr;
    while (statement != nullptr && sqlite3_step(statement) == SQLITE_ROW) {
        const QString detail =
            QString::fromUtf8(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3)));
        plan.steps << detail;
        if (detail.startsWith(QLatin1String("SCAN "))) {
            plan.scanned << detail.mid(5).section(QLatin1Char(' '), 0, 0);
        }
    }
    sqlite3_finalize(statement);
    return plan;
}

// "?" outside quoted text becomes "$1", "$2", ...: the server prepares the statement and shows
// its generic plan.
inline QString numberedPlaceholders(const QString& sql, int* count) {
    QString out;
    QChar quote;
    for (const QChar c : sql) {
        if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            quote = c;
        } else if (c == QLatin1Char('?')) {
            out += QStringLiteral("$%1").arg(++*count);
            continue;
        }
        out += c;
    }
    return out;
}

inline Plan serverPlan(Database& db, const QString& sql) {
    Plan plan;
    int count = 0;
    const QString text = numberedPlaceholders(db.dialect().statement(sql), &count);
    QSqlQuery q(db.connection());
    q.exec(QStringLiteral("SET enable_seqscan = off"));
    q.exec(QStringLiteral("SET plan_cache_mode = force_generic_plan"));
    QString explain = QStringLiteral("EXPLAIN ") + text;
    if (count > 0) {
        q.exec(QStringLiteral("DEALLOCATE ALL"));
        if (q.exec(QStringLiteral("PREPARE bench_plan AS ") + text)) {
            QStringList nulls;
            nulls.fill(QStringLiteral("NULL"), count);
            explain = QStringLiteral("EXPLAIN EXECUTE bench_plan(%1)").arg(nulls.join(','));
        } else {
            plan.steps << q.lastError().text();
        }
    }
    plan.planned = q.exec(explain);
    static const QRegularExpression seqScan(QStringLiteral("Seq Scan on (\\w+)"));
    while (plan.planned && q.next()) {
        const QString line = q.value(0).toString();
        plan.steps << line;
        if (const auto m = seqScan.match(line); m.hasMatch()) {
            plan.scanned << m.captured(1);
        }
    }
    if (!plan.planned) {
        plan.steps << q.lastError().text();
    }
    q.exec(QStringLiteral("RESET enable_seqscan"));
    q.exec(QStringLiteral("RESET plan_cache_mode"));
    return plan;
}

// Prints a statement's plan and says whether every table it reads is found through an index,
// never scanned; the tables named in readWhole are small ones read whole by design.
inline bool explain(Database& db, const QString& label, const QString& sql, QTextStream& out,
                    const QStringList& readWhole = {}) {
    const Plan plan = db.onServer() ? serverPlan(db, sql) : sqlitePlan(db, sql);
    const bool indexed =
        plan.planned &&
        std::all_of(plan.scanned.begin(), plan.scanned.end(),
                    [&](const QString& t) { return readWhole.contains(t, Qt::CaseInsensitive); });
    out << label << (label.isEmpty() ? "" : ": ")
        << (indexed ? "uses an index" : "DOES NOT USE AN INDEX") << "\n    " << sql << "\n    "
        << plan.steps.join(QStringLiteral("\n    ")) << "\n";
    return indexed;
}

// The texts of the statements the engine runs between start() and stop(), one of each form
// (statements differing only in their values count once). A server writes them to its log
// (tools/pg-test-server.sh keeps it as server.log in the socket folder).
class StatementTrace {
public:
    explicit StatementTrace(Database& db) : m_db(db) {}
    void start() {
        if (m_db.onServer()) {
            m_pid = m_db.scalar(QStringLiteral("SELECT pg_backend_pid()")).toString();
            m_logStart = QFile(logFile()).size();
            m_db.exec(QStringLiteral("SET log_statement = 'all'"));
        } else {
            sqlite3_trace_v2(static_cast<sqlite3*>(m_db.nativeHandle()), SQLITE_TRACE_STMT, traced,
                             this);
        }
    }
    QStringList stop() {
        if (m_db.onServer()) {
            m_db.exec(QStringLiteral("SET log_statement = 'none'"));
            readLog();
        } else {
            sqlite3_trace_v2(static_cast<sqlite3*>(m_db.nativeHandle()), 0, nullptr, nullptr);
        }
        QStringList texts = m_texts;
        texts.sort();
        return texts;
    }

private:
    static QString logFile() { return server() + QStringLiteral("/server.log"); }
    static int traced(unsigned, void* context, void* statement, void*) {
        static_cast<StatementTrace*>(context)->seen(
            QString::fromUtf8(sqlite3_sql(static_cast<sqlite3_stmt*>(statement))));
        return 0;
    }
    void seen(const QString& text) {
        static const QRegularExpression values(QStringLiteral("'[^']*'|\\b\\d+\\b"));
        QString form = text;
        form.replace(values, QStringLiteral("?"));
        if (!m_forms.contains(form)) {
            m_forms.insert(form);
            m_texts << text;
        }
    }
    void readLog() {
        QFile log(logFile());
        if (!log.open(QIODevice::ReadOnly) || !log.seek(m_logStart)) {
            return;
        }
        const QString mine = QStringLiteral("[%1] LOG:  statement: ").arg(m_pid);
        QString current;
        for (const QString& line : QString::fromUtf8(log.readAll()).split(QLatin1Char('\n'))) {
            if (!current.isEmpty() && line.startsWith(QLatin1Char('\t'))) {
                current += QLatin1Char(' ') + line.trimmed();
                continue;
            }
            if (!current.isEmpty()) {
                seen(current);
                current.clear();
            }
            if (const qsizetype at = line.indexOf(mine); at >= 0) {
                current = line.mid(at + mine.size());
            }
        }
        if (!current.isEmpty()) {
            seen(current);
        }
    }

    Database& m_db;
    QString m_pid;
    qint64 m_logStart = 0;
    QSet<QString> m_forms;
    QStringList m_texts;
};

// One measured step, in the line tools/bench-engines.sh collects: its name, milliseconds and
// statements per unit of work.
inline void step(QTextStream& out, const QString& name, double ms, double statementsPerUnit,
                 const QString& unit) {
    out << "step\t" << name << '\t' << QString::number(ms, 'f', ms < 10 ? 2 : 1) << '\t'
        << QString::number(statementsPerUnit, 'g', 3) << '\t' << unit << '\n';
}

inline QString engine(const Database& db) {
    return db.dialect().name();
}

}  // namespace brimsett::bench
