#include "CliRun.h"
#include "TestSupport.h"
#include "foundation/AccessLevels.h"

#include <QtTest>

using namespace brimsett;

namespace {

const QString kRefused = QStringLiteral("You cannot access this feature.");
const char* const kSobRan = "is not in the expected format.";

}  // namespace

// Which brimsett-cli commands ask for which access level, and what a refusal leaves behind.
class TestCliAccess : public QObject {
    Q_OBJECT

    test::TempOffice office;

    // Master "boss", Billing Secretary "fees" and Secretary "desk", made afresh with few rounds
    // for each row (a login that succeeds makes its hash again), or none at all.
    void setPasswords(bool on) {
        AccessLevels levels(office.store(), 1000);
        levels.remove(AccessLevels::kMaster);  // and every weaker level with it
        const auto changed = AccessLevels::ChangeResult::Changed;
        QVERIFY(!on ||
                (levels.change(0, "boss") == changed && levels.change(2, "fees") == changed &&
                 levels.change(4, "desk") == changed));
    }

    // What the commands may change: the specialty codes and one setting.
    QString state() {
        auto db = test::openAgain(office.databaseLocation());
        const QStringList codes =
            test::rowsOf(db->exec("Select SpecCode From speccodes Order By SpecCode"));
        db->close();
        return codes.join(',') + "|" +
               SettingsStore(office.settingsFile()).get("Options", "Track0");
    }

private slots:
    // On the test server when there is one: there the engine itself tells a change, by
    // refusing it in a read-only transaction.
    void initTestCase() {
        if (!test::testServer().isEmpty()) {
            office.emptyDatabase();
            office.store().save("General", "dbPath", office.databaseLocation());
            QVERIFY(office.store().sync());
        }
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        test::writeText(office.file("garbage.txt"), "not a schedule\r\n");
    }

    // One row per rule: no passwords open all, and a level is refused when locked, to a wrong
    // or weaker password, and opened by its own or a stronger one.
    void commandsHonourTheLevels_data() {
        QTest::addColumn<QStringList>("args");  // "@" stands for the row's name
        QTest::addColumn<QString>("given");     // null: no passwords set; empty: none given
        QTest::addColumn<QString>("needs");     // the level named in the refusal; empty: it runs
        QTest::addColumn<bool>("changes");
        QTest::addColumn<QString>("ranSign");  // what standard error shows when it ran
        using L = QStringList;
        const L insert{"sql",
                       "Insert Into speccodes (SpecCode) Select 'C' || Count(*) From speccodes"};
        const L set{"settings", "set", "Options", "Track0", "@"};
        const L sob{"import-sob", office.file("garbage.txt")};
        test::row("no passwords set", insert, nullptr, "", true, "");
        test::row("locked", insert, "", "Master", false, "");
        test::row("wrong password", insert, "nope", "Master", false, "");
        test::row("right password", insert, "boss", "", true, "");
        test::row("weaker, to a change the first word does not tell",
                  L{"sql",
                    "With n(c) As (Select Count(*) From speccodes) Insert Into speccodes"
                    " (SpecCode) Select 'W' || c From n"},
                  "fees", "Master", false, "");
        test::row("settings set, weaker", set, "desk", "Master", false, "");
        test::row("settings set, right", set, "boss", "", true, "");
        test::row("import-sob, weaker", sob, "desk", "Billing Secretary", false, kSobRan);
        test::row("import-sob, stronger", sob, "boss", "", false, kSobRan);
        // Reading needs no level, whatever is given.
        test::row("sql query", L{"sql", "Select Count(*) From speccodes"}, "nope", "", false, "");
        test::row("prepare", L{"prepare", "JS"}, "", "", false, "");
    }
    void commandsHonourTheLevels() {
        QFETCH(QStringList, args);
        QFETCH(QString, given);
        QFETCH(QString, needs);
        QFETCH(bool, changes);
        QFETCH(QString, ranSign);
        args.replaceInStrings("@", QTest::currentDataTag());
        setPasswords(!given.isNull());
        const QString before = state();

        const test::CliResult r = test::cli(office, args, given.isEmpty() ? QString() : given);
        QCOMPARE(r.err.contains("Invalid Password"), given == "nope" && !needs.isEmpty());
        QVERIFY2(r.err.contains(ranSign) == (ranSign.isEmpty() || needs.isEmpty()),
                 qPrintable(r.err));
        if (needs.isEmpty()) {
            QVERIFY2(!r.err.contains(kRefused), qPrintable(r.err));
            QCOMPARE(state() != before, changes);
        } else {
            QVERIFY(r.status != 0);
            QVERIFY2(r.err.contains(kRefused) &&
                         r.err.contains("It requires the [" + needs + "] password"),
                     qPrintable(r.err));
            QCOMPARE(r.out, QString());
            QCOMPARE(state(), before);
        }
    }
};

QTEST_GUILESS_MAIN(TestCliAccess)
#include "test_cli_access.moc"
