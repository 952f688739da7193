#include "screens/frmClaimGrid.h"

#include "claims/Premiums.h"
#include "claims/ServiceCodeCell.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/DateText.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "screens/SlotGuard.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QStyledItemDelegate>

namespace brimsett {

namespace {

constexpr int kMinimumRows = 8;
// Where a row's service code cell keeps the fee percentage its quick code gave.
constexpr int kPercentRole = Qt::UserRole + 1;
constexpr int kSpareRows = 3;

bool isEnter(const QKeyEvent* key) {
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
           (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

bool isNumberColumn(int column) {
    return column == frmClaimGrid::NumServ || column == frmClaimGrid::Fee;
}

}  // namespace

// Enter in a cell's editor commits it and moves on by the grid's own order; Esc gives the
// cell back as it was instead of closing the window.
class ClaimCellDelegate : public QStyledItemDelegate {
public:
    explicit ClaimCellDelegate(frmClaimGrid* grid) : QStyledItemDelegate(grid), m_grid(grid) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto* line = qobject_cast<QLineEdit*>(editor)) {
            static const int lengths[frmClaimGrid::kColumns] = {80, 4, 3, 14, 10};
            line->setMaxLength(lengths[index.column()]);
            if (isNumberColumn(index.column())) {
                line->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
            }
        }
        return editor;
    }

protected:
    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() != QEvent::ShortcutOverride && event->type() != QEvent::KeyPress) {
            return QStyledItemDelegate::eventFilter(object, event);
        }
        const auto* key = static_cast<QKeyEvent*>(event);
        if (event->type() == QEvent::ShortcutOverride && key->key() == Qt::Key_Escape) {
            event->accept();
            return true;
        }
        if (event->type() == QEvent::KeyPress && isEnter(key)) {
            auto* editor = static_cast<QWidget*>(object);
            emit commitData(editor);
            emit closeEditor(editor, QAbstractItemDelegate::NoHint);
            m_grid->advance();
            return true;
        }
        return QStyledItemDelegate::eventFilter(object, event);
    }

private:
    frmClaimGrid* m_grid;
};

frmClaimGrid::frmClaimGrid(ServiceCodeCell& cells, Pricing pricing, const AppSettings& settings,
                           const Clock& clock, Prompter& prompter, MoneyFormat money,
                           QWidget* parent)
    : QTableWidget(0, kColumns, parent),
      m_cells(cells),
      m_pricing(std::move(pricing)),
      m_settings(settings),
      m_clock(clock),
      m_prompter(prompter),
      m_money(money) {
    setHorizontalHeaderLabels({QStringLiteral("Service Code"), QStringLiteral("Diag. Code"),
                               QStringLiteral("# Serv."), QStringLiteral("Fee"),
                               QStringLiteral("Service Date")});
    setItemDelegate(new ClaimCellDelegate(this));
    // Typing or a double-click edits; F2 is left to the main menu's keys.
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::DoubleClicked);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setWordWrap(false);
    // Row numbers stay visible: the checks name rows by them.
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    sizeColumns();
    keepSpareRows();
    connect(this, &QTableWidget::itemChanged, this, guarded(this, &frmClaimGrid::cellEdited));
}

void frmClaimGrid::sizeColumns() {
    const QFontMetrics cells(font());
    const QFontMetrics heads(horizontalHeader()->font());
    static const int chars[kColumns] = {12, 6, 4, 10, 11};
    int widest = 0;
    for (int c = 0; c < kColumns; ++c) {
        widest = std::max({widest, cells.horizontalAdvance(QString(chars[c], QLatin1Char('0'))),
                           heads.horizontalAdvance(horizontalHeaderItem(c)->text())});
    }
    // The columns share the window's width, none narrower than the widest needs.
    horizontalHeader()->setMinimumSectionSize(widest + 20);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
}

ItemEntry frmClaimGrid::rowAt(int row) const {
    const auto cell = [this, row](int column) {
        const QTableWidgetItem* it = item(row, column);
        return it ? it->text() : QString();
    };
    return {cell(Code), cell(Diag), cell(NumServ), cell(Fee), cell(Date)};
}

QList<ItemEntry> frmClaimGrid::rows() const {
    QList<ItemEntry> all;
    for (int r = 0; r < rowCount(); ++r) {
        all << rowAt(r);
    }
    while (!all.isEmpty() && all.last().isEmpty()) {
        all.removeLast();
    }
    return all;
}

void frmClaimGrid::setCell(int row, int column, const QString& text) {
    const bool wasFilling = std::exchange(m_filling, true);
    QTableWidgetItem* it = item(row, column);
    if (it == nullptr) {
        it = new QTableWidgetItem;
        if (isNumberColumn(column)) {
            it->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
        }
        setItem(row, column, it);
    }
    it->setText(text);
    m_filling = wasFilling;
}

void frmClaimGrid::putRow(int row, const ItemEntry& entry) {
    setCell(row, Code, entry.serviceCode);
    setCell(row, Diag, entry.diagCode);
    setCell(row, NumServ, entry.numServ);
    setCell(row, Fee, entry.fee);
    setCell(row, Date, entry.serviceDate);
}

void frmClaimGrid::setRows(const QList<ItemEntry>& rows) {
    const bool wasFilling = std::exchange(m_filling, true);
    setRowCount(0);
    setRowCount(rows.size());
    for (int r = 0; r < rows.size(); ++r) {
        putRow(r, rows.at(r));
    }
    m_filling = wasFilling;
    keepSpareRows();
    setCurrentCell(0, Code);
}

void frmClaimGrid::keepSpareRows() {
    const int wanted = std::max(kMinimumRows, int(rows().size()) + kSpareRows);
    if (rowCount() < wanted) {
        setRowCount(wanted);
    }
}

void frmClaimGrid::goToFreeRow() {
    const int row = rows().size();
    if (row >= rowCount()) {
        setRowCount(row + 1);
    }
    setCurrentCell(row, Code);
    scrollToItem(item(row, Code));
    setFocus(Qt::OtherFocusReason);
}

void frmClaimGrid::commitOpenCell() {
    if (QWidget* editor = indexWidget(currentIndex())) {
        QAbstractItemDelegate* delegate = itemDelegate();
        emit delegate->commitData(editor);
        emit delegate->closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void frmClaimGrid::advance() {
    int row = currentRow();
    if (row < 0) {
        goToFreeRow();
        return;
    }
    int column = currentColumn() + 1;
    // The service date is usually the row above's: the office steps over it unless told.
    if (column == Date && !m_settings.option[4]) {
        column = kColumns;
    }
    if (column >= kColumns) {
        ++row;
        column = Code;
    }
    if (row >= rowCount()) {
        setRowCount(row + 1);
    }
    setCurrentCell(row, column);
}

void frmClaimGrid::cellEdited(QTableWidgetItem* edited) {
    if (m_filling) {
        return;
    }
    try {
        if (edited->column() == Code) {
            codeTyped(edited->row());
        } else if (edited->column() == NumServ) {
            numServTyped(edited->row());
        }
        applyPremiums();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The fee schedule could not be read."), e.message()});
    }
    keepSpareRows();
}

void frmClaimGrid::codeTyped(int row) {
    ItemEntry typed = rowAt(row);
    const QString text = typed.serviceCode.trimmed();
    if (text.isEmpty()) {
        return;
    }
    // A new row bills one service on the date of the row above (or today).
    if (typed.numServ.trimmed().isEmpty()) {
        typed.numServ = QStringLiteral("1");
    }
    for (int above = row - 1; typed.serviceDate.trimmed().isEmpty(); --above) {
        typed.serviceDate =
            above >= 0 ? rowAt(above).serviceDate.trimmed() : datetext::slashed(m_clock.today());
    }
    const ServiceCodeCell::Result result =
        m_cells.normalise(text, typed, m_pricing.claimType(), m_pricing.specialty());
    if (result.rows.isEmpty()) {
        putRow(row, ItemEntry{});
    }
    for (int i = 0; i < result.rows.size(); ++i) {
        if (i > 0) {
            const bool wasFilling = std::exchange(m_filling, true);
            insertRow(row + i);
            m_filling = wasFilling;
        }
        putRow(row + i, result.rows.at(i));
        item(row + i, Code)->setData(kPercentRole, result.percents.value(i, 100));
    }
    for (const QString& line : result.notes) {
        emit note(line);
    }
}

void frmClaimGrid::numServTyped(int row) {
    const ItemEntry typed = rowAt(row);
    bool ok = false;
    const int count = typed.numServ.trimmed().toInt(&ok);
    if (!ok || count <= 0 || typed.serviceCode.trimmed().isEmpty()) {
        return;
    }
    const QVariant percent = item(row, Code)->data(kPercentRole);
    const std::optional<Money> fee =
        m_cells.feeFor(typed.serviceCode.trimmed(), m_pricing.claimType(), m_pricing.specialty(),
                       count, percent.isValid() ? percent.toInt() : 100);
    if (fee) {
        setCell(row, Fee, fee->format(m_money));
    }
}

void frmClaimGrid::applyPremiums() {
    QList<ItemEntry> list = rows();
    if (!premiums::applyAll(list, m_settings.option[26], m_money)) {
        return;
    }
    for (int r = 0; r < list.size(); ++r) {
        if (list.at(r).fee != rowAt(r).fee) {
            setCell(r, Fee, list.at(r).fee);
        }
    }
}

void frmClaimGrid::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers mods = event->modifiers() & ~Qt::KeypadModifier;
    if (isEnter(event)) {
        advance();
        return;
    }
    if (event->key() == Qt::Key_Delete && currentRow() >= 0) {
        if (mods == Qt::ControlModifier) {
            removeRow(currentRow());
            applyPremiums();
            keepSpareRows();
            return;
        }
        if (mods == Qt::NoModifier) {
            if (QTableWidgetItem* it = item(currentRow(), currentColumn())) {
                it->setText(QString());  // as if typed: prices and premiums follow
            }
            return;
        }
    }
    QTableWidget::keyPressEvent(event);
}

void frmClaimGrid::focusInEvent(QFocusEvent* event) {
    QTableWidget::focusInEvent(event);
    // Arriving from the header by Enter or Tab means a new item is next.
    if (event->reason() == Qt::TabFocusReason) {
        goToFreeRow();
    }
}

}  // namespace brimsett
