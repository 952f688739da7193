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

    void statusNamesKeepTheirSpelling() {
        QCOMPARE(StatusName(8), QStringLiteral("Reschedulled"));
        QCOMPARE(StatusName(9), QStringLiteral("Requisition"));
        QCOMPARE(StatusName(kStatusCancelled), QStringLiteral("Cancelled"));
        QCOMPARE(StatusName(10), QString());
        QCOMPARE(StatusName(-1), QString());
    }
};

QTEST_GUILESS_MAIN(TestAppointmentTime)
#include "test_appointment_time.moc"
