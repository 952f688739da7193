#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;
using test::row;

class TestCliEdt : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args, const QByteArray& input = {}) {
        return test::cli(office, args, {}, input);
    }
    QString rows(const QString& where = "1=1") {
        return run({"sql", "Select ParamName, ParamValue From edtparams Where " + where +
                               " Order By ParamName"})
            .out.section('\n', 1);
    }
    void reset(const QString& values) {
        QCOMPARE(run({"sql", "Delete From edtparams"}).status, 0);
        QCOMPARE(run({"sql", "Insert Into edtparams Values " + values}).status, 0);
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

    // The password comes from standard input only, is kept sealed and is never printed; no
    // line keeps it.
    void setupAndShowALogin() {
        reset("('S', '9600,n,8,1'), ('P', ' - COM 2')");
        const auto saved = run({"edt", "setup", "js", "--user", "jsmith"}, "Gonet2026x\n");
        QCOMPARE(saved.out, QStringLiteral("EDT login of JS saved with a new password.\n"));
        const QString today = QDate::currentDate().toString("yyyy/MM/dd");
        QCOMPARE(rows("ParamName <> 'JS2'"), "-JS\t" + today +
                                                 "\nJS1\tjsmith\nJS3\t1\n"
                                                 "P\t - COM 2\nS\t9600,n,8,1\n");
        QVERIFY(rows("ParamName = 'JS2'").startsWith("JS2\ts1:"));
        QCOMPARE(run({"edt", "show", "JS"}).out,
                 QStringLiteral("Provider: JS Smith, John\nUser ID: jsmith\nPassword: set\n"
                                "Password changed: %1\nMode: \nMode changed: Never\n"
                                "Telephone Number: \nModem Port:  - COM 2 (/dev/ttyS1)\n"
                                "Line Speed: 9600,n,8,1\nTime-out (seconds): 60\n")
                     .arg(today));

        // DataPac and GONet settings show when an office changed them; a password only as set.
        QCOMPARE(run({"sql",
                      "Insert Into edtparams Values ('U', 'NUI123'), ('W', 's1:sealed'),"
                      " ('M', 'MENU:')"})
                     .status,
                 0);
        QVERIFY(run({"edt", "show", "JS"})
                    .out.endsWith("Time-out (seconds): 60\nDataPac NUI: NUI123\n"
                                  "DataPac NUI Password: set\nGONet Main Menu: MENU:\n"));
        QCOMPARE(run({"sql", "Delete From edtparams Where ParamName In ('U', 'W', 'M')"}).status,
                 0);

        const QString stored = rows();
        QCOMPARE(run({"edt", "setup", "JS", "--user", "jsmith2"}).out,
                 QStringLiteral("EDT login of JS saved.\n"));
        QCOMPARE(rows(), QString(stored).replace("JS1\tjsmith", "JS1\tjsmith2"));
    }

    // Refusals change nothing.
    void commands_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("input");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("general");  // the single-character rows after it
        const char* before = "P\tCOM1\nS\t57600,n,8,1\nT\t90\nZ\tkept\n";
        row("every setting",
            QStringList{"general", "--port", "/dev/ttyUSB0", "--speed", "9600", "--phone",
                        "5550100", "--timeout", "45"},
            "", 0, "", "N\t5550100\nP\t/dev/ttyUSB0\nS\t9600,n,8,1\nT\t45\nZ\tkept\n");
        row("one setting, the rest kept", QStringList{"general", "--speed", "9600"}, "", 0, "",
            "P\tCOM1\nS\t9600,n,8,1\nT\t90\nZ\tkept\n");
        row("a speed not offered", QStringList{"general", "--speed", "14400"}, "", 2,
            "--speed must be 57600 or 9600", before);
        row("a time-out too long", QStringList{"general", "--timeout", "121", "--phone", "1"}, "",
            1, "Number of seconds must be between 30-120.", before);
        row("no such provider", QStringList{"setup", "XX", "--user", "u"}, "pw\n", 1,
            "there is no provider XX", before);
        row("a blank in the user ID", QStringList{"setup", "JS", "--user", "j smith"}, "pw\n", 2,
            "cannot be used", before);
        row("a password too long", QStringList{"setup", "JS", "--user", "u"},
            "01234567890123456789012345678\n", 1, "The password can be at most 28 characters.",
            before);
        row("the password as an argument",
            QStringList{"setup", "JS", "--user", "u", "--password", "pw"}, "", 2,
            "Unknown option 'password'.", before);
    }
    void commands() {
        QFETCH(QStringList, args);
        QFETCH(QString, input);
        QFETCH(int, status);
        QFETCH(QString, message);
        QFETCH(QString, general);
        reset("('P', 'COM1'), ('S', '57600,n,8,1'), ('T', '90'), ('Z', 'kept'), ('JS1', 'u0')");
        const auto result = run(QStringList{"edt"} + args, input.toUtf8());
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(message), qPrintable(result.err));
        QCOMPARE(rows("Length(ParamName) = 1"), general);
        QCOMPARE(rows("ParamName Like 'JS%'"), QStringLiteral("JS1\tu0\n"));
    }
};

QTEST_MAIN(TestCliEdt)
#include "test_cli_edt.moc"
