#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

class TestCliPrepare : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }

private slots:
    void prepareFromTheCommandLine() {
        QCOMPARE(run({"init"}).status, 0);
        for (const char* statement :
             {"Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice) Values"
              " ('JS','0000','123456','00','J')",
              "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, HealthNum,"
              " DateCreated) Values (10000000,'000000000000','00000001','JS','HCP - P',"
              "'1234567897','2026-01-05 10:00:00')",
              "Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, FeeSubm, ServiceDate)"
              " Values (10000000, 1, 'A007A', 1, 337000, '2026-01-05')",
              "Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, FeeSubm, ServiceDate)"
              " Values (10000000, 2, 'A001A', 1, 217000, '2026-01-05')"}) {
            QCOMPARE(run({"sql", statement}).status, 0);
        }
        const auto refused = run({"prepare", "JS", "--cutoff", "2026/02/30"});
        QCOMPARE(refused.status, 1);
        QVERIFY2(refused.err.contains("'2026/02/30' is not a valid date."),
                 qPrintable(refused.err));

        const auto prepared = run({"prepare", "js", "--cutoff", "2026/01/31"});
        QCOMPARE(prepared.err, QString());
        QCOMPARE(prepared.status, 0);
        // The file is named for the month it was made in and the provider; the first of the
        // office.
        const QString month(QChar(64 + QDate::currentDate().month()));
        const QString batch = QDate::currentDate().toString("yyyyMMdd") + "0001";
        QCOMPARE(prepared.out, "H" + month + "123456.001\nBatch " + batch +
                                   "  claims 1  records 5  total 55.40\n");
        QVERIFY(QFile::exists(office.file("H" + month + "123456.001")));

        const auto nothing = run({"prepare", "JS"});
        QCOMPARE(nothing.status, 1);
        QVERIFY2(nothing.err.contains("No claims to submit."), qPrintable(nothing.err));
        QCOMPARE(run({"prepare"}).status, 2);
    }
};

QTEST_GUILESS_MAIN(TestCliPrepare)
#include "test_cli_prepare.moc"
