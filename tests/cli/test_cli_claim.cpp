#include "CliRun.h"
#include "TestSupport.h"

#include <QRegularExpression>
#include <QtTest>

using namespace brimsett;

class TestCliClaim : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    // The program checks service dates against the real date, so the claims are recent.
    static QString day(int daysAgo) {
        return QDate::currentDate().addDays(-daysAgo).toString("yyyy/MM/dd");
    }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        for (const char* statement :
             {"Insert Into doctors (DoctorID, SpecCode) Values ('JS','00')",
              "Insert Into patients (PatientID, HealthNum, VersionCode, FName, LName, DOB, Sex,"
              " Province, ExpYear) Values (1,'1234567897','AB','Mary','Smith','1980-05-17','F',"
              "'ON','2030-01-31')",
              "Insert Into servicecodes (ServiceCode, FeeGeneral, MaximumAge) Values"
              " ('A007', 337000, 999)"}) {
            QCOMPARE(run({"sql", statement}).status, 0);
        }
    }

    void addShowAndList() {
        // The code is typed as at the desk; the fee comes from the schedule unless given.
        const auto added =
            run({"--yes", "claim", "add", "--doctor", "JS", "--patient", "1", "--sli", "OFF",
                 "a7:401:2:" + day(2), "A007A:401:1:" + day(3) + ":20.00"});
        QCOMPARE(added.err, QString());
        QCOMPARE(added.out, QString("Claim 10000000 Account 00000001\n"));
        QCOMPARE(added.status, 0);

        const auto shown = run({"claim", "show", "10000000"});
        QCOMPARE(shown.status, 0);
        QVERIFY2(shown.out.contains("Program: HCP - P\nPatient: 1 Smith, Mary\n"),
                 qPrintable(shown.out));
        QVERIFY2(
            shown.out.contains("Item 1: A007A 401 x2 67.40 " + day(2) +
                               " Pending\nItem 2: A007A 401 x1 20.00 " + day(3) + " Pending\n"),
            qPrintable(shown.out));

        const auto pending = run({"claim", "pending", "JS"});
        QCOMPARE(pending.status, 0);
        QVERIFY(pending.out.endsWith("Total Pending $87.40 2 items.\n"));
    }

    void refusedClaimWritesNothing_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        test::row("unknown code",
                  QStringList{"--doctor", "JS", "--patient", "1", "Q999A:401:1:" + day(2)}, 1,
                  "Cannot save this claim due to the following problem(s):");
        test::row("no such patient",
                  QStringList{"--doctor", "JS", "--patient", "9", "A007A:401:1:" + day(2)}, 1,
                  "No such patient");
        test::row("bad item", QStringList{"--doctor", "JS", "--patient", "1", "A007A:401"}, 2,
                  "is not CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE]");
        test::row("no doctor", QStringList{"--patient", "1", "A007A:401:1:" + day(2)}, 2,
                  "usage: brimsett-cli claim add --doctor ID");
    }
    void refusedClaimWritesNothing() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, error);
        const auto before = run({"sql", "Select Count(*) From claims"}).out;
        const auto result = run(QStringList{"claim", "add"} + args);
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(error), qPrintable(result.err));
        QCOMPARE(run({"sql", "Select Count(*) From claims"}).out, before);
    }

    // Appointment APPID of patient 1 (none for a caller) with JS, daysAgo days ago, status,
    // A007A and 401 as its codes; the claim's only item and the appointment's status after.
    void apptBill_data() {
        QTest::addColumn<int>("appId");
        QTest::addColumn<bool>("registered");
        QTest::addColumn<int>("daysAgo");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("item");  // "" when nothing is saved
        QTest::addColumn<int>("statusAfter");
        QTest::addColumn<QString>("error");
        test::row("its own codes", 21, true, 1, 1, QStringList(), "A007A|401|1|337000", 6, "");
        test::row("ITEM as typed", 22, true, 5, 4, QStringList{"a7:401:2:" + day(5)},
                  "A007A|401|2|674000", 6, "");
        test::row("already billed, No by default", 23, true, 6, 6, QStringList(), "", 6,
                  "This appointment is already marked as 'Billed'.\n"
                  "  Are you sure you want to bill it?");
        test::row("caller", 24, false, 7, 1, QStringList(), "", 1,
                  "This appointment has no registered patient.");
    }
    void apptBill() {
        QFETCH(int, appId);
        QFETCH(bool, registered);
        QFETCH(int, daysAgo);
        QFETCH(int, status);
        QFETCH(QStringList, items);
        QFETCH(QString, item);
        QFETCH(int, statusAfter);
        QFETCH(QString, error);
        const QString date = QDate::currentDate().addDays(-daysAgo).toString(Qt::ISODate);
        QCOMPARE(run({"sql", QString("Insert Into appointments (AppID, PatientID, DoctorID,"
                                     " AppDate, AppTime, AppLength, Status, ServiceCode, DiagCode)"
                                     " Values (%1, %2, 'JS', '%3', 540, 15, %4, 'A007A', '401')")
                                 .arg(appId)
                                 .arg(QLatin1String(registered ? "1" : "NULL"), date)
                                 .arg(status)})
                     .status,
                 0);
        const auto before = run({"sql", "Select Count(*) From claims"}).out;

        const auto billed = run(QStringList{"appt", "bill", QString::number(appId)} + items);
        QVERIFY2(error.isEmpty() ? billed.err.isEmpty() : billed.err.contains(error),
                 qPrintable(billed.err));
        QCOMPARE(billed.status, item.isEmpty() ? 1 : 0);
        const QRegularExpressionMatch saved =
            QRegularExpression("^Claim (\\d+) Account (\\d{8})\n$").match(billed.out);
        QCOMPARE(saved.hasMatch(), !item.isEmpty());
        if (saved.hasMatch()) {
            QCOMPARE(
                run({"sql",
                     "Select C.AcctNum, C.DoctorID, C.PatientID, I.ServiceCode,"
                     " I.DiagCode, I.NumServ, I.FeeSubm, I.ServiceDate From claims C"
                     " Join items I On I.ClaimID=C.ClaimID Where C.ClaimID=" +
                         saved.captured(1)})
                    .out.split('\n')
                    .value(1),
                (QStringList{saved.captured(2), "JS", "1"} + item.split('|') + QStringList{date})
                    .join('\t'));
        } else {
            QCOMPARE(run({"sql", "Select Count(*) From claims"}).out, before);
        }
        QCOMPARE(
            run({"sql", "Select Status From appointments Where AppID=" + QString::number(appId)})
                .out.split('\n')
                .value(1),
            QString::number(statusAfter));
    }
};

QTEST_GUILESS_MAIN(TestCliClaim)
#include "test_cli_claim.moc"
