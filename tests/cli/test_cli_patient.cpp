#include "CliRun.h"
#include "TestSupport.h"

#include <QProcess>
#include <QtTest>

using namespace brimsett;

class TestCliPatient : public QObject {
    Q_OBJECT

private slots:
    void showPrintsFieldsOrSaysWhyNot() {
        test::TempOffice office;
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        QCOMPARE(test::cli(office, {"sql",
                                    "Insert Into patients (PatientID, LName, FName, DOB, Flag)"
                                    " Values(7, 'O''Brien', 'Mary', '1980-05-17', 1)"})
                     .status,
                 0);

        const test::CliResult shown = test::cli(office, {"patient", "show", "7"});
        QCOMPARE(shown.status, 0);
        const QStringList lines = shown.out.split('\n');
        for (const char* line : {"Patient ID: 7", "Last Name: O'Brien", "First Name: Mary",
                                 "Date of Birth: 1980/05/17", "Sex: ", "Flag: Yes"}) {
            QVERIFY2(lines.contains(QString::fromUtf8(line)), line);
        }

        const test::CliResult missing = test::cli(office, {"patient", "show", "8"});
        QCOMPARE(missing.status, 1);
        QVERIFY(missing.err.contains("No such patient"));

        const test::CliResult notANumber = test::cli(office, {"patient", "show", "7x"});
        QCOMPARE(notANumber.status, 2);
        QVERIFY(notANumber.err.contains("Invalid number."));
    }
};

QTEST_GUILESS_MAIN(TestCliPatient)
#include "test_cli_patient.moc"
