#include "CliRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QtTest>

using namespace brimsett;

class TestCliReceive : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    QString paid() {
        return run({"sql",
                    "Select Status, FeePaid, RA From items i, claims c"
                    " Where c.ClaimID = i.ClaimID"})
            .out.section('\n', 1, 1);
    }

private slots:
    void receiveFromTheCommandLine() {
        QCOMPARE(run({"init"}).status, 0);
        for (const char* statement :
             {"Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, LName, FName)"
              " Values ('JS','0000','123456','00','Smith','John')",
              "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, HealthNum)"
              " Values (10000000,'202611010001','00000001','JS','HCP - P','1234567897')",
              "Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, FeeSubm, ServiceDate,"
              " Status) Values (10000000, 1, 'A007A', 1, 337000, '2026-11-02', 0)"}) {
            QCOMPARE(run({"sql", statement}).status, 0);
        }
        QDir(office.folder()).mkpath("Download");
        const QString lines[] = {
            "HR1V030000012345600H720261115JOHN SMITH                    000005540 99999999  ",
            "HR4J209300006011234560000000001SMITH         JOHN ON1234567897    HCP          ",
            "HR5J209300006012026110201A007A 003370003370                                    ",
            "HR5J209300006012026110201A001A 0021A0002170                                    ",
        };
        QByteArray file;
        for (const QString& line : lines) {
            file += line.toLatin1() + "\r\n";
        }
        test::writeText(office.file("Download/PK123456.001"), file);

        const auto checked = run({"receive", "PK123456.001", "--no-reconcile"});
        QCOMPARE(checked.status, 0);
        QVERIFY2(checked.out.startsWith("Remittance advice\nErrors\t1\n"
                                        "Line #\tError\tValue\tExpected\n4\t"),
                 qPrintable(checked.out));
        QVERIFY2(checked.out.contains("Grand Totals\n"), qPrintable(checked.out));
        QVERIFY(!checked.out.contains("Paid\t"));
        QCOMPARE(paid(), QString("0\t\t"));

        const auto reconciled = run({"receive", "PK123456.001"});
        QCOMPARE(reconciled.status, 0);
        QVERIFY2(reconciled.out.contains("Paid\t1\nRejected\t0\nUnmatched\t0\nRead before\t0\n"),
                 qPrintable(reconciled.out));
        QVERIFY(reconciled.out.endsWith("Finished\n"));
        QCOMPARE(paid(), QString("2\t337000\tPK123456.001 20261115!"));

        // Cut short after a whole record: only the amount payable tells.
        test::writeText(office.file("Download/PK123456.002"), file.left(3 * 81));
        const auto cut = run({"receive", "PK123456.002", "--no-reconcile"});
        QCOMPARE(cut.status, 1);
        QVERIFY2(cut.out.contains("1\tTotal Amount Payable differs from the records read\t"
                                  "$33.70\t$55.40\n"),
                 qPrintable(cut.out));
        QVERIFY(!cut.out.contains("Finished"));
        QVERIFY2(cut.err.contains("The OHIP Amount Payable $55.40 differs from the $33.70"),
                 qPrintable(cut.err));

        const auto missing = run({"receive", "NOFILE.001"});
        QCOMPARE(missing.status, 1);
        QVERIFY2(missing.err.contains("Could not open file NOFILE.001"), qPrintable(missing.err));
        QCOMPARE(run({"receive"}).status, 2);
    }
};

QTEST_GUILESS_MAIN(TestCliReceive)
#include "test_cli_receive.moc"
