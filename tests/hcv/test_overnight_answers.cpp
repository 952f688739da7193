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
    void addPatient(int id, const QString& number) {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName, Sex)"
            " Values (?, ?, 'AA', ?, ?, 'M')",
            {id, number, QString("Last%1").arg(id), QString("First%1").arg(id)});
    }
    // "Response Status LName FName Sex DOB HNCheckDate" of a patient.
    QString stored(int id) {
        QSqlQuery q = db->exec(
            "Select Response, Status, LName, FName, Sex, DOB, HNCheckDate"
            " From patients Where PatientID=?",
            {id});
        if (!q.next()) {
            return {};
        }
        QStringList fields;
        for (int i = 0; i < 7; ++i) {
            fields << (q.isNull(i) ? QString("-") : q.value(i).toString());
        }
        return fields.join('|');
    }
    QString writeFile(const QByteArray& bytes) {
        const QString path = office.file("answers.txt");
        test::writeText(path, bytes);
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

QList<QStringList> reportRows(const reports::Report& report) {
    for (const auto& block : report.blocks()) {
        if (const auto* table = std::get_if<reports::ReportTable>(&block)) {
            return table->rows;
        }
    }
    return {};
}

QStringList paragraphs(const reports::Report& report) {
    QStringList texts;
    for (const auto& block : report.blocks()) {
        if (const auto* p = std::get_if<reports::Report::Paragraph>(&block)) {
            texts << p->text;
        }
    }
    return texts;
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
        QCOMPARE(bool(a), !fields.isEmpty());
        if (a) {
            QCOMPARE(QStringList({a->healthNum, a->versionCode, a->code, a->sex,
                                  a->dob.toString(Qt::ISODate), a->expiry.toString(Qt::ISODate),
                                  a->lastName, a->firstName, a->secondName,
                                  QString::number(a->hasDetails())})
                         .join('|'),
                     fields);
        }
    }

    // A hand-made file: answers for patients and for a number of no patient, lines that are
    // not answers, any line ending.
    void applyFile_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("cards");
        QTest::addColumn<int>("skipped");
        QTest::addColumn<QList<QStringList>>("failed");
        const QString passed =
            answerLine("1111111116", "AB", "51", "F", "19800203", "", "  NEWLAST", "NEWFIRST");
        const QString stolen = answerLine("2222222222", "CD", "70");
        const QString unknown =
            answerLine("3333333333", "", "50", "M", "19700101", "", "STRANGER", "SAM");
        row("CR LF lines", passed + "\r\n" + stolen + "\r\n",
            QStringList{"1111111116 51 1 1", "2222222222 70 2 2"}, 0,
            QList<QStringList>{{"2", "Last2, First2", "2222222222 CD", "70", "Stolen Card"}});
        row("garbage and a stranger, bare LF", "garbage\n" + unknown + "\n\n" + stolen + "\n   \n",
            QStringList{"3333333333 50 1 none", "2222222222 70 2 2"}, 1,
            QList<QStringList>{{"not in the register", "STRANGER, SAM", "3333333333 ", "50",
                                "Card passed validation"},
                               {"2", "Last2, First2", "2222222222 CD", "70", "Stolen Card"}});
        row("register could not answer, bare CR", answerLine("1111111116", "AB", "90") + "\r",
            QStringList{"1111111116 90 4 1"}, 0, QList<QStringList>{});
        row("empty file", QString(), QStringList{}, 0, QList<QStringList>{});
    }
    void applyFile() {
        QFETCH(QString, text);
        const QByteArray bytes = text.toLatin1();
        QFETCH(QStringList, cards);
        QFETCH(int, skipped);
        QFETCH(QList<QStringList>, failed);
        Office o;
        o.addPatient(1, "1111111116");
        o.addPatient(2, "2222222222");
        const QString path = o.writeFile(bytes);
        const QDateTime modified = QDateTime(QDate(2026, 11, 20), QTime(23, 15, 30));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(modified, QFileDevice::FileModificationTime));
        file.close();
        const hcv::OvernightResult result = hcv::applyOvernightFile(*o.db, o.log, path);
        QCOMPARE(result.problem, QString());
        QCOMPARE(summary(result), cards);
        QCOMPARE(result.skippedLines, skipped);
        const QString checked = modified.toString("yyyy-MM-dd");
        for (const QString& card : cards) {
            const QStringList parts = card.split(' ');
            if (parts[3] == "none") {
                continue;
            }
            const QString stored = o.stored(parts[3].toInt());
            QVERIFY2(stored.startsWith(parts[1] + "|" + parts[2] + "|"), qPrintable(stored));
            QVERIFY2(stored.section('|', 6).startsWith(checked), qPrintable(stored));
            QVERIFY2(stored.section('|', 6).contains("23:15:30"), qPrintable(stored));
        }
        if (bytes.startsWith(answerLine("1111111116", "AB", "51").left(14).toLatin1())) {
            // Names as received, trimmed; the birth date with them.
            QCOMPARE(o.stored(1).section('|', 2, 5).left(29),
                     QStringLiteral("NEWLAST|NEWFIRST|F|1980-02-03"));
        }
        const reports::Report report =
            hcv::overnightFailureReport(result, "answers.txt", QDate(2026, 11, 22));
        QCOMPARE(report.title(), QStringLiteral("Overnight Health Card Validation - Failed Cards"));
        QCOMPARE(report.headings(), (QStringList{"File: answers.txt", "Print Date: 2026/11/22"}));
        QCOMPARE(reportRows(report), failed);
        QCOMPARE(paragraphs(report).first(), QString("%1 cards.").arg(failed.size()));
    }

    // One transaction: a refusal on the last card leaves the first one unstored too, and the
    // other computers are sent nothing of it.
    void refusedWriteStoresNothing() {
        Office o;
        o.log.setOn(true);
        o.addPatient(1, "1111111116");
        o.addPatient(2, "2222222222");
        test::refuseRows(*o.db, "Update", "patients", "NEW.PatientID = 2", "disk full");
        const QString before = o.stored(1);
        const QString path = o.writeFile(
            (answerLine("1111111116", "AB", "50") + "\r\n" + answerLine("2222222222", "CD", "65"))
                .toLatin1());
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
        o.addPatient(1, "5144922985");
        o.addPatient(2, "0987654321");
        o.addPatient(3, "1205780040");
        o.addPatient(4, "5005365787");
        const hcv::OvernightResult result = hcv::applyOvernightFile(*o.db, o.log, sample);
        QCOMPARE(result.problem, QString());
        QCOMPARE(result.cards.size(), 19);
        QCOMPARE(result.skippedLines, 0);
        int matched = 0;
        for (const hcv::AppliedOvernight& card : result.cards) {
            matched += card.patientId ? 1 : 0;
        }
        QCOMPARE(matched, 4);
        const QString checked = QFileInfo(sample).lastModified().toString("yyyy-MM-dd");
        QCOMPARE(o.stored(1).section('|', 0, 5).left(36),
                 QStringLiteral("50|1|STATA|DORLISA|F|1955-01-10"));
        QVERIFY(o.stored(1).section('|', 6).startsWith(checked));
        QCOMPARE(o.stored(2).section('|', 0, 4), QStringLiteral("10|2|Last2|First2|M"));
        QCOMPARE(o.stored(3).section('|', 0, 5).left(34),
                 QStringLiteral("52|1|IM-APA|OMAR|M|1961-10-30"));
        QCOMPARE(o.stored(4).section('|', 0, 1), QStringLiteral("20|2"));
        // Failed: the two refused cards of patients, and the 15 numbers of nobody here.
        const QList<QStringList> rows =
            reportRows(hcv::overnightFailureReport(result, "OBEC.txt", QDate(2026, 11, 22)));
        QCOMPARE(rows.size(), 17);
        QCOMPARE(rows.first(), (QStringList{"2", "Last2, First2", "0987654321 ", "10",
                                            "Incorrect health number - The HN was not found on "
                                            "RPDB"}));
    }
};

QTEST_GUILESS_MAIN(TestOvernightAnswers)
#include "test_overnight_answers.moc"
