#include "TestSupport.h"

#include "ministry/ModemPorts.h"

#include <QtTest>

using namespace brimsett;
using test::row;

class TestModemPorts : public QObject {
    Q_OBJECT

private slots:
    void storedValueNamesADevice_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("device");
        row("the old list's form", " - COM 1", "/dev/ttyS0");
        row("written together, lower case", " com2 ", "/dev/ttyS1");
        row("a high number", "COM12", "/dev/ttyS11");
        row("no COM 0", "COM0", "COM0");
        row("a path as it is", "/dev/serial/by-id/usb-US_Robotics-if00",
            "/dev/serial/by-id/usb-US_Robotics-if00");
        row("a bare device name", "ttyACM0", "/dev/ttyACM0");
        row("not a port", "modem", "modem");
    }
    void storedValueNamesADevice() {
        QFETCH(QString, stored);
        QFETCH(QString, device);
        QCOMPARE(modemports::device(stored), device);
    }

    void offeredList_data() {
        QTest::addColumn<QStringList>("found");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("offered");
        const QStringList found{"/dev/ttyS10", "/dev/ttyUSB0", "/dev/ttyS2"};
        row("natural order, an old COM value found", found, " - COM 3",
            QStringList{"/dev/ttyS2", "/dev/ttyS10", "/dev/ttyUSB0"});
        row("a missing device comes first", found, "COM1",
            QStringList{"/dev/ttyS0 (" + modemports::kMissing + ")", "/dev/ttyS2", "/dev/ttyS10",
                        "/dev/ttyUSB0"});
        row("no port on this computer", QStringList{}, "/dev/ttyUSB1",
            QStringList{"/dev/ttyUSB1 (" + modemports::kMissing + ")"});
    }
    void offeredList() {
        QFETCH(QStringList, found);
        QFETCH(QString, stored);
        QFETCH(QStringList, offered);
        QList<modemports::Port> ports;
        for (const QString& device : found) {
            ports.append({device, {}});
        }
        QStringList shown;
        for (const modemports::Port& p : modemports::offered(ports, stored)) {
            shown << (p.description.isEmpty() ? p.device : p.device + " (" + p.description + ")");
        }
        QCOMPARE(shown, offered);
    }
};

QTEST_MAIN(TestModemPorts)
#include "test_modem_ports.moc"
