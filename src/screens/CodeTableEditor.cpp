#include "screens/CodeTableEditor.h"

#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "screens/CodeTableModel.h"
#include "screens/EnterMovesOn.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QTimer>
#include <QVBoxLayout>

#include <set>

namespace brimsett {

namespace {

bool isEnter(const QKeyEvent* key) {
    return (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
           (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

// A cell's editor holds what its column holds; Enter commits the cell and moves on, as Tab.
class CellDelegate : public QStyledItemDelegate {
public:
    CellDelegate(const CodeTable& table, QObject* parent)
        : QStyledItemDelegate(parent), m_table(table) {}

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override {
        QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
        if (auto* line = qobject_cast<QLineEdit*>(editor)) {
            const CodeColumn& column = m_table.columns.at(index.column());
            if (column.maxLength > 0) {
                // A longer text stored before is not cut short by merely opening the cell.
                line->setMaxLength(
                    std::max(column.maxLength, int(index.data(Qt::EditRole).toString().size())));
            }
            if (column.isNumber()) {
                line->setAlignment(Qt::AlignRight);
            }
        }
        return editor;
    }

protected:
    bool eventFilter(QObject* editor, QEvent* event) override {
        if (event->type() == QEvent::KeyPress && isEnter(static_cast<QKeyEvent*>(event))) {
            QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
            return QStyledItemDelegate::eventFilter(editor, &tab);
        }
        return QStyledItemDelegate::eventFilter(editor, event);
    }

private:
    const CodeTable& m_table;
};

QPushButton* button(QWidget* parent, const QString& text, const QString& keys) {
    auto* b = new QPushButton(text, parent);
    b->setToolTip(keys);
    b->setAutoDefault(false);  // Enter belongs to the grid and the find box
    return b;
}

}  // namespace

CodeTableEditor::CodeTableEditor(const CodeTable& table, Database& db, const SqlLog& log,
                                 Prompter& prompter, const MoneyFormat& money, QWidget* parent)
    : QDialog(parent),
      m_sheet(table, db, ScreenPrompter::attach(prompter, this), log, money),
      m_prompter(ScreenPrompter::of(this)) {
    setWindowTitle(table.title + QStringLiteral("[*]"));

    m_find = new QLineEdit(this);
    m_find->setPlaceholderText(
        QStringLiteral("Code, or words of the %1")
            .arg(table.columns.at(table.descriptionColumn).caption.toLower()));
    m_find->setClearButtonEnabled(true);
    m_find->installEventFilter(this);
    m_findDelay = new QTimer(this);
    m_findDelay->setSingleShot(true);
    m_findDelay->setInterval(300);
    connect(m_find, &QLineEdit::textEdited, m_findDelay, qOverload<>(&QTimer::start));
    connect(m_findDelay, &QTimer::timeout, this, guarded(this, &CodeTableEditor::findTyped));
    auto* findLabel = new QLabel(QStringLiteral("F&ind (F3):"), this);
    findLabel->setBuddy(m_find);
    m_count = new QLabel(this);
    m_count->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_count->setMinimumWidth(
        m_count->fontMetrics().horizontalAdvance(QStringLiteral("99,999 %1s").arg(table.rowWord)));

    m_model = new CodeTableModel(m_sheet, this);
    connect(m_model, &CodeTableModel::edited, this, guarded(this, &CodeTableEditor::showState));
    m_grid = new QTableView(this);
    m_grid->setModel(m_model);
    m_grid->setItemDelegate(new CellDelegate(table, m_grid));
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::AnyKeyPressed);
    m_grid->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_grid->setWordWrap(false);
    m_grid->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    // A bold row number means unsaved edits, not the current row.
    m_grid->verticalHeader()->setHighlightSections(false);
    m_grid->verticalHeader()->setDefaultSectionSize(m_grid->fontMetrics().height() + 6);
    m_grid->installEventFilter(this);
    (new EnterMovesOn(this))->watch(m_grid);

    auto* add = button(this, QStringLiteral("&New"), QStringLiteral("Insert or Ctrl+N"));
    auto* remove = button(this, QStringLiteral("&Delete"), QStringLiteral("Delete"));
    auto* saveButton = button(this, QStringLiteral("&Save"), QStringLiteral("Ctrl+S"));
    auto* close = button(this, QStringLiteral("Close"), QStringLiteral("Esc"));
    connect(add, &QPushButton::clicked, this, guarded(this, &CodeTableEditor::addRow));
    connect(remove, &QPushButton::clicked, this,
            guarded(this, &CodeTableEditor::removeSelectedRows));
    connect(saveButton, &QPushButton::clicked, this, guarded(this, &CodeTableEditor::save));
    connect(close, &QPushButton::clicked, this, guarded(this, &CodeTableEditor::reject));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_N), this), &QShortcut::activated, this,
            guarded(this, &CodeTableEditor::addRow));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this), &QShortcut::activated, this,
            guarded(this, &CodeTableEditor::save));
    connect(new QShortcut(QKeySequence(Qt::Key_F3), this), &QShortcut::activated, this,
            guarded(this, [this] {
                commitOpenCell();
                m_find->setFocus();
                m_find->selectAll();
            }));

    auto* findRow = new QHBoxLayout;
    findRow->addWidget(findLabel);
    findRow->addWidget(m_find, 1);
    findRow->addSpacing(24);
    findRow->addWidget(m_count);
    m_buttons = new QHBoxLayout;
    m_buttons->addWidget(add);
    m_buttons->addWidget(remove);
    m_buttons->addWidget(saveButton);
    m_buttons->addStretch();
    m_buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(findRow);
    layout->addWidget(m_grid, 1);
    layout->addLayout(m_buttons);

    m_model->load(QString());
    sizeColumns();
    goToKey(QString(), m_sheet.table().keyColumn);
    m_find->setFocus();
}

void CodeTableEditor::sizeColumns() {
    const CodeTable& table = m_sheet.table();
    const QFontMetrics cells(m_grid->font());
    const QFontMetrics heads(m_grid->horizontalHeader()->font());
    int total = m_grid->verticalHeader()->sizeHint().width() + 4;
    for (int c = 0; c < table.columns.size(); ++c) {
        const CodeColumn& column = table.columns.at(c);
        const int width = std::max(cells.averageCharWidth() * column.width + 12,
                                   heads.horizontalAdvance(column.caption) + 16);
        m_grid->setColumnWidth(c, width);
        total += width;
    }
    // A short table's description takes the spare width; a wide one scrolls instead.
    if (table.columns.size() <= 4) {
        m_grid->horizontalHeader()->setSectionResizeMode(table.descriptionColumn,
                                                         QHeaderView::Stretch);
    }
    resize(std::clamp(total + 40, 560, 1180), 600);
}

void CodeTableEditor::commitOpenCell() {
    if (QWidget* editor = m_grid->indexWidget(m_grid->currentIndex())) {
        QAbstractItemDelegate* delegate = m_grid->itemDelegate();
        emit delegate->commitData(editor);
        emit delegate->closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void CodeTableEditor::showState() {
    setWindowModified(m_sheet.hasChanges());
    const int rows = m_sheet.rowCount();
    m_count->setText(QStringLiteral("%L1 %2%3")
                         .arg(rows)
                         .arg(m_sheet.table().rowWord)
                         .arg(rows == 1 ? QString() : QStringLiteral("s")));
}

void CodeTableEditor::goToKey(const QString& key, int column) {
    int row = 0;
    const int keyColumn = m_sheet.table().keyColumn;
    for (int r = 0; r < m_sheet.rowCount() && !key.isEmpty(); ++r) {
        if (m_sheet.cell(r, keyColumn).compare(key, Qt::CaseInsensitive) == 0) {
            row = r;
            break;
        }
    }
    if (m_sheet.rowCount() == 0) {
        return;
    }
    const QModelIndex index = m_model->index(row, column);
    m_grid->setCurrentIndex(index);
    m_grid->scrollTo(index);
}

bool CodeTableEditor::leaveChanges() {
    commitOpenCell();
    return mayLeaveChanges(m_prompter, m_sheet.table().title, m_sheet.hasChanges(),
                           [this] { return save(); });
}

void CodeTableEditor::findTyped() {
    applyFind(m_find->text());
}

bool CodeTableEditor::applyFind(const QString& text) {
    m_findDelay->stop();
    if (text.trimmed() == m_sheet.find()) {
        return true;
    }
    if (!leaveChanges()) {
        // The edits stay, and so do the rows they belong to.
        m_find->setText(m_sheet.find());
        return false;
    }
    if (!m_model->load(text)) {
        m_find->setText(m_sheet.find());
        return false;
    }
    goToKey(QString(), m_sheet.table().keyColumn);
    return true;
}

void CodeTableEditor::reload() {
    const QModelIndex current = m_grid->currentIndex();
    const QString key =
        current.isValid() ? m_sheet.cell(current.row(), m_sheet.table().keyColumn) : QString();
    m_model->load(m_sheet.find());
    goToKey(key, current.isValid() ? current.column() : m_sheet.table().keyColumn);
}

void CodeTableEditor::addRow() {
    commitOpenCell();
    const QModelIndex index = m_model->index(m_model->addRow(), m_sheet.table().keyColumn);
    m_grid->setCurrentIndex(index);
    m_grid->scrollTo(index);
    m_grid->setFocus();
    m_grid->edit(index);
}

void CodeTableEditor::removeSelectedRows() {
    commitOpenCell();
    std::set<int> rows;
    for (const QModelIndex& index : m_grid->selectionModel()->selectedIndexes()) {
        rows.insert(index.row());
    }
    if (rows.empty() && m_grid->currentIndex().isValid()) {
        rows.insert(m_grid->currentIndex().row());
    }
    if (rows.empty()) {
        return;
    }
    const CodeTable& table = m_sheet.table();
    const QString key = m_sheet.cell(*rows.begin(), table.keyColumn);
    const QString what = rows.size() > 1
                             ? QStringLiteral("%1 %2s").arg(rows.size()).arg(table.rowWord)
                         : key.isEmpty() ? QStringLiteral("the new %1").arg(table.rowWord)
                                         : QStringLiteral("%1 %2").arg(table.rowWord, key);
    if (!m_prompter.confirm(
            table.title, {QStringLiteral("Delete %1?").arg(what),
                          QStringLiteral("Nothing is taken out of the table until you save.")})) {
        return;
    }
    const int first = *rows.begin();
    m_model->removeRows(QList<int>(rows.begin(), rows.end()));
    if (m_sheet.rowCount() > 0) {
        const int column = std::max(0, m_grid->currentIndex().column());
        m_grid->setCurrentIndex(m_model->index(std::min(first, m_sheet.rowCount() - 1), column));
    }
}

bool CodeTableEditor::save() {
    commitOpenCell();
    const QModelIndex current = m_grid->currentIndex();
    const int keyColumn = m_sheet.table().keyColumn;
    const QString key = current.isValid() ? m_sheet.cell(current.row(), keyColumn) : QString();
    if (!m_model->save()) {
        // The cursor goes to the first cell to correct.
        if (!m_sheet.refused().isEmpty()) {
            const CodeSheet::Problem& first = m_sheet.refused().first();
            m_grid->setCurrentIndex(m_model->index(first.row, first.column));
            m_grid->scrollTo(m_grid->currentIndex());
        } else if (current.isValid()) {
            m_grid->setCurrentIndex(current);
        }
        m_grid->setFocus();
        return false;
    }
    goToKey(key, current.isValid() ? current.column() : keyColumn);
    return true;
}

void CodeTableEditor::reject() {
    if (leaveChanges()) {
        QDialog::reject();
    }
}

bool CodeTableEditor::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (watched == m_find) {
        if (isEnter(key)) {
            applyFind(m_find->text());
            m_grid->setFocus();
            return true;
        }
        if (key->key() == Qt::Key_Down) {
            m_grid->setFocus();
            return true;
        }
    } else if (watched == m_grid && (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        if (key->key() == Qt::Key_Insert) {
            addRow();
            return true;
        }
        if (key->key() == Qt::Key_Delete) {
            removeSelectedRows();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace brimsett
