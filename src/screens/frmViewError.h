#pragma once

#include "foundation/Money.h"
#include "ministry/ErrorReport.h"
#include "reports/Report.h"

#include <QDate>
#include <QString>
#include <QWidget>

class QLabel;
class QPlainTextEdit;
class QTableWidget;

namespace brimsett {

// The ministry's claim error report: one read-only row per refused claim and item, the
// number of items under it, and the texts of the explanatory codes the file carries. Print
// shows the printout in the preview. Keys: Alt+P prints, Esc closes.
class frmViewError : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("EDT Error Report");

    frmViewError(errorreport::ErrorReport report, QString fileName, QDate printed,
                 MoneyFormat money, reports::ReportStyle style, QWidget* parent = nullptr);

    QTableWidget* grid() const { return m_grid; }
    QString totalText() const;
    // The explanatory texts as shown, one per line, or the words saying there are none.
    QString messagesText() const;

private:
    void printClicked();

    errorreport::ErrorReport m_report;
    QString m_fileName;
    QDate m_printed;
    MoneyFormat m_money;
    reports::ReportStyle m_style;
    QTableWidget* m_grid = nullptr;
    QLabel* m_total = nullptr;
    QPlainTextEdit* m_messages = nullptr;
    QLabel* m_noMessages = nullptr;
};

}  // namespace brimsett
