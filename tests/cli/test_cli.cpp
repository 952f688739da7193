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
