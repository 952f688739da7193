#include "screens/AppBookGrid.h"

#include "appointments/AppointmentTime.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace brimsett {

using appointments::Appointment;
using appointments::DayLine;

namespace {

constexpr int kMinColumnWidth = 140;
constexpr int kColumnPadding = 2;  // between a column's edge and its blocks

int floorDiv(int a, int b) {
    return a >= 0 ? a / b : -((-a + b - 1) / b);
}

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

QString blockText(const Appointment& app) {
    QStringList parts{app.whoText(), app.patientPhone};
    // A status of none says nothing worth the room.
    if (app.status != 0) {
        parts.append(QLatin1Char('[') + appointments::StatusName(app.status) + QLatin1Char(']'));
    }
    parts.append(QString(app.notes).replace(QLatin1Char('\n'), QLatin1Char(' ')).simplified());
    parts.removeAll(QString());
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

AppBookGrid::AppBookGrid(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAutoFillBackground(false);
    setAccessibleName(tr("Appointment book"));
    updateScrollBars();
}

void AppBookGrid::setRange(int firstMinute, int lastMinute, int step) {
    const int minute = currentMinute();
    m_step = std::max(1, step);
    m_first = std::clamp(firstMinute, 0, appointments::kMinutesPerDay - 1);
    m_last = std::clamp(lastMinute, m_first, appointments::kMinutesPerDay - 1);
    layoutBlocks();
    moveTo(m_current.column, std::clamp(rowOf(minute), 0, rowCount() - 1));
}

void AppBookGrid::setLineHeight(double factor) {
    m_lineFactor = factor > 0 ? factor : 1.0;
    updateScrollBars();
    ensureCurrentVisible();
}

void AppBookGrid::setColumns(const QList<GridColumn>& columns) {
    int column = std::clamp(m_current.column, 0, std::max(0, int(columns.size()) - 1));
    if (m_current.column >= 0 && m_current.column < m_columns.size()) {
        const GridColumn& was = m_columns.at(m_current.column);
        for (int i = 0; i < columns.size(); ++i) {
            if (columns.at(i).doctorId == was.doctorId && columns.at(i).date == was.date) {
                column = i;
                break;
            }
        }
    }
    m_columns = columns;
    m_pressedApp.reset();
    m_dragging = false;
    layoutBlocks();
    m_current.column = -1;  // so that the move below tells of the new column's lines
    moveTo(column, m_current.row);
}

void AppBookGrid::setNow(const QDateTime& now) {
    m_now = now;
    viewport()->update();
}

int AppBookGrid::currentColumn() const {
    return m_current.column;
}

int AppBookGrid::currentMinute() const {
    return minuteOf(m_current.row);
}

std::optional<Appointment> AppBookGrid::currentAppointment() const {
    const QList<const Block*> here = appointmentsAt(m_current.column, m_current.row);
    for (const Block* block : here) {
        if (block->line.appointment->appId == m_selected) {
            return block->line.appointment;
        }
    }
    return here.isEmpty() ? std::nullopt : here.first()->line.appointment;
}

void AppBookGrid::setCurrent(int column, int minute) {
    moveTo(column, rowOf(minute));
}

bool AppBookGrid::selectAppointment(qint64 appId) {
    int column = -1;
    const Block* block = findBlock(appId, &column);
    if (!block) {
        return false;
    }
    moveTo(column, block->firstRow, appId);
    return true;
}

const QList<GridColumn>& AppBookGrid::columns() const {
    return m_columns;
}

QRect AppBookGrid::visualCellRect(int column, int minute) const {
    const int row = rowOf(minute);
    if (column < 0 || column >= m_columns.size() || row < 0 || row >= rowCount()) {
        return {};
    }
    const QRectF cell = cellRect(column, row);
    return QRectF(toView(cell.topLeft()), cell.size()).toRect();
}

// ---- geometry

int AppBookGrid::rowCount() const {
    return (m_last - m_first) / m_step + 1;
}

int AppBookGrid::rowOf(int minute) const {
    return floorDiv(minute - m_first, m_step);
}

int AppBookGrid::minuteOf(int row) const {
    return m_first + row * m_step;
}

double AppBookGrid::rowHeight() const {
    // A text line and a little room above and below it.
    return std::max(6.0, std::round(fontMetrics().lineSpacing() * m_lineFactor) + 4);
}

int AppBookGrid::gutterWidth() const {
    return fontMetrics().horizontalAdvance(QStringLiteral("12:00 pm")) + 14;
}

int AppBookGrid::headerHeight() const {
    return fontMetrics().height() + 10;
}

int AppBookGrid::columnWidth() const {
    const int available = viewport()->width() - gutterWidth();
    return std::max(kMinColumnWidth, available / std::max(1, int(m_columns.size())));
}

QPointF AppBookGrid::toView(const QPointF& content) const {
    return content + QPointF(gutterWidth() - horizontalScrollBar()->value(),
                             headerHeight() - verticalScrollBar()->value());
}

QPointF AppBookGrid::toContent(const QPointF& view) const {
    return view - QPointF(gutterWidth() - horizontalScrollBar()->value(),
                          headerHeight() - verticalScrollBar()->value());
}

QRectF AppBookGrid::cellRect(int column, int row, int rows) const {
    return QRectF(column * columnWidth(), row * rowHeight(), columnWidth(), rows * rowHeight());
}

QRectF AppBookGrid::blockRect(int column, const Block& block) const {
    const QRectF cells = cellRect(column, block.firstRow, block.lastRow - block.firstRow + 1);
    const double laneWidth = (cells.width() - 2 * kColumnPadding) / block.laneCount;
    return QRectF(cells.left() + kColumnPadding + block.lane * laneWidth, cells.top() + 1,
                  laneWidth - 1, cells.height() - 2);
}

std::optional<AppBookGrid::Cell> AppBookGrid::cellAt(const QPoint& viewPos) const {
    if (viewPos.x() < gutterWidth() || viewPos.y() < headerHeight()) {
        return std::nullopt;
    }
    const QPointF content = toContent(viewPos);
    const int column = int(content.x() / columnWidth());
    const int row = int(content.y() / rowHeight());
    if (column < 0 || column >= m_columns.size() || row < 0 || row >= rowCount()) {
        return std::nullopt;
    }
    return Cell{column, row};
}

const AppBookGrid::Block* AppBookGrid::blockAt(const QPoint& viewPos) const {
    const std::optional<Cell> cell = cellAt(viewPos);
    if (!cell) {
        return nullptr;
    }
    const QPointF content = toContent(viewPos);
    for (const Block* block : appointmentsAt(cell->column, cell->row)) {
        if (blockRect(cell->column, *block).contains(content)) {
            return block;
        }
    }
    return nullptr;
}

const AppBookGrid::Block* AppBookGrid::findBlock(qint64 appId, int* column) const {
    for (int c = 0; c < m_blocks.size(); ++c) {
        for (const Block& block : m_blocks.at(c)) {
            if (block.line.appointment && block.line.appointment->appId == appId) {
                if (column) {
                    *column = c;
                }
                return &block;
            }
        }
    }
    return nullptr;
}

QList<const AppBookGrid::Block*> AppBookGrid::appointmentsAt(int column, int row) const {
    QList<const Block*> here;
    if (column < 0 || column >= m_blocks.size()) {
        return here;
    }
    for (const Block& block : m_blocks.at(column)) {
        if (block.line.appointment && block.firstRow <= row && row <= block.lastRow) {
            here.append(&block);
        }
    }
    std::stable_sort(here.begin(), here.end(),
                     [](const Block* a, const Block* b) { return a->lane < b->lane; });
    return here;
}

// Lines are laid out by the rows they cover, not their exact minutes: two short bookings
// that share a row would otherwise be drawn over one another.
void AppBookGrid::layoutBlocks() {
    m_blocks.clear();
    for (const GridColumn& column : m_columns) {
        QList<DayLine> byRows;
        QList<Block> blocks;
        for (const DayLine& line : column.lines) {
            Block block{line};
            block.firstRow = rowOf(line.time);
            block.lastRow = rowOf(line.time + std::max(line.length, 1) - 1);
            if (block.lastRow < 0 || block.firstRow >= rowCount()) {
                continue;
            }
            block.firstRow = std::max(block.firstRow, 0);
            block.lastRow = std::min(block.lastRow, rowCount() - 1);
            DayLine rows;
            rows.time = block.firstRow;
            rows.length = block.lastRow - block.firstRow + 1;
            byRows.append(rows);
            blocks.append(block);
        }
        const QList<appointments::PlacedLine> placed = appointments::placeLines(byRows);
        for (qsizetype i = 0; i < blocks.size(); ++i) {
            blocks[i].lane = placed.at(i).lane;
            blocks[i].laneCount = placed.at(i).laneCount;
        }
        m_blocks.append(blocks);
    }
    updateScrollBars();
    viewport()->update();
}

void AppBookGrid::updateScrollBars() {
    const int height = viewport()->height() - headerHeight();
    const int contentHeight = int(std::ceil(rowCount() * rowHeight()));
    verticalScrollBar()->setRange(0, std::max(0, contentHeight - height));
    verticalScrollBar()->setPageStep(std::max(1, height));
    verticalScrollBar()->setSingleStep(int(rowHeight()));
    const int width = viewport()->width() - gutterWidth();
    const int contentWidth = columnWidth() * int(m_columns.size());
    horizontalScrollBar()->setRange(0, std::max(0, contentWidth - width));
    horizontalScrollBar()->setPageStep(std::max(1, width));
    horizontalScrollBar()->setSingleStep(columnWidth() / 4);
}

// ---- moving

void AppBookGrid::moveTo(int column, int row, std::optional<qint64> appId) {
    const Cell was = m_current;
    const std::optional<Appointment> wasApp = currentAppointment();
    m_current.column = std::clamp(column, 0, std::max(0, int(m_columns.size()) - 1));
    m_current.row = std::clamp(row, 0, rowCount() - 1);
    if (appId) {
        m_selected = appId;
    } else {
        const QList<const Block*> here = appointmentsAt(m_current.column, m_current.row);
        const bool stays = std::any_of(here.begin(), here.end(), [this](const Block* block) {
            return block->line.appointment->appId == m_selected;
        });
        if (!stays) {
            m_selected.reset();
        }
    }
    ensureCurrentVisible();
    viewport()->update();
    const std::optional<Appointment> nowApp = currentAppointment();
    if (was.column != m_current.column || was.row != m_current.row ||
        wasApp.has_value() != nowApp.has_value() ||
        (wasApp && nowApp && wasApp->appId != nowApp->appId)) {
        emit currentChanged();
    }
}

void AppBookGrid::ensureCurrentVisible() {
    const QRectF cell = cellRect(m_current.column, m_current.row);
    const int height = viewport()->height() - headerHeight();
    QScrollBar* vertical = verticalScrollBar();
    if (cell.top() < vertical->value()) {
        vertical->setValue(int(cell.top()));
    } else if (cell.bottom() > vertical->value() + height) {
        vertical->setValue(int(std::ceil(cell.bottom())) - height);
    }
    const int width = viewport()->width() - gutterWidth();
    QScrollBar* horizontal = horizontalScrollBar();
    if (cell.left() < horizontal->value()) {
        horizontal->setValue(int(cell.left()));
    } else if (cell.right() > horizontal->value() + width) {
        horizontal->setValue(int(std::ceil(cell.right())) - width);
    }
}

void AppBookGrid::cycleSelection(bool forward) {
    const QList<const Block*> here = appointmentsAt(m_current.column, m_current.row);
    const std::optional<Appointment> selected = currentAppointment();
    qsizetype index = 0;
    for (qsizetype i = 0; i < here.size(); ++i) {
        if (selected && here.at(i)->line.appointment->appId == selected->appId) {
            index = i;
        }
    }
    index = (index + (forward ? 1 : here.size() - 1)) % here.size();
    moveTo(m_current.column, m_current.row, here.at(index)->line.appointment->appId);
}

// ---- keys and mouse

bool AppBookGrid::event(QEvent* event) {
    // Tab picks among a double booking; elsewhere it moves on to the next field as usual.
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool tab = key->key() == Qt::Key_Tab || key->key() == Qt::Key_Backtab;
        if (tab && !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier)) &&
            appointmentsAt(m_current.column, m_current.row).size() > 1) {
            cycleSelection(key->key() == Qt::Key_Tab && !(key->modifiers() & Qt::ShiftModifier));
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void AppBookGrid::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & ~Qt::KeypadModifier) {
        event->ignore();
        return;
    }
    const int page = std::max(1, int((viewport()->height() - headerHeight()) / rowHeight()) - 1);
    const int row = m_current.row;
    const int column = m_current.column;
    switch (event->key()) {
        case Qt::Key_Up:
            moveTo(column, row - 1);
            break;
        case Qt::Key_Down:
            moveTo(column, row + 1);
            break;
        case Qt::Key_PageUp:
            moveTo(column, row - page);
            break;
        case Qt::Key_PageDown:
            moveTo(column, row + page);
            break;
        case Qt::Key_Home:
            moveTo(column, 0);
            break;
        case Qt::Key_End:
            moveTo(column, rowCount() - 1);
            break;
        case Qt::Key_Left:
            moveTo(column - 1, row);
            break;
        case Qt::Key_Right:
            moveTo(column + 1, row);
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            emit activated();
            break;
        default:
            event->ignore();
            return;
    }
    event->accept();
}

void AppBookGrid::mousePressEvent(QMouseEvent* event) {
    const std::optional<Cell> cell = cellAt(event->position().toPoint());
    if (!cell) {
        QAbstractScrollArea::mousePressEvent(event);
        return;
    }
    const Block* block = blockAt(event->position().toPoint());
    moveTo(cell->column, cell->row,
           block ? std::optional<qint64>(block->line.appointment->appId) : std::nullopt);
    if (block && event->button() == Qt::LeftButton) {
        m_pressedApp = block->line.appointment->appId;
        m_pressPos = event->position().toPoint();
        m_pressCell = *cell;
    }
    event->accept();
}

void AppBookGrid::mouseMoveEvent(QMouseEvent* event) {
    if (!m_pressedApp || !(event->buttons() & Qt::LeftButton)) {
        return;
    }
    const QPoint pos = event->position().toPoint();
    if (!m_dragging && (pos - m_pressPos).manhattanLength() < QApplication::startDragDistance()) {
        return;
    }
    m_dragging = true;
    // Near an edge the grid scrolls, so a block can travel beyond what is shown.
    const int edge = int(rowHeight());
    QScrollBar* vertical = verticalScrollBar();
    if (pos.y() < headerHeight() + edge) {
        vertical->setValue(vertical->value() - edge);
    } else if (pos.y() > viewport()->height() - edge) {
        vertical->setValue(vertical->value() + edge);
    }
    m_dropCell = cellAt(pos);
    viewport()->update();
}

void AppBookGrid::mouseReleaseEvent(QMouseEvent* event) {
    const std::optional<qint64> app = m_pressedApp;
    const bool dropped = m_dragging;
    m_pressedApp.reset();
    m_dragging = false;
    viewport()->update();
    if (!app || !dropped) {
        return;
    }
    const std::optional<Cell> cell = cellAt(event->position().toPoint());
    if (cell && (cell->column != m_pressCell.column || cell->row != m_pressCell.row)) {
        emit moveRequested(*app, cell->column, minuteOf(cell->row));
    }
}

void AppBookGrid::mouseDoubleClickEvent(QMouseEvent* event) {
    const std::optional<Cell> cell = cellAt(event->position().toPoint());
    if (!cell || event->button() != Qt::LeftButton) {
        return;
    }
    const Block* block = blockAt(event->position().toPoint());
    moveTo(cell->column, cell->row,
           block ? std::optional<qint64>(block->line.appointment->appId) : std::nullopt);
    emit activated();
}

void AppBookGrid::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

void AppBookGrid::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        updateScrollBars();
    }
}

void AppBookGrid::scrollContentsBy(int, int) {
    viewport()->update();
}

// ---- painting

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
    drawFitted(painter, textRect, blockText(app), int(app.whoText().size()));
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
