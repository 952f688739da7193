#include "CliRun.h"
#include "TestSupport.h"

#include <QDir>
#include <QtTest>

using namespace brimsett;

namespace {

const char* const kCard = "%B61005498765432250^DOE/JANE MARY^2612520119800115AB12345201215?";

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
    void reads_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("out");
        QTest::addColumn<QString>("err");
        test::row("card", kCard, 0,
                  "Health Number: 9876543225\nVersion Code: AB\nLast Name: Doe\nFirst Name: Jane\n"
                  "Middle Name: Mary\nExpiry: 2026/12/01\nCard: valid\nSex: M\n"
                  "Date of Birth: 1980/01/15\n",
                  "");
        test::row("no expiry", "5b^1005498765432250^doe?jane60000520219800115a 12345201215/", 0,
                  "Health Number: 9876543225\nVersion Code: A\nLast Name: Doe\nFirst Name: Jane\n"
                  "Middle Name: \nExpiry: \nCard: no expiry\nSex: F\n"
                  "Date of Birth: 1980/01/15\n",
                  "");
        test::row("not a card", "%B4111111111111111^DOE/JANE^", 1, "",
                  "Error:\n  This is not a health card.\n");
        test::row("bad number", "%B61005498765432240^DOE/JANE^", 1, "",
                  "Error:\n  Invalid Health Card Number 9876543224\n");
    }
    void reads() {
        QFETCH(QString, text);
        QFETCH(int, status);
        QFETCH(QString, out);
        QFETCH(QString, err);
        // Reading alone needs no office database.
        test::TempOffice office;
        const test::CliResult r = test::cli(office, {"swipe", text});
        QCOMPARE(r.status, status);
        QCOMPARE(r.out, out);
        QCOMPARE(r.err, err);
        QVERIFY(!QFile::exists(office.file("medical.mdb")));
    }

    void applies() {
        test::TempOffice office;
        QCOMPARE(test::cli(office, {"init"}).status, 0);
        QCOMPARE(test::cli(office, {"sql",
                                    "Insert Into patients (PatientID, FName, LName)"
                                    " Values (5, 'Jane', 'Doe')"})
                     .status,
                 0);

        // A possible patient is refused at the end of input: nothing is written.
        test::CliResult r = test::cli(office, {"swipe", "--apply", kCard});
        QCOMPARE(r.status, 0);
        QVERIFY(r.err.contains("Possible Existing Patient:"));
        QVERIFY(
            r.out.endsWith("New patient (not in database).\n"
                           "No Patient with this Health Card Number was found.\n"
                           "No appointment for today.\n"));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t\t"));

        r = test::cli(office, {"--yes", "swipe", "--apply", kCard});
        QCOMPARE(r.status, 0);
        QVERIFY(r.out.contains("The card was written into this patient's record. (ID: 5)\n"));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t9876543225\tAB"));

        // Known now: a new version code is taken, today's visit told, and with polling on
        // the card's check requested.
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        QCOMPARE(test::cli(office, {"sql",
                                    "Insert Into Doctors (DoctorID, FName, LName)"
                                    " Values ('1', 'Hj', 'Vlaar')"})
                     .status,
                 0);
        QCOMPARE(test::cli(office, {"sql",
                                    "Insert Into appointments (AppID, PatientID, AppDate,"
                                    " AppTime, Status, DoctorID) Values (1, 5, '" +
                                        today + "', 570, 1, '1')"})
                     .status,
                 0);
        QCOMPARE(test::cli(office, {"settings", "set", "Options", "TCP1", "1"}).status, 0);
        QString renewed = QString::fromLatin1(kCard);
        renewed.replace("AB12345", "AC12345");
        r = test::cli(office, {"swipe", "--apply", renewed});
        QCOMPARE(r.status, 0);
        QVERIFY2(r.out.contains("This patient is already in the database. (ID: 5)\n"
                                "Version code,  updated. (ID: 5)\n"
                                "Has an appointment for today at 9:30 am with Hj Vlaar.\n"
                                "Card check requested: "),
                 qPrintable(r.out));
        QCOMPARE(patientRow(office), QStringLiteral("5\tJane\t9876543225\tAC"));
        QCOMPARE(QDir(office.file("HCVOUT")).entryList(QDir::Files).size(), 1);
    }
};

QTEST_GUILESS_MAIN(TestCliSwipe)
#include "test_cli_swipe.moc"
