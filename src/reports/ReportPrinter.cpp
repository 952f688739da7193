#include "reports/ReportPrinter.h"

#include "reports/ReportMeasure.h"
#include "reports/ReportPageTotals.h"

#include <QAbstractTextDocumentLayout>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace brimsett::reports {

namespace {

constexpr qreal kBlockGap = 10;
const QColor kRule = Qt::black;
const QColor kGroupRule = QColor(0xb0, 0xb0, 0xb0);

QTextBlockFormat blockFormat(const ReportStyle& style, Qt::Alignment alignment = Qt::AlignLeft) {
    QTextBlockFormat format;
    format.setAlignment(alignment);
    format.setLineHeight(style.lineHeight * 100, QTextBlockFormat::ProportionalHeight);
    return format;
}

QTextCharFormat boldFormat() {
    QTextCharFormat format;
    format.setFontWeight(QFont::Bold);
    return format;
}

// A new paragraph at the end; the empty one a table leaves behind it is used first. A
// paragraph of the report is marked (user state 1), so that an empty one is never taken for
// the table's.
void startBlock(QTextCursor& cursor, const QTextBlockFormat& block,
                const QTextCharFormat& chars = {}) {
    cursor.movePosition(QTextCursor::End);
    if (cursor.block().length() > 1 || cursor.block().userState() == 1) {
        cursor.insertBlock(block, chars);
    } else {
        cursor.setBlockFormat(block);
        cursor.setBlockCharFormat(chars);
        cursor.setCharFormat(chars);
    }
    cursor.block().setUserState(1);
}

void putCell(QTextTable* table, int row, int column, const QString& text, Qt::Alignment alignment,
             const ReportStyle& style, const QTextCharFormat& chars) {
    QTextCursor cell = table->cellAt(row, column).firstCursorPosition();
    cell.setBlockFormat(blockFormat(style, alignment));
    cell.setBlockCharFormat(chars);  // an empty cell's line is as high as its font
    cell.insertText(text, chars);
}

void ruleAbove(QTextTable* table, int row, qreal width, const QColor& color) {
    for (int c = 0; c < table->columns(); ++c) {
        QTextTableCell cell = table->cellAt(row, c);
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        format.setTopBorder(width);
        format.setTopBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        format.setTopBorderBrush(color);
        cell.setFormat(format);
    }
}

// A quarter of the colour over white: the colour shows, black text stays easy to read.
void tintRow(QTextTable* table, int row, int rgb) {
    const QColor color = QColor::fromRgb(static_cast<QRgb>(rgb));
    const auto tint = [](int channel) { return 255 - (255 - channel) / 4; };
    const QColor light(tint(color.red()), tint(color.green()), tint(color.blue()));
    for (int c = 0; c < table->columns(); ++c) {
        QTextTableCell cell = table->cellAt(row, c);
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        format.setBackground(light);
        cell.setFormat(format);
    }
}

void addTable(QTextCursor& cursor, const ReportTable& source, const ReportStyle& style,
              qreal available, int blockIndex) {
    const int columns = static_cast<int>(source.columns.size());
    if (columns == 0) {
        return;
    }
    const int rows = 1 + static_cast<int>(source.rows.size() + source.totals.size());

    QTextTableFormat format;
    format.setBorder(0);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    format.setBorderCollapse(true);
    format.setCellSpacing(0);
    format.setCellPadding(kCellPadding);
    format.setHeaderRowCount(1);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    format.setTopMargin(kBlockGap);
    const TableWidths widths = columnWidths(source, style, available);
    format.setColumnWidthConstraints(widths.lengths);
    format.setProperty(kTablePointSizeProperty, widths.pointSize);
    format.setProperty(kReportBlockProperty, blockIndex);
    if (source.startsPage) {
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    }

    cursor.movePosition(QTextCursor::End);
    QTextTable* table = cursor.insertTable(rows, columns, format);

    QTextCharFormat plain;
    QTextCharFormat bold = boldFormat();
    if (widths.pointSize != style.fontSize) {
        plain.setFontPointSize(widths.pointSize);
        bold.setFontPointSize(widths.pointSize);
    }
    for (int c = 0; c < columns; ++c) {
        const ReportColumn& column = source.columns.at(c);
        putCell(table, 0, c, column.caption, column.alignment, style, bold);
        QTextTableCell cell = table->cellAt(0, c);
        QTextTableCellFormat cellFormat = cell.format().toTableCellFormat();
        cellFormat.setBottomBorder(1);
        cellFormat.setBottomBorderStyle(QTextFrameFormat::BorderStyle_Solid);
        cellFormat.setBottomBorderBrush(kRule);
        cell.setFormat(cellFormat);
    }
    int row = 1;
    const auto putRow = [&](const QStringList& texts, const QTextCharFormat& chars) {
        for (int c = 0; c < columns; ++c) {
            putCell(table, row, c, texts.value(c), source.columns.at(c).alignment, style, chars);
        }
        ++row;
    };
    for (int r = 0; r < source.rows.size(); ++r) {
        putRow(source.rows.at(r), source.boldRows.contains(r) ? bold : plain);
        if (r < source.rowColors.size()) {
            tintRow(table, row - 1, source.rowColors.at(r));  // after the text, which resets it
        }
    }
    for (int start : source.groupStarts) {
        if (start > 0 && start < source.rows.size()) {
            ruleAbove(table, 1 + start, 0.5, kGroupRule);
        }
    }
    if (!source.totals.isEmpty()) {
        ruleAbove(table, row, 1, kRule);
    }
    for (const QStringList& texts : source.totals) {
        putRow(texts, bold);
    }
    cursor.movePosition(QTextCursor::End);
}

void addTotals(QTextCursor& cursor, const Report::Totals& totals, const ReportStyle& style) {
    if (totals.lines.isEmpty()) {
        return;
    }
    QTextTableFormat format;
    format.setBorder(0);
    format.setBorderStyle(QTextFrameFormat::BorderStyle_None);
    format.setCellSpacing(0);
    format.setCellPadding(kCellPadding);
    format.setAlignment(Qt::AlignRight);
    format.setTopMargin(kBlockGap);
    cursor.movePosition(QTextCursor::End);
    QTextTable* table = cursor.insertTable(static_cast<int>(totals.lines.size()), 2, format);
    const QTextCharFormat bold = boldFormat();
    for (int r = 0; r < totals.lines.size(); ++r) {
        putCell(table, r, 0, totals.lines.at(r).label, Qt::AlignLeft, style, bold);
        putCell(table, r, 1, totals.lines.at(r).value, Qt::AlignRight, style, bold);
    }
    cursor.movePosition(QTextCursor::End);
}

// Lines whose columns are aligned with spaces, in a fixed-pitch font small enough for the
// widest line to fit; they never wrap.
void addFixedPitch(QTextCursor& cursor, const QString& text, const ReportStyle& style,
                   qreal available) {
    const QStringList lines = text.split(QLatin1Char('\n'));
    QTextCharFormat chars;
    chars.setFont(fixedPitchFont(style, lines, available));
    QTextBlockFormat format = blockFormat(style);
    format.setNonBreakableLines(true);
    format.setTopMargin(kBlockGap);
    for (const QString& line : lines) {
        startBlock(cursor, format, chars);
        cursor.insertText(line, chars);
        format.setTopMargin(0);
    }
}

// The document laid out on the pages of one device.
struct Pages {
    std::unique_ptr<QTextDocument> document;
    QRectF body;    // the text of every page, in the painter's coordinates
    QRectF footer;  // the page's last line
    int count = 0;
    QList<PageFooting> footings;  // in the lines under the body
    qreal line = 0;
};

Pages layOut(const Report& report, const ReportStyle& style, QPaintDevice* device,
             const QSizeF& printable) {
    Pages pages;
    const QFontMetricsF metrics(bodyFont(style), device);
    const qreal line = metrics.lineSpacing() * style.lineHeight;
    const qreal top = style.skipHeaderLines * line;
    const qreal footer = (2 + footingLines(report)) * line;
    pages.line = line;
    pages.body = QRectF(0, top, printable.width(), printable.height() - top - footer);
    pages.document = buildDocument(report, style, printable.width() * 96.0 / device->logicalDpiX());
    pages.document->documentLayout()->setPaintDevice(device);
    pages.footer = QRectF(0, printable.height() - metrics.lineSpacing(), printable.width(),
                          metrics.lineSpacing());
    pages.document->setPageSize(pages.body.size());
    pages.count = pages.document->pageCount();
    pages.footings = footingsOf(report, *pages.document, pages.body.height());
    return pages;
}

void paintPage(QPainter& painter, const Pages& pages, int page, const Report& report,
               const ReportStyle& style) {
    painter.save();
    const QRectF view(0, page * pages.body.height(), pages.body.width(), pages.body.height());
    painter.translate(pages.body.left(), pages.body.top() - view.top());
    painter.setClipRect(view);
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = view;
    context.palette.setColor(QPalette::Text, Qt::black);
    pages.document->documentLayout()->draw(&painter, context);
    painter.restore();

    painter.save();
    painter.translate(pages.body.left(), 0);
    paintFootings(painter, pages.footings, page, pages.body.bottom(), pages.line, bodyFont(style));
    painter.restore();

    painter.save();
    QFont footer = bodyFont(style);
    footer.setPointSizeF(std::max(6.0, style.fontSize * 0.8));
    painter.setFont(footer);
    painter.setPen(Qt::black);
    painter.drawText(pages.footer, Qt::AlignLeft | Qt::AlignBottom, report.title());
    painter.drawText(pages.footer, Qt::AlignRight | Qt::AlignBottom,
                     QStringLiteral("Page %1 of %2").arg(page + 1).arg(pages.count));
    painter.restore();
}

}  // namespace

std::unique_ptr<QTextDocument> buildDocument(const Report& report, const ReportStyle& style,
                                             qreal width) {
    auto document = std::make_unique<QTextDocument>();
    document->setDocumentMargin(0);
    document->setDefaultFont(bodyFont(style));
    document->setMetaInformation(QTextDocument::DocumentTitle, report.title());
    QTextCursor cursor(document.get());

    QTextCharFormat title = boldFormat();
    title.setFontPointSize(style.headerFontSize);
    QTextBlockFormat titleBlock = blockFormat(style, Qt::AlignHCenter);
    titleBlock.setLineHeight(100, QTextBlockFormat::ProportionalHeight);
    titleBlock.setBottomMargin(kBlockGap);
    startBlock(cursor, titleBlock, title);
    cursor.insertText(report.title(), title);

    for (const QString& line : report.headings()) {
        startBlock(cursor, blockFormat(style));
        cursor.insertText(line, QTextCharFormat());
    }

    for (int b = 0; b < report.blocks().size(); ++b) {
        const Report::Block& block = report.blocks().at(b);
        if (const auto* table = std::get_if<ReportTable>(&block)) {
            addTable(cursor, *table, style, width, b);
        } else if (const auto* totals = std::get_if<Report::Totals>(&block)) {
            addTotals(cursor, *totals, style);
        } else if (const auto* paragraph = std::get_if<Report::Paragraph>(&block);
                   paragraph && paragraph->fixedPitch) {
            addFixedPitch(cursor, paragraph->text, style, width);
        } else if (paragraph) {
            QTextBlockFormat format = blockFormat(style);
            format.setTopMargin(kBlockGap);
            startBlock(cursor, format);
            cursor.insertText(paragraph->text, QTextCharFormat());
        }
    }
    return document;
}

QPageLayout ReportPrinter::pageLayout() const {
    return QPageLayout(QPageSize(QPageSize::Letter),
                       m_report.landscape() ? QPageLayout::Landscape : QPageLayout::Portrait,
                       QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
}

int ReportPrinter::print(QPagedPaintDevice& device) const {
    QPainter painter;
    if (!painter.begin(&device)) {
        return 0;
    }
    painter.setRenderHint(QPainter::TextAntialiasing);
    const Pages pages = layOut(m_report, m_style, &device, QSizeF(device.width(), device.height()));
    for (int page = 0; page < pages.count; ++page) {
        if (page > 0) {
            device.newPage();
        }
        paintPage(painter, pages, page, m_report, m_style);
    }
    painter.end();
    return pages.count;
}

int ReportPrinter::writePdf(const QString& path) const {
    int count = 0;
    {
        QPdfWriter writer(path);
        writer.setResolution(300);
        writer.setPageLayout(pageLayout());
        writer.setTitle(m_report.title());
        writer.setCreator(QStringLiteral("Brimsett"));
        count = print(writer);
    }
    const QFileInfo written(path);
    return written.exists() && written.size() > 0 ? count : 0;
}

namespace {

QImage sheet(const QPageLayout& layout, int dotsPerInch) {
    QImage image(layout.fullRectPixels(dotsPerInch).size(), QImage::Format_RGB32);
    const int perMetre = static_cast<int>(std::lround(dotsPerInch / 0.0254));
    image.setDotsPerMeterX(perMetre);
    image.setDotsPerMeterY(perMetre);
    image.fill(Qt::white);
    return image;
}

}  // namespace

QImage ReportPrinter::pageImage(int page, int dotsPerInch) const {
    const QPageLayout layout = pageLayout();
    QImage image = sheet(layout, dotsPerInch);
    const QRect printable = layout.paintRectPixels(dotsPerInch);
    const Pages pages = layOut(m_report, m_style, &image, printable.size());
    if (page < 0 || page >= pages.count) {
        return {};
    }
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.translate(printable.topLeft());
    paintPage(painter, pages, page, m_report, m_style);
    return image;
}

QList<PageTotal> ReportPrinter::pageTotals(int dotsPerInch) const {
    const QPageLayout layout = pageLayout();
    QImage image = sheet(layout, dotsPerInch);
    QList<PageTotal> totals;
    for (const PageFooting& footing :
         layOut(m_report, m_style, &image, layout.paintRectPixels(dotsPerInch).size()).footings) {
        totals << footing.total;
    }
    return totals;
}

int ReportPrinter::pageCount(int dotsPerInch) const {
    const QPageLayout layout = pageLayout();
    QImage image = sheet(layout, dotsPerInch);
    return layOut(m_report, m_style, &image, layout.paintRectPixels(dotsPerInch).size()).count;
}

}  // namespace brimsett::reports
