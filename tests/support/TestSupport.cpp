#include "TestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlRecord>

namespace brimsett::test {

TempOffice::TempOffice()
    : m_store(
          std::make_unique<SettingsStore>(m_dir.path() + QStringLiteral("/settings/Zandor.ini"))) {}

QString TempOffice::folder() const {
    return m_dir.path() + QLatin1Char('/');
}

QString TempOffice::file(const QString& name) const {
    return folder() + name;
}

QString TempOffice::settingsFile() const {
    return m_dir.path() + QStringLiteral("/settings/Zandor.ini");
}

namespace {

// The server's maintenance database, kept open for the whole test program: it creates and
// drops the tests' databases. Left to the process's end on purpose.
Database& serverAdmin() {
    static Database* admin = [] {
        auto opened = Database::openServer(QStringLiteral("postgresql://postgres@/postgres?host=") +
                                           testServer());
        if (auto* failure = std::get_if<OpenFailure>(&opened)) {
            qFatal("PostgreSQL test server: %s", qPrintable(failure->lines().join(u' ')));
        }
        return std::get<std::unique_ptr<Database>>(opened).release();
    }();
    return *admin;
}

QString serverDatabaseStem(const QString& file) {
    QString stem = QFileInfo(file).completeBaseName().toLower();
    stem.replace(QRegularExpression(QStringLiteral("[^a-z0-9]")), QStringLiteral("_"));
    return stem.left(20);
}

QString serverDatabaseName(const QString& file) {
    static int counter = 0;
    return QStringLiteral("t%1_%2_%3")
        .arg(QCoreApplication::applicationPid())
        .arg(++counter)
        .arg(serverDatabaseStem(file));
}

}  // namespace

QString testServer() {
    return qEnvironmentVariable("BRIMSETT_TEST_PG");
}

TempOffice::~TempOffice() {
    for (const QString& name : m_serverDatabases) {
        serverAdmin().exec(QStringLiteral("DROP DATABASE IF EXISTS %1 WITH (FORCE)").arg(name));
    }
}

QString TempOffice::databaseLocation(const QString& name) const {
    if (testServer().isEmpty()) {
        return file(name);
    }
    for (auto it = m_serverDatabases.crbegin(); it != m_serverDatabases.crend(); ++it) {
        const QString& created = *it;
        if (created.endsWith(QLatin1Char('_') + serverDatabaseStem(name))) {
            return QStringLiteral("postgresql://postgres@/%1?host=%2").arg(created, testServer());
        }
    }
    return {};
}

std::unique_ptr<Database> TempOffice::emptyDatabase(const QString& name) const {
    if (testServer().isEmpty()) {
        return Database::createSqlite(file(name));
    }
    const QString database = serverDatabaseName(name);
    serverAdmin().exec(QStringLiteral("CREATE DATABASE %1").arg(database));
    m_serverDatabases << database;
    return openAgain(databaseLocation(name));
}

std::unique_ptr<Database> openAgain(const QString& location) {
    auto opened = Database::open(location);
    if (auto* failure = std::get_if<OpenFailure>(&opened)) {
        throw DbError(QStringLiteral("opening the database again"), {},
                      failure->lines().join(QLatin1Char(' ')));
    }
    return std::move(std::get<std::unique_ptr<Database>>(opened));
}

void refuseRows(Database& db, const QString& event, const QString& table, const QString& condition,
                const QString& message) {
    static int counter = 0;
    const QString name = QStringLiteral("refuse_%1").arg(++counter);
    QString quoted = message;
    quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
    if (!db.onServer()) {
        db.exec(QStringLiteral("Create Trigger %1 Before %2 On %3 %4 Begin Select Raise(Abort, "
                               "'%5'); End")
                    .arg(name, event, table,
                         condition.isEmpty() ? QString() : QStringLiteral("When ") + condition,
                         quoted));
        return;
    }
    const QString row = event.compare(QStringLiteral("Delete"), Qt::CaseInsensitive) == 0
                            ? QStringLiteral("OLD")
                            : QStringLiteral("NEW");
    db.exec(QStringLiteral("Create Function %1() Returns trigger Language plpgsql As $body$ Begin "
                           "If %2 Then Raise Exception '%3'; End If; Return %4; End $body$")
                .arg(name, condition.isEmpty() ? QStringLiteral("true") : condition, quoted, row));
    db.exec(QStringLiteral("Create Trigger %1 Before %2 On %3 For Each Row Execute Function %1()")
                .arg(name, event, table));
}

QString readText(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(f.readAll());
}

void writeText(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        f.write(bytes);
    }
}

QStringList rowsOf(QSqlQuery query) {
    QStringList rows;
    while (query.next()) {
        QStringList values;
        for (int i = 0; i < query.record().count(); ++i) {
            const QVariant v = query.value(i);
            // A server gives a moment as a date-time; shown as SQLite stores it.
            values << (v.isNull() ? QStringLiteral("<null>")
                       : v.typeId() == QMetaType::QDateTime
                           ? v.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"))
                           : v.toString());
        }
        rows << values.join(QLatin1Char('|'));
    }
    return rows;
}

QString samplesFolder() {
    const QString dir = QStringLiteral(BRIMSETT_SAMPLES);
    return QDir(dir).exists() ? dir : QString();
}

}  // namespace brimsett::test
