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
    DetailsInput input(const QString& time = QStringLiteral("9:00am"), int type = 1) {
        DetailsInput in;
        in.doctorId = QStringLiteral("01");
        in.date = QStringLiteral("2026/11/25");  // a Wednesday
        in.time = time;
        in.length = QStringLiteral("15");
        in.slotType = QString::number(type);
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
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QString>("patient");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("length");
        QTest::addColumn<QString>("type");
        QTest::addColumn<QString>("problems");  // joined by "|"; empty when it is saved
        test::row("all good", "01", "7", "2026/11/25", "9:00am", "15", "1", "");
        test::row("whole day for a caller", "01", "", "2026/11/25", "12:00am", "1440", "1", "");
        test::row("every problem at once", " ", "99", "", "13:75", "x", "5",
                  "Doctor ID must be entered.|Invalid Patient ID.|Date must be entered."
                  "|Invalid time: '13:75' is not a time of day such as 9:15am.|Invalid Length."
                  "|Invalid type.");
        test::row("not a date, zero length", "01", "abc", "2026/02/30", "9:00am", "0", "1",
                  "Invalid Patient ID.|Invalid date.|Length must be greater than zero.");
        test::row("length above a day", "01", "", "2026/11/25", "12:00am", "1441", "1",
                  "Length cannot be greater than 1440.");
        test::row("ends after midnight", "01", "", "2026/11/25", "11:50pm", "15", "1",
                  "The appointment must end by midnight.");
        test::row("bad Ontario number after the rest", "", "8", "2026/11/25", "9:00am", "15", "1",
                  "Doctor ID must be entered.|'1234567890' is not a valid health card number.");
        test::row("other provinces are not checked", "01", "9", "2026/11/25", "9:00am", "15", "1",
                  "");
    }
    void detailsChecks() {
        QFETCH(QString, problems);
        Office o;
        DetailsInput in = o.input();
        QFETCH(QString, doctor);
        QFETCH(QString, patient);
        QFETCH(QString, date);
        QFETCH(QString, time);
        QFETCH(QString, length);
        QFETCH(QString, type);
        in.doctorId = doctor;
        in.patientId = patient;
        in.date = date;
        in.time = time;
        in.length = length;
        in.slotType = type;
        const std::optional<qint64> saved = o.book(in);
        if (problems.isEmpty()) {
            QVERIFY(saved);
            QCOMPARE(o.count(), 1);
            QVERIFY(o.prompter.messages().isEmpty());
            return;
        }
        QVERIFY(!saved);
        QCOMPARE(o.count(), 0);
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(o.prompter.last().lines.join('|'), problems);
    }

    void requisitionAppointmentsAreReadOnly() {
        Office o;
        const qint64 id = *o.book(o.input());
        o.db->exec(QStringLiteral("Insert Into realreqstage (apptid) Values (?)"),
                   {QString::number(id)});
        const std::optional<Appointment> loaded = AppointmentStore(*o.db).load(id);
        QVERIFY(loaded);
        QCOMPARE(loaded->slotName, QStringLiteral("Visit"));
        QCOMPARE(loaded->slotColor, 0xFF0000);  // stored with red in the lowest byte
        DetailsInput in = DetailsInput::of(*loaded);
        in.notes = QStringLiteral("changed");
        QVERIFY(!o.book(in));
        QVERIFY(!AppointmentBook(*o.db, o.prompter, o.log).cancel(id));
        for (const auto& m : o.prompter.messages()) {
            QCOMPARE(m.lines, QStringList{"Unauthorized Access, Appointments made in Ostrel are "
                                          "read only."});
            QCOMPARE(m.icon, Icon::Critical);
        }
        QCOMPARE(o.prompter.messages().size(), 2);
        QCOMPARE(o.count(QStringLiteral("Notes Is Null And Status=1")), 1);
    }

    void overlapIsAskedFirst_data() {
        QTest::addColumn<QString>("otherDoctor");
        QTest::addColumn<QString>("otherTime");
        QTest::addColumn<int>("otherStatus");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<bool>("saved");
        test::row("same time, default No", "01", "9:10am", 1, false, true, false);
        test::row("same time, Yes", "01", "9:10am", 1, true, true, true);
        test::row("ends where it starts", "01", "8:45am", 1, false, false, true);
        test::row("starts where it ends", "01", "9:15am", 1, false, false, true);
        test::row("cancelled one is free", "01", "9:00am", kStatusCancelled, false, false, true);
        test::row("other doctor", "02", "9:00am", 1, false, false, true);
    }
    void overlapIsAskedFirst() {
        QFETCH(bool, yes);
        QFETCH(bool, asked);
        QFETCH(bool, saved);
        Office o;
        DetailsInput other = o.input();
        QFETCH(QString, otherDoctor);
        QFETCH(QString, otherTime);
        QFETCH(int, otherStatus);
        other.doctorId = otherDoctor;
        other.time = otherTime;
        other.status = otherStatus;
        QVERIFY(o.book(other));
        if (yes) {
            o.prompter.script({Answer::Yes});
        }
        QCOMPARE(o.book(o.input()).has_value(), saved);
        QCOMPARE(o.count(), saved ? 2 : 1);
        QCOMPARE(o.prompter.messages().size(), asked ? 1 : 0);
        if (asked) {
            QVERIFY(o.prompter.last().question);
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
        QCOMPARE(logged.filter(QRegularExpression("^Update appointments Set .* Where AppID=\\d+$"))
                     .size(),
                 4);
        QVERIFY(logged.last().contains("AppTime=545"));
    }

    void dayMergesTemplateAndAppointments_data() {
        QTest::addColumn<bool>("ownTemplate");
        QTest::addColumn<QString>("lines");
        test::row("default template", false,
                  "540 15 Visit Smith, Ann|555 30 Physical Walk In|600 30 Physical -");
        test::row("doctor's own template", true,
                  "480 30 Physical -|540 15 Visit Smith, Ann|555 30 Physical Walk In");
    }
    void dayMergesTemplateAndAppointments() {
        QFETCH(bool, ownTemplate);
        QFETCH(QString, lines);
        Office o;
        // Wednesday is day 4; the default template's 9:00, 9:15, 9:30 and 10:00 slots.
        o.db->exec(QStringLiteral(
            "Insert Into apptemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) Values"
            " (1,'(d)',4,540,1),(2,'(d)',4,555,1),(3,'(d)',4,570,1),(4,'(d)',4,600,2),"
            " (5,'01',5,540,1)"));
        if (ownTemplate) {
            o.db->exec(QStringLiteral("Insert Into apptemplates Values (6,'01',4,480,2)"));
        }
        DetailsInput in = o.input();
        in.patientId = QStringLiteral("7");
        QVERIFY(o.book(in));
        in = o.input(QStringLiteral("9:15am"), 2);
        in.length = QStringLiteral("30");
        in.patientName = QStringLiteral("Walk In");
        QVERIFY(o.book(in));  // covers the 9:15 and 9:30 slots
        QStringList got;
        for (const DayLine& l : dayLines(*o.db, QStringLiteral("01"), QDate(2026, 11, 25))) {
            got << QStringLiteral("%1 %2 %3 %4")
                       .arg(l.time)
                       .arg(l.length)
                       .arg(l.slotName, l.appointment ? l.appointment->whoText() : "-");
        }
        QCOMPARE(got.join('|'), lines);
        QCOMPARE(o.count(), 2);  // the day's empty slots are never written
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
        QVERIFY(requested.isEmpty());
        in.time = QStringLiteral("2:00pm");
        QVERIFY(o.book(in, {true, request}));
        QCOMPARE(requested, QStringList{"1234567897AB"});
    }

    void statusLettersAndNames_data() {
        QTest::addColumn<QString>("letter");
        QTest::addColumn<int>("status");  // -1: no status
        test::row("blank", " ", 0);
        test::row("booked", "o", 1);
        test::row("confirmed", "C", 2);
        test::row("waiting", "W", 3);
        test::row("seen", "s", 4);
        test::row("no show", "N", 5);
        test::row("billed", "B", 6);
        test::row("no letter", "X", -1);
    }
    void statusLettersAndNames() {
        QFETCH(QString, letter);
        QFETCH(int, status);
        QCOMPARE(statusForLetter(letter.at(0)).value_or(-1), status);
        if (status >= 0) {
            QCOMPARE(detailsStatusName(status), StatusName(status));
        }
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
                auto db = Database::createSqlite(file);
                RecordingPrompter prompter;
                AppointmentBook book(*db, prompter, o.log);
                for (int i = 0; i < kEach; ++i) {
                    DetailsInput in = o.input(TimeText(i * 15));
                    in.doctorId = doctor;
                    failures += book.save(in) ? 0 : 1;
                }
            } catch (...) {
                ++failures;
            }
        };
        std::thread a(desk, QStringLiteral("01"));
        std::thread b(desk, QStringLiteral("02"));
        a.join();
        b.join();
        QCOMPARE(failures.load(), 0);
        QCOMPARE(o.db->scalar("Select Count(Distinct AppID) From appointments").toInt(), 2 * kEach);
    }
};

QTEST_GUILESS_MAIN(TestAppointmentBook)
#include "test_appointment_book.moc"
