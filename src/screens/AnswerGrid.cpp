#include "screens/AnswerGrid.h"
#include "screens/SlotGuard.h"

#include <QFontMetrics>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
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
    QHeaderView* header = grid->horizontalHeader();
    header->setStretchLastSection(true);
    // Long captions ("Batch Sequence Number") wrap rather than widen short columns.
    header->setDefaultAlignment(
        Qt::Alignment::fromInt(Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap));
    header->setTextElideMode(Qt::ElideNone);
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
    // Each column as wide as its widest cell or its caption on at most two lines.
    const QFontMetrics metrics = grid->horizontalHeader()->fontMetrics();
    const int widest = grid->fontMetrics().averageCharWidth() * maxColumnChars;
    const int padding = 16;
    bool wraps = false;
    for (int c = 0; c < grid->columnCount(); ++c) {
        const QStringList words =
            grid->horizontalHeaderItem(c)->text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
        int caption = metrics.horizontalAdvance(words.join(QLatin1Char(' ')));
        const int oneLine = caption;
        for (int split = 1; split < words.size(); ++split) {
            caption =
                std::min(caption, std::max(metrics.horizontalAdvance(words.mid(0, split).join(' ')),
                                           metrics.horizontalAdvance(words.mid(split).join(' '))));
        }
        const int cells =
            rows.isEmpty() ? 0 : static_cast<QAbstractItemView*>(grid)->sizeHintForColumn(c);
        // A wrapped caption is worth its second line only when it saves real width.
        if (oneLine - std::max(cells, caption) <
            metrics.horizontalAdvance(QStringLiteral("0000"))) {
            caption = oneLine;
        }
        const int width = std::min(std::max(cells, caption) + padding, widest);
        wraps = wraps || oneLine + padding > width;
        grid->setColumnWidth(c, width);
    }
    grid->horizontalHeader()->setFixedHeight(metrics.lineSpacing() * (wraps ? 2 : 1) + 10);
}

int fullWidth(const QTableWidget* grid) {
    int width = 2 * grid->frameWidth() + grid->verticalScrollBar()->sizeHint().width();
    for (int c = 0; c < grid->columnCount(); ++c) {
        width += grid->columnWidth(c);
    }
    return width;
}

QHBoxLayout* printAndClose(QWidget* window, const std::function<void()>& print) {
    auto* printButton = new QPushButton(QStringLiteral("&Print"), window);
    printButton->setObjectName(QStringLiteral("cmdPrint"));
    QObject::connect(printButton, &QPushButton::clicked, window, guarded(window, print));
    auto* close = new QPushButton(QStringLiteral("&Close"), window);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setToolTip(QStringLiteral("Esc"));
    QObject::connect(close, &QPushButton::clicked, window, guarded(window, &QWidget::close));
    QObject::connect(new QShortcut(QKeySequence(Qt::Key_Escape), window), &QShortcut::activated,
                     window, guarded(window, &QWidget::close));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(printButton);
    buttons->addWidget(close);
    return buttons;
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
