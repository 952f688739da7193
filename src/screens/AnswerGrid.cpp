#include "screens/AnswerGrid.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QTableWidget>

#include <algorithm>

namespace brimsett::answergrid {

QTableWidget* make(QWidget* parent, const QStringList& captions) {
    auto* grid = new QTableWidget(0, static_cast<int>(captions.size()), parent);
    grid->setHorizontalHeaderLabels(captions);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->setWordWrap(false);
    grid->verticalHeader()->hide();
    grid->verticalHeader()->setDefaultSectionSize(grid->fontMetrics().height() + 6);
    grid->horizontalHeader()->setStretchLastSection(true);
    grid->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    return grid;
}

void fill(QTableWidget* grid, const QList<QStringList>& rows, int maxColumnChars) {
    grid->clearContents();
    grid->setRowCount(static_cast<int>(rows.size()));
    for (int r = 0; r < rows.size(); ++r) {
        for (int c = 0; c < std::min<int>(rows[r].size(), grid->columnCount()); ++c) {
            auto* cell = new QTableWidgetItem(rows[r][c]);
            cell->setToolTip(rows[r][c].size() > maxColumnChars ? rows[r][c] : QString());
            grid->setItem(r, c, cell);
        }
    }
    grid->resizeColumnsToContents();
    const int widest = grid->fontMetrics().averageCharWidth() * maxColumnChars;
    for (int c = 0; c < grid->columnCount(); ++c) {
        grid->setColumnWidth(c, std::min(grid->columnWidth(c) + 12, widest));
    }
}

QStringList rowText(const QTableWidget* grid, int row) {
    QStringList cells;
    for (int c = 0; c < grid->columnCount(); ++c) {
        const QTableWidgetItem* cell = grid->item(row, c);
        cells << (cell ? cell->text() : QString());
    }
    return cells;
}

}  // namespace brimsett::answergrid
