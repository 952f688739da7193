#include "TestSupport.h"

#include "appointments/AppointmentTime.h"

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

QTEST_GUILESS_MAIN(TestAppointmentTime)
#include "test_appointment_time.moc"
