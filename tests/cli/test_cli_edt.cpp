#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

const QString kToday = QDate::currentDate().toString("yyyy/MM/dd");

}  // namespace

class TestCliEdt : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    // brimsett-cli with the given standard input.
    test::CliResult typed(const QStringList& args, const QByteArray& input) {
        QProcess p;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("BRIMSETT_PASSWORD"));
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(BRIMSETT_CLI),
                QStringList{"--home", office.folder(), "--settings", office.settingsFile()} + args);
        p.write(input);
        p.closeWriteChannel();
        if (!p.waitForFinished(60000)) {
            p.kill();
            return {};
        }
        return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()),
                QString::fromUtf8(p.readAllStandardError())};
    }
    QString rows() {
        return run({"sql", "Select ParamName, ParamValue From edtparams Order By ParamName"}).out;
    }
    void reset(const QString& values) {
        QCOMPARE(run({"sql", "Delete From edtparams"}).status, 0);
        if (!values.isEmpty()) {
            QCOMPARE(run({"sql", "Insert Into edtparams Values " + values}).status, 0);
        }
    }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        QCOMPARE(run({"sql",
                      "Insert Into doctors (DoctorID, FName, LName) Values"
                      " ('JS', 'John', 'Smith')"})
                     .status,
                 0);
    }

    // The password comes from standard input only, is kept sealed and is never printed.
    void setupAndShowALogin() {
        reset("('S', '9600,n,8,1'), ('P', ' - COM 2')");
        const auto saved = typed({"edt", "setup", "js", "--user", "jsmith"}, "Gonet2026x\n");
        QCOMPARE(saved.status, 0);
        QCOMPARE(saved.out, QStringLiteral("EDT login of JS saved with a new password.\n"));
        const QString stored = rows();
        QVERIFY2(stored.contains("JS1\tjsmith") && stored.contains("JS3\t1") &&
                     stored.contains("-JS\t" + kToday) && stored.contains("JS2\ts1:"),
                 qPrintable(stored));
        QVERIFY(!stored.contains("Gonet2026x"));

        const auto shown = run({"edt", "show", "JS"});
        QCOMPARE(shown.status, 0);
        QCOMPARE(shown.out, QStringLiteral("Provider: JS Smith, John\n"
                                           "User ID: jsmith\n"
                                           "Password: set\n"
                                           "Password changed: %1\n"
                                           "Mode: \n"
                                           "Mode changed: Never\n"
                                           "Telephone Number: \n"
                                           "Modem Port:  - COM 2 (/dev/ttyS1)\n"
                                           "Line Speed: 9600,n,8,1\n"
                                           "Time-out (seconds): 60\n")
                                .arg(kToday));

        // No line keeps the password; only the user ID changes.
        const auto renamed = typed({"edt", "setup", "JS", "--user", "jsmith2"}, "");
        QCOMPARE(renamed.status, 0);
        QCOMPARE(renamed.out, QStringLiteral("EDT login of JS saved.\n"));
        QCOMPARE(rows(), QString(stored).replace("JS1\tjsmith", "JS1\tjsmith2"));
    }

    void oldPasswordReminded() {
        reset("('JS1', 'jsmith'), ('JS2', 'plain'), ('-JS', '2020/01/31')");
        QVERIFY(!run({"edt", "show", "JS"}).out.contains("last changed"));
        QCOMPARE(run({"settings", "set", "General", "EDTPasswordReminder", "1"}).status, 0);
        const auto shown = run({"edt", "show", "JS"});
        QVERIFY2(shown.out.contains("Password: set\nPassword changed: 2020/01/31\n"),
                 qPrintable(shown.out));
        QVERIFY(shown.out.contains("The EDT password of JS was last changed on 2020/01/31 ("));
        QVERIFY(!shown.out.contains("plain"));
        QCOMPARE(run({"settings", "set", "General", "EDTPasswordReminder", "0"}).status, 0);
    }

    void generalSettings_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("general");  // the single-character rows after it
        const QString before = "P\tCOM1\nS\t57600,n,8,1\nT\t90\nZ\tkept\n";
        row("everything",
            QStringList{"--port", "/dev/ttyUSB0", "--speed", "9600", "--phone", "5550100",
                        "--timeout", "45"},
            0, "", "N\t5550100\nP\t/dev/ttyUSB0\nS\t9600,n,8,1\nT\t45\nZ\tkept\n");
        row("one setting, the rest kept", QStringList{"--speed", "9600"}, 0, "",
            "P\tCOM1\nS\t9600,n,8,1\nT\t90\nZ\tkept\n");
        row("the speed as the screen lists it", QStringList{"--speed", "9600,n,8,1"}, 0, "",
            "P\tCOM1\nS\t9600,n,8,1\nT\t90\nZ\tkept\n");
        row("a speed not offered", QStringList{"--speed", "14400", "--phone", "1"}, 2,
            "--speed must be 57600 or 9600", qPrintable(before));
        row("a time-out too long", QStringList{"--timeout", "121", "--phone", "1"}, 1,
            "Number of seconds must be between 30-120.", qPrintable(before));
        row("a time-out that is no number", QStringList{"--timeout", "1 minute"}, 1,
            "Invalid number for number of seconds.", qPrintable(before));
        row("nothing to set", QStringList{}, 2, "give at least one of", qPrintable(before));
        row("an unknown option", QStringList{"--baud", "9600"}, 2, "Unknown option 'baud'.",
            qPrintable(before));
    }
    void generalSettings() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, message);
        QFETCH(QString, general);
        reset("('P', 'COM1'), ('S', '57600,n,8,1'), ('T', '90'), ('Z', 'kept'), ('JS1', 'u')");
        const auto result = run(QStringList{"edt", "general"} + args);
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        QCOMPARE(run({"sql",
                      "Select ParamName, ParamValue From edtparams"
                      " Where ParamName <> 'JS1' Order By ParamName"})
                     .out.section('\n', 1),
                 general);
    }

    // A refused login changes nothing.
    void refusedLogins_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        row("no such provider", QStringList{"XX", "--user", "u"}, "pw\n", 1,
            "there is no provider XX");
        row("a blank in the user ID", QStringList{"JS", "--user", "j smith"}, "pw\n", 2,
            "cannot be used");
        row("no user ID", QStringList{"JS"}, "pw\n", 2, "missing --user");
        row("a password too long", QStringList{"JS", "--user", "u"},
            "01234567890123456789012345678\n", 1, "The password can be at most 28 characters.");
        row("the password as an argument", QStringList{"JS", "--user", "u", "--password", "pw"}, "",
            2, "Unknown option 'password'.");
    }
    void refusedLogins() {
        QFETCH(QStringList, args);
        QFETCH(QString, input);
        QFETCH(int, status);
        QFETCH(QString, message);
        reset("('JS1', 'jsmith'), ('-JS', '2025/01/02')");
        const QString before = rows();
        const auto result = typed(QStringList{"edt", "setup"} + args, input.toUtf8());
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        QCOMPARE(rows(), before);
    }
};

QTEST_MAIN(TestCliEdt)
#include "test_cli_edt.moc"
