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
    void open_data();
    void open();
    void dial_data();
    void dial();
    void waitFor_data();
    void waitFor();
    void hangUp_data();
    void hangUp();
};

// Settings a pseudo-terminal cannot take (below, `open` tries those it can).
void TestModemSession::lineSpeed_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("fields");  // baud, parity, data bits, stop bits
    QTest::newRow("even") << "2400,E,7,2" << QList<int>{2400, QSerialPort::EvenParity, 7, 2};
    QTest::newRow("odd") << "1200,o,5,1.5" << QList<int>{1200, QSerialPort::OddParity, 5, 3};
    QTest::newRow("mark") << "300,m,6,1" << QList<int>{300, QSerialPort::MarkParity, 6, 1};
    QTest::newRow("space") << "300,s,8,1" << QList<int>{300, QSerialPort::SpaceParity, 8, 1};
}

void TestModemSession::lineSpeed() {
    QFETCH(QString, text);
    const std::optional<LineSpeed> line = LineSpeed::parse(text);
    QVERIFY(line);
    QTEST((QList<int>{line->baud, line->parity, line->dataBits, line->stopBits}), "fields");
}

void TestModemSession::open_data() {
    QTest::addColumn<QString>("device");  // "modem": the fake's; "busy": the fake's, in use
    QTest::addColumn<QString>("speed");
    QTest::addColumn<QStringList>("errors");  // the last one by its beginning; none: it opens
    QTest::newRow("57600") << "modem" << kSpeed << QStringList();
    // A pseudo-terminal takes only eight data bits without parity.
    QTest::newRow("9600, blanks, two stop bits") << "modem"
                                                 << " 9600 , N ,8, 2" << QStringList();
    QTest::newRow("no such device")
        << "/dev/ttyBrimsettNone" << kSpeed << (kNoModem + QStringList{"(/dev/ttyBrimsettNone: "});
    QTest::newRow("no port set") << "" << kSpeed << (kNoModem + QStringList{"(: no modem port"});
    QTest::newRow("busy") << "busy" << kSpeed << (kNoModem + QStringList{"(/dev/"});
    for (const char* speed : {"57600", "fast,n,8,1", "0,n,8,1", "9600,x,8,1", "9600,n,9,1",
                              "9600,n,8,3", "9600,n,8,1,x"}) {
        QTest::newRow(speed) << "modem" << speed
                             << QStringList{QString("The line speed \"%1\" is not of").arg(speed)};
    }
}

void TestModemSession::open() {
    QFETCH(QString, device);
    QFETCH(QString, speed);
    QFETCH(QStringList, errors);
    FakeModem modem;
    QVERIFY2(!modem.device().isEmpty(), qPrintable(modem.problem()));
    modem.on("AT\r", "OK\r\n").start();
    ModemLine holder({});
    if (device == QLatin1String("busy")) {
        QVERIFY(holder.open(modem.device(), kSpeed));
    }
    if (device == QLatin1String("busy") || device == QLatin1String("modem")) {
        device = modem.device();
    }
    Events events;
    ModemLine line(events.sink());
    QCOMPARE(line.open(device, speed), errors.isEmpty());
    QCOMPARE(line.isOpen(), errors.isEmpty());
    QCOMPARE(line.send("AT\r"), errors.isEmpty());
    const QStringList told = events.of(EdtEvent::Error);
    QCOMPARE(told.size(), errors.size());
    if (!errors.isEmpty()) {
        QCOMPARE(told.mid(0, errors.size() - 1), errors.mid(0, errors.size() - 1));
        QVERIFY2(told.last().startsWith(errors.last()), qPrintable(told.last()));
    }
    // The port stays the other user's.
    QVERIFY(!holder.isOpen() || holder.send("AT\r"));
    if (errors.isEmpty() || holder.isOpen()) {
        QVERIFY(modem.finished(5000));
    }
}

void TestModemSession::dial_data() {
    QTest::addColumn<QString>("number");
    QTest::addColumn<QString>("modem");     // "": answers the initialisation; "drops" after
                                            // the dial; "silent"; "garbage" to everything
    QTest::addColumn<QByteArray>("reply");  // to the dial, after `delay` seconds
    QTest::addColumn<int>("delay");
    QTest::addColumn<int>("outcome");
    QTest::addColumn<QStringList>("told");  // after "Dialing...": steps, then errors
    QTest::addColumn<QByteArray>("sent");   // everything the modem got
    QTest::addColumn<int>("seconds");       // the dial takes (a second more allowed)
    const auto row = [](const char* tag, QString number, QString modem, QByteArray reply, int delay,
                        DialOutcome outcome, QStringList told, QByteArray sent, int seconds) {
        QTest::newRow(tag) << number << modem << reply << delay << int(outcome) << told << sent
                           << seconds;
    };
    const QString number = "9,555-1234";
    const QByteArray dialled = kInit + "ATDT9,555-1234\r";
    const QStringList timeOut = {"WaitFor Timed Out!", "Time out error.",
                                 "(Could not establish connection within 3 seconds.)"};
    const QStringList noTone = {"*** There is no dial tone. ***",
                                "Please check that the telephone line is plugged into the",
                                "modem and that no one else is using the telephone."};
    const QStringList noCarrier = {"There is no carrier."};
    static const char garbage[] = "\x13\xfe~NO CAR\0RIER?CONNEC";
    row("connect", number, "", "\r\nCONNECT 57600\r\n", 2, DialOutcome::Connected,
        {"Dial was successful.", "(Connected in 2 seconds.)"}, dialled, 2);
    row("busy", number, "", "\r\nBUSY\r\n", 1, DialOutcome::Busy,
        {"The line is busy.", "Please try again later."}, dialled, 1);
    row("no carrier", number, "", "\r\nNO CARRIER\r\n", 0, DialOutcome::NoCarrier, noCarrier,
        dialled, 0);
    row("no answer", number, "", "\r\nNO ANSWER\r\n", 0, DialOutcome::NoCarrier, noCarrier, dialled,
        0);
    row("no dialtone", number, "", "\r\nNO DIALTONE\r\n", 0, DialOutcome::NoDialTone, noTone,
        dialled, 0);
    row("no dial tone", number, "", "NO DIAL TONE\r\n", 0, DialOutcome::NoDialTone, noTone, dialled,
        0);
    row("modem refuses", number, "", "\r\nERROR\r\n", 0, DialOutcome::Refused,
        {"The modem refused to dial \"9,555-1234\"."}, dialled, 0);
    // Silence and garbage alike run out the time, and the dialling is stopped.
    row("silence", number, "", "", 0, DialOutcome::TimedOut, timeOut, dialled + "\r", 3);
    row("garbage", number, "", QByteArray(garbage, sizeof garbage - 1), 0, DialOutcome::TimedOut,
        timeOut, dialled + "\r", 3);
    row("line dropped", number, "drops", "", 0, DialOutcome::LineLost, {"LOST CONNECTION"}, dialled,
        0);
    row("no modem", number, "silent", "", 0, DialOutcome::NoModem,
        QStringList{"WaitFor Timed Out!"} + kNoModem, "ATZ\r", 3);
    row("modem speaks garbage", number, "garbage", "", 0, DialOutcome::NoModem,
        QStringList{"WaitFor Timed Out!"} + kNoModem, "ATZ\r", 3);
    row("command in the number", "555;ATH", "", "", 0, DialOutcome::Refused,
        {"The telephone number \"555;ATH\" cannot be dialled."}, "", 0);
}

void TestModemSession::dial() {
    QFETCH(QString, number);
    QFETCH(QString, modem);
    QFETCH(QByteArray, reply);
    QFETCH(int, delay);
    QFETCH(QStringList, told);
    QFETCH(QByteArray, sent);
    QFETCH(int, seconds);
    FakeModem fake;
    QVERIFY2(!fake.device().isEmpty(), qPrintable(fake.problem()));
    if (modem == QLatin1String("garbage")) {
        fake.on("ATZ\r", "?\x7f\xff\r\nO K\r\n");
    } else if (modem != QLatin1String("silent")) {
        ready(fake).expect("ATDT" + number.toLatin1() + "\r").pause(delay * kSecond.count());
        modem == QLatin1String("drops") ? fake.drop() : fake.answer(reply);
    }
    fake.start();

    Events events;
    ModemSession session(events.sink(), kSecond);
    QVERIFY(session.open(fake.device(), kSpeed));
    QElapsedTimer timer;
    timer.start();
    QTEST(int(session.dial(number, 3)), "outcome");
    const qint64 took = units(timer);
    QVERIFY2(took >= seconds && took <= seconds + 1, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(events.all.first(), std::make_pair(EdtEvent::Step, QStringLiteral("Dialing...")));
    QCOMPARE(events.of(EdtEvent::Step, 1) + events.of(EdtEvent::Error), told);
    QCOMPARE(session.online(), told.first() == QLatin1String("Dial was successful."));
    QTRY_COMPARE(fake.received(), sent);
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
