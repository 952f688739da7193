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
        QTest::addColumn<QStringList>("values");  // FX, PX, MX, health number, version code
        QTest::addColumn<QString>("record");
        const QString tail = QString(8, ' ') + QString(20, '#');
        test::row("short values are padded", QStringList{"F1", "P12", "M", "1234567897", "A"},
                  "RPVR0300 1234567897A ********F1     P12       M       " + tail);
        test::row("long values are cut",
                  QStringList{"FFFFFFFXX", "PPPPPPPPPPXX", "MMMMMMMMXX", "123456789712", "ABC"},
                  "RPVR0300 1234567897AB********FFFFFFFPPPPPPPPPPMMMMMMMM" + tail);
        test::row("empty values are blanks", QStringList(5),
                  "RPVR0300 " + QString(12, ' ') + "********" + QString(25, ' ') + tail);
    }
    void recordIsFittedField() {
        QFETCH(QStringList, values);
        QFETCH(QString, record);
        HcvSettings s;
        s.hx = "HX01";
        s.fx = values[0];
        s.px = values[1];
        s.mx = values[2];
        QCOMPARE(requestRecord(s, values[3], values[4]), record);
        QCOMPARE(record.size(), 82);
        QCOMPARE(requestLine(s, values[3], values[4]), "HX01|" + record);
    }

    void foldersComeFromTheSettings() {
        HcvSettings s;
        s.ho = "out\\";
        s.hi = "/share/in";
        QCOMPARE(requestPath(s, "/office/", "N.txt"), QString("/office/out\\N.txt"));
        QCOMPARE(answerFolder(s, "/office/"), QString("/share/in/"));
        s.hi = "in\\";
        QCOMPARE(answerFolder(s, "/office/"), QString("/office/in/"));
    }

    // Only a file's first line counts, however its lines end.
    void answerFileIsCut_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("fields");  // "+" when the details were taken
        test::row("details; CR LF before a second line",
                  "HX01|" + kRecord + "|50|OK|AB|SMITH  |JOHN |M|19800105|\r\nHX01|" + kRecord +
                      "|99|\r\n",
                  "HX01|1234567897|50|AB|SMITH|JOHN|M|1980/01/05+");
        test::row("birth date without its bar; a lone CR",
                  "HX01|" + kRecord + "|51|OK|AB|Smith|Jo|F|19800105\rHX01|x|99|",
                  "HX01|1234567897|51|AB|Smith|Jo|F|1980/01/05+");
        test::row("impossible birth date", "HX01|" + kRecord + "|50|OK|AB|SMITH|JOHN|M|19801340|",
                  "HX01|1234567897|50|AB|SMITH|JOHN|M|+");
        test::row("quoted identifier, no details", "\"HX01|" + kRecord + "|9C|NO|",
                  "HX01|1234567897|9C|||||");
        test::row("only blanks after the unused field", "HX01|" + kRecord + "|80|NO|   ",
                  "HX01|1234567897|80|||||");
        test::row("details without names are not taken", "HX01|" + kRecord + "|50|OK|AB|",
                  "HX01|1234567897|50|AB||||");
        test::row("no bar at all", "HX01 RPVR0300 1234567897", "|||||||");
        test::row("empty file", "", "|||||||");
    }
    void answerFileIsCut() {
        QFETCH(QString, line);
        QFETCH(QString, fields);
        test::TempOffice office;
        test::writeText(office.file("a.txt"), line.toLatin1());
        const CardResponse r = readResponseFile(office.file("a.txt"));
        const QStringList got{r.installation, r.healthNum, r.code, r.versionCode,
                              r.lastName,     r.firstName, r.sex,  r.dob.toString("yyyy/MM/dd")};
        QCOMPARE(got.join('|') + (r.hasDetails ? "+" : ""), fields);
        QCOMPARE(readResponseFile(office.file("missing.txt")).installation, QString());
    }

    void codesGiveMessageAndClass_data() {
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("status");
        test::row("51 same as 50", "51", "Card passed validation", 1);
        test::row("55", "55", "Card passed validation; returned mail indicator on inactive card",
                  1);
        test::row("80 empty", "80", "", 2);
        test::row("9C letter code", "9C", "Health care provider/facility not authorized for HCV",
                  2);
        test::row("9N after the letters", "9N", "", 2);
        test::row("90", "90", "Infomration not available", 4);
        test::row("95", "95", "", 5);
        test::row("empty", "", "", 2);
    }
    void codesGiveMessageAndClass() {
        QFETCH(QString, code);
        QFETCH(QString, message);
        QFETCH(int, status);
        QCOMPARE(ResponseMessage(code), message);
        QCOMPARE(statusClass(code), status);
    }
};

QTEST_GUILESS_MAIN(TestCardRequest)
#include "test_card_request.moc"
