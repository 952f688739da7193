#pragma once

#include "foundation/Money.h"

#include <qnamespace.h>
#include <QList>
#include <QString>
#include <QStringList>

#include <variant>

namespace brimsett {

struct AppSettings;

namespace reports {

// One column of a report table: its caption, how its texts are aligned, and its share of the
// page width (0 for every column lets the texts decide; a share never leaves a column
// narrower than its longest word).
struct ReportColumn {
    QString caption;
    Qt::Alignment alignment = Qt::AlignLeft;
    int weight = 0;
};

// Sums printed at the foot of every page a table reaches: the label, then in each of
// `columns` the sum of the amounts of the table's rows on that page. `amounts` holds, per row,
// one amount for each of `columns`; a row without them (a subtotal) adds nothing.
struct PageTotals {
    QString label;
    QList<int> columns;
    QList<QList<Money>> amounts;
    MoneyFormat format;
    bool isSet() const { return !columns.isEmpty(); }
};

// A table: the captions repeat at the top of every page it spans; total rows come last,
// in bold under a rule. A row shorter than the columns leaves the rest empty; a cell's line
// breaks start new lines within the cell.
struct ReportTable {
    QList<ReportColumn> columns;
    QList<QStringList> rows;
    QList<QStringList> totals;
    // Rows (by index into rows) that begin a group, such as a claim's first item: a thin rule
    // goes above each but the first.
    QList<int> groupStarts;
    // Rows (by index into rows) in bold, such as a subtotal amid the rows.
    QList<int> boldRows;
    // Per row (by index into rows), a colour 0xRRGGBB painted as a light tint behind it;
    // rows past the list's end, or all when it is empty, stay white.
    QList<int> rowColors;
    PageTotals pageTotals;
    bool startsPage = false;  // printed from the top of a new page
};

// A line of the totals under a table: the label and its value, in bold at the right.
struct TotalLine {
    QString label;
    QString value;
};

// What a printed report says, independent of the page: a title, a few heading lines
// ("Date: ..."), then tables, totals and paragraphs in the order added.
class Report {
public:
    struct Totals {
        QList<TotalLine> lines;
    };
    struct Paragraph {
        QString text;
        // Text whose columns are aligned with spaces: a fixed-pitch font, lines never wrap.
        bool fixedPitch = false;
    };
    using Block = std::variant<ReportTable, Totals, Paragraph>;

    explicit Report(QString title = {}) : m_title(std::move(title)) {}

    const QString& title() const { return m_title; }
    const QStringList& headings() const { return m_headings; }
    const QList<Block>& blocks() const { return m_blocks; }
    bool landscape() const { return m_landscape; }

    void addHeading(const QString& line) { m_headings << line; }
    void addTable(ReportTable table) { m_blocks << Block(std::move(table)); }
    // Consecutive total lines are kept together.
    void addTotal(const QString& label, const QString& value);
    void addParagraph(const QString& text) { m_blocks << Block(Paragraph{text}); }
    void addFixedPitchText(const QStringList& lines) {
        m_blocks << Block(Paragraph{lines.join(QLatin1Char('\n')), true});
    }
    // Wide tables print across the page.
    void setLandscape(bool on) { m_landscape = on; }

    // The tables in the order added, for whoever checks a report's contents.
    QList<ReportTable> tables() const;

private:
    QString m_title;
    QStringList m_headings;
    QList<Block> m_blocks;
    bool m_landscape = false;
};

// How reports look: the settings of section "Print" ("FontName", "FontSize",
// "HeaderFontSize", "LineHeight", "SkipHeaderLines").
struct ReportStyle {
    QString fontFamily = QStringLiteral("Arial");
    int fontSize = 12;
    int headerFontSize = 22;
    double lineHeight = 1.2;
    int skipHeaderLines = 0;

    static ReportStyle fromSettings(const AppSettings& settings);
};

}  // namespace reports
}  // namespace brimsett
