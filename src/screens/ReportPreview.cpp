#include "screens/ReportPreview.h"

#include "reports/ReportPrinter.h"

#include <QPrintPreviewDialog>
#include <QPrinter>

#include <memory>

namespace brimsett {

QPrintPreviewDialog* showReportPreview(const reports::Report& report,
                                       const reports::ReportStyle& style, QWidget* parent) {
    auto pages = std::make_shared<reports::ReportPrinter>(report, style);
    // The printer outlives everything inside the dialog: it goes when the dialog's QObject
    // part does, after its children.
    auto* printer = new QPrinter(QPrinter::HighResolution);
    printer->setPageLayout(pages->pageLayout());
    printer->setDocName(report.title());
    printer->setCreator(QStringLiteral("Brimsett"));

    auto* dialog = new QPrintPreviewDialog(printer, parent);
    dialog->setObjectName(QStringLiteral("ReportPreview"));
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowTitle(report.title() + QStringLiteral(" - Print Preview"));
    QObject::connect(dialog, &QObject::destroyed, [printer] { delete printer; });
    QObject::connect(dialog, &QPrintPreviewDialog::paintRequested, dialog,
                     [pages](QPrinter* target) { pages->print(*target); });
    dialog->resize(900, 1000);
    dialog->open();
    return dialog;
}

}  // namespace brimsett
