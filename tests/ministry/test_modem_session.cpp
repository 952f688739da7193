#include "FakeModem.h"

#include "ministry/ModemSession.h"

#include <QElapsedTimer>
#include <QtTest>

using namespace brimsett;
using test::FakeModem;
using namespace std::chrono_literals;

namespace {

// A second of the session's clock; short, so time-outs pass quickly.
constexpr auto kSecond = 100ms;
const QString kSpeed = QStringLiteral("57600,n,8,1");
const QByteArray kInit = "ATZ\rATE0V1Q0X4&C1&D2\r";
const QStringList kNoModem = {"Could not access the modem.",
                              "Please check that the modem port setting is correct,",
                              "and there is no other software using the modem."};

struct Events {
    QList<std::pair<EdtEvent, QString>> all;
    EdtEventSink sink() {
        return [this](EdtEvent kind, const QString& text) { all.append({kind, text}); };
    }
    QStringList of(EdtEvent kind, qsizetype from = 0) const {
        QStringList texts;
        for (qsizetype i = from; i < all.size(); ++i) {
            if (all[i].first == kind) {
                texts << all[i].second;
            }
        }
        return texts;
    }
};

// A modem that takes the session's initialisation.
FakeModem& ready(FakeModem& modem) {
    return modem.on("ATZ\r", "\r\nOK\r\n").on("ATE0V1Q0X4&C1&D2\r", "\r\nOK\r\n");
}

qint64 units(const QElapsedTimer& timer) {
    return timer.elapsed() / kSecond.count();
}

}  // namespace

class TestModemSession : public QObject {
    Q_OBJECT

private slots:
    void lineSpeed_data();
    void lineSpeed();
    void openFails_data();
    void openFails();
    void dial_data();
    void dial();
    void waitFor_data();
    void waitFor();
    void hangUp_data();
    void hangUp();
};

void TestModemSession::lineSpeed_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("baud");  // 0: refused
    QTest::addColumn<int>("parity");
    QTest::addColumn<int>("dataBits");
    QTest::addColumn<int>("stopBits");
    QTest::newRow("57600") << "57600,n,8,1" << 57600 << int(QSerialPort::NoParity) << 8
                           << int(QSerialPort::OneStop);
    QTest::newRow("9600") << "9600,n,8,1" << 9600 << int(QSerialPort::NoParity) << 8
                          << int(QSerialPort::OneStop);
    QTest::newRow("even, 7, 2, blanks") << " 2400, E ,7, 2" << 2400 << int(QSerialPort::EvenParity)
                                        << 7 << int(QSerialPort::TwoStop);
    QTest::newRow("odd, 1.5") << "1200,o,5,1.5" << 1200 << int(QSerialPort::OddParity) << 5
                              << int(QSerialPort::OneAndHalfStop);
    QTest::newRow("empty") << "" << 0 << 0 << 0 << 0;
    QTest::newRow("speed alone") << "57600" << 0 << 0 << 0 << 0;
    QTest::newRow("speed not a number") << "fast,n,8,1" << 0 << 0 << 0 << 0;
    QTest::newRow("zero speed") << "0,n,8,1" << 0 << 0 << 0 << 0;
    QTest::newRow("unknown parity") << "9600,x,8,1" << 0 << 0 << 0 << 0;
    QTest::newRow("nine data bits") << "9600,n,9,1" << 0 << 0 << 0 << 0;
    QTest::newRow("three stop bits") << "9600,n,8,3" << 0 << 0 << 0 << 0;
    QTest::newRow("a fifth part") << "9600,n,8,1,x" << 0 << 0 << 0 << 0;
}

void TestModemSession::lineSpeed() {
    QFETCH(QString, text);
    QFETCH(int, baud);
    const std::optional<LineSpeed> line = LineSpeed::parse(text);
    QCOMPARE(line.has_value(), baud != 0);
    if (line) {
        QCOMPARE(line->baud, baud);
        QTEST(int(line->parity), "parity");
        QTEST(int(line->dataBits), "dataBits");
        QTEST(int(line->stopBits), "stopBits");
    }
}

void TestModemSession::openFails_data() {
    QTest::addColumn<QString>("device");  // "busy": the fake's, already open
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QStringList>("errors");  // the last one only by its beginning
    QTest::newRow("no such device")
        << "/dev/ttyBrimsettNone" << kSpeed << (kNoModem + QStringList{"(/dev/ttyBrimsettNone: "});
    QTest::newRow("no port set") << "" << kSpeed << (kNoModem + QStringList{"(: no modem port"});
    QTest::newRow("busy") << "busy" << kSpeed << (kNoModem + QStringList{"(/dev/"});
    QTest::newRow("not a speed") << "busy"
                                 << "57600"
                                 << QStringList{"The line speed \"57600\" is not of the form"};
}

void TestModemSession::openFails() {
    QFETCH(QString, device);
    QFETCH(QString, speed);
    QFETCH(QStringList, errors);
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    modem.on("AT\r", "OK\r\n").start();
    ModemLine holder({});
    if (device == QLatin1String("busy")) {
        device = modem.device();
        if (speed == kSpeed) {
            QVERIFY(holder.open(device, kSpeed));
        }
    }
    Events events;
    ModemLine line(events.sink());
    QVERIFY(!line.open(device, speed));
    QVERIFY(!line.isOpen());
    QVERIFY(!line.send("AT\r"));
    const QStringList told = events.of(EdtEvent::Error);
    QCOMPARE(told.size(), errors.size());
    QCOMPARE(told.mid(0, errors.size() - 1), errors.mid(0, errors.size() - 1));
    QVERIFY2(told.last().startsWith(errors.last()), qPrintable(told.last()));
    QCOMPARE(events.all.size(), told.size());
    // The port is still the other program's to use.
    if (holder.isOpen()) {
        QVERIFY(holder.send("AT\r"));
        QVERIFY(modem.finished(5000));
    }
}

void TestModemSession::dial_data() {
    QTest::addColumn<QString>("number");
    QTest::addColumn<bool>("modemThere");   // the modem answers the initialisation
    QTest::addColumn<QByteArray>("reply");  // to the dial command, after `delay` seconds
    QTest::addColumn<int>("delay");
    QTest::addColumn<bool>("drop");  // the line goes after the dial command
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QStringList>("told");  // after "Dialing...": steps and errors
    QTest::addColumn<QByteArray>("sent");   // everything the modem got
    QTest::addColumn<int>("atLeast");       // seconds the dial must take at least ...
    QTest::addColumn<int>("below");         // ... and less than

    const QByteArray dialled = kInit + "ATDT9,555-1234\r";
    const QStringList timeOut = {"WaitFor Timed Out!", "Time out error.",
                                 "(Could not establish connection within 3 seconds.)"};
    const QStringList noTone = {"*** There is no dial tone. ***",
                                "Please check that the telephone line is plugged into the",
                                "modem and that no one else is using the telephone."};
    QTest::newRow("connect") << "9,555-1234" << true << QByteArray("\r\nCONNECT 57600\r\n") << 2
                             << false << int(DialOutcome::Connected)
                             << QStringList{"Dial was successful.", "(Connected in 2 seconds.)"}
                             << dialled << 2 << 3;
    QTest::newRow("connect at once")
        << "9,555-1234" << true << QByteArray("\r\nCONNECT\r\n") << 0 << false
        << int(DialOutcome::Connected)
        << QStringList{"Dial was successful.", "(Connected in 0 seconds.)"} << dialled << 0 << 1;
    QTest::newRow("busy") << "9,555-1234" << true << QByteArray("\r\nBUSY\r\n") << 1 << false
                          << int(DialOutcome::Busy)
                          << QStringList{"The line is busy.", "Please try again later."} << dialled
                          << 1 << 3;
    QTest::newRow("no carrier") << "9,555-1234" << true << QByteArray("\r\nNO CARRIER\r\n") << 0
                                << false << int(DialOutcome::NoCarrier)
                                << QStringList{"There is no carrier."} << dialled << 0 << 3;
    QTest::newRow("no answer") << "9,555-1234" << true << QByteArray("\r\nNO ANSWER\r\n") << 0
                               << false << int(DialOutcome::NoCarrier)
                               << QStringList{"There is no carrier."} << dialled << 0 << 3;
    QTest::newRow("no dialtone") << "9,555-1234" << true << QByteArray("\r\nNO DIALTONE\r\n") << 0
                                 << false << int(DialOutcome::NoDialTone) << noTone << dialled << 0
                                 << 3;
    QTest::newRow("no dial tone") << "9,555-1234" << true << QByteArray("NO DIAL TONE\r\n") << 0
                                  << false << int(DialOutcome::NoDialTone) << noTone << dialled << 0
                                  << 3;
    QTest::newRow("modem refuses")
        << "9,555-1234" << true << QByteArray("\r\nERROR\r\n") << 0 << false
        << int(DialOutcome::Refused) << QStringList{"The modem refused to dial \"9,555-1234\"."}
        << dialled << 0 << 3;
    // Silence and garbage alike run out the time, and the dialling is stopped.
    QTest::newRow("silence") << "9,555-1234" << true << QByteArray() << 0 << false
                             << int(DialOutcome::TimedOut) << timeOut << dialled + "\r" << 3 << 5;
    static const char garbage[] = "\x13\xfe~NO CAR\0RIER?CONNEC";
    QTest::newRow("garbage") << "9,555-1234" << true << QByteArray(garbage, sizeof garbage - 1) << 0
                             << false << int(DialOutcome::TimedOut) << timeOut << dialled + "\r"
                             << 3 << 5;
    QTest::newRow("line dropped") << "9,555-1234" << true << QByteArray() << 0 << true
                                  << int(DialOutcome::LineLost) << QStringList{"LOST CONNECTION"}
                                  << dialled << 0 << 2;
    QTest::newRow("no modem") << "9,555-1234" << false << QByteArray() << 0 << false
                              << int(DialOutcome::NoModem)
                              << (QStringList{"WaitFor Timed Out!"} + kNoModem)
                              << QByteArray("ATZ\r") << 3 << 5;
    QTest::newRow("modem speaks garbage")
        << "9,555-1234" << false << QByteArray() << 0 << false << int(DialOutcome::NoModem)
        << (QStringList{"WaitFor Timed Out!"} + kNoModem) << QByteArray("ATZ\r") << 3 << 5;
    QTest::newRow("command in the number")
        << "555;ATH" << true << QByteArray() << 0 << false << int(DialOutcome::Refused)
        << QStringList{"The telephone number \"555;ATH\" cannot be dialled."} << QByteArray() << 0
        << 1;
    QTest::newRow("no number") << "" << true << QByteArray() << 0 << false
                               << int(DialOutcome::Refused)
                               << QStringList{"The telephone number \"\" cannot be dialled."}
                               << QByteArray() << 0 << 1;
}

void TestModemSession::dial() {
    QFETCH(QString, number);
    QFETCH(bool, modemThere);
    QFETCH(QByteArray, reply);
    QFETCH(int, delay);
    QFETCH(bool, drop);
    QFETCH(QStringList, told);
    QFETCH(QByteArray, sent);
    QFETCH(int, atLeast);
    QFETCH(int, below);
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    if (modemThere) {
        ready(modem).expect("ATDT" + number.toLatin1() + "\r").pause(delay * kSecond.count());
        if (drop) {
            modem.drop();
        } else if (!reply.isEmpty()) {
            modem.answer(reply);
        }
    } else if (QByteArray(QTest::currentDataTag()).contains("garbage")) {
        modem.on("ATZ\r", "?\x7f\xff\r\nO K\r\n");
    }
    modem.start();

    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(modem.device(), kSpeed));
    QElapsedTimer timer;
    timer.start();
    QTEST(int(session.dial(number, 3)), "outcome");
    const qint64 took = units(timer);
    QVERIFY2(took >= atLeast && took < below, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(events.all.first(), std::make_pair(EdtEvent::Step, QStringLiteral("Dialing...")));
    QStringList outcome = events.of(EdtEvent::Step, 1) + events.of(EdtEvent::Error);
    QCOMPARE(outcome, told);
    QCOMPARE(session.online(), told.first() == QLatin1String("Dial was successful."));
    QTRY_COMPARE(modem.received(), sent);
    QCOMPARE(events.of(EdtEvent::Sent).join(QString()), QString::fromLatin1(sent));
}

void TestModemSession::waitFor_data() {
    QTest::addColumn<QByteArrayList>("chunks");  // arriving a little apart
    QTest::addColumn<bool>("drop");              // and then the line goes
    QTest::addColumn<QString>("texts");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("next");  // a second wait right after, if any
    QTest::addColumn<int>("nextIndex");
    QTest::addColumn<QStringList>("errors");

    QTest::newRow("first seen wins")
        << QByteArrayList{"WELCOME\r\nYOUR UPLOAD MAY PLEASE BEGIN\r\n"} << false
        << "PLEASE BEGIN;YOUR UPLOAD;UPLOAD NOW" << 1 << "" << -1 << QStringList();
    QTest::newRow("split mid-word") << QByteArrayList{"PLEASE BE", "GIN NOW"} << false
                                    << "UPLOAD NOW;PLEASE BEGIN" << 1 << "" << -1 << QStringList();
    QTest::newRow("three chunks") << QByteArrayList{"\r\nNO C", "ARR", "IER\r\n"} << false
                                  << "CONNECT;NO CARRIER" << 1 << "" << -1 << QStringList();
    QTest::newRow("shorter one ends first")
        << QByteArrayList{"CONNECT 57600\r\n"} << false << "CONNECT 57600;CONNECT" << 1 << "" << -1
        << QStringList();
    QTest::newRow("blank texts skipped")
        << QByteArrayList{"", "OK\r\n"} << false << ";OK;" << 1 << "" << -1 << QStringList();
    QTest::newRow("rest serves the next wait")
        << QByteArrayList{"LOGON OK\r\nPASSWORD:"} << false << "LOGON OK" << 0
        << "ID:;PASSWORD:" << 1 << QStringList();
    QTest::newRow("seen text is not seen again")
        << QByteArrayList{"ID:"} << false << "ID:" << 0 << "ID:" << -1
        << QStringList{"WaitFor Timed Out!"};
    QTest::newRow("time-out") << QByteArrayList{"PLEASE WAIT", "\r\nPLEASE BEGI"} << false
                              << "PLEASE BEGIN;UPLOAD NOW" << -1 << "" << -1
                              << QStringList{"WaitFor Timed Out!"};
    QTest::newRow("line dropped") << QByteArrayList{"PLEASE"} << true << "PLEASE BEGIN" << -1 << ""
                                  << -1 << QStringList{"LOST CONNECTION"};
}

void TestModemSession::waitFor() {
    QFETCH(QByteArrayList, chunks);
    QFETCH(bool, drop);
    QFETCH(QString, texts);
    QFETCH(QString, next);
    QFETCH(QStringList, errors);
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    for (const QByteArray& chunk : chunks) {
        modem.pause(30).answer(chunk);
    }
    if (drop) {
        modem.pause(30).drop();
    }
    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(modem.device(), kSpeed));
    modem.start();

    constexpr int kWait = 5;
    QElapsedTimer timer;
    timer.start();
    TextSeen seen = session.waitFor(texts, kWait);
    QTEST(seen.index, "index");
    QCOMPARE(seen.lost, drop);
    if (!next.isEmpty()) {
        seen = session.waitFor(next, 1);
        QTEST(seen.index, "nextIndex");
    }
    // A wait ends as soon as it can: at its text, at a lost line, or at its time.
    const qint64 took = units(timer);
    if (errors.contains("WaitFor Timed Out!")) {
        QVERIFY(took >= (next.isEmpty() ? kWait : 1));
    } else {
        QVERIFY2(took < 2, qPrintable(QString::number(timer.elapsed())));
    }
    const QStringList awaited = next.isEmpty() ? QStringList{texts} : QStringList{texts, next};
    QCOMPARE(events.of(EdtEvent::Awaited), awaited);
    QCOMPARE(events.of(EdtEvent::Error), errors);
    QVERIFY(!events.of(EdtEvent::Received).isEmpty());
}

void TestModemSession::hangUp_data() {
    QTest::addColumn<QByteArray>("reply");  // to the dial
    QTest::addColumn<QString>("modem");     // after the dial: "answers", "silent", "drops"
    QTest::addColumn<QByteArray>("sent");   // what the modem got after the dial command
    QTest::addColumn<QStringList>("errors");
    QTest::addColumn<int>("below");  // seconds the hang-up takes at most

    QTest::newRow("modem answers")
        << QByteArray("CONNECT\r\n") << "answers" << QByteArray("+++ATH0\r") << QStringList() << 3;
    QTest::newRow("modem silent") << QByteArray("CONNECT\r\n") << "silent"
                                  << QByteArray("+++ATH0\r")
                                  << QStringList{"WaitFor Timed Out!", "WaitFor Timed Out!"} << 8;
    QTest::newRow("line gone") << QByteArray("CONNECT\r\n") << "drops" << QByteArray()
                               << QStringList{"LOST CONNECTION"} << 1;
    // Not in a call: no escape, straight to the hang-up command.
    QTest::newRow("after a busy line")
        << QByteArray("BUSY\r\n") << "answers" << QByteArray("ATH0\r") << QStringList() << 1;
    QTest::newRow("after a busy line, silent")
        << QByteArray("BUSY\r\n") << "silent" << QByteArray("ATH0\r")
        << QStringList{"WaitFor Timed Out!"} << 3;
}

void TestModemSession::hangUp() {
    QFETCH(QByteArray, reply);
    QFETCH(QString, modem);
    QFETCH(QByteArray, sent);
    QFETCH(QStringList, errors);
    QFETCH(int, below);
    const bool online = reply.startsWith("CONNECT");
    FakeModem fake;
    QVERIFY2(!fake.device().isEmpty(), qPrintable(fake.problem()));
    ready(fake).on("ATDT5551234\r", reply);
    // A little short of the session's guard times, for the threads' scheduling.
    const int guard = int(kSecond.count()) * 8 / 10;
    if (modem == QLatin1String("answers")) {
        if (online) {
            fake.quiet(guard).expect("+++").quiet(guard).answer("\r\nOK\r\n");
        }
        fake.on("ATH0\r", "\r\nOK\r\n");
    } else if (modem == QLatin1String("drops")) {
        fake.pause(int(kSecond.count()) / 2).drop();
    }
    fake.start();
    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(fake.device(), kSpeed));
    session.dial("5551234", 3);
    QCOMPARE(session.online(), online);
    const QByteArray dialled = fake.received();
    QVERIFY(dialled.endsWith("ATDT5551234\r"));
    if (modem == QLatin1String("drops")) {
        QVERIFY(fake.finished(5000));
    }

    const qsizetype from = events.all.size();
    QElapsedTimer timer;
    timer.start();
    session.hangUp();
    QVERIFY2(units(timer) < below, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(events.all.at(from), std::make_pair(EdtEvent::Step, QStringLiteral("Hanging up...")));
    QCOMPARE(events.of(EdtEvent::Error, from), errors);
    QVERIFY(!session.line().isOpen());
    QVERIFY(!session.online());
    if (modem == QLatin1String("answers")) {
        QVERIFY(fake.finished(5000));
        QCOMPARE(fake.failure(), QString());
    }
    QTRY_COMPARE(fake.received().mid(dialled.size()), sent);
    // The port is free again.
    if (modem != QLatin1String("drops")) {
        ModemLine again({});
        QVERIFY(again.open(fake.device(), kSpeed));
    }
}

QTEST_GUILESS_MAIN(TestModemSession)
#include "test_modem_session.moc"
