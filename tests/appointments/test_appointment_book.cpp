#include "OfficeFixture.h"
#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"

#include <QRegularExpression>

#include <thread>

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

// Two slot types (Visit 15 min, Physical 30 min), an Ontario patient with a good number
// (7), one with a bad number (8) and one from Quebec (9).
struct Office : test::OfficeFixture {
    Office() {
        db->exec(QStringLiteral(
            "Insert Into apptimeslots (ID, Name, Color, Type, DefaultLength, DefaultServiceCode,"
            " DefaultDiagCode) Values (1,'Visit',255,0,15,'A007A','799'),"
            " (2,'Physical',65280,0,30,'A003A','917')"));
        db->exec(QStringLiteral(
            "Insert Into patients (PatientID, LName, FName, HPhone, DOB, Province, HealthNum,"
            " VersionCode) Values (7,'Smith','Ann','555-1234','1980-05-17','ON','1234567897','AB'),"
            " (8,'Bad','Card','','1970-01-01','ON','1234567890',''),"
            " (9,'Roy','Luc','','1960-02-02','QC','XXXX','')"));
    }
    // "doctor|patient|date|time|length|type", booked; 2026/11/25 is a Wednesday.
    static DetailsInput input(const QString& time = "9:00am", const QString& doctor = "01") {
        return fields(doctor + "||2026/11/25|" + time + "|15|1");
    }
    static DetailsInput fields(const QString& fields) {
        const QStringList f = fields.split('|');
        DetailsInput in;
        std::tie(in.doctorId, in.patientId, in.date, in.time, in.length, in.slotType) =
            std::tie(f[0], f[1], f[2], f[3], f[4], f[5]);
        in.status = 1;
        return in;
    }
    qint64 count(const QString& where = QStringLiteral("1=1")) {
        return db->scalar(QStringLiteral("Select Count(*) From appointments Where ") + where)
            .toLongLong();
    }
    std::optional<qint64> book(const DetailsInput& in, CardCheck card = {}) {
        return AppointmentBook(*db, prompter, log, std::move(card)).save(in);
    }
};

}  // namespace

class TestAppointmentBook : public QObject {
    Q_OBJECT

private slots:
    void detailsChecks_data() {
        QTest::addColumn<QString>("fields");    // doctor|patient|date|time|length|type
        QTest::addColumn<QString>("problems");  // joined by "|"; empty when it is saved
        test::row("all good", "01|7|2026/11/25|9:00am|15|1", "");
        test::row("every problem at once", " |99||13:75|x|5",
                  "Doctor ID must be entered.|Invalid Patient ID.|Date must be entered."
                  "|Invalid time: '13:75' is not a time of day such as 9:15am.|Invalid Length."
                  "|Invalid type.");
        test::row("not a date, zero length", "01|abc|2026/02/30|9:00am|0|1",
                  "Invalid Patient ID.|Invalid date.|Length must be greater than zero.");
        test::row("length above a day", "01||2026/11/25|12:00am|1441|1",
                  "Length cannot be greater than 1440.");
        test::row("ends after midnight", "01||2026/11/25|11:50pm|15|1",
                  "The appointment must end by midnight.");
        test::row("bad Ontario number after the rest", "|8|2026/11/25|9:00am|15|1",
                  "Doctor ID must be entered.|'1234567890' is not a valid health card number.");
        test::row("other provinces are not checked", "01|9|2026/11/25|9:00am|15|1", "");
    }
    void detailsChecks() {
        QFETCH(QString, problems);
        Office o;
        QFETCH(QString, fields);
        const std::optional<qint64> saved = o.book(Office::fields(fields));
        QCOMPARE(saved.has_value(), problems.isEmpty());
        QCOMPARE(o.count(), problems.isEmpty() ? 1 : 0);
        QCOMPARE(o.prompter.messages().size(), problems.isEmpty() ? 0 : 1);
        if (!problems.isEmpty()) {
            QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
            QCOMPARE(o.prompter.last().lines.join('|'), problems);
        }
    }

    void requisitionAppointmentsAreReadOnly() {
        Office o;
        const qint64 id = *o.book(o.input());
        o.db->exec(QStringLiteral("Insert Into realreqstage (apptid) Values (?)"),
                   {QString::number(id)});
        DetailsInput in = DetailsInput::of(*AppointmentStore(*o.db).load(id));
        in.notes = QStringLiteral("changed");
        QVERIFY(!o.book(in));
        QVERIFY(!AppointmentBook(*o.db, o.prompter, o.log).cancel(id));
        QCOMPARE(o.prompter.messages().size(), 2);
        QCOMPARE(o.prompter.last().lines,
                 QStringList{"Unauthorized Access, Appointments made in Ostrel are read only."});
        QCOMPARE(o.prompter.last().icon, Icon::Critical);
        QCOMPARE(o.count(QStringLiteral("Notes Is Null And Status=1")), 1);
    }

    // Another appointment "doctor time status" beside 01 at 9:00 for 15 minutes; the Yes
    // answer is proven by the move below.
    void overlapIsAskedFirst_data() {
        QTest::addColumn<QString>("other");
        QTest::addColumn<bool>("asked");  // and refused by default
        test::row("same time", "01 9:10am 1", true);
        test::row("ends where it starts", "01 8:45am 1", false);
        test::row("cancelled one is free", "01 9:00am 7", false);
        test::row("other doctor", "02 9:00am 1", false);
    }
    void overlapIsAskedFirst() {
        QFETCH(QString, other);
        QFETCH(bool, asked);
        Office o;
        const QStringList w = other.split(' ');
        DetailsInput in = o.input(w[1], w[0]);
        in.status = w[2].toInt();
        QVERIFY(o.book(in));
        QCOMPARE(o.book(o.input()).has_value(), !asked);
        QCOMPARE(o.prompter.messages().size(), asked ? 1 : 0);
        if (asked) {
            QCOMPARE(o.prompter.last().defaultAnswer, Answer::No);
            QVERIFY(o.prompter.last().lines.contains("9:10 am (15 min) "));
        }
    }

    void movingAsksLikeBookingAndCancelKeepsTheRow() {
        Office o;
        o.log.setOn(true);
        const qint64 first = *o.book(o.input());
        const qint64 second = *o.book(o.input(QStringLiteral("10:00am")));
        // Changing what is not the time asks nothing even beside a double booking.
        DetailsInput moved = DetailsInput::of(*AppointmentStore(*o.db).load(second));
        moved.time = QStringLiteral("9:00am");
        QVERIFY(!o.book(moved));  // asked, default No
        QCOMPARE(o.count(QStringLiteral("AppTime=600")), 1);
        o.prompter.script({Answer::Yes});
        QVERIFY(o.book(moved));
        moved.notes = QStringLiteral("both at nine");
        o.prompter.clear();
        QVERIFY(o.book(moved));
        QVERIFY(o.prompter.messages().isEmpty());

        QVERIFY(AppointmentBook(*o.db, o.prompter, o.log).cancel(first));
        QCOMPARE(o.count(), 2);
        QCOMPARE(AppointmentStore(*o.db).load(first)->status, kStatusCancelled);
        // A cancelled appointment no longer holds its time.
        moved.time = QStringLiteral("9:05am");
        QVERIFY(o.book(moved));
        QVERIFY(o.prompter.messages().isEmpty());
        // Each save that was written is one line of the log; the refused move is not there.
        const QStringList logged = test::readText(o.log.path()).split("\r\n", Qt::SkipEmptyParts);
        QCOMPARE(logged.size(), 6);
        QCOMPARE(logged.filter(QRegularExpression("^Insert Into appointments \\(AppID")).size(), 2);
        QVERIFY(
            logged.last().contains(QRegularExpression("^Update appointments Set .*AppTime=545.* "
                                                      "Where AppID=\\d+$")));
    }

    void dayMergesTemplateAndAppointments() {
        Office o;
        // Wednesday is day 4; the default template's 9:00, 9:15, 9:30 and 10:00 slots.
        o.db->exec(QStringLiteral(
            "Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) Values"
            " (1,'(d)',4,540,1),(2,'(d)',4,555,1),(3,'(d)',4,570,1),(4,'(d)',4,600,2),"
            " (5,'01',5,540,1)"));
        QVERIFY(o.book(Office::fields("01|7|2026/11/25|9:00am|15|1")));
        DetailsInput in = Office::fields("01||2026/11/25|9:15am|30|2");
        in.patientName = QStringLiteral("Walk In");
        QVERIFY(o.book(in));  // covers the 9:15 and 9:30 slots
        const auto text = [](const QList<DayLine>& lines) {
            QStringList got;
            for (const DayLine& l : lines) {
                got << QStringLiteral("%1 %2 %3 %4")
                           .arg(l.time)
                           .arg(l.length)
                           .arg(l.slotName, l.appointment ? l.appointment->whoText() : "-");
            }
            return got.join('|');
        };
        const QDate wednesday(2026, 11, 25);
        QCOMPARE(
            text(dayLines(*o.db, QStringLiteral("01"), wednesday)),
            QStringLiteral("540 15 Visit Smith, Ann|555 30 Physical Walk In|600 30 Physical -"));
        QCOMPARE(o.count(), 2);  // the day's empty slots are never written

        // Read at once, every day is what it is alone: another doctor on the default
        // template, the doctor's own Thursday, a booking of the other doctor on Thursday.
        QVERIFY(o.book(Office::fields("02||2026/11/26|10:00am|15|1")));
        const QList<DayKey> keys{{"01", wednesday},
                                 {"02", wednesday},
                                 {"01", wednesday.addDays(1)},
                                 {"02", wednesday.addDays(1)}};
        const QList<QList<DayLine>> together = dayLinesOf(*o.db, keys);
        QCOMPARE(together.size(), keys.size());
        for (qsizetype k = 0; k < keys.size(); ++k) {
            QCOMPARE(text(together[k]), text(dayLines(*o.db, keys[k].doctorId, keys[k].date)));
        }
        QCOMPARE(text(together[2]), QStringLiteral("540 15 Visit -"));
        QVERIFY(text(together[3]).contains("600 15 Visit"));
    }

    void slotTypeFillsItsDefaultsAndCardCheckIsRequested() {
        Office o;
        DetailsInput in = o.input();
        in.length = QStringLiteral("45");
        chooseSlotType(in, *slotTypeById(*o.db, 2));
        QCOMPARE(in.length, QStringLiteral("30"));
        QCOMPARE(in.serviceCode + in.diagCode, QStringLiteral("A003A917"));
        in.patientId = QStringLiteral("7");
        QStringList requested;
        const auto request = [&](const QString& hn, const QString& vc) { requested << hn + vc; };
        QVERIFY(o.book(in, {false, request}));
        in.time = QStringLiteral("2:00pm");
        QVERIFY(o.book(in, {true, request}));
        QCOMPARE(requested, QStringList{"1234567897AB"});  // only when the check is on
    }

    // A missing time or length sorts as the smallest on either engine: a longer appointment
    // before a shorter one at the same time.
    void dayOrderKeepsMissingValuesFirst() {
        Office o;
        o.db->exec(QStringLiteral(
            "Insert Into appointments (AppID, DoctorID, AppDate, AppTime, AppLength) Values"
            " (1,'01','2026-11-25',540,15), (2,'01','2026-11-25',540,NULL),"
            " (3,'01','2026-11-25',540,30), (4,'01','2026-11-25',NULL,15),"
            " (5,'01','2026-11-25',480,15), (6,'02','2026-11-25',NULL,15)"));
        QList<qint64> ids;
        for (const Appointment& a : AppointmentStore(*o.db).day("01", QDate(2026, 11, 25))) {
            ids << a.appId;
        }
        QCOMPARE(ids, (QList<qint64>{4, 5, 3, 1, 2}));
    }

    void statusLettersAndNames() {
        QCOMPARE(statusForLetter(u' ').value_or(-1), 0);
        QCOMPARE(statusForLetter(u'o').value_or(-1), 1);
        QCOMPARE(statusForLetter(u'B').value_or(-1), 6);
        QVERIFY(!statusForLetter(u'X'));
        QCOMPARE(detailsStatusName(8) + detailsStatusName(9),
                 QStringLiteral("RescheduledRequistion"));
    }

    void appIdIsUniqueAcrossConnections() {
        Office o;
        const QString file = o.db->location();
        constexpr int kEach = 40;
        std::atomic<int> failures = 0;
        const auto desk = [&](const QString& doctor) {
            try {
                auto db = test::openAgain(file);
                RecordingPrompter prompter;
                AppointmentBook book(*db, prompter, o.log);
                for (int i = 0; i < kEach; ++i) {
                    failures += book.save(o.input(TimeText(i * 15), doctor)) ? 0 : 1;
                }
            } catch (...) {
                ++failures;
            }
        };
        std::thread a(desk, QStringLiteral("01")), b(desk, QStringLiteral("02"));
        a.join();
        b.join();
        QCOMPARE(failures.load(), 0);
        QCOMPARE(o.db->scalar("Select Count(Distinct AppID) From appointments").toInt(), 2 * kEach);
    }
};

QTEST_GUILESS_MAIN(TestAppointmentBook)
#include "test_appointment_book.moc"
