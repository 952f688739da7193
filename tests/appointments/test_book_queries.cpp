#include "OfficeFixture.h"
#include "appointments/BookQueries.h"
#include "foundation/DateText.h"
#include "reports/Report.h"

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

// A visit type and a lunch type (kind 1); patients Smith Ann (7), O'Neil Pat (8), Smithers
// Bob (9) and Kasmith Ann (10, booked under another name); a booking of a patient number
// without a patient row (8).
struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            QStringLiteral("Insert Into apptimeslots (ID, Name, Type, DefaultLength) Values"
                           " (1,'Visit',0,15),(2,'Lunch',1,60)"));
        db->exec(
            QStringLiteral("Insert Into patients (PatientID, LName, FName) Values"
                           " (7,'Smith','Ann'),(8,'O''Neil','Pat'),(9,'Smithers','Bob'),"
                           " (10,'Kasmith','Ann')"));
        // AppID, name, date, time, type, notes, patient, doctor
        const QList<QVariantList> rows = {
            {1, "Smith, Ann", "2026-11-02", 540, 1, "flu shot", 7, "01"},
            {2, "Smith, Ann", "2026-11-02", 600, 1, "*urgent", 7, "01"},
            {3, "", "2026-11-03", 720, 2, QVariant(), QVariant(), "01"},
            {4, "Walk In", "2026-11-05", 540, 1, "50% off_x", QVariant(), "01"},
            {5, "Smithers, Bob", "2026-11-05", 1020, 1, "it's 'quoted'", 9, "02"},
            {6, "O'Neil, Pat", "2026-11-05", 1079, 1, QVariant(), 8, "02"},
            {7, "K. Ann", "2026-11-05", 479, 1, QVariant(), 10, "01"},
            {8, "Ghost, Gone", "2026-10-31", 540, 1, QVariant(), 99, "01"},
            {9, "Walk In", "2026-12-01", 540, 1, QVariant(), QVariant(), "01"},
            {10, "Walk In", "2026-11-30", 540, 1, QVariant(), QVariant(), "01"},
            {11, "Émile Roy", "2026-11-06", 540, 1, QVariant(), QVariant(), "03"},
        };
        for (const QVariantList& r : rows) {
            db->exec(
                QStringLiteral("Insert Into appointments (AppID, PatientName, AppDate, AppTime,"
                               " AppLength, SlotType, Notes, Status, PatientID, DoctorID)"
                               " Values (?,?,?,?,15,?,?,1,?,?)"),
                {r[0], r[1], QDate::fromString(r[2].toString(), Qt::ISODate), r[3], r[4], r[5],
                 r[6], r[7]});
        }
    }
};

// "id name|id name|..." of what was found, or "refused".
QString foundText(const std::optional<QList<FoundAppointment>>& found) {
    if (!found) {
        return QStringLiteral("refused");
    }
    QStringList rows;
    for (const FoundAppointment& f : *found) {
        rows << QString::number(f.appId) + QLatin1Char(' ') + f.name;
    }
    return rows.join(QLatin1Char('|'));
}

}  // namespace

class TestBookQueries : public QObject {
    Q_OBJECT

private slots:
    void monthCounts_data() {
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QDate>("month");
        QTest::addColumn<bool>("noAppointmentKind");  // every type made kind 1
        QTest::addColumn<QString>("days");            // "YYYY/MM/DD n" joined by ","
        // The lunch day (11/03) is not counted; Oct 31 and Dec 1 are outside the month.
        test::row("kind 0 only, first to last day", "01", QDate(2026, 11, 17), false,
                  "2026/11/02 2,2026/11/05 2,2026/11/30 1");
        test::row("other doctor", "02", QDate(2026, 11, 1), false, "2026/11/05 2");
        test::row("a month with none", "01", QDate(2027, 1, 1), false, "");
        test::row("without any kind 0 type every kind counts", "01", QDate(2026, 11, 30), true,
                  "2026/11/02 2,2026/11/03 1,2026/11/05 2,2026/11/30 1");
    }
    void monthCounts() {
        QFETCH(QString, doctor);
        QFETCH(QDate, month);
        QFETCH(bool, noAppointmentKind);
        Office o;
        if (noAppointmentKind) {
            o.db->exec(QStringLiteral("Update apptimeslots Set Type=1"));
        }
        QStringList days;
        for (const MonthDay& d : appointments::monthCounts(*o.db, doctor, month)) {
            days << datetext::slashed(d.date) + QLatin1Char(' ') + QString::number(d.count);
        }
        QTEST(days.join(QLatin1Char(',')), "days");
    }

    void find_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("notes");
        QTest::addColumn<bool>("contains");
        QTest::addColumn<QString>("found");  // newest first
        test::row("starts with a last name", "Smith", false, false,
                  "5 Smithers, Bob|2 Smith, Ann|1 Smith, Ann");
        test::row("contains a last name", "smith", false, true,
                  "5 Smithers, Bob|7 Kasmith, Ann|2 Smith, Ann|1 Smith, Ann");
        test::row("last and first", "Smith, Ann", false, false, "2 Smith, Ann|1 Smith, Ann");
        test::row("contains last and first", "MITH, an", false, true,
                  "7 Kasmith, Ann|2 Smith, Ann|1 Smith, Ann");
        test::row("caller without a patient", "walk", false, false,
                  "9 Walk In|10 Walk In|4 Walk In");
        test::row("patient number without a row", "Ghost", false, false, "8 Ghost, Gone");
        test::row("wildcard typed", "Sm*s", false, false, "5 Smithers, Bob");
        test::row("quote in a name", "o'neil", false, false, "6 O'Neil, Pat");
        test::row("a name beyond ASCII", "Émile", false, false, "11 Émile Roy");
        test::row("comparison sign is a character", ">Smith", false, false, "");
        test::row("quotes that would end the text", "x' Or '1'='1", false, false, "");
        test::row("percent is a character", "%", false, true, "");
        test::row("patient number", "7", false, false, "2 Smith, Ann|1 Smith, Ann");
        test::row("number of no patient", "99", false, false, "refused");
        test::row("number beyond any", "123456789012345678901", false, false, "refused");
        test::row("blank finds nothing", "  ", false, false, "");
        test::row("notes anywhere", "shot", true, false, "1 Smith, Ann");
        test::row("notes ending as typed", "*shot", true, false, "1 Smith, Ann");
        test::row("notes beginning as typed", "shot*", true, false, "");
        test::row("notes beginning as typed found", "flu*", true, false, "1 Smith, Ann");
        test::row("notes percent and underscore literal", "0% off_", true, false, "4 Walk In");
        test::row("notes underscore not a wildcard", "0%_off", true, false, "");
        test::row("notes question mark one character", "?0% off*", true, false, "4 Walk In");
        test::row("notes with quotes", "'quoted'", true, false, "5 Smithers, Bob");
    }
    void find() {
        QFETCH(QString, text);
        QFETCH(bool, notes);
        QFETCH(bool, contains);
        QFETCH(QString, found);
        Office o;
        const auto result = findAppointments(*o.db, o.prompter, text,
                                             notes ? FindBy::Notes : FindBy::Patient, contains);
        QCOMPARE(foundText(result), found);
        QCOMPARE(o.prompter.messages().size(), result ? 0 : 1);
        if (!result) {
            QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
            QCOMPARE(o.prompter.last().lines, QStringList{"Invalid Patient ID."});
        }
    }

    void foundListPrintsTheGridsColumns() {
        Office o;
        const auto found =
            *findAppointments(*o.db, o.prompter, QStringLiteral("Smith"), FindBy::Patient, false);
        const reports::Report report = foundListReport(found, o.clock.today());
        QCOMPARE(report.title(),
                 QStringLiteral("Appointments Found - Print Date: Sunday, November 22, 2026"));
        const reports::ReportTable table = report.tables().value(0);
        QCOMPARE(table.columns.size(), 7);
        QCOMPARE(table.columns.at(3).caption, QStringLiteral("Time"));
        QCOMPARE(table.rows.value(0), (QStringList{"5", "Smithers, Bob", "2026/11/05", " 5:00 pm",
                                                   "15", "02", "it's 'quoted'"}));
        QCOMPARE(table.rows.size(), 3);
        const auto* closing = std::get_if<reports::Report::Paragraph>(&report.blocks().last());
        QVERIFY(closing);
        QCOMPARE(closing->text, QStringLiteral("3 appointment(s)."));
        QCOMPARE(foundCountLine(found.size()), QStringLiteral("3 appointment(s) found."));
        QCOMPARE(foundCountLine(0), QStringLiteral("No appointments found."));
    }

    void countDay_data() {
        QTest::addColumn<QString>("doctors");  // joined by ","
        QTest::addColumn<int>("first");        // hours, the last one counted whole
        QTest::addColumn<int>("last");
        QTest::addColumn<int>("count");
        // 2026/11/05: 01 at 7:59 am and 9:00 am, 02 at 5:00 pm and 5:59 pm.
        test::row("both doctors, 8 to 5", "01,02", 8, 17, 3);
        test::row("one doctor", "01", 8, 17, 1);
        test::row("from 7", "01,02", 7, 17, 4);
        test::row("to 4 pm leaves 5 pm out", "02", 8, 16, 0);
        test::row("the last hour to its 59th minute", "02", 17, 17, 2);
        test::row("no doctor counts nothing", "", 0, 23, 0);
    }
    void countDay() {
        QFETCH(QString, doctors);
        QFETCH(int, first);
        QFETCH(int, last);
        Office o;
        const qint64 before = o.db->statementCount();
        const QStringList ids = doctors.split(QLatin1Char(','), Qt::SkipEmptyParts);
        QTEST(appointments::countDay(*o.db, QDate(2026, 11, 5), ids, first * 60, last * 60 + 59),
              "count");
        QCOMPARE(o.db->statementCount() - before, ids.isEmpty() ? 0 : 1);
    }
};

QTEST_GUILESS_MAIN(TestBookQueries)
#include "test_book_queries.moc"
