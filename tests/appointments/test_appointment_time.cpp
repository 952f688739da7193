#include "TestSupport.h"

#include "appointments/AppointmentTime.h"
#include "appointments/BookHours.h"
#include "foundation/AppSettings.h"
#include "foundation/SettingsStore.h"

#include <QTemporaryDir>

using namespace brimsett;
using namespace brimsett::appointments;

class TestAppointmentTime : public QObject {
    Q_OBJECT

private slots:
    void timeText_data() {
        QTest::addColumn<int>("minutes");
        QTest::addColumn<QString>("text");
        test::row("midnight", 0, "12:00 am");
        test::row("one digit hour", 545, " 9:05 am");
        test::row("noon", 720, "12:00 pm");
        test::row("afternoon", 780, " 1:00 pm");
        test::row("last minute", 1439, "11:59 pm");
    }
    void timeText() {
        QFETCH(int, minutes);
        QTEST(TimeText(minutes), "text");
    }

    void parseTimeText_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("minutes");  // -1: refused
        test::row("midnight", "12:00am", 0);
        test::row("noon", "12:00 PM", 720);
        test::row("afternoon", "1:30pm", 810);
        test::row("24-hour clock", "13:30", 810);
        test::row("minutes past 59", "13:75", -1);
        test::row("hour 13 with pm", "13:00 pm", -1);
        test::row("hour 24", "24:00", -1);
        test::row("one minute digit", "9:5 am", -1);
        test::row("empty", "", -1);
    }
    void parseTimeText() {
        QFETCH(QString, typed);
        QFETCH(int, minutes);
        QCOMPARE(appointments::parseTimeText(typed).value_or(-1), minutes);
    }

    void statusNamesKeepTheirSpelling() {
        QCOMPARE(QStringList({StatusName(8), StatusName(9), StatusName(kStatusCancelled),
                              StatusName(10), StatusName(-1)}),
                 QStringList({"Reschedulled", "Requisition", "Cancelled", "", ""}));
    }
};

// The book's hour boxes and shown range: the typed hour rule, the settings' texts, and this
// computer's own range winning over the office's.
class TestBookHours : public QObject {
    Q_OBJECT

private slots:
    void hourTexts_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("hour");  // -1: not an hour
        test::row("office default", "08:00 AM", 8);
        test::row("afternoon", "05:00 PM", 17);
        test::row("whole hour", "17", 17);
        test::row("half of day", "5 pm", 17);
        test::row("noon", "12pm", 12);
        test::row("midnight", "12 am", 0);
        test::row("hour 24", "24", -1);
        test::row("pm hour 13", "13 pm", -1);
        test::row("words", "noon", -1);
    }
    void hourTexts() {
        QFETCH(QString, text);
        QFETCH(int, hour);
        QCOMPARE(hourOfText(text).value_or(-1), hour);
    }

    void typedHourOf13IsTwelve() {
        QCOMPARE(typedHour(QStringLiteral("13")), QStringLiteral("12"));
        QCOMPARE(typedHour(QStringLiteral("23")), QStringLiteral("12"));
        QCOMPARE(typedHour(QStringLiteral("12")), QStringLiteral("12"));
        QCOMPARE(typedHour(QStringLiteral("1")), QStringLiteral("1"));
        QCOMPARE(hour24(12, false), 0);
        QCOMPARE(hour24(12, true), 12);
        QCOMPARE(slotStepMinutes(2), 15);
        QCOMPARE(slotStepMinutes(9), 15);
    }

    void shownHoursPreferThisComputersRange() {
        QTemporaryDir dir;
        SettingsStore store(dir.filePath(QStringLiteral("b.ini")));
        AppSettings settings;
        settings.hourStart = QStringLiteral("07:00 AM");
        settings.hourEnd = QStringLiteral("06:00 PM");
        QCOMPARE(readShownHours(store, settings), (ShownHours{7, 18}));
        saveShownHours(store, {9, 13});
        QCOMPARE(store.get(QStringLiteral("Appointment"), QStringLiteral("HourE")),
                 QStringLiteral("13"));
        QCOMPARE(readShownHours(store, settings), (ShownHours{9, 13}));
        QCOMPARE(readShownHours(store, settings).lastMinute(), 13 * 60 + 59);
        store.save(QStringLiteral("Appointment"), QStringLiteral("HourE"), QStringLiteral("8"));
        QCOMPARE(readShownHours(store, settings), ShownHours{});  // backwards: 8 to 5
    }
};

int main(int argc, char** argv) {
    TestAppointmentTime time;
    TestBookHours hours;
    return QTest::qExec(&time, argc, argv) | QTest::qExec(&hours, argc, argv);
}

#include "test_appointment_time.moc"
