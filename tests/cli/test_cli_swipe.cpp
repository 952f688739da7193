#include "CliRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QtTest>

using namespace brimsett;

namespace {

// Expiring 2029/12/01: valid by the machine's own clock for years to come.
const char* const kCard = "%B61005498765432250^DOE/JANE MARY^2912520119800115AB12345201215?";

QString patientRow(const test::TempOffice& office) {
    return test::cli(office, {"sql",
                              "Select PatientID, FName, HealthNum, VersionCode From"
                              " patients Where PatientID=5"})
        .out.split('\n')
        .value(1);
}

}  // namespace

class TestCliSwipe : public QObject {
    Q_OBJECT

private slots:
    // Reading alone prints the card, or refuses a bad one, without an office database.
    void reads() {
        test::TempOffice office;
        test::CliResult r = test::cli(office, {"swipe", kCard});
        QCOMPARE(r.status, 0);
        QCOMPARE(r.out,
                 "Health Number: 9876543225\nVersion Code: AB\nLast Name: Doe\n"
                 "First Name: Jane\nMiddle Name: Mary\nExpiry: 2029/12/01\nCard: valid\n"
                 "Sex: M\nDate of Birth: 1980/01/15\n");
        r = test::cli(office, {"swipe", "%B61005498765432240^DOE/JANE^"});
        QCOMPARE(r.status, 1);
        QCOMPARE(r.err, "Error:\n  Invalid Health Card Number 9876543224\n");
        QVERIFY(!QFile::exists(office.file("medical.mdb")));
    }

    // With --apply the card is matched as on the screen: a possible patient is asked about,
    // a known one brought up to date and, with polling on, its check requested.
    void applies() {
        test::TempOffice office;
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        QCOMPARE(test::cli(office, {"sql",
                                    "Insert Into patients (PatientID, FName, LName)"
                                    " Values (5, 'Jane', 'Doe')"})
                     .status,
                 0);
        // Refused at the end of input: nothing is written.
        test::CliResult r = test::cli(office, {"swipe", "--apply", kCard});
        QCOMPARE(r.status, 0);
        QVERIFY(r.err.contains("Possible Existing Patient:"));
        QVERIFY(
            r.out.endsWith("New patient (not in database).\n"
                           "No Patient with this Health Card Number was found.\n"
                           "No appointment for today.\n"));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t\t"));

        r = test::cli(office, {"--yes", "swipe", "--apply", kCard});
        QVERIFY(r.out.contains("The card was written into this patient's record. (ID: 5)\n"));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t9876543225\tAB"));

        QCOMPARE(test::cli(office, {"settings", "set", "Options", "TCP1", "1"}).status, 0);
        r = test::cli(office, {"swipe", "--apply", QString(kCard).replace("AB123", "AC123")});
        QVERIFY2(r.out.contains("This patient is already in the database. (ID: 5)\n"
                                "Version code,  updated. (ID: 5)\n"
                                "No appointment for today.\nCard check requested: "),
                 qPrintable(r.out));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t9876543225\tAC"));
        QCOMPARE(QDir(office.file("HCVOUT")).entryList(QDir::Files).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCliSwipe)
#include "test_cli_swipe.moc"
