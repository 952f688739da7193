#include "TestSupport.h"
#include "ministry/BatchEdit.h"

#include <QtTest>

using namespace brimsett;

namespace {

// A record of the given length with each text at its 1-based position.
QString record(std::initializer_list<std::pair<int, const char*>> fields, int length) {
    QString line(length, QLatin1Char(' '));
    for (const auto& [pos, text] : fields) {
        const QString value = QString::fromLatin1(text);
        line.replace(pos - 1, value.size(), value);
    }
    return line.left(length);
}

const QString kCurrent = record({{1, "HB1V0300001000000201203310005J207315781257822HCP/WCBBGAA"},
                                 {57, "1703320000900003820120731"},
                                 {82, "     ***  BATCH TOTALS  ***"}},
                                batchedit::kRecordLength);

// The fields of kCurrent before its message, as the grid shows them.
const QStringList kCells =
    QString("00001|000000|20120331|0005|J2073157812|57822|HCP/WCB|BGAA|170332|9|38|20120731")
        .split('|');

QString errorsOf(const batchedit::Report& report) {
    QStringList out;
    for (const auto& e : report.errors) {
        out << received::cellsOf(e).join(QLatin1Char('|'));
    }
    return out.join(QLatin1Char(';'));
}

}  // namespace

class TestBatchEdit : public QObject {
    Q_OBJECT

private slots:
    void readsEachRecord_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QStringList>("cells");  // empty: no row shown
        QTest::addColumn<bool>("rejected");
        QTest::addColumn<QString>("errors");

        QString rejected = kCurrent;
        rejected.replace(81, 40, QStringLiteral("BATCH ACCEPTED").leftJustified(39) + "R");
        QTest::newRow("R in the 40th character rejects whatever the text says")
            << rejected << (kCells + QStringList{"(Rejected) BATCH ACCEPTED"}) << true << QString();
        QTest::newRow("older layout: six-digit date, later fields two to the left")
            << record({{1, "HB1V0200042OPER01991231"},
                       {24, "0001A123456789012345HCP    1234"},
                       {55, "000123   12    4519991231"},
                       {80, "BATCH REJECTED - NO CLAIMS"},
                       {119, "R"}},
                      batchedit::kRecordLength)
            << QString(
                   "00042|OPER01|991231|0001|A1234567890|12345|HCP|1234|000123|12|45|19991231|"
                   "(Rejected) BATCH REJECTED - NO CLAIMS")
                   .split('|')
            << true << QString();
        QTest::newRow("lost trailing blanks: listed, still shown")
            << kCurrent.trimmed() << (kCells + QStringList{"***  BATCH TOTALS  ***"}) << false
            << "1|Incorrect record length|108|132";
        QTest::newRow("too short to hold the message: listed only")
            << kCurrent.left(79) << QStringList() << false << "1|Incorrect record length|79|132";
    }

    void readsEachRecord() {
        QFETCH(QString, line);
        QFETCH(QStringList, cells);
        QFETCH(bool, rejected);
        QFETCH(QString, errors);
        const batchedit::Report report = batchedit::read({line});
        QCOMPARE(errorsOf(report), errors);
        QCOMPARE(report.rows.size(), cells.isEmpty() ? 0 : 1);
        if (!cells.isEmpty()) {
            QCOMPARE(report.rows[0].cells(), cells);
            QCOMPARE(report.rows[0].rejected, rejected);
            QCOMPARE(report.rows[0].line, 1);
        }
    }

    void tellsAReadableFirstRecord_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<bool>("valid");
        QTest::newRow("current layout") << kCurrent << true;
        QTest::newRow("older layout, provider two to the left")
            << record({{1, "HB1V02"}, {55, "170332"}}, 130) << true;
        QTest::newRow("older layout read at the current position")
            << record({{1, "HB1V02"}, {57, "170332"}}, 130) << false;
        QTest::newRow("provider not six digits")
            << QString(kCurrent).replace(56, 6, "17033X") << false;
    }

    void tellsAReadableFirstRecord() {
        QFETCH(QString, line);
        QFETCH(bool, valid);
        QCOMPARE(batchedit::firstRecordValid(line), valid);
    }
};

QTEST_GUILESS_MAIN(TestBatchEdit)
#include "test_batch_edit.moc"
