#include "reports/ReportPageTotals.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFrame>
#include <QTextTable>

#include <map>

namespace brimsett::reports {

namespace {

QRectF cellRect(const QTextDocument& document, const QTextTable& table, int row, int column) {
    return document.documentLayout()->blockBoundingRect(
        table.cellAt(row, column).firstCursorPosition().block());
}

// The report's blocks that are tables with page totals, by block index.
std::map<int, const ReportTable*> totalledTables(const Report& report) {
    std::map<int, const ReportTable*> found;
    for (int b = 0; b < report.blocks().size(); ++b) {
        const auto* table = std::get_if<ReportTable>(&report.blocks().at(b));
        if (table && table->pageTotals.isSet() && !table->columns.isEmpty()) {
            found.emplace(b, table);
        }
    }
    return found;
}

}  // namespace

int footingLines(const Report& report) {
    return static_cast<int>(totalledTables(report).size());
}

QList<PageFooting> footingsOf(const Report& report, const QTextDocument& document,
                              qreal pageHeight) {
    const std::map<int, const ReportTable*> tables = totalledTables(report);
    QList<PageFooting> footings;
    for (QTextFrame* frame : document.rootFrame()->childFrames()) {
        const auto* table = qobject_cast<QTextTable*>(frame);
        if (!table || !table->format().hasProperty(kReportBlockProperty)) {
            continue;
        }
        const auto found = tables.find(table->format().intProperty(kReportBlockProperty));
        if (found == tables.end()) {
            continue;
        }
        const ReportTable& source = *found->second;
        const PageTotals& totals = source.pageTotals;
        const int slot = static_cast<int>(std::distance(tables.begin(), found));

        // The rows of each page, by where the layout put them.
        std::map<int, QList<Money>> sums;
        for (int r = 0; r < source.rows.size() && r < totals.amounts.size(); ++r) {
            const QList<Money>& amounts = totals.amounts.at(r);
            if (amounts.isEmpty()) {
                continue;
            }
            const int page =
                static_cast<int>(cellRect(document, *table, 1 + r, 0).top() / pageHeight);
            QList<Money>& sum = sums[page];
            sum.resize(totals.columns.size());
            for (int c = 0; c < totals.columns.size() && c < amounts.size(); ++c) {
                sum[c] += amounts.at(c);
            }
        }

        // The label takes the first column and any others before the first sum.
        QRectF label = cellRect(document, *table, 0, 0);
        QList<QRectF> cells{label};
        QList<Qt::Alignment> alignments{Qt::AlignLeft};
        for (int column : totals.columns) {
            const int c = std::clamp(column, 0, static_cast<int>(source.columns.size()) - 1);
            cells << cellRect(document, *table, 0, c);
            alignments << source.columns.at(c).alignment;
        }
        if (cells.size() > 1 && cells.at(1).left() > label.right()) {
            cells[0].setRight(cells.at(1).left());
        }
        for (const auto& [page, sum] : sums) {
            PageFooting footing{PageTotal{page, totals.label, sum},
                                slot,
                                cells,
                                {},
                                alignments,
                                table->format().doubleProperty(kTablePointSizeProperty)};
            footing.texts << totals.label;
            for (const Money& amount : sum) {
                footing.texts << amount.currency(totals.format);
            }
            footings << footing;
        }
    }
    return footings;
}

void paintFootings(QPainter& painter, const QList<PageFooting>& footings, int page, qreal top,
                   qreal line, QFont font) {
    painter.save();
    font.setBold(true);
    painter.setPen(Qt::black);
    for (const PageFooting& footing : footings) {
        if (footing.total.page != page) {
            continue;
        }
        if (footing.pointSize > 0) {
            font.setPointSizeF(footing.pointSize);
        }
        painter.setFont(font);
        const qreal y = top + footing.slot * line;
        for (int i = 0; i < footing.cells.size() && i < footing.texts.size(); ++i) {
            const QRectF cell = footing.cells.at(i);
            const QRectF box(cell.left(), y, cell.width(), line);
            if (i > 0) {
                painter.drawLine(QLineF(cell.left(), y, cell.right(), y));
            }
            painter.drawText(box, footing.alignments.at(i) | Qt::AlignVCenter, footing.texts.at(i));
        }
    }
    painter.restore();
}

}  // namespace brimsett::reports
