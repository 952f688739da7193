#include "foundation/Database.h"

#include "foundation/KillPoints.h"
#include "foundation/ServerAddress.h"

#include <QAtomicInt>
#include <QFile>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QtGlobal>
#include <algorithm>

#include <sqlite3.h>

namespace brimsett {

namespace {

QAtomicInt g_connectionCounter;

// The server's driver reports "ERROR:  what\nDETAIL:  more\nCONTEXT:  where\n(code)"; people
// are told what and its detail on one line. Other texts are kept as they are.
QString serverWords(const QString& text) {
    if (!text.startsWith(QLatin1String("ERROR:")) && !text.startsWith(QLatin1String("FATAL:"))) {
        return text;
    }
    QStringList kept;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        for (const QLatin1String label :
             {QLatin1String("ERROR:"), QLatin1String("FATAL:"), QLatin1String("DETAIL:")}) {
            if (line.startsWith(label)) {
                kept << line.mid(label.size()).trimmed();
            }
        }
    }
    return kept.join(QLatin1Char(' '));
}

DbError errorOf(const Dialect& dialect, const QString& doing, const QString& statement,
                const QSqlError& e) {
    QString text = e.databaseText().isEmpty() ? e.text() : e.databaseText();
    text = serverWords(text.trimmed());
    if (dialect.isBusy(e.nativeErrorCode())) {
        // The engine already waited its time-out; what the user needs is what happened to
        // their work and what to do.
        text = QStringLiteral(
            "The database is busy: another program or computer kept it locked longer than "
            "Brimsett waits. Nothing was changed; please try again.");
    }
    if (text.isEmpty()) {
        text = QStringLiteral("unknown database error");
    }
    return DbError(doing, statement, text, e.nativeErrorCode());
}

// The statements of the connection that are part-way through their rows. A write
// transaction begun while one is open cannot wait for another writer: SQLite fails it at once
// with "database is locked" instead of using the busy time-out.
QStringList openReads(void* handle) {
    QStringList reads;
    auto* db = static_cast<sqlite3*>(handle);
    for (sqlite3_stmt* s = sqlite3_next_stmt(db, nullptr); s; s = sqlite3_next_stmt(db, s)) {
        if (sqlite3_stmt_busy(s)) {
            reads << QString::fromUtf8(sqlite3_sql(s));
        }
    }
    return reads;
}

// The tests set BRIMSETT_STRICT_READS so that any path leaving a read open fails there;
// a running office only gets a warning, since the transaction may still succeed.
bool strictReads() {
    static const bool strict = qEnvironmentVariableIntValue("BRIMSETT_STRICT_READS") != 0;
    return strict;
}

// The old Windows engine's files carry this text near their start.
bool isOldEngineFile(const QString& file) {
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray head = f.read(32);
    return head.contains("Standard Jet DB") || head.contains("Standard ACE DB");
}

}  // namespace

QString OpenFailure::title() const {
    return QStringLiteral("Error");
}

QStringList OpenFailure::lines() const {
    switch (kind) {
        case Kind::NotFound: {
            QStringList lines{
                QStringLiteral("Brimsett could not find your database at this location:"),
                location,
                QString(),
                QStringLiteral("Possible causes:"),
                QStringLiteral("* If you are on a network the server computer "),
                QStringLiteral("may be turned off."),
                QStringLiteral("* You may have entered an invalid path on the "),
                QStringLiteral("Options Screen."),
                QStringLiteral("* Your database may be damaged or was deleted."),
                QString(),
                QStringLiteral("Please contact Technical Support for assistance.")};
            // A server that could not be reached says why, in the network's words.
            if (!engineText.isEmpty()) {
                lines.insert(2, QStringLiteral("Cause: ") + engineText);
            }
            return lines;
        }
        case Kind::PermissionDenied: {
            QStringList lines{
                QStringLiteral("Brimsett could not open the database at this location:"), location,
                QStringLiteral("Reason: Permission was denied."),
                QStringLiteral("The database file may be read-only,"),
                QStringLiteral("or you are using a limited account and do not have full "
                               "access to the folder.")};
            // The server's own words name the user or rule that refused the login.
            if (!engineText.isEmpty()) {
                lines << engineText;
            }
            return lines;
        }
        case Kind::OldFormat:
            return {QStringLiteral("Could not open the database."),
                    QStringLiteral("Location: ") + location,
                    QStringLiteral("This file is a database of the older Windows billing program "
                                   "(Access/Jet format)."),
                    QStringLiteral("It must be converted before Brimsett can use it; the file "
                                   "was left as it is.")};
        case Kind::BadAddress:
            return {QStringLiteral("Brimsett cannot use this database location:"), location,
                    engineText, QString(),
                    QStringLiteral("Please correct the main database path on the Options "
                                   "Screen.")};
        case Kind::Refused:
            break;
    }
    return {QStringLiteral("Could not open the database."), QStringLiteral("Location: ") + location,
            QStringLiteral("Error #") + engineCode + QStringLiteral(" ") + engineText};
}

Database::Database(std::unique_ptr<Dialect> dialect, QSqlDatabase db, QString location)
    : m_dialect(std::move(dialect)),
      m_db(std::move(db)),
      m_location(std::move(location)),
      m_connectionName(m_db.connectionName()) {}

Database::~Database() {
    close();
}

void Database::close() {
    if (m_connectionName.isEmpty()) {
        return;
    }
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
    m_connectionName.clear();
}

Database::OpenResult Database::openSqlite(const QString& file) {
    const QFileInfo info(file);
    if (!info.exists()) {
        return OpenFailure{OpenFailure::Kind::NotFound, file, {}, {}};
    }
    const QFileInfo folder(info.absolutePath());
    // SQLite writes its journal beside the file, so the folder must be writable too.
    if (!info.isReadable() || !info.isWritable() || !folder.isWritable()) {
        return OpenFailure{OpenFailure::Kind::PermissionDenied, file, {}, {}};
    }
    if (isOldEngineFile(file)) {
        return OpenFailure{OpenFailure::Kind::OldFormat, file, {}, {}};
    }
    auto dialect = std::make_unique<SqliteDialect>();
    const QString name =
        QStringLiteral("brimsett-%1").arg(g_connectionCounter.fetchAndAddRelaxed(1));
    QSqlDatabase db = QSqlDatabase::addDatabase(dialect->driver(), name);
    db.setDatabaseName(file);
    // Wait for another program or computer holding the write lock rather than failing.
    db.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=10000"));
    auto fail = [&](const QSqlError& e) {
        OpenFailure failure{OpenFailure::Kind::Refused, file, e.nativeErrorCode(),
                            e.databaseText().isEmpty() ? e.text() : e.databaseText()};
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        return failure;
    };
    if (!db.open()) {
        return fail(db.lastError());
    }
    {
        // Opening is lazy: read the schema to find a file that is not a database at all.
        QSqlQuery probe(db);
        if (!probe.exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) {
            const QSqlError e = probe.lastError();
            probe = QSqlQuery();
            db.close();
            return fail(e);
        }
    }
    dialect->prepareConnection(db);
    return std::unique_ptr<Database>(new Database(std::move(dialect), db, file));
}

std::unique_ptr<Database> Database::createSqlite(const QString& file) {
    if (!QFileInfo::exists(file)) {
        QFile f(file);
        if (!f.open(QIODevice::WriteOnly)) {
            throw DbError(QStringLiteral("creating the database"), {},
                          QStringLiteral("cannot create %1: %2").arg(file, f.errorString()));
        }
    }
    auto result = openSqlite(file);
    if (auto* failure = std::get_if<OpenFailure>(&result)) {
        throw DbError(QStringLiteral("opening the database"), {},
                      failure->lines().join(QLatin1Char(' ')), failure->engineCode);
    }
    return std::move(std::get<std::unique_ptr<Database>>(result));
}

// libpq's words for a login the server turned away, as against a server not reached.
bool isRefusedLogin(const QString& text) {
    static const QStringList marks = {QStringLiteral("authentication failed"),
                                      QStringLiteral("no password supplied"),
                                      QStringLiteral("permission denied"),
                                      QStringLiteral("pg_hba.conf"),
                                      QStringLiteral("role \""),
                                      QStringLiteral("password is required")};
    return std::any_of(marks.begin(), marks.end(),
                       [&](const QString& m) { return text.contains(m, Qt::CaseInsensitive); });
}

Database::OpenResult Database::openServer(const QString& location) {
    QString problem;
    const auto address = ServerAddress::parse(location, &problem);
    if (!address) {
        return OpenFailure{OpenFailure::Kind::BadAddress, location, {}, problem};
    }
    auto dialect = std::make_unique<PostgresDialect>();
    const QString name =
        QStringLiteral("brimsett-%1").arg(g_connectionCounter.fetchAndAddRelaxed(1));
    QSqlDatabase db = QSqlDatabase::addDatabase(dialect->driver(), name);
    if (!db.isValid()) {
        QSqlDatabase::removeDatabase(name);
        return OpenFailure{OpenFailure::Kind::Refused,
                           location,
                           {},
                           QStringLiteral("the PostgreSQL driver of Qt (libqt6sql6-psql) is not "
                                          "installed")};
    }
    db.setHostName(address->host);
    if (address->port > 0) {
        db.setPort(address->port);
    }
    db.setUserName(address->user);
    db.setDatabaseName(address->database);
    QStringList options = address->options;
    if (!std::any_of(options.begin(), options.end(), [](const QString& o) {
            return o.startsWith(QStringLiteral("connect_timeout="));
        })) {
        options << QStringLiteral("connect_timeout=10");
    }
    db.setConnectOptions(options.join(QLatin1Char(';')));
    if (!db.open()) {
        const QSqlError e = db.lastError();
        const QString text = (e.databaseText().isEmpty() ? e.text() : e.databaseText()).trimmed();
        db = QSqlDatabase();
        QSqlDatabase::removeDatabase(name);
        const bool login = isRefusedLogin(text);
        return OpenFailure{
            login ? OpenFailure::Kind::PermissionDenied : OpenFailure::Kind::NotFound, location,
            e.nativeErrorCode(), text};
    }
    dialect->prepareConnection(db);
    return std::unique_ptr<Database>(new Database(std::move(dialect), db, location));
}

Database::OpenResult Database::open(const QString& location) {
    return ServerAddress::names(location) ? openServer(location) : openSqlite(location);
}

bool Database::onServer() const {
    return m_dialect->driver() == QLatin1String("QPSQL");
}

namespace {

// What the drivers take as NULL: no value, and the null string, date or time.
bool isNullValue(const QVariant& v) {
    if (!v.isValid() || v.isNull()) {
        return true;
    }
    switch (v.typeId()) {
        case QMetaType::QString:
            return v.toString().isNull();
        case QMetaType::QByteArray:
            return v.toByteArray().isNull();
        case QMetaType::QDate:
            return !v.toDate().isValid();
        case QMetaType::QDateTime:
            return !v.toDateTime().isValid();
        case QMetaType::QTime:
            return !v.toTime().isValid();
        default:
            return false;
    }
}

}  // namespace

QString Database::withValues(const QString& statement, const QVariantList& values) const {
    QString out;
    out.reserve(statement.size() + values.size() * 8);
    qsizetype next = 0;
    for (qsizetype i = 0; i < statement.size(); ++i) {
        const QChar c = statement.at(i);
        if (c == QLatin1Char('\'') || c == QLatin1Char('"')) {
            const qsizetype end = statement.indexOf(c, i + 1);
            const qsizetype stop = end < 0 ? statement.size() - 1 : end;
            out += statement.mid(i, stop - i + 1);
            i = stop;
            continue;
        }
        if (c != QLatin1Char('?')) {
            out += c;
            continue;
        }
        if (next >= values.size()) {
            throw DbError({}, statement, QStringLiteral("more places for values than values"));
        }
        const QVariant& v = values.at(next++);
        if (isNullValue(v)) {
            out += QStringLiteral("NULL");
            continue;
        }
        switch (v.typeId()) {
            case QMetaType::Bool:
                out += v.toBool() ? QLatin1Char('1') : QLatin1Char('0');
                break;
            case QMetaType::Int:
            case QMetaType::UInt:
            case QMetaType::Long:
            case QMetaType::LongLong:
            case QMetaType::Short:
            case QMetaType::ULongLong:
                out += v.toString();
                break;
            case QMetaType::Double:
            case QMetaType::Float:
                out += QString::number(v.toDouble(), 'g', 17);
                break;
            case QMetaType::QDate:
                out += QLatin1Char('\'') + v.toDate().toString(Qt::ISODate) + QLatin1Char('\'');
                break;
            case QMetaType::QDateTime:
                out += QLatin1Char('\'') +
                       v.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) +
                       QLatin1Char('\'');
                break;
            case QMetaType::QTime:
                out += QLatin1Char('\'') + v.toTime().toString(QStringLiteral("HH:mm:ss")) +
                       QLatin1Char('\'');
                break;
            default: {
                QSqlField field(QString(), v.metaType());
                field.setValue(v);
                out += m_db.driver()->formatValue(field);
            }
        }
    }
    if (next != values.size()) {
        throw DbError({}, statement, QStringLiteral("more values than places for them"));
    }
    return out;
}

QSqlQuery Database::exec(const QString& statement, const QVariantList& values,
                         const QString& doing) {
    ++m_statements;
    killpoints::statement();
    QSqlQuery q(m_db);
    // The server's driver reads a forward-only result a row at a time from the connection, and
    // drops the rows not yet read when another statement runs; a whole result is read at once.
    q.setForwardOnly(!onServer());
    const auto failed = [&](const QSqlError& e) {
        DbError error = errorOf(*m_dialect, doing, statement, e);
        if (connectionLost()) {
            // Lost while committing, the server may have saved it all before the answer was
            // lost: the user looks before saving again.
            const bool committing =
                statement.compare(QLatin1String("COMMIT"), Qt::CaseInsensitive) == 0;
            error = DbError(
                doing, statement,
                QStringLiteral("The connection to the database server was lost (%1). ")
                        .arg(error.engineText()) +
                    (committing ? QStringLiteral("It is not known whether this was saved; please "
                                                 "look before saving it again.")
                                : QStringLiteral("What was being saved was not saved; please try "
                                                 "again.")),
                error.engineCode());
            // The next action starts on a new connection; this one's transaction is gone.
            if (m_depth == 0) {
                reconnect();
            }
        }
        return error;
    };
    const bool inlineValues = onServer();
    if (values.isEmpty() || inlineValues) {
        QString text = inlineValues ? withValues(statement, values) : statement;
        if (!q.exec(m_dialect->statement(text))) {
            throw failed(q.lastError());
        }
        return q;
    }
    if (!q.prepare(statement)) {
        throw failed(q.lastError());
    }
    for (const QVariant& v : values) {
        q.addBindValue(v);
    }
    if (!q.exec()) {
        throw failed(q.lastError());
    }
    return q;
}

bool Database::connectionLost() {
    if (!onServer()) {
        return false;
    }
    QSqlQuery probe(m_db);
    // A transaction that a refused statement ended answers "in failed transaction" (25P02):
    // the connection itself is alive.
    return !probe.exec(QStringLiteral("SELECT 1")) &&
           probe.lastError().nativeErrorCode() != QLatin1String("25P02");
}

bool Database::reconnect() {
    m_db.close();
    if (!m_db.open()) {
        return false;
    }
    m_dialect->prepareConnection(m_db);
    return true;
}

QVariant Database::scalar(const QString& statement, const QVariantList& values,
                          const QString& doing) {
    QSqlQuery q = exec(statement, values, doing);
    return q.next() ? q.value(0) : QVariant();
}

bool Database::hasTable(const QString& table) const {
    const QStringList names = m_dialect->tableNames(m_db);
    return std::any_of(names.begin(), names.end(), [&](const QString& n) {
        return n.compare(table, Qt::CaseInsensitive) == 0;
    });
}

bool Database::hasColumn(const QString& table, const QString& column) const {
    const QStringList names = m_dialect->columnNames(m_db, table);
    return std::any_of(names.begin(), names.end(), [&](const QString& n) {
        return n.compare(column, Qt::CaseInsensitive) == 0;
    });
}

void* Database::nativeHandle() const {
    const QVariant v = m_db.driver()->handle();
    return v.isValid() ? *static_cast<void* const*>(v.constData()) : nullptr;
}

Transaction::Transaction(Database& db, const QString& doing) : m_db(db) {
    if (m_db.m_depth == 0 && m_db.m_dialect->driver() == QLatin1String("QSQLITE")) {
        if (const QStringList reads = openReads(m_db.nativeHandle()); !reads.isEmpty()) {
            const QString text =
                QStringLiteral("a read was left open when the transaction began: ") +
                reads.join(QStringLiteral(" | "));
            if (strictReads()) {
                throw DbError(doing, {}, text);
            }
            qWarning("%s", qPrintable(text));
        }
    }
    m_level = ++m_db.m_depth;
    try {
        if (m_level == 1) {
            const QStringList begin = m_db.dialect().beginTransaction();
            try {
                try {
                    m_db.exec(begin.first(), {}, doing);
                } catch (const DbError&) {
                    // A server connection lost since the last action is opened again; nothing
                    // had begun, so beginning again is safe.
                    if (!(m_db.onServer() && m_db.connectionLost() && m_db.reconnect())) {
                        throw;
                    }
                    m_db.exec(begin.first(), {}, doing);
                }
                for (qsizetype i = 1; i < begin.size(); ++i) {
                    m_db.exec(begin.at(i), {}, doing);
                }
            } catch (...) {
                // A transaction begun but not given its turn (the lock's wait ran out) ends here.
                QSqlQuery(m_db.m_db).exec(QStringLiteral("ROLLBACK"));
                throw;
            }
        } else {
            m_db.exec(m_db.dialect().savepoint(QStringLiteral("sp%1").arg(m_level)), {}, doing);
        }
    } catch (...) {
        --m_db.m_depth;
        throw;
    }
}

void Transaction::commit() {
    if (m_done) {
        return;
    }
    if (m_level == 1) {
        m_db.exec(QStringLiteral("COMMIT"), {}, QStringLiteral("committing"));
    } else {
        m_db.exec(m_db.dialect().releaseSavepoint(QStringLiteral("sp%1").arg(m_level)));
    }
    m_done = true;
    --m_db.m_depth;
}

Transaction::~Transaction() {
    if (m_done) {
        return;
    }
    QSqlQuery q(m_db.m_db);
    if (m_level == 1) {
        q.exec(QStringLiteral("ROLLBACK"));
    } else {
        const QString sp = QStringLiteral("sp%1").arg(m_level);
        q.exec(m_db.dialect().rollbackToSavepoint(sp));
        q.exec(m_db.dialect().releaseSavepoint(sp));
    }
    --m_db.m_depth;
}

}  // namespace brimsett
