#include "reports/ReportMeasure.h"

#include <QImage>

#include <algorithm>
#include <numeric>

namespace brimsett::reports {

namespace {

qreal sum(const QList<qreal>& list) {
    return std::accumulate(list.cbegin(), list.cend(), qreal(0));
}

// The widest line of a cell.
qreal widthOf(const QFontMetricsF& metrics, const QString& text) {
    qreal widest = 0;
    for (const QString& line : text.split(QLatin1Char('\n'))) {
        widest = std::max(widest, metrics.horizontalAdvance(line));
    }
    return widest;
}

// The texts of a column that take room without being rows: the sums of its positive and of
// its negative amounts, which no page total exceeds in size.
QStringList pageTotalTexts(const ReportTable& source, int column) {
    const PageTotals& totals = source.pageTotals;
    const int index = static_cast<int>(totals.columns.indexOf(column));
    if (index < 0) {
        return {};
    }
    Money positives;
    Money negatives;
    for (const QList<Money>& amounts : totals.amounts) {
        if (index < amounts.size()) {
            positives += std::max(amounts.at(index), Money());
            negatives += std::min(amounts.at(index), Money());
        }
    }
    return {positives.currency(totals.format), negatives.currency(totals.format)};
}

}  // namespace

QFont bodyFont(const ReportStyle& style) {
    QFont font(style.fontFamily);
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(style.fontSize);
    return font;
}

// Texts measured as the document lays them out: in pixels of a 96 dpi screen.
QFontMetricsF metricsOf(const QFont& font) {
    static QImage screen = [] {
        QImage image(1, 1, QImage::Format_RGB32);
        image.setDotsPerMeterX(3780);
        image.setDotsPerMeterY(3780);
        return image;
    }();
    return QFontMetricsF(font, &screen);
}

// Each column's share of the width: the weights given; else every column gets room for its
// widest cell and the longest word of its caption, then the room left goes first to captions
// that would wrap, then to every column alike. A table too wide for the page narrows every
// column alike. Without a known width the widest texts decide the shares.
QList<QTextLength> columnWidths(const ReportTable& source, const ReportStyle& style,
                                qreal available) {
    const int count = static_cast<int>(source.columns.size());
    QList<qreal> widths;
    qreal weights = 0;
    for (const ReportColumn& c : source.columns) {
        weights += c.weight;
    }
    if (weights > 0) {
        for (const ReportColumn& c : source.columns) {
            widths << c.weight;
        }
    } else {
        QFont boldFont = bodyFont(style);
        boldFont.setBold(true);
        const QFontMetricsF plain = metricsOf(bodyFont(style));
        const QFontMetricsF bold = metricsOf(boldFont);
        const qreal gap = 2 * kCellPadding + plain.horizontalAdvance(QStringLiteral("M"));
        QList<qreal> least;  // cells and the caption's longest word
        QList<qreal> whole;  // cells and the whole caption
        for (int c = 0; c < count; ++c) {
            qreal cells = 0;
            for (int r = 0; r < source.rows.size(); ++r) {
                const QStringList& row = source.rows.at(r);
                const QFontMetricsF& metrics = source.boldRows.contains(r) ? bold : plain;
                cells = std::max(cells, c < row.size() ? widthOf(metrics, row.at(c)) : 0);
            }
            for (const QStringList& row : source.totals) {
                cells = std::max(cells, c < row.size() ? widthOf(bold, row.at(c)) : 0);
            }
            for (const QString& text : pageTotalTexts(source, c)) {
                cells = std::max(cells, bold.horizontalAdvance(text));
            }
            const QString& caption = source.columns.at(c).caption;
            qreal word = 0;
            for (const QString& w : caption.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
                word = std::max(word, bold.horizontalAdvance(w));
            }
            least << std::max(cells, word) + gap;
            whole << std::max(cells, bold.horizontalAdvance(caption)) + gap;
        }
        if (available <= 0 || sum(whole) <= available) {
            widths = whole;
        } else if (sum(least) <= available) {
            // Captions wrap only as far as they must.
            const qreal room = available - sum(least);
            const qreal wanted = sum(whole) - sum(least);
            for (int c = 0; c < count; ++c) {
                widths << least.at(c) + room * (whole.at(c) - least.at(c)) / wanted;
            }
        } else {
            widths = least;
        }
    }
    // Room left over, or missing, is shared in proportion.
    const qreal total = sum(widths);
    QList<QTextLength> lengths;
    for (qreal w : widths) {
        lengths << QTextLength(QTextLength::PercentageLength, total > 0 ? 100.0 * w / total : 0);
    }
    return lengths;
}

QFont fixedPitchFont(const ReportStyle& style, const QStringList& lines, qreal available) {
    QFont font(QStringLiteral("Courier New"));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    font.setPointSizeF(style.fontSize);
    const auto widest = [&lines](const QFont& f) {
        qreal most = 0;
        for (const QString& line : lines) {
            most = std::max(most, metricsOf(f).horizontalAdvance(line));
        }
        return most;
    };
    // Advances do not scale exactly with the size, so shrink until the lines fit.
    for (qreal width = widest(font); available > 0 && width > available && font.pointSizeF() > 4;
         width = widest(font)) {
        font.setPointSizeF(std::max(4.0, font.pointSizeF() * std::min(0.97, available / width)));
    }
    return font;
}

}  // namespace brimsett::reports
