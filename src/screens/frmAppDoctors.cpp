#include "screens/frmAppDoctors.h"

#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "screens/ChoiceDelegate.h"
#include "screens/OpenListEscape.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

enum Column { kName, kVisible, kPrint, kWidth, kAlign };

bool sameColumns(const QList<GridColumn>& a, const QList<GridColumn>& b) {
    if (a.size() != b.size()) {
        return false;
    }
    for (int i = 0; i < a.size(); ++i) {
        const GridColumn& x = a.at(i);
        const GridColumn& y = b.at(i);
        if (x.name != y.name || x.visible != y.visible || x.print != y.print ||
            x.width != y.width || x.align != y.align) {
            return false;
        }
    }
    return true;
}

Qt::CheckState checked(bool on) {
    return on ? Qt::Checked : Qt::Unchecked;
}

}  // namespace

frmAppDoctors::frmAppDoctors(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent)
    : QDialog(parent), m_db(db), m_prompter(ScreenPrompter::attach(prompter, this)), m_log(log) {
    setWindowTitle(QStringLiteral("Book Columns"));
    keepEscapeForOpenLists();

    m_grid = new QTreeWidget(this);
    m_grid->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Visible"),
                             QStringLiteral("Print"), QStringLiteral("Width"),
                             QStringLiteral("Alignment")});
    m_grid->setRootIsDecorated(false);
    m_grid->setUniformRowHeights(true);
    // Cell by cell, so that Left and Right reach the boxes and Space ticks them.
    m_grid->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_grid->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    // Rows are dropped between rows, never onto one: the grid has no levels.
    m_grid->setDragDropMode(QAbstractItemView::InternalMove);
    m_grid->setDefaultDropAction(Qt::MoveAction);
    m_grid->setDropIndicatorShown(true);
    m_grid->setItemDelegateForColumn(
        kAlign, new ChoiceDelegate({{QStringLiteral("Left"), QStringLiteral("Left")},
                                    {QStringLiteral("Center"), QStringLiteral("Center")},
                                    {QStringLiteral("Right"), QStringLiteral("Right")}},
                                   this));
    m_grid->setMinimumSize(420, 260);

    auto* up = new QPushButton(QStringLiteral("Move &Up"), this);
    auto* down = new QPushButton(QStringLiteral("Move Do&wn"), this);
    auto* saveButton = new QPushButton(QStringLiteral("&Save"), this);
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    up->setToolTip(QStringLiteral("Ctrl+Up"));
    down->setToolTip(QStringLiteral("Ctrl+Down"));
    saveButton->setToolTip(QStringLiteral("Ctrl+S"));
    close->setToolTip(QStringLiteral("Esc"));
    for (QPushButton* b : {up, down, saveButton, close}) {
        b->setAutoDefault(false);
    }
    connect(up, &QPushButton::clicked, this, guarded(this, [this] { moveCurrent(-1); }));
    connect(down, &QPushButton::clicked, this, guarded(this, [this] { moveCurrent(1); }));
    connect(saveButton, &QPushButton::clicked, this, guarded(this, &frmAppDoctors::save));
    connect(close, &QPushButton::clicked, this, guarded(this, &frmAppDoctors::reject));
    const auto key = [this](QKeySequence sequence, auto action) {
        connect(new QShortcut(sequence, this), &QShortcut::activated, this,
                guarded(this, std::move(action)));
    };
    key(QKeySequence(Qt::CTRL | Qt::Key_Up), [this] { moveCurrent(-1); });
    key(QKeySequence(Qt::CTRL | Qt::Key_Down), [this] { moveCurrent(1); });
    key(QKeySequence(Qt::CTRL | Qt::Key_S), [this] { save(); });

    auto* hint = new QLabel(QStringLiteral("Drag a row, or press Ctrl+Up or Ctrl+Down, to move "
                                           "a column; Space ticks a box, F2 changes a width or "
                                           "an alignment."),
                            this);
    hint->setEnabled(false);
    hint->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* b : {up, down, saveButton}) {
        buttons->addWidget(b);
    }
    buttons->addStretch();
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_grid, 1);
    layout->addWidget(hint);
    layout->addLayout(buttons);

    m_shown = LoadColumns(db);
    fill(m_shown);
    m_grid->setFocus();
}

void frmAppDoctors::fill(const QList<GridColumn>& columns) {
    m_grid->clear();
    for (const GridColumn& c : columns) {
        auto* item = new QTreeWidgetItem(m_grid);
        item->setText(kName, c.name);
        item->setCheckState(kVisible, checked(c.visible));
        item->setCheckState(kPrint, checked(c.print));
        item->setText(kWidth, QString::number(c.width));
        item->setTextAlignment(kWidth, Qt::AlignRight | Qt::AlignVCenter);
        item->setText(kAlign, c.align);
        item->setData(kAlign, Qt::UserRole, c.align);
        item->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsUserCheckable |
                       Qt::ItemIsEditable | Qt::ItemIsDragEnabled);
    }
    for (int c = kName; c <= kAlign; ++c) {
        m_grid->resizeColumnToContents(c);
        m_grid->setColumnWidth(c, m_grid->columnWidth(c) + 24);
    }
    if (m_grid->topLevelItemCount() > 0) {
        m_grid->setCurrentItem(m_grid->topLevelItem(0));
    }
}

QList<GridColumn> frmAppDoctors::columns() const {
    QList<GridColumn> list;
    for (int i = 0; i < m_grid->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_grid->topLevelItem(i);
        GridColumn c;
        c.id = i + 1;
        c.name = item->text(kName);
        c.visible = item->checkState(kVisible) == Qt::Checked;
        c.print = item->checkState(kPrint) == Qt::Checked;
        c.width = item->text(kWidth).trimmed().toInt();
        c.align = item->text(kAlign);
        c.order = i;
        list << c;
    }
    return list;
}

void frmAppDoctors::moveCurrent(int step) {
    QTreeWidgetItem* item = m_grid->currentItem();
    const int from = m_grid->indexOfTopLevelItem(item);
    const int to = from + step;
    if (item == nullptr || to < 0 || to >= m_grid->topLevelItemCount()) {
        return;
    }
    m_grid->takeTopLevelItem(from);
    m_grid->insertTopLevelItem(to, item);
    m_grid->setCurrentItem(item);
}

bool frmAppDoctors::save() {
    const QList<GridColumn> list = columns();
    for (int i = 0; i < list.size(); ++i) {
        const QString width = m_grid->topLevelItem(i)->text(kWidth).trimmed();
        bool ok = false;
        if (const int w = width.toInt(&ok); !ok || w < 0 || w > 2000) {
            m_prompter.error({QStringLiteral("Invalid width for %1: '%2' is not a number of "
                                             "pixels from 0 to 2000.")
                                  .arg(list.at(i).name, width)});
            m_grid->setCurrentItem(m_grid->topLevelItem(i), kWidth);
            return false;
        }
    }
    SaveColumns(m_db, m_log, list);
    m_shown = list;
    emit columnsSaved();
    return true;
}

void frmAppDoctors::reject() {
    if (mayLeaveChanges(m_prompter, windowTitle(), !sameColumns(columns(), m_shown),
                        [this] { return save(); })) {
        QDialog::reject();
    }
}

}  // namespace brimsett
