#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

class TestCliApptSetup : public QObject {
    Q_OBJECT

private slots:
    // What only the command line adds: options parsed, exit codes (1 refused, 2 not
    // understood), the question answered No without --yes, and the listings' form.
    void slotTypeRoundTrip() {
        test::TempOffice office;
        const auto run = [&office](const QStringList& args) { return test::cli(office, args); };
        QCOMPARE(run({"init"}).status, 0);
        const QStringList add = {"appt", "slot-type", "add", "--name", "Visit", "--shortcut"};
        test::CliResult r = run(
            add + QStringList{"OV", "--length", "15", "--service", "A007", "--color", "ff8000"});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QStringLiteral("Slot type 1\n"));
        QCOMPARE(run({"appt", "slot-type", "add", "--name", "Day off", "--shortcut", "OFF",
                      "--length", "1440", "--kind", "1"})
                     .out,
                 QStringLiteral("Slot type 2\n"));
        r = run(add + QStringList{"O", "--length", "1441"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("Please choose a different shortcut.\n"
                                "  Length cannot be greater than 1440."),
                 qPrintable(r.err));
        QCOMPARE(run(add + QStringList{"X", "--length", "5", "--color", "red"}).status, 2);
        QCOMPARE(run({"appt", "slot-type", "list"}).out,
                 QStringLiteral("1\tVisit\tOV\t0\t15\tA007\t\t#FF8000\n"
                                "2\tDay off\tOFF\t1\t1440\t\t\t#000000\n"));

        const QStringList slot = {"appt", "template", "add", "--default", "--day", "2", "--time"};
        QCOMPARE(run(slot + QStringList{"1:30pm", "--type", "1"}).out,
                 QStringLiteral("Template slot 1\n"));
        QCOMPARE(run(slot + QStringList{"13:75", "--type", "1"}).status, 2);
        QCOMPARE(run({"appt", "template", "list", "--default", "--day", "2"}).out,
                 QStringLiteral("1\t 1:30 pm\t1\tVisit\t#FF8000\n"));

        r = run({"appt", "slot-type", "delete", "1"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("There are 0 appointments and 1 templates with this type."),
                 qPrintable(r.err));
        QCOMPARE(run({"--yes", "appt", "slot-type", "delete", "1"}).status, 0);
        QCOMPARE(run({"appt", "slot-type", "list"}).out,
                 QStringLiteral("2\tDay off\tOFF\t1\t1440\t\t\t#000000\n"));
    }
};

QTEST_GUILESS_MAIN(TestCliApptSetup)
#include "test_cli_appt_setup.moc"
