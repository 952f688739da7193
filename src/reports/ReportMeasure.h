#pragma once

#include "reports/Report.h"

#include <QFont>
#include <QFontMetricsF>
#include <QList>
#include <QTextLength>

namespace brimsett::reports {

// Lengths inside a report's document are in pixels of a 96 dpi screen; the layout scales them
// to the device.
inline constexpr qreal kCellPadding = 3;

QFont bodyFont(const ReportStyle& style);

// Texts measured as the document lays them out: in pixels of a 96 dpi screen.
QFontMetricsF metricsOf(const QFont& font);

// Each column's share of the page width, as percentages, and the size of the table's font.
struct TableWidths {
    QList<QTextLength> lengths;
    qreal pointSize = 0;
};
TableWidths columnWidths(const ReportTable& source, const ReportStyle& style, qreal available);

// A fixed-pitch font in the style's size, or smaller when the widest of the lines would not
// fit in the width available (0 when not known).
QFont fixedPitchFont(const ReportStyle& style, const QStringList& lines, qreal available);

}  // namespace brimsett::reports
