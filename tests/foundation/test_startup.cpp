#include "TestSupport.h"
#include "foundation/AccessLevels.h"
#include "foundation/Clock.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/Startup.h"

#include <QtTest>

#include <unistd.h>

using namespace brimsett;

class TestStartup : public QObject {
    Q_OBJECT

private slots:
    void newOfficeGetsACurrentDatabase();
    void blankTemplateIsCopiedAndUpdated();
    void handOverFileReplacesTheDatabaseAndKeepsTheOldOne();
    void unusableDatabaseGetsItsMessage_data();
    void unusableDatabaseGetsItsMessage();
    void readOnlyDatabaseIsRefused();
    void failingUpgradeStopsWithTheEngineError();
    void decimalSeparatorFollowsTheCurrencyFormat_data();
    void decimalSeparatorFollowsTheCurrencyFormat();
};

namespace {

struct Run {
    test::TempOffice office;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(9, 30, 5))};
    RecordingPrompter prompter;
    std::unique_ptr<AccessLevels> access;

    Startup::Result start() {
        access = std::make_unique<AccessLevels>(office.store());
        return Startup(OfficePaths(office.folder()), office.store(), *access, clock, prompter,
                       QLocale(QLocale::English, QLocale::Canada))
            .run();
    }
};

// A database holding one marker row, so tests can tell databases apart.
void makeDatabase(const QString& file, const QString& marker, bool current = true) {
    auto db = Database::createSqlite(file);
    schema::create(*db);
    if (!current) {
        db->exec("ALTER TABLE claims DROP COLUMN RA");  // as an older release left it
    }
    db->exec("Create Table marker (name Text(20))");
    db->exec("Insert Into marker Values (?)", {marker});
    db->close();
}

QString markerOf(const QString& file) {
    auto db = Database::createSqlite(file);
    return db->scalar("Select name From marker").toString();
}

}  // namespace

void TestStartup::newOfficeGetsACurrentDatabase() {
    Run run;
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::Ready);
    QVERIFY(r.db);
    QVERIFY(r.db->hasTable("Claims"));
    QCOMPARE(r.done.first(), "Created a new database at " + run.office.file("medical.mdb"));
    QCOMPARE(run.office.store().get("General", "Open"), QString("1"));
    QVERIFY(run.prompter.messages().isEmpty());
    QVERIFY(!QFileInfo::exists(run.office.file("medical.mdb.new")));
}

void TestStartup::blankTemplateIsCopiedAndUpdated() {
    Run run;
    makeDatabase(run.office.file("bsblank.db"), "template", false);
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::RestartNeeded);
    QVERIFY(!r.db);
    QCOMPARE(run.prompter.messages().size(), 1);
    QCOMPARE(run.prompter.last().title, QString("Updated..."));
    QCOMPARE(run.prompter.last().lines,
             QStringList({"Brimsett has updated your database to current standards.", "",
                          "Please restart your copy of Brimsett."}));
    QCOMPARE(run.prompter.last().icon, Icon::Information);
    QCOMPARE(markerOf(run.office.file("medical.mdb")), QString("template"));

    // The restart finds nothing more to do.
    run.prompter.clear();
    QCOMPARE(run.start().outcome, Startup::Outcome::Ready);
    QVERIFY(run.prompter.messages().isEmpty());
}

void TestStartup::handOverFileReplacesTheDatabaseAndKeepsTheOldOne() {
    Run run;
    makeDatabase(run.office.file("medical.mdb"), "before");
    makeDatabase(run.office.file("medical-r.mdb"), "restored");
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::Ready);
    QCOMPARE(r.db->scalar("Select name From marker").toString(), QString("restored"));
    QVERIFY(!QFileInfo::exists(run.office.file("medical-r.mdb")));
    QCOMPARE(markerOf(run.office.file("medical-20261122-093005.mdb")), QString("before"));
}

void TestStartup::unusableDatabaseGetsItsMessage_data() {
    QTest::addColumn<QByteArray>("content");  // empty: the file is missing
    QTest::addColumn<QStringList>("expectedStart");
    QTest::newRow("missing") << QByteArray()
                             << QStringList{
                                    "Brimsett could not find your database at this location:",
                                    "<file>",
                                    "",
                                    "Possible causes:",
                                    "* If you are on a network the server computer ",
                                    "may be turned off.",
                                    "* You may have entered an invalid path on the ",
                                    "Options Screen.",
                                    "* Your database may be damaged or was deleted.",
                                    "",
                                    "Please contact Technical Support for assistance."};
    QTest::newRow("old engine file")
        << QByteArray("\x00\x01\x00\x00Standard Jet DB\x00\x01\x00\x00\x00", 24)
        << QStringList{"Could not open the database.", "Location: <file>"};
    QTest::newRow("not a database")
        << QByteArray(8192, 'x')
        << QStringList{"Could not open the database.", "Location: <file>",
                       "Error #26 file is not a database"};
}

void TestStartup::unusableDatabaseGetsItsMessage() {
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expectedStart);
    Run run;
    const QString file = run.office.file("elsewhere/medical.mdb");
    run.office.store().save("General", "dbPath", run.office.file("elsewhere"));
    if (!content.isEmpty()) {
        test::writeText(file, content);
    }
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::OpenFailed);
    QVERIFY(r.openFailure.has_value());
    QCOMPARE(run.prompter.messages().size(), 1);
    QCOMPARE(run.prompter.last().title, QString("Error"));
    QCOMPARE(run.prompter.last().icon, Icon::Critical);
    expectedStart.replaceInStrings("<file>", file);
    QCOMPARE(run.prompter.last().lines.mid(0, expectedStart.size()), expectedStart);
    // Nothing was written over the file.
    if (!content.isEmpty()) {
        QCOMPARE(test::readText(file).toLatin1().size(), content.size());
    }
}

void TestStartup::readOnlyDatabaseIsRefused() {
    if (::geteuid() == 0) {
        QSKIP("file permissions do not bind the superuser");
    }
    Run run;
    makeDatabase(run.office.file("medical.mdb"), "x");
    QFile::setPermissions(run.office.file("medical.mdb"), QFile::ReadOwner);
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::OpenFailed);
    QCOMPARE(run.prompter.last().lines.at(2), QString("Reason: Permission was denied."));
}

void TestStartup::failingUpgradeStopsWithTheEngineError() {
    Run run;
    {
        auto db = Database::createSqlite(run.office.file("medical.mdb"));
        db->exec("Create Table claims (ClaimID Long)");  // no items table to add columns to
    }
    Startup::Result r = run.start();
    QCOMPARE(r.outcome, Startup::Outcome::UpgradeFailed);
    QVERIFY(r.error.contains("items"));
    QCOMPARE(run.prompter.last().title, QString("Error"));
    QCOMPARE(run.prompter.last().lines.first(),
             QString("Brimsett could not update your database:"));
    // The claims columns added before the failure stay.
    auto db = Database::createSqlite(run.office.file("medical.mdb"));
    QVERIFY(db->hasColumn("claims", "InvoiceNum"));
}

void TestStartup::decimalSeparatorFollowsTheCurrencyFormat_data() {
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("separator");
    QTest::newRow("English Canada") << QLocale(QLocale::English, QLocale::Canada) << ".";
    QTest::newRow("French Canada") << QLocale(QLocale::French, QLocale::Canada) << ",";
    QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany) << ",";
}

void TestStartup::decimalSeparatorFollowsTheCurrencyFormat() {
    QFETCH(QLocale, locale);
    QFETCH(QString, separator);
    QCOMPARE(QString(Startup::moneyFormatOf(locale).decimal), separator);
}

QTEST_GUILESS_MAIN(TestStartup)
#include "test_startup.moc"
