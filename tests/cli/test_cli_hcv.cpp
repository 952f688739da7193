#include "CliRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QtTest>

using namespace brimsett;

class TestCliHcv : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }

private slots:
    void initTestCase() {
        for (const QStringList& args : {QStringList{"init"},
                                        {"settings", "set", "General", "HX", "HX01"},
                                        {"sql",
                                         "Insert Into patients (PatientID, HealthNum, "
                                         "FName, LName) Values (1, '1234567897', 'A', 'B')"}}) {
            QCOMPARE(run(args).status, 0);
        }
    }

    void requestIsWrittenOncePerDay() {
        const QString now = QDateTime::currentDateTime().toString("yyyy-MM-dd HH:mm:ss");
        QCOMPARE(run({"sql", "Update patients Set HNCheckDate = '" + now + "'"}).status, 0);
        const auto skipped = run({"hcv", "request", "1234567897", "ab"});
        QCOMPARE(skipped.status, 0);
        QCOMPARE(skipped.out, QString("already answered today\n"));
        QVERIFY(QDir(office.file("HCVOUT")).entryList(QDir::Files).isEmpty());

        const auto forced = run({"hcv", "request", "1234-567-897", "ab", "--force"});
        QVERIFY2(test::readText(forced.out.trimmed()).startsWith("HX01|RPVR0300 1234567897AB**"),
                 qPrintable(forced.out));
        QCOMPARE(run({"hcv", "request"}).status, 2);
        QCOMPARE(run({"hcv", "message", "9C"}).out,
                 QString("Health care provider/facility not authorized for HCV\n"));
    }

    void pollPrintsEachAnswer() {
        QCOMPARE(run({"hcv", "poll"}).out, QString("No answers.\n"));
        QDir().mkpath(office.file("HCVIN"));
        test::writeText(office.file("HCVIN/1.txt"),
                        "HX01|RPVR0300 1234567897AB********FACILTYPROVIDER0MAILBOX1        "
                        "####################|50|OK|AB|SMITH|JOHN|M|19800105|\r\n");
        const auto polled = run({"hcv", "poll"});
        QCOMPARE(polled.status, 0);
        QCOMPARE(polled.out, QString("HN: 1234567897 VC: AB\nName: SMITH, JOHN\n"
                                     "DOB: 1980/01/05 Sex: M\nResponse Code: 50\n"
                                     "Response Message: Card passed validation\n"));
        QCOMPARE(run({"sql", "Select Response, LName From patients"}).out.section('\n', 1, 1),
                 QString("50\tSMITH"));
    }
};

QTEST_GUILESS_MAIN(TestCliHcv)
#include "test_cli_hcv.moc"
