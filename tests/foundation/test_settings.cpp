#include "TestSupport.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/SettingsStore.h"

#include <QtTest>

using namespace brimsett;

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void emptyStoreYieldsDefaults();
    void firstRunTurnsOnOfficeSwitches();
    void laterRunsKeepStoredSwitches();
    void switch26IsTurnedOnOnceAtSaving();
    void typedHelpersReadTextAsTheOldStoreDid_data();
    void typedHelpersReadTextAsTheOldStoreDid();
    void lastDoctorLongerThanThreeIsDiscarded_data();
    void lastDoctorLongerThanThreeIsDiscarded();
    void multiLineMessagesRoundTripOnOneLine();
    void openMarkAndRunDate();
    void saveAllWritesEveryKeyAndReadsBackTheSame();
};

void TestSettings::emptyStoreYieldsDefaults() {
    test::TempOffice office;
    const AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    QCOMPARE(s.dbPath, office.folder());
    QCOMPARE(s.dbPPath, office.folder());
    QCOMPARE(s.lastDoctor, QString());
    QCOMPARE(s.submitMethod, 0);
    QCOMPARE(s.diskIDCounter, 0);
    QCOMPARE(s.nextIDUnder, 0);
    QCOMPARE(s.printLabelCount, 1);
    QCOMPARE(s.printerPort, QString("LPT1"));
    QCOMPARE(s.wideOn, QString("#14"));
    QCOMPARE(s.wideOff, QString());
    QCOMPARE(s.boldOn, QString("#27#69#27#71"));
    QCOMPARE(s.boldOff, QString("#27#70#27#72"));
    QVERIFY(!s.sqlLogOn());
    QCOMPARE(s.menuFont, QString("Arial"));
    QCOMPARE(s.menuSize, 16);
    QCOMPARE(s.menuSkip, 6);
    QCOMPARE(s.timeSlot, 2);
    QCOMPARE(s.hourStart, QString("08:00 AM"));
    QCOMPARE(s.hourEnd, QString("05:00 PM"));
    QVERIFY(s.appPrintOptions && s.columnServCode && s.columnDiagCode && s.dailyCalendar);
    QVERIFY(!s.appPrintOnlyApps && !s.sevenDayWeek && !s.alwaysAskTime);
    QCOMPARE(s.appLineHeight, 1.0);
    QCOMPARE(s.printFontName, QString("Arial"));
    QCOMPARE(s.printFontSize, 12);
    QCOMPARE(s.printHeaderFontSize, 22);
    QCOMPARE(s.printLineHeight, 1.2);
}

void TestSettings::firstRunTurnsOnOfficeSwitches() {
    test::TempOffice office;
    const AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    for (int n = 1; n <= AppSettings::kSwitchCount; ++n) {
        QCOMPARE(s.option[n], n == 3 || n == 6 || n == 8);
    }
    for (int n = 1; n <= AppSettings::kLabelSwitchCount; ++n) {
        QCOMPARE(s.optionChartLabel[n], n == 1 || n == 2);
    }
    QCOMPARE(office.store().get("Options", "Option3"), QString("1"));
    QCOMPARE(office.store().get("Options", "OptionChartLabel2"), QString("1"));
}

void TestSettings::laterRunsKeepStoredSwitches() {
    test::TempOffice office;
    office.store().save("Options", "Option1", "0");
    office.store().save("Options", "Option3", "0");
    office.store().save("Options", "Option7", "1");
    const AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    QVERIFY(!s.option[3]);
    QVERIFY(!s.option[6]);
    QVERIFY(s.option[7]);
    QVERIFY(!s.optionChartLabel[1]);
}

void TestSettings::switch26IsTurnedOnOnceAtSaving() {
    test::TempOffice office;
    FixedClock clock(QDateTime(QDate(2026, 11, 22), QTime(9, 0)));
    AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    QVERIFY(!s.option[26]);
    s.saveAll(office.store(), clock);
    QCOMPARE(office.store().get("Options", "Option26"), QString("1"));

    // Once stored, the user's choice stands.
    s.option[26] = false;
    s.saveAll(office.store(), clock);
    QCOMPARE(office.store().get("Options", "Option26"), QString("0"));
    QVERIFY(!AppSettings::loadAll(office.store(), office.folder()).option[26]);
}

void TestSettings::typedHelpersReadTextAsTheOldStoreDid_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("flag");
    QTest::addColumn<int>("number");
    QTest::newRow("one") << "1" << true << 1;
    QTest::newRow("zero") << "0" << false << 0;
    QTest::newRow("true is not a flag") << "True" << false << 0;
    QTest::newRow("padded one is not a flag") << " 1" << false << 1;
    QTest::newRow("fraction truncated") << "12.7" << false << 12;
    QTest::newRow("negative fraction truncated") << "-3.9" << false << -3;
    QTest::newRow("garbage") << "abc" << false << 0;
    QTest::newRow("empty") << "" << false << 0;
    QTest::newRow("huge") << "99999999999999" << false << 0;
}

void TestSettings::typedHelpersReadTextAsTheOldStoreDid() {
    QFETCH(QString, stored);
    QFETCH(bool, flag);
    QFETCH(int, number);
    test::TempOffice office;
    office.store().save("Options", "X", stored);
    QCOMPARE(office.store().readFlag("Options", "X"), flag);
    QCOMPARE(office.store().readNumber("Options", "X"), number);
    // Absent keys take their default through the same rule.
    QCOMPARE(office.store().readNumber("Options", "Absent", stored), number);
}

void TestSettings::lastDoctorLongerThanThreeIsDiscarded_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("loaded");
    QTest::newRow("three") << "ABC"
                           << "ABC";
    QTest::newRow("five") << "12345"
                          << "";
    QTest::newRow("four") << "ABCD"
                          << "";
}

void TestSettings::lastDoctorLongerThanThreeIsDiscarded() {
    QFETCH(QString, stored);
    QFETCH(QString, loaded);
    test::TempOffice office;
    office.store().save("General", "LastDoctor", stored);
    QCOMPARE(AppSettings::loadAll(office.store(), office.folder()).lastDoctor, loaded);
}

void TestSettings::multiLineMessagesRoundTripOnOneLine() {
    test::TempOffice office;
    FixedClock clock(QDateTime(QDate(2026, 11, 22), QTime(9, 0)));
    AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    s.invoiceMessage = QStringLiteral("Thank you\r\nPayable in 30 days");
    s.saveAll(office.store(), clock);
    QCOMPARE(office.store().get("Options", "InvoiceMessage"),
             QString("Thank you_|_Payable in 30 days"));
    // The file itself holds one line.
    QVERIFY(test::readText(office.settingsFile()).contains("Thank you_|_Payable in 30 days"));
    QCOMPARE(AppSettings::loadAll(office.store(), office.folder()).invoiceMessage,
             s.invoiceMessage);
}

void TestSettings::openMarkAndRunDate() {
    test::TempOffice office;
    FixedClock clock(QDateTime(QDate(2026, 3, 5), QTime(17, 30)));
    AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    QCOMPARE(office.store().get("General", "Open"), QString("1"));
    QCOMPARE(office.store().get("General", "AppPath"), office.folder());
    QVERIFY(!office.store().contains("General", "RunDateLast"));
    s.saveAll(office.store(), clock);
    QCOMPARE(office.store().get("General", "Open"), QString("0"));
    QCOMPARE(office.store().get("General", "RunDateLast"), QString("2026/03/05"));
}

void TestSettings::saveAllWritesEveryKeyAndReadsBackTheSame() {
    test::TempOffice office;
    FixedClock clock(QDateTime(QDate(2026, 11, 22), QTime(9, 0)));
    AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    s.lastDoctor = "DR1";
    s.diskIDCounter = 41;
    s.printLabelCount = 3;
    s.option[15] = true;
    s.optionChartLabel[9] = true;
    s.track0 = "on";
    s.hourEnd = "06:30 PM";
    s.printLineHeight = 1.5;
    s.receiveDiskSwitch[4] = true;
    s.saveAll(office.store(), clock);

    SettingsStore reread(office.settingsFile());
    const AppSettings r = AppSettings::loadAll(reread, office.folder());
    QCOMPARE(r.lastDoctor, QString("DR1"));
    QCOMPARE(r.diskIDCounter, 41);
    QCOMPARE(r.printLabelCount, 3);
    QVERIFY(r.option[15]);
    QVERIFY(r.optionChartLabel[9]);
    QVERIFY(r.sqlLogOn());
    QCOMPARE(r.hourEnd, QString("06:30 PM"));
    QCOMPARE(r.printLineHeight, 1.5);
    QVERIFY(r.receiveDiskSwitch[4]);
    for (const char* key :
         {"WideOn", "BoldOff", "MenuSkip", "PrintLabelEnvelope", "ReceiptMessage"}) {
        QVERIFY2(reread.contains("Options", key), key);
    }
    for (const char* key : {"TimeSlot", "SevenDayWeek"}) {
        QVERIFY2(reread.contains("Appointment", key), key);
    }
    QVERIFY(reread.contains("Print", "SkipHeaderLines"));
    QVERIFY(reread.contains("SubmitDisk", "Switch2"));
    QVERIFY(reread.contains("Backup", "RestorePath"));
}

QTEST_GUILESS_MAIN(TestSettings)
#include "test_settings.moc"
