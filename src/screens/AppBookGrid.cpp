#include "screens/AppBookGrid.h"

#include "appointments/AppointmentTime.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>

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

void AppBookGrid::setColumns(const QList<BookColumn>& columns) {
    int column = std::clamp(m_current.column, 0, std::max(0, int(columns.size()) - 1));
    if (m_current.column >= 0 && m_current.column < m_columns.size()) {
        const BookColumn& was = m_columns.at(m_current.column);
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

void AppBookGrid::setBlockFields(const QStringList& fields) {
    m_blockFields = fields;
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

const QList<BookColumn>& AppBookGrid::columns() const {
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
    for (const BookColumn& column : m_columns) {
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
    QScrollBar* horizontal = horizontalScrollBar();
    if (pos.x() < gutterWidth() + edge) {
        horizontal->setValue(horizontal->value() - edge);
    } else if (pos.x() > viewport()->width() - edge) {
        horizontal->setValue(horizontal->value() + edge);
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

// A block too small for its text tells all of it when the pointer rests on it.
bool AppBookGrid::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QAbstractScrollArea::viewportEvent(event);
    }
    const auto* help = static_cast<QHelpEvent*>(event);
    const Block* block = blockAt(help->pos());
    if (!block) {
        QToolTip::hideText();
        return true;
    }
    const Appointment& app = *block->line.appointment;
    QStringList lines{appointments::TimeText(app.appTime).trimmed() + QStringLiteral(" - ") +
                          appointments::TimeText(app.endTime()).trimmed(),
                      app.whoText(), app.patientPhone,
                      block->line.slotName + QStringLiteral("  [") +
                          appointments::StatusName(app.status) + QLatin1Char(']'),
                      app.notes};
    lines.removeAll(QString());
    QToolTip::showText(help->globalPos(), lines.join(QLatin1Char('\n')), viewport());
    return true;
}

void AppBookGrid::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
    // A scroll bar that came or went narrows the view after the current cell was shown.
    ensureCurrentVisible();
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

}  // namespace brimsett
