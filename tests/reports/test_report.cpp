#include "TestSupport.h"

#include "foundation/AppSettings.h"
#include "reports/Report.h"
#include "reports/ReportMeasure.h"
#include "reports/ReportPrinter.h"

#include <QFile>
#include <QFontInfo>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextLayout>
#include <QTextTable>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::reports;
using L = QStringList;

namespace {

Report sample() {
    Report report(QStringLiteral("Submission Summary"));
    report.addHeading(QStringLiteral("Date: 2026/11/22"));
    report.addHeading(QStringLiteral("File Name: HK123456.001"));
    ReportTable table;
    table.columns = {{QStringLiteral("Doctor")},
                     {QStringLiteral("Batch ID")},
                     {QStringLiteral("No. of Claims"), Qt::AlignRight},
                     {QStringLiteral("Total"), Qt::AlignRight}};
    table.rows = {{"0000-123456-00", "202611220001", "2", "$67.40"},
                  {"0000-123456-00", "202611220002", "1", "$1,250.00"}};
    table.totals = {{"Total", "", "3", "$1,317.40"}};
    report.addTable(table);
    report.addTotal(QStringLiteral("Claims:"), QStringLiteral("3"));
    report.addTotal(QStringLiteral("Total:"), QStringLiteral("$1,317.40"));
    report.addParagraph(QStringLiteral("Keep this summary with the disk."));
    return report;
}

// The tables of the document in order, each as rows of cell texts joined by "|".
QList<QStringList> tablesOf(const QTextDocument& document) {
    QList<QStringList> found;
    for (QTextFrame* frame : document.rootFrame()->childFrames()) {
        auto* table = qobject_cast<QTextTable*>(frame);
        if (!table) {
            continue;
        }
        QStringList rows;
        for (int r = 0; r < table->rows(); ++r) {
            QStringList cells;
            for (int c = 0; c < table->columns(); ++c) {
                cells << table->cellAt(r, c).firstCursorPosition().block().text();
            }
            rows << cells.join('|');
        }
        found << rows;
    }
    return found;
}

// The paragraphs outside tables, in order.
QStringList paragraphsOf(const QTextDocument& document) {
    QStringList lines;
    for (QTextFrame::iterator it = document.rootFrame()->begin(); !it.atEnd(); ++it) {
        if (it.currentBlock().isValid()) {
            lines << it.currentBlock().text();
        }
    }
    return lines;
}

bool inkIn(const QImage& image, QRect band) {
    for (int y = band.top(); y <= band.bottom(); ++y) {
        for (int x = band.left(); x <= band.right(); ++x) {
            if (qGray(image.pixel(x, y)) < 128) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

class TestReport : public QObject {
    Q_OBJECT

private slots:
    void documentHoldsHeadingTablesAndTotals() {
        const ReportStyle style;
        auto document = buildDocument(sample(), style);
        QStringList paragraphs = paragraphsOf(*document);
        paragraphs.removeAll(QString());
        QCOMPARE(paragraphs, L({"Submission Summary", "Date: 2026/11/22", "File Name: HK123456.001",
                                "Keep this summary with the disk."}));
        const QList<QStringList> tables = tablesOf(*document);
        QCOMPARE(tables.size(), 2);
        QCOMPARE(tables.at(0),
                 L({"Doctor|Batch ID|No. of Claims|Total", "0000-123456-00|202611220001|2|$67.40",
                    "0000-123456-00|202611220002|1|$1,250.00", "Total||3|$1,317.40"}));
        QCOMPARE(tables.at(1), L({"Claims:|3", "Total:|$1,317.40"}));

        // The captions repeat on every page; amounts are right-aligned, totals bold.
        auto* table = qobject_cast<QTextTable*>(document->rootFrame()->childFrames().at(0));
        QCOMPARE(table->format().headerRowCount(), 1);
        const QTextCursor amount = table->cellAt(1, 3).firstCursorPosition();
        QVERIFY(amount.blockFormat().alignment() & Qt::AlignRight);
        QVERIFY(table->cellAt(1, 0).firstCursorPosition().blockFormat().alignment() &
                Qt::AlignLeft);
        QTextCursor total = table->cellAt(3, 3).firstCursorPosition();
        total.movePosition(QTextCursor::NextCharacter);
        QCOMPARE(total.charFormat().fontWeight(), int(QFont::Bold));
        QTextCursor plainCell = table->cellAt(1, 3).firstCursorPosition();
        plainCell.movePosition(QTextCursor::NextCharacter);
        QVERIFY(plainCell.charFormat().fontWeight() != int(QFont::Bold));

        // The style's fonts: body from "FontName"/"FontSize", the title in the heading size.
        QCOMPARE(document->defaultFont().family(), style.fontFamily);
        QCOMPARE(document->defaultFont().pointSize(), 12);
        QTextCursor title(document->begin());
        title.movePosition(QTextCursor::NextCharacter);
        QCOMPARE(title.charFormat().fontPointSize(), 22.0);
    }

    void pdfIsWritten() {
        test::TempOffice office;
        const QString path = office.file("summary.pdf");
        const ReportPrinter printer(sample(), ReportStyle{});
        QCOMPARE(printer.writePdf(path), 1);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.size() > 1000);
        QVERIFY(file.read(5) == "%PDF-");
    }

    void longTableSpansPagesWithItsCaptions() {
        Report report(QStringLiteral("Claims submitted in file HK123456.001"));
        ReportTable table;
        table.columns = {{QStringLiteral("Account")}, {QStringLiteral("Fee"), Qt::AlignRight}};
        for (int i = 1; i <= 150; ++i) {
            table.rows << L{QStringLiteral("%1").arg(i, 8, 10, QLatin1Char('0')),
                            QStringLiteral("$33.70")};
        }
        report.addTable(table);
        const ReportPrinter printer(report, ReportStyle{});
        const int pages = printer.pageCount();
        QVERIFY2(pages >= 3, qPrintable(QString::number(pages)));
        // The count does not depend on the resolution, and the PDF has as many pages.
        QCOMPARE(printer.pageCount(300), pages);
        test::TempOffice office;
        QCOMPARE(printer.writePdf(office.file("long.pdf")), pages);
        // Every page has ink on it, and nothing beyond the last.
        for (int page = 0; page < pages; ++page) {
            const QImage image = printer.pageImage(page, 50);
            QVERIFY(!image.isNull());
            QCOMPARE(image.size(), QSize(425, 550));  // Letter at 50 dpi
        }
        QVERIFY(printer.pageImage(pages, 50).isNull());
        const QString shot = qEnvironmentVariable("BRIMSETT_SHOTS");
        if (!shot.isEmpty()) {
            printer.pageImage(1, 60).save(shot + QStringLiteral("/report-long-page2.png"));
        }
        // Skipped lines at the top of each page leave less room, so more pages.
        ReportStyle skipping;
        skipping.skipHeaderLines = 12;
        QVERIFY(ReportPrinter(report, skipping).pageCount() > pages);
    }

    void pageTotalsSumTheRowsOfEachPage() {
        // Amounts of i cents make each page's total tell which rows it took; every tenth row
        // is a subtotal with no amounts, which adds nothing.
        Report report(QStringLiteral("Remittance"));
        ReportTable table;
        table.columns = {{QStringLiteral("Claim")},
                         {QStringLiteral("Billed"), Qt::AlignRight},
                         {QStringLiteral("Paid"), Qt::AlignRight}};
        table.pageTotals.label = QStringLiteral("Page total");
        table.pageTotals.columns = {1, 2};
        for (int i = 1; i <= 150; ++i) {
            if (i % 10 == 0) {
                table.boldRows << static_cast<int>(table.rows.size());
                table.rows << L{QStringLiteral("Provider total"), QStringLiteral("$99,999.00")};
                table.pageTotals.amounts << QList<Money>{};
            }
            table.rows << L{QString::number(i), Money::fromCents(i).currency(), QString()};
            table.pageTotals.amounts << QList<Money>{Money::fromCents(i), -Money::fromCents(i)};
        }
        report.addTable(table);
        report.addParagraph(QStringLiteral("After the table."));
        const ReportPrinter printer(report, ReportStyle{});
        const int pages = printer.pageCount();
        QVERIFY2(pages >= 3, qPrintable(QString::number(pages)));
        const QList<PageTotal> totals = printer.pageTotals();
        QCOMPARE(totals.size(), pages);
        int last = 0;  // the last row counted so far
        for (int page = 0; page < pages; ++page) {
            const PageTotal& total = totals.at(page);
            QCOMPARE(total.page, page);
            QCOMPARE(total.label, QStringLiteral("Page total"));
            QCOMPARE(total.sums.at(1), -total.sums.at(0));
            // The page took the rows after the last page's, in order.
            Money run;
            while (run < total.sums.at(0) && last < 150) {
                run += Money::fromCents(++last);
            }
            QCOMPARE(run, total.sums.at(0));
        }
        QCOMPARE(last, 150);
        QCOMPARE(printer.pageTotals(300).size(), pages);
        // The total is printed under the body, above the page's footer line.
        const QImage image = printer.pageImage(0, 96);
        const QRect foot(57, 936, 700, 18);
        QVERIFY(inkIn(image, foot));
        QVERIFY(!inkIn(ReportPrinter(sample(), ReportStyle{}).pageImage(0, 96), foot));
    }

    void wideTableShrinksRatherThanBreakCodes() {
        // Seven columns of claim numbers do not fit across a portrait page at 12 points.
        Report report(QStringLiteral("Wide"));
        ReportTable table;
        L row;
        for (int c = 0; c < 7; ++c) {
            table.columns << ReportColumn{QStringLiteral("Code %1").arg(c)};
            row << QStringLiteral("J2093000060");
        }
        table.rows = {row, L{QStringLiteral("A007A")}};
        report.addTable(table);
        auto document = buildDocument(report, ReportStyle{}, 700);
        document->setTextWidth(700);
        document->size();  // lays it out
        auto* laid = qobject_cast<QTextTable*>(document->rootFrame()->childFrames().at(0));
        QTextCursor cell = laid->cellAt(1, 6).firstCursorPosition();
        QCOMPARE(cell.block().text(), QStringLiteral("J2093000060"));
        QCOMPARE(cell.block().layout()->lineCount(), 1);
        cell.movePosition(QTextCursor::NextCharacter);
        QVERIFY(cell.charFormat().fontPointSize() < 12);
        QVERIFY(cell.charFormat().fontPointSize() >= 8);
        // An empty cell's line is no higher than the row's texts.
        QCOMPARE(laid->cellAt(2, 6).firstCursorPosition().blockCharFormat().fontPointSize(),
                 cell.charFormat().fontPointSize());
    }

    void weightsShareThePageButNeverBreakAWord() {
        ReportTable table;
        table.columns = {{QStringLiteral("Code"), Qt::AlignLeft, 5},
                         {QStringLiteral("Notes"), Qt::AlignLeft, 95}};
        table.rows = {L{QStringLiteral("J2093000060"), QStringLiteral("a note of short words")}};
        const qreal code =
            metricsOf(bodyFont(ReportStyle{})).horizontalAdvance(QStringLiteral("J2093000060"));
        const QList<QTextLength> widths = columnWidths(table, ReportStyle{}, 700).lengths;
        // The code's share (35 of 700) is too narrow for it: it gets its width, the notes the rest.
        QVERIFY(widths.at(0).rawValue() * 7 > code);
        QVERIFY(widths.at(0).rawValue() * 7 < code + 40);
        QCOMPARE(widths.at(0).rawValue() + widths.at(1).rawValue(), 100.0);
        // Shares wide enough for their texts are kept as given.
        table.columns[0].weight = 40;
        table.columns[1].weight = 60;
        QCOMPARE(columnWidths(table, ReportStyle{}, 700).lengths.at(0).rawValue(), 40.0);
    }

    void fixedPitchTextKeepsItsColumns() {
        Report report(QStringLiteral("Messages"));
        const QString wide = QStringLiteral(
            "CATEGORY  TYPE OF       BILLING  PATIENTS ENCOUNTERS "
            "SERVICES   AMOUNT  ");
        report.addFixedPitchText({wide, QStringLiteral("          CLAIM          NUMBER")});
        // Narrow pages shrink the font rather than wrap.
        for (qreal width : {0.0, 700.0, 300.0}) {
            auto document = buildDocument(report, ReportStyle{}, width);
            document->setTextWidth(width > 0 ? width : 2000);
            document->size();  // lays it out
            QTextBlock block = document->findBlockByNumber(1);
            QCOMPARE(block.text(), wide);
            QCOMPARE(block.layout()->lineCount(), 1);
            QTextCursor cursor(block);
            cursor.movePosition(QTextCursor::NextCharacter);
            QVERIFY(QFontInfo(cursor.charFormat().font()).fixedPitch());
            if (width > 0) {
                QVERIFY(block.layout()->lineAt(0).naturalTextWidth() <= width);
            }
            QCOMPARE(document->findBlockByNumber(2).text(),
                     QStringLiteral("          CLAIM          NUMBER"));
        }
    }

    void pageImageShowsTheReport() {
        const QImage image = ReportPrinter(sample(), ReportStyle{}).pageImage(0, 96);
        // Something dark in the title's band and in the table's band, white in the margin.
        QVERIFY(inkIn(image, QRect(100, 57, 616, 40)));
        QVERIFY(inkIn(image, QRect(57, 150, 700, 100)));
        QVERIFY(!inkIn(image, QRect(0, 0, 816, 50)));
        const QString shot = qEnvironmentVariable("BRIMSETT_SHOTS");
        if (!shot.isEmpty()) {
            image.save(shot + QStringLiteral("/report-sample.png"));
        }
    }
};

QTEST_MAIN(TestReport)
#include "test_report.moc"
