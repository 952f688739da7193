#pragma once

#include "reports/Report.h"

class QPrintPreviewDialog;
class QWidget;

namespace brimsett {

// Every printed report is shown first in the print preview: the pages as they will print,
// the printer's own dialog one click away. The preview opens over the parent's window
// (which waits for it) and returns at once; it is deleted when closed.
QPrintPreviewDialog* showReportPreview(const reports::Report& report,
                                       const reports::ReportStyle& style, QWidget* parent);

}  // namespace brimsett
