#include "screens/frmPastClaimsReject.h"

#include "screens/AnswerGrid.h"
#include "screens/ReportPreview.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace brimsett {

namespace {

const QStringList& captions() {
    static const QStringList c = {QStringLiteral("Error Code"), QStringLiteral("Items"),
                                  QStringLiteral("Fee"), QStringLiteral("Errors")};
    return c;
}

}  // namespace

frmPastClaimsReject::frmPastClaimsReject(const QList<pastclaims::RejectedLine>& lines,
                                         MoneyFormat money, reports::ReportStyle style,
                                         QWidget* parent)
    : QWidget(parent, Qt::Window), m_lines(lines), m_money(money), m_style(std::move(style)) {
    setWindowTitle(kTitle);
    setObjectName(QStringLiteral("frmPastClaimsReject"));
    m_grid = answergrid::make(this, captions());
    m_grid->setObjectName(QStringLiteral("grdRejected"));
    QList<QStringList> rows;
    for (const pastclaims::RejectedLine& line : std::as_const(m_lines)) {
        rows << QStringList{line.errorCode, QString::number(line.items), line.fee.format(m_money),
                            line.description};
    }
    answergrid::fill(m_grid, rows, 60);
    for (int r = 0; r < m_grid->rowCount(); ++r) {
        for (int c : {1, 2}) {
            if (QTableWidgetItem* cell = m_grid->item(r, c)) {
                cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            }
        }
    }
    m_total = new QLabel(totalText(), this);
    m_total->setObjectName(QStringLiteral("lblTotal"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_grid, 1);
    QHBoxLayout* buttons =
        answergrid::printAndClose(this, [this] { showReportPreview(report(), m_style, this); });
    buttons->insertWidget(0, m_total, 1);
    layout->addLayout(buttons);
    resize(std::clamp(answergrid::fullWidth(m_grid) + 24, 560, 900), 420);
}

QString frmPastClaimsReject::totalText() const {
    int items = 0;
    Money fee;
    for (const pastclaims::RejectedLine& line : m_lines) {
        items += line.items;
        fee = fee + line.fee;
    }
    return QStringLiteral("%1 rejected items, %2").arg(items).arg(fee.format(m_money));
}

reports::Report frmPastClaimsReject::report() const {
    reports::Report r(kTitle);
    reports::ReportTable table;
    for (const QString& caption : captions()) {
        table.columns << reports::ReportColumn{caption};
    }
    table.columns[1].alignment = Qt::AlignRight;
    table.columns[2].alignment = Qt::AlignRight;
    table.columns[3].weight = 1;
    for (int row = 0; row < m_grid->rowCount(); ++row) {
        table.rows << answergrid::rowText(m_grid, row);
    }
    r.addTable(table);
    r.addParagraph(totalText());
    return r;
}

}  // namespace brimsett
