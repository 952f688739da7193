#pragma once

#include "ministry/BatchEdit.h"
#include "reports/Report.h"

#include <QDate>
#include <QString>
#include <QWidget>

class QTableWidget;

namespace brimsett {

// "Batch Edit Report": the ministry's answer to each batch of a claim file, one read-only
// row per batch, the rejected ones in red. Print shows the printout in the preview.
// Keys: Alt+P prints, Esc closes.
class frmViewBatchEdit : public QWidget {
    Q_OBJECT

public:
    static inline const QString kTitle = QStringLiteral("Batch Edit Report");

    frmViewBatchEdit(batchedit::Report report, QString fileName, QDate printed,
                     reports::ReportStyle style, QWidget* parent = nullptr);

    QTableWidget* grid() const { return m_grid; }

private:
    void printClicked();

    batchedit::Report m_report;
    QString m_fileName;
    QDate m_printed;
    reports::ReportStyle m_style;
    QTableWidget* m_grid = nullptr;
};

}  // namespace brimsett
