#include "screens/frmViewError.h"

#include "ministry/AnswerReports.h"
#include "screens/AnswerGrid.h"
#include "screens/ReportPreview.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace brimsett {

frmViewError::frmViewError(errorreport::ErrorReport report, QString fileName, QDate printed,
                           MoneyFormat money, reports::ReportStyle style, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_report(std::move(report)),
      m_fileName(std::move(fileName)),
      m_printed(printed),
      m_money(money),
      m_style(std::move(style)) {
    setWindowTitle(kTitle + QStringLiteral(" - ") + m_fileName);

    m_grid = answergrid::make(this, answerreports::errorGridColumns());
    m_grid->setObjectName(QStringLiteral("grdErrors"));
    answergrid::fill(m_grid, answerreports::errorGridRows(m_report, m_money), 30);

    m_total = new QLabel(QStringLiteral("Total Items: %1").arg(m_report.itemCount()), this);
    m_total->setObjectName(QStringLiteral("lblTotal"));

    auto* messages = new QGroupBox(QStringLiteral("See Messages"), this);
    m_messages = new QPlainTextEdit(messages);
    m_messages->setObjectName(QStringLiteral("txtMessages"));
    m_messages->setReadOnly(true);
    m_messages->setMaximumHeight(m_messages->fontMetrics().lineSpacing() * 6 + 12);
    m_noMessages = new QLabel(QStringLiteral("This file contains no OHIP messages."), messages);
    m_noMessages->setObjectName(QStringLiteral("lblNoMessages"));
    QStringList lines;
    for (const errorreport::Message& m : std::as_const(m_report.messages)) {
        lines << m.code + QStringLiteral(" - ") + m.text;
    }
    m_messages->setPlainText(lines.join(QLatin1Char('\n')));
    m_messages->setVisible(!lines.isEmpty());
    m_noMessages->setVisible(lines.isEmpty());
    auto* messageLayout = new QVBoxLayout(messages);
    messageLayout->addWidget(m_messages);
    messageLayout->addWidget(m_noMessages);

    QHBoxLayout* buttons = answergrid::printAndClose(this, [this] { printClicked(); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_grid, 1);
    layout->addWidget(m_total);
    layout->addWidget(messages);
    layout->addLayout(buttons);

    // Wide enough for every column, as far as a usual screen allows.
    resize(std::clamp(answergrid::fullWidth(m_grid) + 24, 700, 1600), 560);
    m_grid->setFocus();
}

QString frmViewError::totalText() const {
    return m_total->text();
}

QString frmViewError::messagesText() const {
    return m_noMessages->isVisibleTo(this) ? m_noMessages->text() : m_messages->toPlainText();
}

void frmViewError::printClicked() {
    showReportPreview(answerreports::errorReportPrintout(m_report, m_fileName, m_printed, m_money),
                      m_style, this);
}

}  // namespace brimsett
