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
    }
};

QTEST_GUILESS_MAIN(TestCliAppointment)
#include "test_cli_appointment.moc"
