#include "TestSupport.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/SettingsStore.h"

#include <QtTest>

using namespace brimsett;

class TestSettings : public QObject {
    Q_OBJECT

private slots:
    void emptyStoreYieldsDefaults_data();
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

// The values a store without any keys must give, as (section, key, expected text of the
// loaded value).
void TestSettings::emptyStoreYieldsDefaults_data() {
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");
    QTest::newRow("dbPath") << "dbPath"
                            << "<folder>";
    QTest::newRow("dbPPath") << "dbPPath"
                             << "<folder>";
    QTest::newRow("LastDoctor") << "lastDoctor"
                                << "";
    QTest::newRow("SubmitMethod") << "submitMethod"
                                  << "0";
    QTest::newRow("DiskIDCounter") << "diskIDCounter"
                                   << "0";
    QTest::newRow("NextIDUnder") << "nextIDUnder"
                                 << "0";
    QTest::newRow("PrintLabelCount") << "printLabelCount"
                                     << "1";
    QTest::newRow("PrinterPort") << "printerPort"
                                 << "LPT1";
    QTest::newRow("WideOn") << "wideOn"
                            << "#14";
    QTest::newRow("WideOff") << "wideOff"
                             << "";
    QTest::newRow("BoldOn") << "boldOn"
                            << "#27#69#27#71";
    QTest::newRow("BoldOff") << "boldOff"
                             << "#27#70#27#72";
    QTest::newRow("Track0") << "track0"
                            << "";
    QTest::newRow("MenuFont") << "menuFont"
                              << "Arial";
    QTest::newRow("MenuSize") << "menuSize"
                              << "16";
    QTest::newRow("MenuSkip") << "menuSkip"
                              << "6";
    QTest::newRow("TimeSlot") << "timeSlot"
                              << "2";
    QTest::newRow("HourStart") << "hourStart"
                               << "08:00 AM";
    QTest::newRow("HourEnd") << "hourEnd"
                             << "05:00 PM";
    QTest::newRow("Appointment PrintOptions") << "appPrintOptions"
                                              << "1";
    QTest::newRow("ColumnServCode") << "columnServCode"
                                    << "1";
    QTest::newRow("ColumnDiagCode") << "columnDiagCode"
                                    << "1";
    QTest::newRow("DailyCalendar") << "dailyCalendar"
                                   << "1";
    QTest::newRow("SevenDayWeek") << "sevenDayWeek"
                                  << "0";
    QTest::newRow("Appointment LineHeight") << "appLineHeight"
                                            << "1";
    QTest::newRow("Print FontName") << "printFontName"
                                    << "Arial";
    QTest::newRow("Print FontSize") << "printFontSize"
                                    << "12";
    QTest::newRow("Print HeaderFontSize") << "printHeaderFontSize"
                                          << "22";
    QTest::newRow("Print LineHeight") << "printLineHeight"
                                      << "1.2";
}

namespace {

QString fieldText(const AppSettings& s, const QString& field) {
    const QHash<QString, QString> values = {
        {"dbPath", s.dbPath},
        {"dbPPath", s.dbPPath},
        {"lastDoctor", s.lastDoctor},
        {"submitMethod", QString::number(s.submitMethod)},
        {"diskIDCounter", QString::number(s.diskIDCounter)},
        {"nextIDUnder", QString::number(s.nextIDUnder)},
        {"printLabelCount", QString::number(s.printLabelCount)},
        {"printerPort", s.printerPort},
        {"wideOn", s.wideOn},
        {"wideOff", s.wideOff},
        {"boldOn", s.boldOn},
        {"boldOff", s.boldOff},
        {"track0", s.track0},
        {"menuFont", s.menuFont},
        {"menuSize", QString::number(s.menuSize)},
        {"menuSkip", QString::number(s.menuSkip)},
        {"timeSlot", QString::number(s.timeSlot)},
        {"hourStart", s.hourStart},
        {"hourEnd", s.hourEnd},
        {"appPrintOptions", QString::number(s.appPrintOptions)},
        {"columnServCode", QString::number(s.columnServCode)},
        {"columnDiagCode", QString::number(s.columnDiagCode)},
        {"dailyCalendar", QString::number(s.dailyCalendar)},
        {"sevenDayWeek", QString::number(s.sevenDayWeek)},
        {"appLineHeight", QString::number(s.appLineHeight)},
        {"printFontName", s.printFontName},
        {"printFontSize", QString::number(s.printFontSize)},
        {"printHeaderFontSize", QString::number(s.printHeaderFontSize)},
        {"printLineHeight", QString::number(s.printLineHeight)},
    };
    return values.value(field, QStringLiteral("<no such field>"));
}

}  // namespace

void TestSettings::emptyStoreYieldsDefaults() {
    QFETCH(QString, field);
    QFETCH(QString, expected);
    test::TempOffice office;
    const AppSettings s = AppSettings::loadAll(office.store(), office.folder());
    expected.replace(QStringLiteral("<folder>"), office.folder());
    QCOMPARE(fieldText(s, field), expected);
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
