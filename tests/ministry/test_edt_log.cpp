#include "TestSupport.h"

#include "foundation/Clock.h"
#include "ministry/EdtLog.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordReminder.h"

#include <QAbstractTextDocumentLayout>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QTextDocument>
#include <QtTest>

using namespace brimsett;
using test::row;

Q_DECLARE_METATYPE(brimsett::EdtEvent)

namespace {

const QDateTime kStart(QDate(2026, 11, 22), QTime(10, 0, 0));

struct Session {
    test::TempOffice office;
    FixedClock clock{kStart};
    EdtLog log{office.file(EdtLog::kFileName), clock};

    QString html() const { return test::readText(office.file(EdtLog::kFileName)); }
    // The log as a viewer shows it.
    QString seen() const {
        QTextDocument document;
        document.setHtml(html());
        return document.toPlainText();
    }
    // The event rows as written, one a line.
    QStringList rows() const {
        QStringList found;
        for (const QString& line : html().split('\n')) {
            if (line.startsWith(QLatin1String("<tr><td bgcolor"))) {
                found << line;
            }
        }
        return found;
    }
};

}  // namespace

class TestEdtLog : public QObject {
    Q_OBJECT

private slots:
    void oneRowPerEvent_data() {
        QTest::addColumn<EdtEvent>("kind");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("seen");
        row("a step", EdtEvent::Step, "Dialing...", "Dialing...");
        row("a command ends in CR", EdtEvent::Sent, "ATDT5550100\r", "ATDT5550100<CR>");
        row("several texts awaited", EdtEvent::Awaited, "PLEASE BEGIN;YOUR UPLOAD",
            "PLEASE BEGIN;YOUR UPLOAD");
        row("markup is text", EdtEvent::Received, "<b>A&B</b> \"x\"\r\nOK",
            "<b>A&B</b> \"x\"<CR><LF>\nOK");
        row("escape, tab and delete shown", EdtEvent::Received, "\x1b[2J\tx\x7f",
            "<ESC>[2J<TAB>x<DEL>");
        row("blanks that line up", EdtEvent::Received, "1.  UPLOAD", "1.  UPLOAD");
        row("an error", EdtEvent::Error, "WaitFor Timed Out!", "WaitFor Timed Out!");
        row("a password is masked", EdtEvent::Sent, "Secret99\r", "********<CR>");
    }
    void oneRowPerEvent() {
        QFETCH(EdtEvent, kind);
        QFETCH(QString, text);
        QFETCH(QString, seen);
        Session s;
        QVERIFY2(s.log.start({}), qPrintable(s.log.problem()));
        s.log.conceal(QStringLiteral("Secret99"));
        s.log.sink()(EdtEvent::Step, QStringLiteral("Initializing..."));
        s.log.sink()(kind, text);
        const QStringList rows = s.rows();
        QCOMPARE(rows.size(), 2);
        QVERIFY(rows.last().contains(">" + EdtLog::kindName(kind) + "<"));
        QCOMPARE(rows.last().count("bgcolor=\"" + EdtLog::colour(kind) + "\""), 3);
        QVERIFY2(s.seen().contains(seen), qPrintable(s.seen()));
        QVERIFY(!s.html().contains(QStringLiteral("Secret99")));
        QVERIFY(!s.html().contains(QStringLiteral("<b>A")));
    }

    // Each kind has its own colour and the legend shows them all.
    void legendNamesEveryColour() {
        Session s;
        QVERIFY(s.log.start({}));
        QStringList colours;
        for (EdtEvent kind : {EdtEvent::Step, EdtEvent::Sent, EdtEvent::Awaited, EdtEvent::Received,
                              EdtEvent::Error}) {
            QVERIFY(!colours.contains(EdtLog::colour(kind)));
            colours << EdtLog::colour(kind);
            QVERIFY(s.html().contains(QStringLiteral("background-color:%1\">&nbsp;%2&nbsp;")
                                          .arg(EdtLog::colour(kind), EdtLog::kindName(kind))));
        }
    }

    // Read while the session runs (or after it was killed), the log holds every event so far;
    // the next session starts a new one.
    void readBackMidSessionAndFinished() {
        Session s;
        s.log.conceal(QStringLiteral("Secret99"));
        QVERIFY(s.log.start(
            {{'N', "5550100"}, {'P', "/dev/ttyS0"}, {'U', "s1:c2VhbGVk"}, {'V', "Secret99"}}));
        const QStringList events{"Dialing...", "ATDT5550100", "CONNECT 9600"};
        s.log.add(EdtEvent::Step, events[0]);
        s.clock.advanceSeconds(5);
        s.log.add(EdtEvent::Sent, events[1]);
        s.log.add(EdtEvent::Received, events[2]);

        const QString during = s.seen();
        QVERIFY(
            during.startsWith(QStringLiteral("Brimsett Log File - Sunday, November 22, 2026\n")));
        QVERIFY(during.contains(QStringLiteral("Start: 10:00:00")));
        QVERIFY2(during.contains(QStringLiteral("Param.\nValue\nN (Telephone Number)\n5550100\n"
                                                "P (Modem Port)\n/dev/ttyS0\nU\n********\n"
                                                "V\n********")),
                 qPrintable(during));
        for (const QString& event : events) {
            QVERIFY2(during.contains(event), qPrintable(event));
        }
        QVERIFY(s.rows().last().startsWith(QStringLiteral("<tr><td bgcolor=\"%1\" nowrap>10:00:05")
                                               .arg(EdtLog::colour(EdtEvent::Received))));
        QVERIFY(!during.contains(QStringLiteral("Finish:")));
        QVERIFY(!s.html().contains(QStringLiteral("c2VhbGVk")));
        QCOMPARE(QFile::permissions(s.office.file(EdtLog::kFileName)) & 0x0077,
                 QFileDevice::Permissions());

        s.clock.advanceSeconds(60);
        s.log.finish();
        s.log.add(EdtEvent::Error, QStringLiteral("after the end"));
        QVERIFY(s.seen().trimmed().endsWith(QStringLiteral("Finish: 10:01:05")));
        QVERIFY(s.html().endsWith(QStringLiteral("</html>\n")));
        QCOMPARE(s.rows().size(), 3);

        QVERIFY(s.log.start({}));
        s.log.add(EdtEvent::Step, QStringLiteral("Hanging up..."));
        QCOMPARE(s.rows().size(), 1);
        QVERIFY(!s.seen().contains(events[0]));
    }

    void longTextsAreCut_data() {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("lastRow");
        row("one screen", EdtLog::kRowLength, 1, "");
        row("a little more", EdtLog::kRowLength * 2 + 5, 3, "");
        row("the most kept", EdtLog::kRowLength * EdtLog::kRowsPerEvent, EdtLog::kRowsPerEvent, "");
        row("an endless stream", EdtLog::kRowLength * 40 + 7, EdtLog::kRowsPerEvent,
            "(18007 more characters not logged)");
    }
    void longTextsAreCut() {
        QFETCH(int, length);
        QFETCH(int, rows);
        QFETCH(QString, lastRow);
        Session s;
        QVERIFY(s.log.start({}));
        QString text;
        for (int i = 0; i < length; ++i) {
            text += QChar('a' + i % 26);
        }
        s.log.add(EdtEvent::Received, text);
        const QStringList written = s.rows();
        QCOMPARE(written.size(), rows);
        if (!lastRow.isEmpty()) {
            QVERIFY2(written.last().contains(lastRow), qPrintable(written.last()));
            return;
        }
        // Nothing is lost: the rows put together are the text.
        static const QRegularExpression code(QStringLiteral("<code>(.*)</code>"));
        QString joined;
        for (const QString& r : written) {
            joined += code.match(r).captured(1);
        }
        QCOMPARE(joined, text);
    }

    void aLogThatCannotBeWritten() {
        test::TempOffice office;
        FixedClock clock(kStart);
        EdtLog log(office.file(QStringLiteral("missing/") + EdtLog::kFileName), clock);
        QVERIFY(!log.start({}));
        QVERIFY(!log.problem().isEmpty());
        log.add(EdtEvent::Step, QStringLiteral("Dialing..."));  // the session goes on
    }

    // How a viewer shows it: drawn to /tmp/edt-log.png for a look.
    void rendersInAViewer() {
        Session s;
        QVERIFY(s.log.start(
            {{'N', "1-800-555-0100"}, {'P', "/dev/ttyUSB0"}, {'S', "57600,n,8,1"}, {'T', "60"}}));
        s.log.add(EdtEvent::Step, QStringLiteral("Dialing..."));
        s.log.add(EdtEvent::Sent, QStringLiteral("ATDT18005550100\r"));
        s.log.add(EdtEvent::Awaited, QStringLiteral("CONNECT;BUSY;NO CARRIER;NO DIAL TONE"));
        s.log.add(EdtEvent::Received,
                  QStringLiteral("\r\nCONNECT 57600\r\n\r\n  1.  UPLOAD   2.  DOWNLOAD\r\n"));
        s.log.add(EdtEvent::Error, QStringLiteral("WaitFor Timed Out!"));
        s.log.finish();
        QTextDocument document;
        document.setHtml(s.html());
        document.setTextWidth(800);
        QImage image(800, int(document.size().height()) + 1, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        document.drawContents(&painter);
        painter.end();
        QVERIFY(image.save(QStringLiteral("/tmp/edt-log.png")));
        // Every kind's rows are painted in its colour.
        for (EdtEvent kind : {EdtEvent::Step, EdtEvent::Sent, EdtEvent::Awaited, EdtEvent::Received,
                              EdtEvent::Error}) {
            const QRgb wanted = QColor(EdtLog::colour(kind)).rgb();
            int painted = 0;
            for (int y = 0; y < image.height(); ++y) {
                const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
                painted += int(std::count(line, line + image.width(), wanted));
            }
            QVERIFY2(painted > 2000, qPrintable(EdtLog::kindName(kind)));
        }
    }

    void passwordReminder_data() {
        QTest::addColumn<int>("setting");
        QTest::addColumn<bool>("hasPassword");
        QTest::addColumn<QString>("marker");
        QTest::addColumn<int>("age");  // days; -1: no change date
        QTest::addColumn<QString>("first");
        const QString old = "The EDT password of Dr. Smith was last changed on %1 (%2 days ago).";
        const QDate today = kStart.date();
        row("reminders off", 0, true, "", 200, "");
        row("changed lately", 1, true, "", kEdtPasswordReminderDays - 1, "");
        row("just old enough", 1, true, "", kEdtPasswordReminderDays,
            qPrintable(old.arg(today.addDays(-kEdtPasswordReminderDays).toString("yyyy/MM/dd"))
                           .arg(kEdtPasswordReminderDays)));
        row("any reminder value", 2, true, "", 400,
            qPrintable(old.arg(today.addDays(-400).toString("yyyy/MM/dd")).arg(400)));
        row("no change date", 1, true, "", -1,
            "The EDT password of Dr. Smith has no recorded change date.");
        row("no password", 1, false, "", 400, "");
        row("a new one waits for the host", 1, true, "1", 400, "");
        row("a date ahead of the clock", 1, true, "", -5, "");
    }
    void passwordReminder() {
        QFETCH(int, setting);
        QFETCH(bool, hasPassword);
        QFETCH(QString, marker);
        QFETCH(int, age);
        QFETCH(QString, first);
        EdtLogin login;
        login.hasPassword = hasPassword;
        login.changeMarker = marker;
        if (age != -1) {
            login.passwordChanged = kStart.date().addDays(-age);
        }
        const std::optional<QStringList> lines =
            brimsett::passwordReminder(setting, login, QStringLiteral("Dr. Smith"), kStart.date());
        QCOMPARE(lines.has_value(), !first.isEmpty());
        if (lines) {
            QCOMPARE(lines->value(0), first);
            QCOMPARE(lines->mid(1), (QStringList{"Passwords older than 60 days should be changed;",
                                                 "please change it soon in EDT Setup."}));
        }
    }
};

QTEST_MAIN(TestEdtLog)
#include "test_edt_log.moc"
