#include "screens/frmViewBatchEdit.h"

#include "ministry/AnswerReports.h"
#include "screens/AnswerGrid.h"
#include "screens/ReportPreview.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace brimsett {

frmViewBatchEdit::frmViewBatchEdit(batchedit::Report report, QString fileName, QDate printed,
                                   reports::ReportStyle style, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_report(std::move(report)),
      m_fileName(std::move(fileName)),
      m_printed(printed),
      m_style(std::move(style)) {
    setWindowTitle(kTitle);

    m_grid = answergrid::make(this, batchedit::columns());
    m_grid->setObjectName(QStringLiteral("grdBatches"));
    QList<QStringList> rows;
    for (const batchedit::Row& row : std::as_const(m_report.rows)) {
        rows << row.cells();
    }
    answergrid::fill(m_grid, rows, 45);
    // A rejected batch must not be overlooked among the accepted ones.
    const QColor rejectedBack(255, 214, 214);
    const QColor rejectedText(150, 0, 0);
    for (int r = 0; r < m_report.rows.size(); ++r) {
        if (!m_report.rows[r].rejected) {
            continue;
        }
        for (int c = 0; c < m_grid->columnCount(); ++c) {
            if (QTableWidgetItem* cell = m_grid->item(r, c)) {
                cell->setBackground(rejectedBack);
                cell->setForeground(rejectedText);
            }
        }
    }

    const auto rejected = std::count_if(m_report.rows.cbegin(), m_report.rows.cend(),
                                        [](const batchedit::Row& r) { return r.rejected; });
    auto* heading = new QLabel(
        QStringLiteral("File: %1 - %2 %3, %4 rejected")
            .arg(m_fileName)
            .arg(m_report.rows.size())
            .arg(m_report.rows.size() == 1 ? QStringLiteral("batch") : QStringLiteral("batches"))
            .arg(rejected),
        this);
    heading->setObjectName(QStringLiteral("lblHeading"));

    QHBoxLayout* buttons = answergrid::printAndClose(this, [this] { printClicked(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(heading);
    layout->addWidget(m_grid, 1);
    layout->addLayout(buttons);

    // Wide enough for every column, as far as a usual screen allows.
    resize(std::clamp(answergrid::fullWidth(m_grid) + 24, 700, 1600), 360);
    m_grid->setFocus();
}

void frmViewBatchEdit::printClicked() {
    showReportPreview(answerreports::batchEditPrintout(m_report, m_fileName, m_printed), m_style,
                      this);
}

}  // namespace brimsett
