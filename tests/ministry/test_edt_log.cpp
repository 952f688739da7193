#include "TestSupport.h"

#include "foundation/Clock.h"
#include "ministry/EdtLog.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordReminder.h"

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
constexpr EdtEvent kKinds[] = {EdtEvent::Step, EdtEvent::Sent, EdtEvent::Awaited,
                               EdtEvent::Received, EdtEvent::Error};

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
    QStringList rows() const {
        return html().split('\n').filter(QRegularExpression("^<tr><td bgcolor"));
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
        row("escape, tab and delete", EdtEvent::Received, "\x1b[2J\tx\x7f", "<ESC>[2J<TAB>x<DEL>");
        row("blanks that line up", EdtEvent::Received, "1.  UPLOAD", "1.  UPLOAD");
        row("an error", EdtEvent::Error, "WaitFor Timed Out!", "WaitFor Timed Out!");
        row("a password is masked", EdtEvent::Sent, "Secret99\r", "********<CR>");
    }
    void oneRowPerEvent() {
        QFETCH(EdtEvent, kind);
        QFETCH(QString, text);
        QFETCH(QString, seen);
        Session s;
        s.log.conceal(QStringLiteral("Secret99"));
        QVERIFY2(s.log.start({}), qPrintable(s.log.problem()));
        s.log.sink()(EdtEvent::Step, QStringLiteral("Initializing..."));
        s.log.sink()(kind, text);
        const QStringList rows = s.rows();
        QCOMPARE(rows.size(), 2);
        QVERIFY(rows.last().contains(">" + EdtLog::kindName(kind) + "<"));
        QCOMPARE(rows.last().count("bgcolor=\"" + EdtLog::colour(kind) + "\""), 3);
        QVERIFY2(s.seen().contains(seen), qPrintable(s.seen()));
        QVERIFY(!s.html().contains(QStringLiteral("Secret99")));
    }

    // Read while the session runs (or after it was killed), the log holds every event so far;
    // the next session starts a new one.
    void readBackMidSessionAndFinished() {
        Session s;
        s.log.conceal(QStringLiteral("Secret99"));
        QVERIFY(s.log.start({{'N', "5550100"}, {'U', "s1:c2VhbGVk"}, {'V', "Secret99"}}));
        s.log.add(EdtEvent::Step, QStringLiteral("Dialing..."));
        s.clock.advanceSeconds(5);
        s.log.add(EdtEvent::Received, QStringLiteral("CONNECT 9600"));

        const QString during = s.seen();
        QVERIFY2(during.startsWith("Brimsett Log File - Sunday, November 22, 2026\n") &&
                     during.contains("Start: 10:00:00\nParam.\nValue\nN (Telephone Number)\n"
                                     "5550100\nU (DataPac NUI)\n********\n"
                                     "V (GONet Verify Prompt)\n********\n") &&
                     during.contains("10:00:00\nStep\nDialing...\n10:00:05\nReceived\n"
                                     "CONNECT 9600") &&
                     !during.contains("Finish:"),
                 qPrintable(during));
        QCOMPARE(QFile::permissions(s.office.file(EdtLog::kFileName)) & 0x0077,
                 QFileDevice::Permissions());

        s.clock.advanceSeconds(60);
        s.log.finish();
        s.log.add(EdtEvent::Error, QStringLiteral("after the end"));
        QVERIFY2(s.seen().trimmed().endsWith(QStringLiteral("CONNECT 9600\n\nFinish: 10:01:05")),
                 qPrintable(s.seen()));
        QVERIFY(s.html().endsWith(QStringLiteral("</html>\n")));

        QVERIFY(s.log.start({}));
        s.log.add(EdtEvent::Step, QStringLiteral("Hanging up..."));
        QCOMPARE(s.rows().size(), 1);
    }

    void longTextsAreCut_data() {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("rows");
        row("a little more than a row", EdtLog::kRowLength * 2 + 5, 3);
        row("an endless stream", EdtLog::kRowLength * 40 + 7, EdtLog::kRowsPerEvent);
    }
    void longTextsAreCut() {
        QFETCH(int, length);
        QFETCH(int, rows);
        Session s;
        QVERIFY(s.log.start({}));
        QString text;
        for (int i = 0; i < length; ++i) {
            text += QChar('a' + i % 26);
        }
        s.log.add(EdtEvent::Received, text);
        const QStringList written = s.rows();
        QCOMPARE(written.size(), rows);
        static const QRegularExpression code(QStringLiteral("<code>(.*)</code>"));
        QString joined;
        for (const QString& r : written) {
            joined += code.match(r).captured(1);
        }
        const int kept = std::min(length, (EdtLog::kRowsPerEvent - 1) * EdtLog::kRowLength);
        QVERIFY(joined.startsWith(text.left(kept)));
        if (kept < length) {
            QVERIFY(written.last().contains(QString("(%1 more characters").arg(length - kept)));
        }
    }

    // Drawn as a viewer shows it, to /tmp/edt-log.png for a look: each kind its own colour.
    void rendersInAViewer() {
        Session s;
        QVERIFY(s.log.start({{'N', "1-800-555-0100"}, {'P', "/dev/ttyUSB0"}}));
        s.log.add(EdtEvent::Step, QStringLiteral("Dialing..."));
        s.log.add(EdtEvent::Sent, QStringLiteral("ATDT18005550100\r"));
        s.log.add(EdtEvent::Awaited, QStringLiteral("CONNECT;BUSY;NO CARRIER;NO DIAL TONE"));
        s.log.add(EdtEvent::Received, QStringLiteral("\r\nCONNECT 57600\r\n\r\n  1.  UPLOAD\r\n"));
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
        QSet<QString> colours;
        for (EdtEvent kind : kKinds) {
            colours << EdtLog::colour(kind);
            const QRgb wanted = QColor(EdtLog::colour(kind)).rgb();
            int painted = 0;
            for (int y = 0; y < image.height(); ++y) {
                const auto* line = reinterpret_cast<const QRgb*>(image.constScanLine(y));
                painted += int(std::count(line, line + image.width(), wanted));
            }
            QVERIFY2(painted > 2000, qPrintable(EdtLog::kindName(kind)));
        }
        QCOMPARE(colours.size(), 5);
    }

    void passwordReminder_data() {
        QTest::addColumn<int>("setting");
        QTest::addColumn<bool>("hasPassword");
        QTest::addColumn<QString>("marker");
        QTest::addColumn<int>("age");  // days; -1: no change date
        QTest::addColumn<QString>("first");
        const int days = kEdtPasswordReminderDays;
        row("reminders off", 0, true, "", 200, "");
        row("changed lately", 1, true, "", days - 1, "");
        row("just old enough", 2, true, "", days,
            qPrintable(QString("The EDT password of Dr. Smith was last changed on %1 (%2 days "
                               "ago).")
                           .arg(kStart.date().addDays(-days).toString("yyyy/MM/dd"))
                           .arg(days)));
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
        QCOMPARE(lines.value_or(QStringList{}).value(0), first);
    }
};

QTEST_MAIN(TestEdtLog)
#include "test_edt_log.moc"
