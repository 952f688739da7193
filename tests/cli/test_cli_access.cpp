#include "CliRun.h"
#include "TestSupport.h"
#include "foundation/AccessLevels.h"

#include <QtTest>

using namespace brimsett;

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kRefused = QStringLiteral("You cannot access this feature.");

// The office's passwords: Master, Billing Secretary and Secretary.
const QString kMaster = QStringLiteral("boss");
const QString kBilling = QStringLiteral("fees");
const QString kSecretary = QStringLiteral("desk");

}  // namespace

// Which brimsett-cli commands ask for which access level, and what a refusal leaves behind.
class TestCliAccess : public QObject {
    Q_OBJECT

    test::TempOffice office;
    QMap<QString, QString> hashes;  // "Open0".."Open4" as stored with the passwords set

    void setPasswords(bool on) {
        for (int level = 0; level < AccessLevels::kLevelCount; ++level) {
            const QString key = QStringLiteral("Open%1").arg(level);
            if (on && hashes.contains(key)) {
                office.store().save(kGeneral, key, hashes.value(key));
            } else {
                office.store().remove(kGeneral, key);
            }
        }
        office.store().sync();
    }

    // What the commands may change: the specialty codes and one setting.
    QString state() {
        auto db = Database::createSqlite(office.file("medical.mdb"));
        const QString codes =
            db->scalar("Select group_concat(SpecCode, ',') From speccodes").toString();
        db->close();
        return codes + "|" + SettingsStore(office.settingsFile()).get("Options", "Track0");
    }

private slots:
    void initTestCase() {
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        // Few rounds, made again at the full rounds by each login that succeeds.
        AccessLevels levels(office.store(), 1000);
        QCOMPARE(levels.change(AccessLevels::kMaster, kMaster),
                 AccessLevels::ChangeResult::Changed);
        QCOMPARE(levels.change(AccessLevels::kBillingSecretary, kBilling),
                 AccessLevels::ChangeResult::Changed);
        QCOMPARE(levels.change(4, kSecretary), AccessLevels::ChangeResult::Changed);
        for (int level : {0, 2, 4}) {
            const QString key = QStringLiteral("Open%1").arg(level);
            hashes.insert(key, office.store().get(kGeneral, key));
        }
        test::writeText(office.file("garbage.txt"), "not a schedule\r\n");
    }

    void commandsHonourTheLevels_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("needs");  // -1: no level
        QTest::addColumn<bool>("changes");
        QTest::addColumn<QString>("given");    // null: passwords removed
        QTest::addColumn<int>("givenLevel");   // the level of the given password; -1 none
        QTest::addColumn<QString>("ranSign");  // what standard error shows when it ran

        struct Command {
            const char* name;
            QStringList args;
            int needs;
            bool changes;
            QString ranSign;
        };
        const QList<Command> commands = {
            {"sql insert",
             {"sql", "Insert Into speccodes (SpecCode) Select 'C' || Count(*) From speccodes"},
             AccessLevels::kMaster,
             true,
             {}},
            // A change the first word does not tell.
            {"sql with insert",
             {"sql",
              "With n(c) As (Select Count(*) From speccodes) Insert Into speccodes"
              " (SpecCode) Select 'W' || c From n"},
             AccessLevels::kMaster,
             true,
             {}},
            {"sql query", {"sql", "Select Count(*) From speccodes"}, -1, false, {}},
            {"settings set", {"settings", "set", "Options", "Track0", "@"}, 0, true, {}},
            {"settings get", {"settings", "get", "General", "Open0"}, -1, false, {}},
            {"import-sob",
             {"import-sob", office.file("garbage.txt")},
             AccessLevels::kBillingSecretary,
             false,
             "is not in the expected format."},
            {"prepare", {"prepare", "JS"}, -1, false, {}},
        };
        struct Given {
            const char* name;
            QString password;
            int level;
        };
        const QList<Given> cases = {
            {"no passwords set", QString(), 0},  // every feature open
            {"locked", QStringLiteral(""), -1},  // passwords set, none given
            {"wrong password", QStringLiteral("nope"), -1},
            {"secretary", kSecretary, 4},
            {"billing secretary", kBilling, AccessLevels::kBillingSecretary},
            {"master", kMaster, AccessLevels::kMaster},
        };
        for (const Command& c : commands) {
            for (const Given& g : cases) {
                QStringList args = c.args;
                for (QString& arg : args) {
                    arg.replace('@', QStringLiteral("%1, %2").arg(c.name, g.name));
                }
                QTest::addRow("%s, %s", c.name, g.name)
                    << args << c.needs << c.changes << g.password << g.level << QString(c.ranSign);
            }
        }
    }
    void commandsHonourTheLevels() {
        QFETCH(QStringList, args);
        QFETCH(int, needs);
        QFETCH(bool, changes);
        QFETCH(QString, given);
        QFETCH(int, givenLevel);
        QFETCH(QString, ranSign);
        setPasswords(!given.isNull());
        const QString before = state();

        const test::CliResult r = test::cli(office, args, given.isEmpty() ? QString() : given);
        const bool refused = needs >= 0 && (givenLevel < 0 || givenLevel > needs);
        QVERIFY2(r.err.contains(kRefused) == refused, qPrintable(r.err));
        QCOMPARE(r.err.contains("Invalid Password"), needs >= 0 && given == QLatin1String("nope"));
        if (!ranSign.isEmpty()) {
            QVERIFY2(r.err.contains(ranSign) == !refused, qPrintable(r.err));
        }
        if (refused) {
            QVERIFY(r.status != 0);
            QVERIFY2(
                r.err.contains("It requires the [" + AccessLevels::levelName(needs) + "] password"),
                qPrintable(r.err));
            QCOMPARE(r.out, QString());
            QCOMPARE(state(), before);
        } else {
            QCOMPARE(state() != before, changes);
        }
    }
};

QTEST_GUILESS_MAIN(TestCliAccess)
#include "test_cli_access.moc"
