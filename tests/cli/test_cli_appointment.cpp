#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

class TestCliAppointment : public QObject {
    Q_OBJECT

private slots:
    void addShowSetDay() {
        test::TempOffice office;
        const auto run = [&](const QStringList& args) { return test::cli(office, args); };
        QCOMPARE(run({"init"}).status, 0);
        for (const char* sql :
             {"Insert Into apptimeslots (ID, Name, Type, DefaultLength, DefaultServiceCode) Values"
              " (1,'Visit',0,15,'A007A'),(2,'Physical',0,30,'A003A')",
              "Insert Into patients (PatientID, LName, FName) Values (7,'Smith','Ann')",
              "Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) Values"
              " (1,'(d)',4,540,1),(3,'(d)',4,600,2)"}) {
            QCOMPARE(run({"sql", sql}).status, 0);
        }
        // Doctor numbers typed in any case are kept in capitals.
        const QStringList at = {"appt", "add", "--doctor", "ab", "--date", "2026/11/25"};

        const test::CliResult added =
            run(at + QStringList{"--time", "9:00am", "--type", "1", "--patient", "7"});
        QCOMPARE(added.status, 0);
        QCOMPARE(added.out, QStringLiteral("Appointment 1\n"));
        const test::CliResult refused = run(at + QStringList{"--time", "9:00am", "--type", "9"});
        QCOMPARE(refused.status, 1);
        QVERIFY2(refused.err.contains("Invalid type."), qPrintable(refused.err));
        const QStringList caller = {"--time",  "9:10am",  "--type",   "2",       "--name",
                                    "Walk In", "--phone", "555-9999", "--notes", "cough"};
        QCOMPARE(run(at + caller).status, 1);  // double booking, answered No
        QCOMPARE(run(QStringList{"--yes"} + at + caller).out, QStringLiteral("Appointment 2\n"));

        const QStringList shown = run({"appt", "show", "2"}).out.split('\n');
        for (const char* line : {"Doctor: AB", "Time: 9:10 am", "Length: 30", "Type: 2 Physical",
                                 "Status: 1 Booked", "Name: Walk In", "Service: A003A"}) {
            QVERIFY2(shown.contains(QString::fromUtf8(line)), line);
        }

        QCOMPARE(run({"appt", "set", "1", "--status", "7"}).status, 0);
        QCOMPARE(run({"appt", "set", "2", "--time", "9:00 am", "--notes", "moved"}).status, 0);

        const test::CliResult day = run({"appt", "day", "AB", "2026/11/25"});
        QCOMPARE(day.status, 0);
        QCOMPARE(day.out, QStringLiteral(" 9:00 am\t30\tPhysical\tBooked\tWalk In\tmoved\n"
                                         " 9:00 am\t15\tVisit\tCancelled\tSmith, Ann\t\n"
                                         "10:00 am\t30\tPhysical\t\t\t\n"));

        // The month, a find and a count over the same book, with a lunch (kind 1) beside.
        QCOMPARE(
            run({"sql", "Insert Into apptimeslots (ID, Name, Type) Values (3,'Lunch',1)"}).status,
            0);
        QCOMPARE(run(at + QStringList{"--time", "12:00pm", "--type", "3", "--length", "60",
                                      "--name", "Lunch"})
                     .status,
                 0);
        QCOMPARE(run({"appt", "month", "ab", "2026/11"}).out, QStringLiteral("2026/11/25\t2\n"));
        QCOMPARE(run({"appt", "find", "Smith,", "ann"}).out,
                 QStringLiteral("1\tSmith, Ann\t2026/11/25\t 9:00 am\t15\tAB\t\n"
                                "1 appointment(s) found.\n"));
        QCOMPARE(run({"appt", "find", "--notes", "ove"}).out.section('\n', -2),
                 QStringLiteral("1 appointment(s) found.\n"));
        QCOMPARE(run({"appt", "find", "x' Or '1'='1"}).out,
                 QStringLiteral("No appointments found.\n"));
        const test::CliResult noPatient = run({"appt", "find", "99"});
        QCOMPARE(noPatient.status, 1);
        QVERIFY2(noPatient.err.contains("Invalid Patient ID."), qPrintable(noPatient.err));
        const QStringList count = {"appt", "count", "2026/11/25", "AB", "XY"};
        QCOMPARE(run(count).out, QStringLiteral("# of Appointments: 3\n"));
        QCOMPARE(run(count + QStringList{"--from", "9:00 am", "--to", "11am"}).out,
                 QStringLiteral("# of Appointments: 2\n"));
        QCOMPARE(run(count + QStringList{"--from", "12pm"}).out,
                 QStringLiteral("# of Appointments: 1\n"));
        for (const QStringList& bad :
             {QStringList{"appt", "month", "AB", "2026/13"},
              QStringList{"appt", "count", "2026/02/30", "AB"},
              QStringList{"appt", "count", "2026/11/25", " "}, count + QStringList{"--to", "25"},
              count + QStringList{"--from", "5pm", "--to", "9"}}) {
            const test::CliResult refused = run(bad);
            QCOMPARE(refused.status, 2);
            QVERIFY2(refused.out.isEmpty() && !refused.err.contains("SQL"),
                     qPrintable(refused.err));
        }
    }

    void daySheet() {
        test::TempOffice office;
        const auto run = [&](const QStringList& args) { return test::cli(office, args); };
        QCOMPARE(run({"init"}).status, 0);
        for (const char* sql :
             {"Insert Into apptimeslots (ID, Name, Type, DefaultLength, DefaultServiceCode) Values"
              " (1,'Visit',0,15,'A007A')",
              "Insert Into patients (PatientID, LName, FName) Values (7,'Smith','Ann')"}) {
            QCOMPARE(run({"sql", sql}).status, 0);
        }
        const QStringList at = {"appt",   "add",        "--doctor", "ab",
                                "--date", "2026/11/25", "--type",   "1"};
        QCOMPARE(run(at + QStringList{"--time", "9:00am", "--patient", "7"}).status, 0);
        QCOMPARE(run(at + QStringList{"--time", "7:00pm", "--name", "Late Caller"}).status, 0);

        const QString pdf = office.file("sheet.pdf");
        const QStringList sheet = {"appt", "daysheet", "ab", "2026/11/25", "--layout", "billing"};
        const test::CliResult printed = run(sheet + QStringList{"--pdf", pdf});
        QCOMPARE(printed.status, 0);
        QCOMPARE(printed.out, QStringLiteral("9:00 am\t15\tA007A\t\tBooked\t[7] Smith, Ann\n"
                                             "7:00 pm\t15\tA007A\t\tBooked\tLate Caller\n"
                                             "2 appointment(s).\n"));
        QFile written(pdf);
        QVERIFY(written.open(QIODevice::ReadOnly));
        QVERIFY(written.read(5) == "%PDF-");
        QCOMPARE(written.permissions() & QFile::Permissions(0x0077), QFile::Permissions());

        QCOMPARE(run(sheet + QStringList{"--from", "8am", "--to", "5pm", "--by-name"}).out,
                 QStringLiteral("7:00 pm\t15\tA007A\t\tBooked\tLate Caller\n"
                                "9:00 am\t15\tA007A\t\tBooked\t[7] Smith, Ann\n"
                                "2 appointment(s).\n"));
        const test::CliResult none = run({"appt", "daysheet", "AB", "2026/11/26"});
        QCOMPARE(none.status, 0);
        QVERIFY2(none.out.isEmpty() && none.err.contains("No appointments to print."),
                 qPrintable(none.err));
        for (const QStringList& bad :
             {QStringList{"appt", "daysheet", "AB", "2026/02/30"},
              sheet + QStringList{"--layout", "wide"}, sheet + QStringList{"--from", "13pm"}}) {
            QCOMPARE(run(bad).status, 2);
        }
    }
};

QTEST_GUILESS_MAIN(TestCliAppointment)
#include "test_cli_appointment.moc"
