#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

class TestCliFee : public QObject {
    Q_OBJECT

private slots:
    void importTheSampleThenAskAFee() {
        if (test::samplesFolder().isEmpty()) {
            QSKIP("the ministry's sample files are not beside the project");
        }
        test::TempOffice office;
        QCOMPARE(test::cli(office, {"init"}).status, 0);

        const test::CliResult imported = test::cli(
            office, {"import-sob", test::samplesFolder() + "/sob_master_file_oct2013.txt"});
        QCOMPARE(imported.status, 0);
        QCOMPARE(imported.out, QString("Processed 7195 codes\n"));

        const test::CliResult fee = test::cli(office, {"fee", "A007A", "00"});
        QCOMPARE(fee.status, 0);
        QCOMPARE(fee.out, QString("33.70 units 0\n"));

        const test::CliResult unknown = test::cli(office, {"fee", "Q999A", "00"});
        QCOMPARE(unknown.status, 1);
        QVERIFY(unknown.err.contains("Q999 is not in the schedule of benefits"));

        const test::CliResult wrongFile =
            test::cli(office, {"import-sob", test::samplesFolder() + "/moh_sample_ra_extract.txt"});
        QVERIFY(wrongFile.status != 0);
        QVERIFY(wrongFile.err.contains("is not in the expected format."));
        QVERIFY(wrongFile.out.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestCliFee)
#include "test_cli_fee.moc"
