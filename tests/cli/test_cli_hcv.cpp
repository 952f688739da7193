#include "CliRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace brimsett;

namespace {

const QString kRecord =
    QStringLiteral("RPVR0300 %1AB********FACILTYPROVIDER0MAILBOX1        ####################");

}  // namespace

class TestCliHcv : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        QCOMPARE(run({"settings", "set", "General", "HX", "HX01"}).status, 0);
        QCOMPARE(run({"sql",
                      "Insert Into patients (PatientID, HealthNum, FName, LName)"
                      " Values (1, '1234567897', 'Ann', 'Old')"})
                     .status,
                 0);
    }

    void requestIsWrittenOncePerDay() {
        const QString now = QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss");
        QCOMPARE(run({"sql", "Update patients Set HNCheckDate = '" + now + "'"}).status, 0);
        const auto skipped = run({"hcv", "request", "1234567897", "ab"});
        QCOMPARE(skipped.status, 0);
        QCOMPARE(skipped.out, QString("already answered today\n"));
        QVERIFY(QDir(office.file("HCVOUT")).entryList(QDir::Files).isEmpty());

        const auto forced = run({"hcv", "request", "1234-567-897", "ab", "--force"});
        QCOMPARE(forced.status, 0);
        const QString path = forced.out.trimmed();
        QVERIFY2(path.startsWith(office.file("HCVOUT/")) && path.endsWith(".txt"),
                 qPrintable(forced.out));
        QVERIFY(test::readText(path).startsWith("HX01|RPVR0300 1234567897AB********"));
        QCOMPARE(run({"hcv", "request"}).status, 2);
        QCOMPARE(run({"hcv", "message", "9C"}).out,
                 QString("Health care provider/facility not authorized for HCV\n"));
        QCOMPARE(run({"hcv", "message", "80"}).out, QString("\n"));
    }

    void pollPrintsEachAnswer() {
        QCOMPARE(run({"hcv", "poll"}).out, QString("No answers.\n"));
        QDir().mkpath(office.file("HCVIN"));
        test::writeText(office.file("HCVIN/1.txt"), ("HX01|" + kRecord.arg("1234567897") +
                                                     "|50|OK|AB|SMITH|JOHN|M|19800105|\r\n")
                                                        .toLatin1());
        test::writeText(office.file("HCVIN/2.txt"),
                        ("HX01|" + kRecord.arg("9876543225") + "|65|NO|\r\n").toLatin1());
        const auto polled = run({"hcv", "poll"});
        QCOMPARE(polled.status, 0);
        QCOMPARE(polled.out,
                 QString("HN: 1234567897 VC: AB\nName: SMITH, JOHN\n"
                         "DOB: 1980/01/05 Sex: M\nResponse Code: 50\n"
                         "Response Message: Card passed validation\n\n"
                         "HN: 9876543225 VC: \nName: , \nDOB:  Sex: \n"
                         "Response Code: 65\nResponse Message: Invalid version code\n"));
        QVERIFY(QFile::exists(office.file("HCVIN/Archive/2.txt")));
        QCOMPARE(run({"sql", "Select Response, LName From patients"}).out.section('\n', 1, 1),
                 QString("50\tSMITH"));
    }
};

QTEST_GUILESS_MAIN(TestCliHcv)
#include "test_cli_hcv.moc"
