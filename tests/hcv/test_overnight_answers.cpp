#include "OfficeFixture.h"

#include "hcv/OvernightAnswers.h"

#include <QFileInfo>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// An answer line laid out as the ministry sends it.
QString answerLine(const QString& number, const QString& version, const QString& code,
                   const QString& sex = {}, const QString& dob = {}, const QString& expiry = {},
                   const QString& last = {}, const QString& first = {},
                   const QString& second = {}) {
    return number + version.leftJustified(2) + code + "0ZJX" + sex.leftJustified(1) +
           dob.leftJustified(8) + expiry.leftJustified(8) + last.leftJustified(30) +
           first.leftJustified(20) + second.leftJustified(20) + QString(102, ' ');
}

struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName, Sex) Values"
            " (1, '1111111116', 'AA', 'Last1', 'First1', 'M'),"
            " (2, '2222222222', 'AA', 'Last2', 'First2', 'M')");
    }
    // "Response|Status|LName|FName|Sex|DOB|HNCheckDate" of a patient.
    QString stored(int id) {
        return test::rowsOf(db->exec("Select Response, Status, LName, FName, Sex, DOB,"
                                     " HNCheckDate From patients Where PatientID=?",
                                     {id}))
            .value(0);
    }
    QString writeFile(const QString& text) {
        const QString path = office.file("answers.txt");
        test::writeText(path, text.toLatin1());
        return path;
    }
};

// "number code status patient" per card, patient "none" when not in the register.
QStringList summary(const hcv::OvernightResult& result) {
    QStringList lines;
    for (const hcv::AppliedOvernight& card : result.cards) {
        lines << QStringList{card.answer.healthNum, card.answer.code, QString::number(card.status),
                             card.patientId ? QString::number(*card.patientId) : "none"}
                     .join(' ');
    }
    return lines;
}

// The failure report's table rows, then its paragraphs.
QList<QStringList> failedRows(const hcv::OvernightResult& result) {
    const reports::Report report =
        hcv::overnightFailureReport(result, "answers.txt", QDate(2026, 11, 22));
    QList<QStringList> rows;
    for (const auto& block : report.blocks()) {
        if (const auto* table = std::get_if<reports::ReportTable>(&block)) {
            rows << table->rows;
        } else if (const auto* p = std::get_if<reports::Report::Paragraph>(&block)) {
            rows << QStringList{p->text};
        }
    }
    return rows << QStringList{report.title()} << report.headings();
}

}  // namespace

class TestOvernightAnswers : public QObject {
    Q_OBJECT

private slots:
    void parseLine_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("fields");  // empty: not an answer
        row("with details",
            answerLine("5144922985", "KL", "50", "F", "19550110", "20160110", "STATA", "DORLISA",
                       "TRALENE"),
            "5144922985|KL|50|F|1955-01-10|2016-01-10|STATA|DORLISA|TRALENE|1");
        row("no expiry, no version",
            answerLine("5004830807", "", "50", "M", "19601014", "", "YESMEP", "RICHARD"),
            "5004830807||50|M|1960-10-14||YESMEP|RICHARD||1");
        row("a refusal carries no details", answerLine("0987654321", "", "10"),
            "0987654321||10|||||||0");
        row("only up to the code", "1234567890AB9C", "1234567890|AB|9C|||||||0");
        row("shorter than the code", "1234567890AB5", "");
        row("a number with a letter", answerLine("12345678X0", "AB", "50"), "");
        row("a number with a blank", answerLine("123456789 ", "AB", "50"), "");
        row("a header line", "HEADER OF THE FILE 2026", "");
    }
    void parseLine() {
        QFETCH(QString, line);
        QFETCH(QString, fields);
        const std::optional<hcv::OvernightAnswer> a = hcv::parseOvernightLine(line);
        QCOMPARE(a ? QStringList({a->healthNum, a->versionCode, a->code, a->sex,
                                  a->dob.toString(Qt::ISODate), a->expiry.toString(Qt::ISODate),
                                  a->lastName, a->firstName, a->secondName,
                                  QString::number(a->hasDetails())})
                         .join('|')
                   : QString(),
                 fields);
    }

    // A hand-made file: answers for patients and for a number of no patient, lines that are
    // not answers, any line ending; what each patient then holds, and the failure report.
    void applyFile_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("cards");
        QTest::addColumn<int>("skipped");
        QTest::addColumn<QStringList>("stored");  // patients 1 and 2
        QTest::addColumn<QList<QStringList>>("failed");
        const QString passed =
            answerLine("1111111116", "AB", "51", "F", "19800203", "", "  NEWLAST", "NEWFIRST");
        const QString stolen = answerLine("2222222222", "CD", "70");
        const QString unknown =
            answerLine("3333333333", "", "50", "M", "19700101", "", "STRANGER", "SAM");
        const QString at = "|2026-11-20 23:15:30";
        const QString untouched = "<null>|<null>|Last1|First1|M|<null>|<null>";
        const QStringList stolen2{"2", "Last2, First2", "2222222222 CD", "70", "Stolen Card"};
        row("CR LF lines", passed + "\r\n" + stolen + "\r\n",
            QStringList{"1111111116 51 1 1", "2222222222 70 2 2"}, 0,
            QStringList{"51|1|NEWLAST|NEWFIRST|F|1980-02-03" + at,
                        "70|2|Last2|First2|M|<null>" + at},
            QList<QStringList>{stolen2, {"1 cards."}});
        row("garbage and a stranger, bare LF", "garbage\n" + unknown + "\n\n" + stolen + "\n   \n",
            QStringList{"3333333333 50 1 none", "2222222222 70 2 2"}, 1,
            QStringList{untouched, "70|2|Last2|First2|M|<null>" + at},
            QList<QStringList>{{"not in the register", "STRANGER, SAM", "3333333333 ", "50",
                                "Card passed validation"},
                               stolen2,
                               {"2 cards."},
                               {"1 lines of the file were not answers."}});
        row("register could not answer, bare CR", answerLine("1111111116", "AB", "90") + "\r",
            QStringList{"1111111116 90 4 1"}, 0,
            QStringList{"90|4|Last1|First1|M|<null>" + at, QString(untouched).replace("1", "2")},
            QList<QStringList>{{"0 cards."}});
        row("empty file", QString(), QStringList{}, 0,
            QStringList{untouched, QString(untouched).replace("1", "2")},
            QList<QStringList>{{"0 cards."}});
    }
    void applyFile() {
        QFETCH(QString, text);
        QFETCH(QStringList, cards);
        QFETCH(int, skipped);
        QFETCH(QStringList, stored);
        QFETCH(QList<QStringList>, failed);
        Office o;
        QFile file(o.writeFile(text));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime(QDate(2026, 11, 20), QTime(23, 15, 30)),
                                 QFileDevice::FileModificationTime));
        file.close();
        const hcv::OvernightResult result = hcv::applyOvernightFile(*o.db, o.log, file.fileName());
        QCOMPARE(result.problem, QString());
        QCOMPARE(summary(result), cards);
        QCOMPARE(result.skippedLines, skipped);
        QCOMPARE((QStringList{o.stored(1), o.stored(2)}), stored);
        failed << QStringList{"Overnight Health Card Validation - Failed Cards"}
               << QStringList{"File: answers.txt", "Print Date: 2026/11/22"};
        QCOMPARE(failedRows(result).first(failed.size()), failed);
    }

    // One transaction: a refusal on the last card leaves the first one unstored too, and the
    // other computers are sent nothing of it.
    void refusedWriteStoresNothing() {
        Office o;
        o.log.setOn(true);
        test::refuseRows(*o.db, "Update", "patients", "NEW.PatientID = 2", "disk full");
        const QString before = o.stored(1);
        const QString path = o.writeFile(answerLine("1111111116", "AB", "50") + "\r\n" +
                                         answerLine("2222222222", "CD", "65"));
        const hcv::OvernightResult result = hcv::applyOvernightFile(*o.db, o.log, path);
        QVERIFY(result.problem.startsWith("Nothing was stored: "));
        QVERIFY(result.cards.isEmpty());
        QCOMPARE(o.stored(1), before);
        QVERIFY(!QFileInfo::exists(o.log.path()));
        QVERIFY(
            !hcv::applyOvernightFile(*o.db, o.log, o.office.file("none.txt")).problem.isEmpty());
    }

    // The ministry's sample answered for the patients who hold its numbers.
    void sampleApplied() {
        const QString sample = QStringLiteral(BRIMSETT_SAMPLES) + "/moh_sample_obec_response.txt";
        if (!QFileInfo::exists(sample)) {
            QSKIP("the ministry's sample files are not here");
        }
        Office o;
        o.db->exec("Update patients Set HealthNum='5144922985' Where PatientID=1");
        o.db->exec("Update patients Set HealthNum='0987654321' Where PatientID=2");
        o.db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName, Sex) Values"
            " (3, '1205780040', 'AA', 'Last3', 'First3', 'M'),"
            " (4, '5005365787', 'AA', 'Last4', 'First4', 'M')");
        const hcv::OvernightResult result = hcv::applyOvernightFile(*o.db, o.log, sample);
        QCOMPARE(result.problem, QString());
        QCOMPARE(result.skippedLines, 0);
        QCOMPARE(result.cards.size(), 19);
        const QString checked = QFileInfo(sample).lastModified().toString("yyyy-MM-dd");
        QStringList stored;
        for (int id = 1; id <= 4; ++id) {
            stored << o.stored(id).section('|', 0, 5);
            QVERIFY(o.stored(id).section('|', 6).startsWith(checked));
        }
        QCOMPARE(stored,
                 (QStringList{"50|1|STATA|DORLISA|F|1955-01-10", "10|2|Last2|First2|M|<null>",
                              "52|1|IM-APA|OMAR|M|1961-10-30", "20|2|Last4|First4|M|<null>"}));
        // Failed: the two refused cards of patients, and the 15 numbers of nobody here.
        const QList<QStringList> failed = failedRows(result);
        QCOMPARE(failed.at(17), QStringList{"17 cards."});
        QCOMPARE(failed.first(), (QStringList{"2", "Last2, First2", "0987654321 ", "10",
                                              "Incorrect health number - The HN was not found on "
                                              "RPDB"}));
    }
};

QTEST_GUILESS_MAIN(TestOvernightAnswers)
#include "test_overnight_answers.moc"
