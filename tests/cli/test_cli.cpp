#include "CliRun.h"
#include "TestSupport.h"
#include "foundation/Schema.h"

#include <QProcess>
#include <QtTest>

using namespace brimsett;

class TestCli : public QObject {
    Q_OBJECT

private slots:
    void initCreatesThenFindsNothingToDo();
    void initOnAnOlderDatabaseUpdatesItAndSaysSo();
    void sqlPrintsRowsWithTabsAndEmptyNulls();
    void sqlRefusalIsOneLineAndNonZero();
    void settingsGetAndSet();
    void backupWithoutARunningProgramMakesItsOwnCopy();
    void sendWithoutARunningProgramFails();
    void healthNumbers_data();
    void healthNumbers();
    void usageErrors_data();
    void usageErrors();
    void everyListedCommandHasItsHelp();
};

void TestCli::initCreatesThenFindsNothingToDo() {
    test::TempOffice office;
    test::CliResult first = test::cli(office, {"init"});
    QCOMPARE(first.status, 0);
    QVERIFY(first.out.startsWith("Created a new database at " + office.file("medical.mdb")));
    auto db = Database::createSqlite(office.file("medical.mdb"));
    for (const QString& table : schema::tableNames()) {
        QVERIFY2(db->hasTable(table), qPrintable(table));
    }
    db->close();

    test::CliResult second = test::cli(office, {"init"});
    QCOMPARE(second.status, 0);
    QVERIFY(!second.out.contains("Created"));
    QVERIFY(second.out.contains("The database layout is current"));
    // The command line leaves the running-program mark as it found it.
    QVERIFY(!office.store().contains("General", "Open"));
}

void TestCli::initOnAnOlderDatabaseUpdatesItAndSaysSo() {
    test::TempOffice office;
    {
        auto db = Database::createSqlite(office.file("medical.mdb"));
        schema::create(*db);
        db->exec("ALTER TABLE Doctors DROP COLUMN SLI");
    }
    test::CliResult r = test::cli(office, {"init"});
    QCOMPARE(r.status, 3);
    QVERIFY(r.err.contains("Brimsett has updated your database to current standards."));
    QCOMPARE(test::cli(office, {"init"}).status, 0);
}

void TestCli::sqlPrintsRowsWithTabsAndEmptyNulls() {
    test::TempOffice office;
    QCOMPARE(test::cli(office, {"init"}).status, 0);
    test::CliResult insert =
        test::cli(office, {"sql",
                           "Insert Into speccodes (SpecCode, Description) Values "
                           "('00', 'General\tPractice'), ('12', NULL)"});
    QCOMPARE(insert.status, 0);
    QCOMPARE(insert.out, QString("2 row(s) changed\n"));
    test::CliResult query =
        cli(office, {"sql", "Select SpecCode, Description From speccodes Order By SpecCode"});
    QCOMPARE(query.status, 0);
    QCOMPARE(query.out, QString("SpecCode\tDescription\n00\tGeneral\\tPractice\n12\t\n"));
}

void TestCli::sqlRefusalIsOneLineAndNonZero() {
    test::TempOffice office;
    test::CliResult r = test::cli(office, {"sql", "Select Name From nowhere"});
    QCOMPARE(r.status, 1);
    QVERIFY(r.err.startsWith("brimsett-cli: running the statement: no such table: nowhere"));
    QCOMPARE(r.err.count('\n'), 1);
}

void TestCli::settingsGetAndSet() {
    test::TempOffice office;
    QCOMPARE(test::cli(office, {"settings", "get", "Options", "Track0"}).status, 1);
    QCOMPARE(test::cli(office, {"settings", "set", "Options", "Track0", "on"}).status, 0);
    test::CliResult r = test::cli(office, {"settings", "get", "Options", "Track0"});
    QCOMPARE(r.status, 0);
    QCOMPARE(r.out, QString("on\n"));
    QCOMPARE(test::cli(office, {"settings", "get", "Options"}).status, 2);
}

void TestCli::backupWithoutARunningProgramMakesItsOwnCopy() {
    test::TempOffice office;
    QCOMPARE(test::cli(office, {"sql", "Insert Into speccodes (SpecCode) Values ('08')"}).status,
             0);
    test::CliResult r = test::cli(office, {"backup"});
    QCOMPARE(r.status, 0);
    const QString file = r.out.trimmed();
    QVERIFY(QFileInfo(file).fileName().startsWith("medical-"));
    auto copy = Database::createSqlite(file);
    QCOMPARE(copy->scalar("Select SpecCode From speccodes").toString(), QString("08"));
}

void TestCli::sendWithoutARunningProgramFails() {
    test::TempOffice office;
    test::CliResult r = test::cli(office, {"send", "PATIENT", "12"});
    QCOMPARE(r.status, 1);
    QVERIFY(r.err.startsWith("brimsett-cli: "));
    QVERIFY(r.out.isEmpty());
}

QTEST_GUILESS_MAIN(TestCli)
void TestCli::healthNumbers_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("out");
    QTest::newRow("valid") << QStringList{"hn", "check", "ON", "9876543217"} << 0 << "valid\n";
    QTest::newRow("lower-case province")
        << QStringList{"hn", "check", "bc", "9698648215"} << 1 << "not valid\n";
    QTest::newRow("guess") << QStringList{"hn", "guess", "190148527"} << 0 << "SK\n";
    QTest::newRow("no guess") << QStringList{"hn", "guess", "123"} << 0 << "\n";
    QTest::newRow("usage") << QStringList{"hn", "check", "ON"} << 2 << "";
}

void TestCli::healthNumbers() {
    QFETCH(QStringList, args);
    QFETCH(int, status);
    QFETCH(QString, out);
    test::TempOffice office;
    const test::CliResult r = test::cli(office, args);
    QCOMPARE(r.status, status);
    QCOMPARE(r.out, out);
}

#include "test_cli.moc"

// Every wrong command line is told the same way: one line naming the command and the
// problem, then the command's usage, nothing on standard output, status 2, and nothing opened.
void TestCli::usageErrors_data() {
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("error");
    using L = QStringList;
    test::row("unknown option", L{"prepare", "JS", "--bogus"},
              "brimsett-cli prepare: Unknown option 'bogus'.");
    test::row("option without its value", L{"submit", "F.001", "--method"},
              "brimsett-cli submit: Missing value after '--method'.");
    test::row("missing argument", L{"sql"}, "brimsett-cli sql: missing STATEMENT");
    test::row("missing option", L{"claim", "add", "--patient", "1", "A007A:401:1:2026/01/05"},
              "brimsett-cli claim add: missing --doctor ID");
    test::row("one argument too many", L{"init", "now"},
              "brimsett-cli init: unexpected argument now");
    test::row("value refused by the command", L{"patient", "show", "7x"},
              "brimsett-cli patient show: Invalid number.");
    test::row("unknown command", L{"frobnicate"}, "brimsett-cli: unknown command frobnicate");
    test::row("group without its command", L{"claim"}, "brimsett-cli claim: missing command");
    test::row("unknown command of a group", L{"settings", "list"},
              "brimsett-cli settings: unknown command list");
    test::row("unknown global option", L{"--verbose", "init"},
              "brimsett-cli: Unknown option 'verbose'.");
}

void TestCli::usageErrors() {
    QFETCH(QStringList, args);
    QFETCH(QString, error);
    test::TempOffice office;
    const test::CliResult r = test::cli(office, args);
    QCOMPARE(r.status, 2);
    QCOMPARE(r.out, QString());
    const QStringList lines = r.err.split('\n');
    QCOMPARE(lines.value(0), error);
    QVERIFY2((lines.value(1) + ' ').startsWith("usage: " + error.section(':', 0, 0) + ' '),
             qPrintable(r.err));
    QVERIFY(!QFile::exists(office.file("medical.mdb")));
}

// The list of "brimsett-cli --help" and each command's own --help come from one declaration:
// every listed command answers its --help with its usage and the same summary.
void TestCli::everyListedCommandHasItsHelp() {
    test::TempOffice office;
    const test::CliResult all = test::cli(office, {"--help"});
    QCOMPARE(all.status, 0);
    const QStringList list = all.out.section("commands:\n", 1).split('\n', Qt::SkipEmptyParts);
    QVERIFY2(list.size() >= 18, qPrintable(all.out));  // the commands so far, at least
    QSet<QString> groups;
    for (const QString& line : list) {
        const QStringList name = line.section("  ", 1, 1).split(' ');
        const test::CliResult help = test::cli(office, name + QStringList{"--help"});
        QVERIFY2(help.status == 0 && help.out.startsWith("usage: brimsett-cli " + name.join(' ')),
                 qPrintable(line));
        const QString summary = line.mid(line.indexOf("  ", 3)).trimmed();
        QVERIFY2(help.out.contains("\n" + summary + "\n"), qPrintable(help.out));
        for (qsizetype words = 1; words < name.size(); ++words) {
            groups << name.mid(0, words).join(' ');  // "appt" and "appt slot-type"
        }
    }
    for (const QString& group : groups) {
        const test::CliResult help = test::cli(office, group.split(' ') + QStringList{"--help"});
        QVERIFY2(help.status == 0 && help.out.contains("  " + group + " "), qPrintable(help.out));
    }
}
