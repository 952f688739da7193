#include "screens/AppBookGrid.h"

#include "appointments/AppColumns.h"
#include "appointments/AppointmentTime.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

// How the day grid looks: lines, slots and bookings, the current cell, the time now, and the
// fixed header and time gutter over them.
namespace brimsett {

using appointments::Appointment;

namespace {

QColor colourOf(int rgb) {
    return QColor::fromRgb(QRgb(rgb));
}

QColor blend(const QColor& colour, const QColor& with, double share) {
    return QColor::fromRgbF(colour.redF() * share + with.redF() * (1 - share),
                            colour.greenF() * share + with.greenF() * (1 - share),
                            colour.blueF() * share + with.blueF() * (1 - share));
}

// Black on light colours, white on dark ones.
QColor textOn(const QColor& fill) {
    const double luminance = 0.299 * fill.red() + 0.587 * fill.green() + 0.114 * fill.blue();
    return luminance > 140 ? Qt::black : Qt::white;
}

QString blockText(const Appointment& app, const QStringList& fields) {
    QStringList parts =
        QStringList{app.whoText().trimmed()} + appointments::blockTexts(app, fields);
    parts.removeAll(QString());  // a block time without a name starts with what it is
    return parts.join(QStringLiteral("  "));
}

// Text wrapped into the rectangle, as many whole lines as fit (at least one); the last line
// ends in an ellipsis when text is left over. `boldLength` leading characters are bold.
void drawFitted(QPainter& painter, const QRectF& rect, const QString& text, int boldLength) {
    if (rect.width() < 4 || text.isEmpty()) {
        return;
    }
    const QFontMetricsF metrics(painter.font());
    const int maxLines = std::max(1, int(rect.height() / metrics.lineSpacing()));
    QTextLayout layout(text, painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    if (boldLength > 0) {
        QTextLayout::FormatRange bold;
        bold.start = 0;
        bold.length = boldLength;
        bold.format.setFontWeight(QFont::Bold);
        layout.setFormats({bold});
    }
    layout.beginLayout();
    int lines = 0;
    bool cut = false;
    for (; lines < maxLines; ++lines) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(rect.width());
        line.setPosition(QPointF(0, lines * metrics.lineSpacing()));
        cut = line.textStart() + line.textLength() < text.size();
    }
    layout.endLayout();
    // One line in a row lower than the text stays centred on the row.
    const double top = lines == 1 && rect.height() < metrics.lineSpacing()
                           ? rect.center().y() - metrics.lineSpacing() / 2
                           : rect.top();
    const QString ellipsis(QChar(0x2026));
    const double ellipsisWidth = metrics.horizontalAdvance(ellipsis);
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    for (int i = 0; i < lines; ++i) {
        const QTextLine line = layout.lineAt(i);
        if (i == lines - 1 && cut) {
            const double width = std::min(line.naturalTextWidth(), rect.width() - ellipsisWidth);
            painter.save();
            painter.setClipRect(QRectF(rect.left(), rect.top(), width, rect.height()),
                                Qt::IntersectClip);
            line.draw(&painter, QPointF(rect.left(), top));
            painter.restore();
            painter.drawText(QPointF(rect.left() + width, top + line.y() + line.ascent()),
                             ellipsis);
        } else {
            line.draw(&painter, QPointF(rect.left(), top));
        }
    }
    painter.restore();
}

}  // namespace

void AppBookGrid::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), Qt::white);
    painter.save();
    painter.setClipRect(
        QRect(gutterWidth(), headerHeight(), viewport()->width(), viewport()->height()));
    paintColumns(painter);
    paintNow(painter);
    paintCurrent(painter);
    paintDrag(painter);
    painter.restore();
    paintHeader(painter);
    paintGutter(painter);
}

void AppBookGrid::paintColumns(QPainter& painter) const {
    const double height = rowHeight();
    const double width = columnWidth();
    const QPointF origin = toView(QPointF(0, 0));
    const double right = origin.x() + width * m_columns.size();
    for (int row = 0; row <= rowCount(); ++row) {
        const bool hour = minuteOf(row) % 60 == 0;
        painter.setPen(hour ? QColor(0xb0, 0xb0, 0xb0) : QColor(0xe4, 0xe4, 0xe4));
        const double y = origin.y() + row * height;
        painter.drawLine(QPointF(origin.x(), y), QPointF(right, y));
    }
    painter.setPen(QColor(0x90, 0x90, 0x90));
    const double bottom = origin.y() + rowCount() * height;
    for (int column = 0; column <= m_columns.size(); ++column) {
        const double x = origin.x() + column * width;
        painter.drawLine(QPointF(x, origin.y()), QPointF(x, bottom));
    }
    // Empty slots under appointments, so a booking never hides behind its template.
    for (bool appointmentsNow : {false, true}) {
        for (int column = 0; column < m_blocks.size(); ++column) {
            for (const Block& block : m_blocks.at(column)) {
                if (block.line.appointment.has_value() == appointmentsNow) {
                    paintBlock(painter, column, block);
                }
            }
        }
    }
}

void AppBookGrid::paintBlock(QPainter& painter, int column, const Block& block) const {
    const QRectF rect(toView(blockRect(column, block).topLeft()), blockRect(column, block).size());
    if (!painter.clipBoundingRect().intersects(rect) && painter.hasClipping()) {
        return;
    }
    const QColor colour = colourOf(block.line.color);
    const QRectF textRect = rect.adjusted(4, 2, -3, -1);
    painter.save();
    if (!block.line.appointment) {
        painter.setPen(colour);
        painter.setBrush(blend(colour, Qt::white, 0.3));
        painter.drawRect(rect);
        painter.setPen(QColor(0x50, 0x50, 0x50));
        drawFitted(painter, textRect, block.line.slotName, 0);
        painter.restore();
        return;
    }
    const Appointment& app = *block.line.appointment;
    const bool cancelled = app.status == appointments::kStatusCancelled;
    const QColor fill = cancelled ? blend(colour, Qt::white, 0.25) : colour;
    painter.setPen(cancelled ? QPen(QColor(0x80, 0x80, 0x80), 1, Qt::DashLine)
                             : QPen(colour.darker(160)));
    painter.setBrush(fill);
    painter.drawRect(rect);
    QFont font = painter.font();
    font.setStrikeOut(cancelled);
    painter.setFont(font);
    painter.setPen(cancelled ? QColor(0x60, 0x60, 0x60) : textOn(fill));
    drawFitted(painter, textRect, blockText(app, m_blockFields),
               int(app.whoText().trimmed().size()));
    painter.restore();
}

void AppBookGrid::paintNow(QPainter& painter) const {
    if (!m_now.isValid()) {
        return;
    }
    const int minute = m_now.time().hour() * 60 + m_now.time().minute();
    const double y = (minute - m_first) * rowHeight() / m_step;
    if (y < 0 || y > rowCount() * rowHeight()) {
        return;
    }
    painter.save();
    painter.setPen(QPen(Qt::red, 2));
    painter.setBrush(Qt::red);
    for (int column = 0; column < m_columns.size(); ++column) {
        if (m_columns.at(column).date != m_now.date()) {
            continue;
        }
        const QPointF left = toView(QPointF(column * columnWidth(), y));
        painter.drawLine(left, left + QPointF(columnWidth(), 0));
        painter.drawEllipse(left + QPointF(3, 0), 3, 3);
    }
    painter.restore();
}

void AppBookGrid::paintCurrent(QPainter& painter) const {
    if (m_columns.isEmpty()) {
        return;
    }
    painter.save();
    painter.setBrush(Qt::NoBrush);
    const QColor focus =
        hasFocus() ? palette().color(QPalette::Highlight).darker(130) : QColor(0x80, 0x80, 0x80);
    if (const std::optional<Appointment> app = currentAppointment()) {
        int column = 0;
        if (const Block* block = findBlock(app->appId, &column)) {
            const QRectF rect = blockRect(column, *block);
            const QRectF view(toView(rect.topLeft()), rect.size());
            painter.setPen(QPen(Qt::black, 3));
            painter.drawRect(view.adjusted(1, 1, -1, -1));
            painter.setPen(QPen(Qt::white, 1));
            painter.drawRect(view.adjusted(3, 3, -3, -3));
        }
    }
    const QRectF cell = cellRect(m_current.column, m_current.row);
    painter.setPen(QPen(focus, 3));
    painter.drawRect(QRectF(toView(cell.topLeft()), cell.size()).adjusted(1, 1, -1, -1));
    painter.restore();
}

void AppBookGrid::paintDrag(QPainter& painter) const {
    if (!m_dragging || !m_dropCell || !m_pressedApp) {
        return;
    }
    const Block* block = findBlock(*m_pressedApp);
    if (!block) {
        return;
    }
    const QRectF cells =
        cellRect(m_dropCell->column, m_dropCell->row, block->lastRow - block->firstRow + 1);
    painter.save();
    painter.setPen(QPen(Qt::black, 2, Qt::DashLine));
    painter.setBrush(QColor(0, 0, 0, 30));
    painter.drawRect(QRectF(toView(cells.topLeft()), cells.size()).adjusted(2, 1, -2, -1));
    painter.restore();
}

void AppBookGrid::paintHeader(QPainter& painter) const {
    const int height = headerHeight();
    painter.save();
    painter.fillRect(QRect(0, 0, viewport()->width(), height), palette().button());
    painter.setClipRect(QRect(gutterWidth(), 0, viewport()->width(), height));
    QFont bold = painter.font();
    bold.setBold(true);
    painter.setFont(bold);
    const int width = columnWidth();
    for (int column = 0; column < m_columns.size(); ++column) {
        const QRectF rect(toView(QPointF(column * width, 0)).x(), 0, width, height);
        if (m_now.isValid() && m_columns.at(column).date == m_now.date()) {
            painter.fillRect(rect, QColor(0xff, 0xf2, 0xc0));
        }
        painter.setPen(QColor(0x90, 0x90, 0x90));
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
        painter.setPen(palette().color(QPalette::ButtonText));
        const QRectF textRect = rect.adjusted(4, 0, -4, 0);
        painter.drawText(textRect, Qt::AlignCenter,
                         painter.fontMetrics().elidedText(m_columns.at(column).header,
                                                          Qt::ElideRight, int(textRect.width())));
    }
    // The current column's header is underlined, so the cell is found from its edges too.
    if (!m_columns.isEmpty()) {
        painter.fillRect(
            QRectF(toView(QPointF(m_current.column * width, 0)).x(), height - 4, width, 4),
            palette().highlight());
    }
    painter.setClipping(false);
    painter.setPen(QColor(0x90, 0x90, 0x90));
    painter.drawLine(0, height - 1, viewport()->width(), height - 1);
    painter.restore();
}

void AppBookGrid::paintGutter(QPainter& painter) const {
    const int width = gutterWidth();
    painter.save();
    painter.fillRect(QRect(0, headerHeight(), width, viewport()->height()), palette().button());
    painter.setClipRect(QRect(0, headerHeight(), width, viewport()->height()));
    // Every row is labelled when rows are a quarter hour apart or more, otherwise every half
    // hour; never so often that labels run into each other.
    const double height = rowHeight();
    int every = m_step >= 15 ? 1 : (30 + m_step - 1) / m_step;
    every = std::max(every, int(std::ceil(fontMetrics().height() / height)));
    const auto label = [&](int row) {
        const double y = toView(QPointF(0, row * height)).y();
        // Level with the first text line of the blocks beside it.
        const QRectF rect(0, y + 3, width - 6, std::max(height, double(fontMetrics().height())));
        painter.drawText(rect, Qt::AlignRight | Qt::AlignTop,
                         appointments::TimeText(minuteOf(row)).trimmed());
    };
    painter.setPen(palette().color(QPalette::ButtonText));
    for (int row = 0; row < rowCount(); row += every) {
        if (row != m_current.row) {
            label(row);
        }
    }
    // The current row's time always shows, marked.
    painter.fillRect(QRectF(0, toView(QPointF(0, m_current.row * height)).y(), width, height),
                     palette().highlight());
    painter.setPen(palette().color(QPalette::HighlightedText));
    label(m_current.row);
    painter.setClipping(false);
    painter.setPen(QColor(0x90, 0x90, 0x90));
    painter.drawLine(width - 1, 0, width - 1, viewport()->height());
    painter.restore();
}

}  // namespace brimsett
