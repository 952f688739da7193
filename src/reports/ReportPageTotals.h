#pragma once

#include "reports/ReportPrinter.h"

#include <QFont>
#include <QList>
#include <QRectF>
#include <QTextFormat>

class QPainter;
class QTextDocument;

namespace brimsett::reports {

// The property of a document table that names the report block it shows (its index).
inline constexpr int kReportBlockProperty = QTextFormat::UserProperty + 1;
// The point size of a document table's texts.
inline constexpr int kTablePointSizeProperty = QTextFormat::UserProperty + 2;

// One page total laid out: what it says and where its texts go across the page.
struct PageFooting {
    PageTotal total;
    int slot = 0;         // lines below the body: 0 is the first
    QList<QRectF> cells;  // the label's column, then each summed column (x and width)
    QStringList texts;    // the label, then each sum
    QList<Qt::Alignment> alignments;
    qreal pointSize = 0;  // the table's
};

// The lines the feet of the pages keep free: one for each table with page totals.
int footingLines(const Report& report);

// The page totals of a document laid out on pages of the given height.
QList<PageFooting> footingsOf(const Report& report, const QTextDocument& document,
                              qreal pageHeight);

// Paints the page's totals in the lines that start at `top`, each `line` high, in the bold
// of the font at each table's size.
void paintFootings(QPainter& painter, const QList<PageFooting>& footings, int page, qreal top,
                   qreal line, QFont font);

}  // namespace brimsett::reports
