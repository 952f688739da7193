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
        QTest::newRow("CR LF, LF and CR")
            << QByteArray("AB\r\nC\nD\rE") << QStringList{"AB:2", "C:1", "D:1", "E:1"};
        QTest::newRow("empty lines stay, the last break makes none")
            << QByteArray("\r\n\r\rA\r\n") << QStringList{":0", ":0", ":0", "A:1"};
        QTest::newRow("a long line is cut and counted whole")
            << QByteArray("ABCDEFGH\r\nXY") << QStringList{"ABCD:8", "XY:2"};
        QTest::newRow("Ctrl-Z ends the text") << QByteArray(
                                                     "A\r\nBB\x1a"
                                                     "C\r\n")
                                              << QStringList{"A:1", "BB:2"};
        QTest::newRow("Latin-1") << QByteArray("\xe9t\xe9")
                                 << QStringList{QString::fromLatin1("\xe9t\xe9:3")};
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
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("reason");
        const QString notRegular =
            " is not a regular file (a folder, a device or a pipe); it was not read.";
        const QString tooMany =
            "* has more than 6 lines, more than a test file ever has; it was not read.";
        const auto row = [](const char* name, const QString& path, const QByteArray& bytes,
                            Result::Status status, const QString& reason) {
            QTest::newRow(name) << path << bytes << int(status) << reason;
        };
        row("a device", "/dev/zero", {}, Result::Status::NotRegularFile, "/dev/zero" + notRegular);
        row("a folder", "/tmp", {}, Result::Status::NotRegularFile, "/tmp" + notRegular);
        row("missing", "/nonexistent/file", {}, Result::Status::NotOpened,
            "No such file or directory");
        row("at the limits", "*", QByteArray(5, '\n') + QByteArray(2043, 'x'), Result::Status::Read,
            "");
        row("a byte too many", "*", QByteArray(2049, 'x'), Result::Status::TooLarge,
            "* is larger than 2 KB, more than a test file ever is; it was not read.");
        row("a line too many", "*", QByteArray(7, '\n'), Result::Status::TooManyLines, tooMany);
        row("a line too many without a last break", "*", QByteArray(6, '\n') + "x",
            Result::Status::TooManyLines, tooMany);
    }
    void refusesWhatIsPastTheLimits() {
        QFETCH(QString, path);
        QFETCH(QByteArray, bytes);
        QFETCH(int, status);
        QFETCH(QString, reason);
        test::TempOffice office;
        if (path == "*") {
            path = office.file("answer.txt");
            test::writeText(path, bytes);
            reason.replace("*", path);
        }
        const Result result = boundedlines::readFile(path, {2048, 6, 100, "a test file"});
        QCOMPARE(int(result.status), status);
        QCOMPARE(result.reason, reason);
        QCOMPARE(result.lines.size(), result.isRead() ? qsizetype(6) : 0);
    }

    // The size seen on opening does not decide alone: reading stops at the limit.
    void aFileLargerThanItsSizeSaysIsStillBounded() {
        if (!QFile::exists("/proc/self/status")) {
            QSKIP("no /proc");
        }
        // Files of /proc say they are empty and hold more.
        const Result result = boundedlines::readFile("/proc/self/status", {64, 1000, 100, "x"});
        QCOMPARE(int(result.status), int(Result::Status::TooLarge));
    }
};

QTEST_GUILESS_MAIN(TestBoundedLines)
#include "test_boundedlines.moc"
