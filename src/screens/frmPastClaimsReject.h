#pragma once

#include "foundation/Money.h"
#include "ministry/PastClaims.h"
#include "reports/Report.h"

#include <QWidget>

class QLabel;
class QTableWidget;

namespace brimsett {

// "Rejected Claims": the rejected items of the past-claims filters by error code, with how
// many items and how much each code holds back and the code's text. Keys: Alt+P prints,
// Esc closes.
class frmPastClaimsReject : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Rejected Claims");

    frmPastClaimsReject(const QList<pastclaims::RejectedLine>& lines, MoneyFormat money,
                        reports::ReportStyle style, QWidget* parent = nullptr);

    QTableWidget* grid() const { return m_grid; }
    QString totalText() const;
    // What Print shows.
    reports::Report report() const;

private:
    QList<pastclaims::RejectedLine> m_lines;
    MoneyFormat m_money;
    reports::ReportStyle m_style;
    QTableWidget* m_grid = nullptr;
    QLabel* m_total = nullptr;
};

}  // namespace brimsett
