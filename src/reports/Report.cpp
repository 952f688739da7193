#include "reports/Report.h"

#include "foundation/AppSettings.h"

#include <algorithm>

namespace brimsett::reports {

void Report::addTotal(const QString& label, const QString& value) {
    if (!m_blocks.isEmpty()) {
        if (auto* totals = std::get_if<Totals>(&m_blocks.last())) {
            totals->lines << TotalLine{label, value};
            return;
        }
    }
    m_blocks << Block(Totals{{TotalLine{label, value}}});
}

QList<ReportTable> Report::tables() const {
    QList<ReportTable> found;
    for (const Block& block : m_blocks) {
        if (const auto* table = std::get_if<ReportTable>(&block)) {
            found << *table;
        }
    }
    return found;
}

ReportStyle ReportStyle::fromSettings(const AppSettings& settings) {
    ReportStyle style;
    if (!settings.printFontName.trimmed().isEmpty()) {
        style.fontFamily = settings.printFontName.trimmed();
    }
    // A size the settings cannot mean (0 from a damaged entry) keeps the default.
    if (settings.printFontSize >= 4 && settings.printFontSize <= 72) {
        style.fontSize = settings.printFontSize;
    }
    if (settings.printHeaderFontSize >= 4 && settings.printHeaderFontSize <= 96) {
        style.headerFontSize = settings.printHeaderFontSize;
    }
    if (settings.printLineHeight >= 0.8 && settings.printLineHeight <= 3.0) {
        style.lineHeight = settings.printLineHeight;
    }
    style.skipHeaderLines = std::clamp(settings.printSkipHeaderLines, 0, 20);
    return style;
}

}  // namespace brimsett::reports
