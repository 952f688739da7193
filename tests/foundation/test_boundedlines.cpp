#include "TestSupport.h"
#include "foundation/BoundedLines.h"

#include <QFile>
#include <QtTest>

using namespace brimsett;
using boundedlines::Result;

namespace {

// "text:whole length" per line.
QStringList shown(const QList<boundedlines::Line>& lines) {
    QStringList out;
    for (const auto& line : lines) {
        out << line.text + ':' + QString::number(line.length);
    }
    return out;
}

}  // namespace

class TestBoundedLines : public QObject {
    Q_OBJECT

private slots:
    // Whole, and fed one byte at a time: a CR LF split between two reads is still one end.
    void splitsAtAnyLineEndKeepingTheBound_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("CR LF, LF and CR; Latin-1")
            << QByteArray("AB\r\nC\nD\r\xe9")
            << QStringList{"AB:2", "C:1", "D:1", QString::fromLatin1("\xe9:1")};
        QTest::newRow("empty lines stay, the last break makes none")
            << QByteArray("\r\n\r\rA\r\n") << QStringList{":0", ":0", ":0", "A:1"};
        QTest::newRow("a long line is cut and counted whole")
            << QByteArray("ABCDEFGH\r\nXY") << QStringList{"ABCD:8", "XY:2"};
        QTest::newRow("Ctrl-Z ends the text")
            << QByteArray("A\r\nBB\x1a\r\nC\r\n") << QStringList{"A:1", "BB:2"};
        QTest::newRow("nothing") << QByteArray() << QStringList{};
    }
    void splitsAtAnyLineEndKeepingTheBound() {
        QFETCH(QByteArray, bytes);
        QFETCH(QStringList, expected);
        QCOMPARE(shown(boundedlines::split(bytes, 4)), expected);
        boundedlines::Splitter bytewise(4);
        for (const char c : bytes) {
            bytewise.feed(QByteArrayView(&c, 1));
        }
        QCOMPARE(shown(bytewise.finish()), expected);
    }

    void refusesWhatIsPastTheLimits_data() {
        QTest::addColumn<QString>("path");  // "*" stands for the test's own file
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        using S = Result::Status;
        const QString tooMany =
            "* has more than 6 lines, more than a test file ever has; it was not read.";
        test::row(
            "a device", "/dev/zero", QString(), int(S::NotRegularFile),
            "/dev/zero is not a regular file (a folder, a device or a pipe); it was not read.");
        test::row("at the limits", "*", QString(5, '\n') + QString(2043, 'x'), int(S::Read), "");
        test::row("a byte too many", "*", QString(2049, 'x'), int(S::TooLarge),
                  "* is larger than 2 KB, more than a test file ever is; it was not read.");
        // Files of /proc say they are empty and hold more: reading itself stops at the limit.
        test::row(
            "larger than its size says", "/proc/self/maps", QString(), int(S::TooLarge),
            "/proc/self/maps is larger than 2 KB, more than a test file ever is; it was not read.");
        test::row("a line too many", "*", QString(7, '\n'), int(S::TooManyLines), tooMany);
        test::row("a line too many without a last break", "*", QString(6, '\n') + "x",
                  int(S::TooManyLines), tooMany);
    }
    void refusesWhatIsPastTheLimits() {
        QFETCH(QString, path);
        QFETCH(QString, text);
        QFETCH(int, status);
        QFETCH(QString, reason);
        test::TempOffice office;
        if (path == "*") {
            path = office.file("answer.txt");
            test::writeText(path, text.toLatin1());
            reason.replace("*", path);
        }
        const Result result = boundedlines::readFile(path, {2048, 6, 100, "a test file"});
        QCOMPARE(int(result.status), status);
        QCOMPARE(result.reason, reason);
        QCOMPARE(result.lines.size(), result.isRead() ? qsizetype(6) : 0);
    }
};

QTEST_GUILESS_MAIN(TestBoundedLines)
#include "test_boundedlines.moc"
