#pragma once

#include "appointments/DayLayout.h"

#include <QAbstractScrollArea>
#include <QDate>
#include <QDateTime>
#include <QList>
#include <QPoint>
#include <QString>

#include <optional>

namespace brimsett {

struct BookColumn {
    QString header;  // e.g. the provider's name, or "Mon 2026/11/23" in the week view
    QString doctorId;
    QDate date;
    QList<appointments::DayLine> lines;  // as appointments::dayLines gives them
};

// The book's day grid: one column per provider (or day), a row every step minutes, template
// slots and appointments painted in their slot type's colour, overlapping bookings side by
// side. It holds no database: the screen hands it the lines and acts on its signals. Keys it
// does not use (letters, "+", "-", Insert, Delete, F-keys, shortcuts) go on to the screen.
class AppBookGrid : public QAbstractScrollArea {
    Q_OBJECT
public:
    explicit AppBookGrid(QWidget* parent = nullptr);

    // Rows start at firstMinute, then every step minutes; the last row starts at lastMinute
    // (or the last step before it).
    void setRange(int firstMinute, int lastMinute, int step);
    void setLineHeight(double factor);  // "LineHeight": 1 = one text line per row
    // Keeps the current cell where its provider and date are still shown.
    void setColumns(const QList<BookColumn>& columns);
    // A red line at the time on the columns of its date; an invalid moment shows none.
    void setNow(const QDateTime& now);
    // What a booking shows after its name, in order (appointments::blockFields); phone,
    // status and notes until told.
    void setBlockFields(const QStringList& fields);

    int currentColumn() const;
    int currentMinute() const;  // start of the current row
    // The selected one of the appointments that share the current row (the first by lane
    // until Tab or a click picks another); cancelled ones count, they can be made live again.
    std::optional<appointments::Appointment> currentAppointment() const;
    void setCurrent(int column, int minute);
    // Makes the appointment's first shown row current, selects it and scrolls to it; false
    // when it is not in the grid or outside the shown hours.
    bool selectAppointment(qint64 appId);
    const QList<BookColumn>& columns() const;
    // The cell's rectangle on the viewport as it is scrolled now (for a menu or a hint beside
    // it); empty when the column or minute is not in the grid.
    QRect visualCellRect(int column, int minute) const;

signals:
    void currentChanged();
    void activated();  // Enter/Return or a double-click on the current cell
    void moveRequested(qint64 appId, int column, int minute);  // a block dropped on a cell

protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    // A line as drawn: the rows it spans within the shown hours and its lane.
    struct Block {
        appointments::DayLine line;
        int firstRow = 0;
        int lastRow = 0;
        int lane = 0;
        int laneCount = 1;
    };
    struct Cell {
        int column = -1;
        int row = -1;
    };

    int rowCount() const;
    int rowOf(int minute) const;
    int minuteOf(int row) const;
    double rowHeight() const;
    int columnWidth() const;
    int gutterWidth() const;
    int headerHeight() const;
    QPointF toView(const QPointF& content) const;
    QPointF toContent(const QPointF& view) const;
    std::optional<Cell> cellAt(const QPoint& viewPos) const;
    // In content coordinates: x from the first column's left, y from the first row's top.
    QRectF blockRect(int column, const Block& block) const;
    QRectF cellRect(int column, int row, int rows = 1) const;
    const Block* blockAt(const QPoint& viewPos) const;
    const Block* findBlock(qint64 appId, int* column = nullptr) const;
    QList<const Block*> appointmentsAt(int column, int row) const;

    void layoutBlocks();
    void updateScrollBars();
    void moveTo(int column, int row, std::optional<qint64> appId = std::nullopt);
    void ensureCurrentVisible();
    void cycleSelection(bool forward);

    void paintHeader(QPainter& painter) const;
    void paintGutter(QPainter& painter) const;
    void paintColumns(QPainter& painter) const;
    void paintBlock(QPainter& painter, int column, const Block& block) const;
    void paintDrag(QPainter& painter) const;
    void paintNow(QPainter& painter) const;
    void paintCurrent(QPainter& painter) const;

    int m_first = 8 * 60;
    int m_last = 17 * 60;
    int m_step = 15;
    double m_lineFactor = 1.0;
    QList<BookColumn> m_columns;
    QList<QList<Block>> m_blocks;  // per column, template slots and appointments
    QDateTime m_now;
    QStringList m_blockFields{QStringLiteral("Phone"), QStringLiteral("Status"),
                              QStringLiteral("Notes")};
    Cell m_current{0, 0};
    std::optional<qint64> m_selected;  // the appointment picked among those of the current row

    // A block being dragged: what, from where, and where the pointer is now.
    std::optional<qint64> m_pressedApp;
    QPoint m_pressPos;
    Cell m_pressCell;
    bool m_dragging = false;
    std::optional<Cell> m_dropCell;
};

}  // namespace brimsett
