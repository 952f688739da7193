#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

class TestCliApptSetup : public QObject {
    Q_OBJECT

private slots:
    // Slot types added, refused, listed, used by a template and an appointment, and deleted
    // once the question is answered: No first, then --yes.
    void slotTypeRoundTrip() {
        test::TempOffice office;
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        const auto run = [&office](const QStringList& args) { return test::cli(office, args); };

        test::CliResult r = run({"appt", "slot-type", "add", "--name", "Visit", "--shortcut", "OV",
                                 "--length", "15", "--service", "A007", "--color", "ff8000"});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out, QStringLiteral("Slot type 1\n"));
        r = run({"appt", "slot-type", "add", "--name", "Day off", "--shortcut", "OFF", "--length",
                 "1440", "--kind", "1"});
        QCOMPARE(r.out, QStringLiteral("Slot type 2\n"));

        // Every problem at once, in order; nothing written.
        r = run({"appt", "slot-type", "add", "--name", " ", "--shortcut", "O", "--length", "1441"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("Please enter a description for this time slot.\n"
                                "  Please choose a different shortcut.\n"
                                "  Length cannot be greater than 1440."),
                 qPrintable(r.err));
        QCOMPARE(run({"appt", "slot-type", "add", "--name", "X", "--shortcut", "X", "--length", "5",
                      "--color", "red"})
                     .status,
                 2);

        r = run({"appt", "slot-type", "list"});
        QCOMPARE(r.out, QStringLiteral("1\tVisit\tOV\t0\t15\tA007\t\t#FF8000\n"
                                       "2\tDay off\tOFF\t1\t1440\t\t\t#000000\n"));

        QCOMPARE(run({"appt", "template", "add", "--default", "--day", "2", "--time", "1:30pm",
                      "--type", "1"})
                     .out,
                 QStringLiteral("Template slot 1\n"));
        r = run({"appt", "template", "add", "--default", "--day", "2", "--time", "13:75", "--type",
                 "1"});
        QCOMPARE(r.status, 2);
        r = run({"appt", "template", "add", "--doctor", "ZZ", "--day", "2", "--time", "9:00am",
                 "--type", "1"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("Doctor ZZ does not exist."), qPrintable(r.err));
        QCOMPARE(run({"appt", "template", "add", "--default", "--day", "2", "--time", "8:00",
                      "--type", "2"})
                     .out,
                 QStringLiteral("Template slot 2\n"));
        QCOMPARE(run({"appt", "template", "list", "--default", "--day", "2"}).out,
                 QStringLiteral("2\t 8:00 am\t2\tDay off\t#000000\n"
                                "1\t 1:30 pm\t1\tVisit\t#FF8000\n"));
        QCOMPARE(run({"--yes", "appt", "template", "delete", "2"}).status, 0);
        QCOMPARE(run({"appt", "template", "list", "--default", "--day", "2"}).out,
                 QStringLiteral("1\t 1:30 pm\t1\tVisit\t#FF8000\n"));
        QCOMPARE(run({"sql", "Insert Into Appointments (AppID, SlotType) Values (1, 1)"}).status,
                 0);

        // No answer on standard input takes the default, No.
        r = run({"appt", "slot-type", "delete", "1"});
        QCOMPARE(r.status, 1);
        QVERIFY2(r.err.contains("There are 1 appointments and 1 templates with this type. "
                                "Pressing Yes will PURGE these appointments. Are you sure?"),
                 qPrintable(r.err));
        QVERIFY(run({"appt", "slot-type", "list"}).out.startsWith("1\tVisit"));

        r = run({"--yes", "appt", "slot-type", "delete", "1"});
        QCOMPARE(r.status, 0);
        QCOMPARE(run({"appt", "slot-type", "list"}).out,
                 QStringLiteral("2\tDay off\tOFF\t1\t1440\t\t\t#000000\n"));
        QCOMPARE(run({"appt", "template", "list", "--default", "--day", "2"}).out, QString());
        QCOMPARE(run({"sql", "Select Count(*) From Appointments"}).out.trimmed().right(1),
                 QStringLiteral("0"));
    }
};

QTEST_GUILESS_MAIN(TestCliApptSetup)
#include "test_cli_appt_setup.moc"
