#include "TestSupport.h"
#include "hcv/CardRequest.h"
#include "hcv/CardResponse.h"
#include "hcv/HcvSettings.h"
#include "hcv/ResponseCodes.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::hcv;

namespace {

// An echoed request: the health number sits at positions 10 to 19.
const QString kRecord = QStringLiteral(
    "RPVR0300 1234567897AB********FACILTYPROVIDER0MAILBOX1        ####################");

}  // namespace

class TestCardRequest : public QObject {
    Q_OBJECT

private slots:
    void recordIsFittedField_data() {
        QTest::addColumn<QString>("fx");
        QTest::addColumn<QString>("px");
        QTest::addColumn<QString>("mx");
        QTest::addColumn<QString>("healthNum");
        QTest::addColumn<QString>("versionCode");
        QTest::addColumn<QString>("record");
        const QString tail = QString(8, ' ') + QString(20, '#');
        test::row("short values are padded", "F1", "P12", "M", "1234567897", "A",
                  "RPVR0300 1234567897A ********F1     P12       M       " + tail);
        test::row("long values are cut", "FFFFFFFXX", "PPPPPPPPPPXX", "MMMMMMMMXX", "123456789712",
                  "ABC", "RPVR0300 1234567897AB********FFFFFFFPPPPPPPPPPMMMMMMMM" + tail);
        test::row("empty values are blanks", "", "", "", "", "",
                  "RPVR0300 " + QString(12, ' ') + "********" + QString(25, ' ') + tail);
    }
    void recordIsFittedField() {
        QFETCH(QString, record);
        HcvSettings s;
        s.hx = "HX01";
        QFETCH(QString, fx);
        QFETCH(QString, px);
        QFETCH(QString, mx);
        s.fx = fx;
        s.px = px;
        s.mx = mx;
        QFETCH(QString, healthNum);
        QFETCH(QString, versionCode);
        QCOMPARE(requestRecord(s, healthNum, versionCode), record);
        QCOMPARE(record.size(), 82);
        QCOMPARE(requestLine(s, healthNum, versionCode), "HX01|" + record);
    }

    void fileNameIsTheMoment() {
        QCOMPARE(requestFileName(QDateTime(QDate(2026, 3, 14), QTime(9, 30, 15))),
                 QString("20260314093015.txt"));
        QCOMPARE(requestFileName(QDateTime(QDate(2026, 11, 2), QTime(21, 5, 9))),
                 QString("20261102210509.txt"));
    }

    void foldersComeFromTheSettings_data() {
        QTest::addColumn<QString>("ho");
        QTest::addColumn<QString>("hi");
        QTest::addColumn<QString>("request");
        QTest::addColumn<QString>("answers");
        test::row("defaults", "", "", "/office/HCVOUT/N.txt", "/office/HCVIN/");
        test::row("absolute with separators", "/share/out/", "/share/in/", "/share/out/N.txt",
                  "/share/in/");
        test::row("without separators", "/share/out", "/share/in", "/share/outN.txt", "/share/in/");
        test::row("relative to the office", "out/", "in", "/office/out/N.txt", "/office/in/");
        test::row("an old setting's backslash", "out\\", "in\\", "/office/out\\N.txt",
                  "/office/in/");
    }
    void foldersComeFromTheSettings() {
        QFETCH(QString, ho);
        QFETCH(QString, hi);
        QFETCH(QString, request);
        QFETCH(QString, answers);
        HcvSettings s;
        s.ho = ho;
        s.hi = hi;
        QCOMPARE(requestPath(s, "/office/", "N.txt"), request);
        QCOMPARE(answerFolder(s, "/office/"), answers);
    }

    void answerLineIsCut_data() {
        QTest::addColumn<QString>("line");
        // installation|number|code|version|last|first|sex|dob, "+" when details were taken
        QTest::addColumn<QString>("fields");
        test::row("with details", "HX01|" + kRecord + "|50|OK|AB|SMITH  |JOHN |M|19800105|",
                  "HX01|1234567897|50|AB|SMITH|JOHN|M|1980/01/05+");
        test::row("birth date without its bar", "HX01|" + kRecord + "|51|OK|AB|Smith|Jo|F|19800105",
                  "HX01|1234567897|51|AB|Smith|Jo|F|1980/01/05+");
        test::row("impossible birth date", "HX01|" + kRecord + "|50|OK|AB|SMITH|JOHN|M|19801340|",
                  "HX01|1234567897|50|AB|SMITH|JOHN|M|+");
        test::row("quoted identifier, no details", "\"HX01|" + kRecord + "|9C|NO|",
                  "HX01|1234567897|9C|||||");
        test::row("only blanks after the unused field", "HX01|" + kRecord + "|80|NO|   ",
                  "HX01|1234567897|80|||||");
        test::row("details without names are not taken", "HX01|" + kRecord + "|50|OK|AB|",
                  "HX01|1234567897|50|AB||||");
        test::row("code at the end", "HX01|" + kRecord + "|9", "HX01|1234567897|9|||||");
        test::row("short record", "HX01|RPVR0300 12345", "HX01|12345||||||");
        test::row("no bar at all", "HX01 RPVR0300 1234567897", "|||||||");
        test::row("bars only", "|||||", "|||||||||");
    }
    void answerLineIsCut() {
        QFETCH(QString, line);
        QFETCH(QString, fields);
        const CardResponse r = parseResponseLine(line);
        const QString got =
            QStringList{r.installation, r.healthNum,
                        r.code,         r.versionCode,
                        r.lastName,     r.firstName,
                        r.sex,          r.dob.isValid() ? r.dob.toString("yyyy/MM/dd") : ""}
                .join('|') +
            (r.hasDetails ? "+" : "");
        QCOMPARE(got, fields);
    }

    void fileGivesItsFirstLine_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("code");
        const QByteArray line = "HX01|" + kRecord.toLatin1() + "|50|OK|";
        QTest::newRow("CR LF") << line + "\r\nHX01|" + kRecord.toLatin1() + "|99|\r\n"
                               << "50";
        QTest::newRow("carriage return alone") << line + "\rHX01|x|99|"
                                               << "50";
        QTest::newRow("no line end") << line << "50";
        QTest::newRow("empty file") << QByteArray() << "";
    }
    void fileGivesItsFirstLine() {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, code);
        test::TempOffice office;
        test::writeText(office.file("a.txt"), bytes);
        QCOMPARE(readResponseFile(office.file("a.txt")).code, code);
        QCOMPARE(readResponseFile(office.file("missing.txt")).installation, QString());
    }

    void codesGiveMessageAndClass_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("status");
        test::row("50", "50", "Card passed validation", 1);
        test::row("51 same as 50", "51", "Card passed validation", 1);
        test::row("55", "55", "Card passed validation; returned mail indicator on inactive card",
                  1);
        test::row("80 empty", "80", "", 2);
        test::row("9C letter code", "9C", "Health care provider/facility not authorized for HCV",
                  2);
        test::row("9N after the letters", "9N", "", 2);
        test::row("90", "90", "Infomration not available", 4);
        test::row("99", "99", "System not available", 4);
        test::row("95", "95", "", 5);
        test::row("10", "10", "Incorrect health number - The HN was not found on RPDB", 2);
        test::row("XX", "XX", "", 2);
        test::row("empty", "", "", 2);
    }
    void codesGiveMessageAndClass() {
        QFETCH(QString, code);
        QFETCH(QString, message);
        QFETCH(int, status);
        QCOMPARE(ResponseMessage(code), message);
        QCOMPARE(statusClass(code), status);
    }

    void legendKeepsItsPrintedWording() {
        QCOMPARE(legendLines().size(), 19);
        QCOMPARE(legendLines().last(),
                 QString(" 9_ --- Health care provider/facility not authorized for HCV"));
    }
};

QTEST_GUILESS_MAIN(TestCardRequest)
#include "test_card_request.moc"
