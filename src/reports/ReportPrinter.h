#pragma once

#include "reports/Report.h"

#include <QImage>
#include <QPageLayout>

#include <memory>

class QPagedPaintDevice;
class QTextDocument;

namespace brimsett::reports {

// The report as a text document in the style's fonts, not yet broken into pages: the title
// centred in the heading size, the heading lines, then each block (tables with their
// captions as the header row that repeats on every page). width is what a table may take,
// in pixels of a 96 dpi screen (the document's own unit); 0 when not known yet.
std::unique_ptr<QTextDocument> buildDocument(const Report& report, const ReportStyle& style,
                                             qreal width = 0);

// What the foot of one page says for a table with page totals.
struct PageTotal {
    int page = 0;  // counted from 0
    QString label;
    QList<Money> sums;  // in the order of the table's PageTotals::columns
};

// Lays a report out on pages and paints them: onto a printer (the print preview), a PDF
// file, or a picture of one page. Every page ends with the title and "Page n of m".
class ReportPrinter {
public:
    ReportPrinter(Report report, ReportStyle style)
        : m_report(std::move(report)), m_style(std::move(style)) {}

    const Report& report() const { return m_report; }
    const ReportStyle& style() const { return m_style; }

    // Letter paper (the office's), 15 mm margins, across the page when the report asks.
    QPageLayout pageLayout() const;

    // Paints every page onto a device whose page layout is set (a QPrinter, a QPdfWriter);
    // the number of pages, 0 when the device could not be painted on.
    int print(QPagedPaintDevice& device) const;

    // Writes the report as a PDF file on pageLayout(); the number of pages, 0 when the file
    // could not be written.
    int writePdf(const QString& path) const;

    // One page (counted from 0) as a picture of the whole sheet at the given resolution.
    QImage pageImage(int page, int dotsPerInch = 96) const;
    int pageCount(int dotsPerInch = 96) const;
    // The page totals as laid out at that resolution, by page.
    QList<PageTotal> pageTotals(int dotsPerInch = 96) const;

private:
    Report m_report;
    ReportStyle m_style;
};

}  // namespace brimsett::reports
