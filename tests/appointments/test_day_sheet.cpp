#include "OfficeFixture.h"
#include "appointments/DaySheet.h"
#include "reports/Report.h"
#include "reports/ReportPrinter.h"

#include <QImage>

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

// Doctor 01 (House, Greg) on Wednesday 2026/11/25, shown 8 am to the end of 5 pm: a 7:30
// booking before the hours, a caller and a patient both at 9:00, a 10:30 booking and a
// cancelled 11:00 one; the default template's slots at 7:00, 9:00, 9:30, 11:00 and 6:00 pm.
struct Office : test::OfficeFixture {
    Office() {
        for (const char* sql : {
                 "Insert Into apptimeslots (ID, Name, Color, Type, DefaultLength) Values"
                 " (1,'Visit',255,0,15),(2,'Physical',65280,0,30)",
                 "Insert Into Doctors (DoctorID, LName, FName) Values ('01','House','Greg')",
                 "Insert Into DoctorsOther (ProviderNum, LName, FName) Values"
                 " ('123456','Welby','Marcus')",
                 "Insert Into patients (PatientID, LName, FName, HealthNum, VersionCode, DOB, Sex,"
                 " RefDoc, HPhone, Address, City, Province) Values"
                 " (7,'Smith','Ann','1234567897','AB','1980-05-17','F','123456','555-1234',"
                 "'1 Main St','Ottawa','ON'),"
                 " (8,'Brown','Bob','','','1990-01-02','M','999999','555-0000','','','')",
                 "Insert Into appointments (AppID, PatientName, PatientPhone, AppDate, AppTime,"
                 " AppLength, SlotType, Notes, Status, ServiceCode, DiagCode, PatientID, DoctorID)"
                 " Values (1,'Smith, Ann','555-1234','2026-11-25',540,15,1,'flu shot',1,'A007A',"
                 "'799',7,'01'),"
                 " (2,'Walk In','555-9999','2026-11-25',540,30,2,'',2,'A003A','',Null,'01'),"
                 " (3,'Brown, Bob','','2026-11-25',630,15,1,'late',3,'','',8,'01'),"
                 " (4,'Smith, Ann','','2026-11-25',660,15,1,'',7,'','',7,'01'),"
                 " (5,'Brown, Bob','','2026-11-25',450,15,1,'',0,'','',8,'01'),"
                 " (6,'Smith, Ann','','2026-11-25',540,15,1,'',1,'','',7,'02'),"
                 " (7,'Smith, Ann','','2026-11-25',540,15,1,'',7,'','',7,'03')",
                 "Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot)"
                 " Values (1,'(d)',4,420,1),(2,'(d)',4,540,1),(3,'(d)',4,570,2),(4,'(d)',4,660,1),"
                 " (5,'(d)',4,1080,1)",
             }) {
            db->exec(QString::fromUtf8(sql));
        }
    }
    static DaySheetRequest request(const QString& doctor = QStringLiteral("01")) {
        DaySheetRequest r;
        r.doctorId = doctor;
        r.date = QDate(2026, 11, 25);
        r.firstMinute = 8 * 60;
        r.lastMinute = 17 * 60 + 59;
        return r;
    }
};

}  // namespace

class TestDaySheet : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() {
        // Long dates must not follow the machine's language.
        QLocale::setDefault(QLocale(QLocale::French, QLocale::France));
    }

    void layouts_data() {
        QTest::addColumn<int>("layout");
        QTest::addColumn<bool>("byName");
        QTest::addColumn<bool>("onlyApps");
        QTest::addColumn<bool>("dontPrintOutside");
        QTest::addColumn<QString>("lines");  // joined by "|"
        const int standard = int(SheetLayout::Default);
        const int information = int(SheetLayout::Information);
        const int billing = int(SheetLayout::Billing);
        test::row("default: before the hours, both 9:00s, empty slots within the hours", standard,
                  false, false, false,
                  "7:30 am\t[8] Brown, Bob\t\t1990/01/02\tM\t999999"
                  "|9:00 am\tWalk In\t\t\t\t"
                  "|9:00 am\t[7] Smith, Ann\t1234567897 AB\t1980/05/17\tF\tWelby, Marcus"
                  "|9:30 am\t\t\t\t\t"
                  "|10:30 am\t[8] Brown, Bob\t\t1990/01/02\tM\t999999"
                  "|11:00 am\t\t\t\t\t");
        test::row("default: booked rows within the hours only", standard, false, true, true,
                  "9:00 am\tWalk In\t\t\t\t"
                  "|9:00 am\t[7] Smith, Ann\t1234567897 AB\t1980/05/17\tF\tWelby, Marcus"
                  "|10:30 am\t[8] Brown, Bob\t\t1990/01/02\tM\t999999");
        test::row("information by name: no empty slots", information, true, false, false,
                  "7:30 am\t[8] Brown, Bob\t[1990/01/02]\t555-0000\t\t"
                  "|10:30 am\t[8] Brown, Bob\t[1990/01/02]\t555-0000\t\t[Waiting] late"
                  "|9:00 am\t[7] Smith, Ann\t1234567897 AB [1980/05/17]"
                  "\t555-1234 [1 Main St, Ottawa, ON]\t\t[Booked] flu shot"
                  "|9:00 am\tWalk In\t\t555-9999\t\t[Confirmed]");
        test::row("billing: booked rows and the count", billing, false, true, false,
                  "7:30 am\t15\t\t\t\t[8] Brown, Bob"
                  "|9:00 am\t30\tA003A\t\tConfirmed\tWalk In"
                  "|9:00 am\t15\tA007A\t799\tBooked\t[7] Smith, Ann"
                  "|10:30 am\t15\t\t\tWaiting\t[8] Brown, Bob"
                  "|4 appointment(s).");
        test::row("billing within the hours: slots are not counted", billing, false, false, true,
                  "9:00 am\t30\tA003A\t\tConfirmed\tWalk In"
                  "|9:00 am\t15\tA007A\t799\tBooked\t[7] Smith, Ann"
                  "|9:30 am\t\t\t\t\t"
                  "|10:30 am\t15\t\t\tWaiting\t[8] Brown, Bob"
                  "|11:00 am\t\t\t\t\t"
                  "|3 appointment(s).");
    }
    void layouts() {
        QFETCH(int, layout);
        QFETCH(bool, byName);
        QFETCH(bool, onlyApps);
        QFETCH(bool, dontPrintOutside);
        QFETCH(QString, lines);
        Office o;
        DaySheetRequest r = Office::request();
        r.layout = SheetLayout(layout);
        r.order = byName ? SheetOrder::ByName : SheetOrder::ByTime;
        r.printOnlyApps = onlyApps;
        r.dontPrintOutside = dontPrintOutside;
        const std::optional<DaySheet> sheet = daySheet(*o.db, o.prompter, r);
        QVERIFY(sheet);
        QCOMPARE(sheet->textLines().join('|'), lines);
        QVERIFY(sheet->rowColors.isEmpty());
        QCOMPARE(sheet->title,
                 QStringLiteral("Appointments for House, Greg on Wednesday, November 25, 2026"));
        QCOMPARE(sheet->progressCaption,
                 QStringLiteral("Printing appointments For House, Greg (01)"));
        for (const QStringList& row : sheet->rows) {
            QCOMPARE(row.size(), sheet->captions.size());
        }
        QVERIFY(o.prompter.messages().isEmpty());
    }

    void nothingToPrint_data() {
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<int>("day");
        QTest::addColumn<int>("firstHour");
        test::row("another day", "01", 26, 8);
        test::row("only a cancelled booking", "03", 25, 8);
        test::row("nothing in the hours, and outside not printed", "01", 25, 12);
    }
    void nothingToPrint() {
        QFETCH(QString, doctor);
        QFETCH(int, day);
        QFETCH(int, firstHour);
        Office o;
        DaySheetRequest r = Office::request(doctor);
        r.date = QDate(2026, 11, day);
        r.firstMinute = firstHour * 60;
        r.dontPrintOutside = true;
        QVERIFY(!daySheet(*o.db, o.prompter, r));
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Print Appointments"));
        QCOMPARE(o.prompter.last().text(), QStringLiteral("No appointments to print."));
    }

    void colourSettingsAndReport() {
        Office o;
        o.settings.appPrintColor = true;
        o.settings.appPrintOnlyApps = false;
        o.settings.dontPrintOutside = true;
        DaySheetRequest r = Office::request(QStringLiteral("02"));  // not on file: named by number
        r.readSettings(o.settings);
        QVERIFY(r.printColor && r.dontPrintOutside && !r.printOnlyApps);
        std::optional<DaySheet> sheet = daySheet(*o.db, o.prompter, r);
        QVERIFY(sheet);
        QVERIFY(sheet->title.startsWith(QStringLiteral("Appointments for 02 on ")));
        // The booking's slot type, then the template's empty slots (Physical, Visit).
        QCOMPARE(sheet->rowColors, (QList<int>{0xff0000, 0x00ff00, 0xff0000}));

        sheet = daySheet(*o.db, o.prompter, Office::request());
        const reports::Report defaultReport = daySheetReport(*sheet);
        QVERIFY(defaultReport.landscape());
        r = Office::request();
        r.layout = SheetLayout::Billing;
        r.printColor = true;
        sheet = daySheet(*o.db, o.prompter, r);
        const reports::Report report = daySheetReport(*sheet);
        QVERIFY(!report.landscape());
        const reports::ReportTable table = report.tables().value(0);
        QStringList captions;
        QList<int> weights;
        for (const reports::ReportColumn& c : table.columns) {
            captions << c.caption;
            weights << c.weight;
        }
        QCOMPARE(captions.join('|'), QStringLiteral("Time|Len.|Service|Diag|Status|ID & Name"));
        QCOMPARE(weights, (QList<int>{100, 40, 60, 100, 100, 300}));
        const auto* count = std::get_if<reports::Report::Paragraph>(&report.blocks().last());
        QVERIFY(count && count->text == QStringLiteral("4 appointment(s)."));

        // The rows are painted with a light tint of their slot's colour, text over it.
        const QImage page = reports::ReportPrinter(report, reports::ReportStyle()).pageImage(0, 48);
        int redTint = 0;
        int greenTint = 0;
        for (int y = 0; y < page.height(); ++y) {
            for (int x = 0; x < page.width(); ++x) {
                const QRgb p = page.pixel(x, y);
                redTint += p == qRgb(255, 192, 192);
                greenTint += p == qRgb(192, 255, 192);
            }
        }
        QVERIFY2(redTint > greenTint && greenTint > 100,
                 qPrintable(QStringLiteral("%1 %2").arg(redTint).arg(greenTint)));
    }
};

QTEST_MAIN(TestDaySheet)
#include "test_day_sheet.moc"
