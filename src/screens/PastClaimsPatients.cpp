#include "screens/PastClaimsPatients.h"

#include "foundation/DateText.h"
#include "screens/AnswerGrid.h"
#include "screens/ReportPreview.h"

#include <QLabel>
#include <QTableWidget>
#include <QVBoxLayout>

namespace brimsett {

QWidget* showPatientList(const QList<pastclaims::PatientLine>& lines, MoneyFormat money,
                         const reports::ReportStyle& style, QWidget* parent) {
    const QStringList captions = {QStringLiteral("Pat.ID"),      QStringLiteral("Patient Name"),
                                  QStringLiteral("Last Serv."),  QStringLiteral("Date"),
                                  QStringLiteral("Period Fees"), QStringLiteral("Paid")};
    QList<QStringList> rows;
    Money fees;
    Money paid;
    for (const pastclaims::PatientLine& line : lines) {
        rows << QStringList{QString::number(line.patientId),
                            line.name,
                            line.lastService,
                            datetext::slashed(line.lastDate),
                            line.fees.format(money),
                            line.paid.format(money)};
        fees += line.fees;
        paid += line.paid;
    }
    // The count and the grand total, as the logic words them.
    const QStringList totals = pastclaims::patientListTotals(lines, money);
    const QString found = totals.value(0);
    const QString total = totals.mid(1).join(QStringLiteral("    "));

    auto* window = new QWidget(parent, Qt::Window);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->setObjectName(QStringLiteral("frmPastClaimsPatients"));
    window->setWindowTitle(QStringLiteral("Patient List"));
    QTableWidget* grid = answergrid::make(window, captions);
    grid->setObjectName(QStringLiteral("lstPatients"));
    answergrid::fill(grid, rows);
    for (int r = 0; r < grid->rowCount(); ++r) {
        for (int c : {4, 5}) {
            grid->item(r, c)->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    auto* foundLabel = new QLabel(found, window);
    foundLabel->setObjectName(QStringLiteral("lblPatientsFound"));
    auto* totalLabel = new QLabel(total, window);
    totalLabel->setObjectName(QStringLiteral("lblGrandTotal"));
    QFont bold = totalLabel->font();
    bold.setBold(true);
    totalLabel->setFont(bold);

    const auto print = [window, grid, captions, found, fees, paid, money, style] {
        reports::Report report(QStringLiteral("Patient List"));
        reports::ReportTable table;
        for (const QString& caption : captions) {
            table.columns << reports::ReportColumn{caption};
        }
        table.columns[1].weight = 1;
        table.columns[4].alignment = Qt::AlignRight;
        table.columns[5].alignment = Qt::AlignRight;
        for (int r = 0; r < grid->rowCount(); ++r) {
            table.rows << answergrid::rowText(grid, r);
        }
        table.totals << QStringList{QString(),          QStringLiteral("Grand Total:"),
                                    QString(),          QString(),
                                    fees.format(money), paid.format(money)};
        report.addTable(table);
        report.addParagraph(found);
        showReportPreview(report, style, window);
    };
    auto* layout = new QVBoxLayout(window);
    layout->addWidget(grid, 1);
    layout->addWidget(foundLabel);
    QHBoxLayout* buttons = answergrid::printAndClose(window, print);
    buttons->insertWidget(0, totalLabel, 1);
    layout->addLayout(buttons);
    window->resize(std::min(answergrid::fullWidth(grid) + 24, 900), 460);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

}  // namespace brimsett
