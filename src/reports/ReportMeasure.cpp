#include "reports/ReportMeasure.h"

#include <QImage>
#include <QRegularExpression>

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

namespace {

// What each column needs at a font size: room for its widest cell and the longest word of its
// caption (least), or for the whole caption (whole); and for the longest word of any of its
// texts (words), below which a word would break.
struct Needs {
    QList<qreal> least;
    QList<qreal> whole;
    QList<qreal> words;
};

qreal longestWord(const QFontMetricsF& metrics, const QString& text) {
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    qreal most = 0;
    for (const QString& w : text.split(blanks, Qt::SkipEmptyParts)) {
        most = std::max(most, metrics.horizontalAdvance(w));
    }
    return most;
}

Needs needsOf(const ReportTable& source, const ReportStyle& style, qreal pointSize) {
    QFont plainFont = bodyFont(style);
    plainFont.setPointSizeF(pointSize);
    QFont boldFont = plainFont;
    boldFont.setBold(true);
    const QFontMetricsF plain = metricsOf(plainFont);
    const QFontMetricsF bold = metricsOf(boldFont);
    const qreal gap = 2 * kCellPadding + plain.horizontalAdvance(QStringLiteral("M"));
    Needs needs;
    for (int c = 0; c < source.columns.size(); ++c) {
        qreal cells = 0;
        qreal words = 0;
        for (int r = 0; r < source.rows.size(); ++r) {
            const QStringList& row = source.rows.at(r);
            const QFontMetricsF& metrics = source.boldRows.contains(r) ? bold : plain;
            cells = std::max(cells, c < row.size() ? widthOf(metrics, row.at(c)) : 0);
            words = std::max(words, c < row.size() ? longestWord(metrics, row.at(c)) : 0);
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
        needs.least << std::max(cells, word) + gap;
        needs.whole << std::max(cells, bold.horizontalAdvance(caption)) + gap;
        needs.words << std::max(words, word) + gap;
    }
    return needs;
}

// The weights' shares of the width, but no column narrower than its longest word: such a
// column gets that much and the others share the rest. Without a known width, the weights.
QList<qreal> weightedWidths(const ReportTable& source, const QList<qreal>& least, qreal available) {
    const int count = static_cast<int>(source.columns.size());
    QList<qreal> widths;
    for (const ReportColumn& c : source.columns) {
        widths << c.weight;
    }
    if (available <= 0) {
        return widths;
    }
    QList<bool> fitted(count, false);
    for (bool changed = true; changed;) {
        changed = false;
        qreal room = available;
        qreal weights = 0;
        for (int c = 0; c < count; ++c) {
            fitted.at(c) ? room -= least.at(c) : weights += source.columns.at(c).weight;
        }
        for (int c = 0; c < count; ++c) {
            if (fitted.at(c)) {
                widths[c] = least.at(c);
                continue;
            }
            widths[c] =
                weights > 0 ? std::max<qreal>(0, room) * source.columns.at(c).weight / weights : 0;
            if (widths.at(c) < least.at(c)) {
                fitted[c] = true;
                changed = true;
            }
        }
    }
    return widths;
}

}  // namespace

// Each column's share of the width: the weights given, no column narrower than its longest
// word; else every column gets room for its
// widest cell and the longest word of its caption, then the room left goes first to captions
// that would wrap, then to every column alike. A table too wide for the page prints in a
// smaller font, down to two thirds of the style's, and beyond that narrows every column
// alike. Without a known width the widest texts decide the shares.
TableWidths columnWidths(const ReportTable& source, const ReportStyle& style, qreal available) {
    const int count = static_cast<int>(source.columns.size());
    TableWidths result{{}, static_cast<qreal>(style.fontSize)};
    QList<qreal> widths;
    qreal weights = 0;
    for (const ReportColumn& c : source.columns) {
        weights += c.weight;
    }
    if (weights > 0) {
        widths = weightedWidths(source, needsOf(source, style, result.pointSize).words, available);
    } else {
        const qreal smallest = style.fontSize * 2.0 / 3.0;
        Needs needs = needsOf(source, style, result.pointSize);
        // Advances do not scale exactly with the size, so shrink until the table fits.
        while (available > 0 && sum(needs.least) > available && result.pointSize > smallest) {
            result.pointSize =
                std::max(smallest, result.pointSize * std::min(0.97, available / sum(needs.least)));
            needs = needsOf(source, style, result.pointSize);
        }
        const QList<qreal>& least = needs.least;
        const QList<qreal>& whole = needs.whole;
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
    for (qreal w : widths) {
        result.lengths << QTextLength(QTextLength::PercentageLength,
                                      total > 0 ? 100.0 * w / total : 0);
    }
    return result;
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
