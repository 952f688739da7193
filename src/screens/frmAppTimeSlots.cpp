#include "screens/frmAppTimeSlots.h"

#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "patients/ProviderRegister.h"
#include "screens/ChoiceDelegate.h"
#include "screens/EnterMovesOn.h"
#include "screens/OpenListEscape.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/SlotSwatch.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

enum Column { kTime, kType };

}  // namespace

frmAppTimeSlots::frmAppTimeSlots(Database& db, AppSettings& settings, Prompter& prompter,
                                 const SqlLog& log, QWidget* parent)
    : QDialog(parent), m_db(db), m_prompter(ScreenPrompter::attach(prompter, this)), m_log(log) {
    setWindowTitle(QStringLiteral("Templates"));
    keepEscapeForOpenLists();
    auto* enter = new EnterMovesOn(this);

    m_doctor = new QComboBox(this);
    m_doctor->addItem(defaultTemplateName(), defaultTemplateDoctor());
    for (const Provider& p : ProviderRegister(db, settings, m_prompter, log).list()) {
        m_doctor->addItem(QStringLiteral("%1 - %2, %3").arg(p.doctorId, p.lName, p.fName),
                          p.doctorId);
    }
    m_day = new QComboBox(this);
    // Day numbers run from Sunday, as the templates keep them.
    const QLocale locale(QLocale::English, QLocale::Canada);
    for (int day = kFirstDay; day <= kLastDay; ++day) {
        m_day->addItem(locale.dayName(day == 1 ? 7 : day - 1), day);
    }
    auto* doctorLabel = new QLabel(QStringLiteral("D&octor:"), this);
    doctorLabel->setBuddy(m_doctor);
    auto* dayLabel = new QLabel(QStringLiteral("&Weekday:"), this);
    dayLabel->setBuddy(m_day);
    const auto reshow = guarded(this, [this] { refreshList(0); });
    connect(m_doctor, &QComboBox::currentIndexChanged, this, reshow);
    connect(m_day, &QComboBox::currentIndexChanged, this, reshow);
    auto* choose = new QHBoxLayout;
    choose->addWidget(doctorLabel);
    choose->addWidget(m_doctor, 1);
    choose->addSpacing(12);
    choose->addWidget(dayLabel);
    choose->addWidget(m_day);

    m_list = recordlist::make(this, {QStringLiteral("Time"), QStringLiteral("Slot Type")}, 1);
    // Cell by cell, so that Left and Right reach a slot's type and F2 changes either.
    m_list->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_list->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed |
                            QAbstractItemView::SelectedClicked);
    m_typeChoices = new ChoiceDelegate({}, this);
    m_list->setItemDelegateForColumn(kType, m_typeChoices);
    m_list->setMinimumHeight(240);
    connect(m_list, &QTreeWidget::itemChanged, this, guarded(this, &frmAppTimeSlots::rowEdited));

    m_time = recordlist::sizedLine(this, 10, 10);
    m_time->setPlaceholderText(QStringLiteral("9:00 am"));
    m_type = new QComboBox(this);
    auto* timeLabel = new QLabel(QStringLiteral("&Time:"), this);
    timeLabel->setBuddy(m_time);
    auto* typeLabel = new QLabel(QStringLiteral("T&ype:"), this);
    typeLabel->setBuddy(m_type);
    enter->watch(m_time);
    auto* insert = new QPushButton(QStringLiteral("&Insert"), this);
    auto* remove = new QPushButton(QStringLiteral("De&lete"), this);
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    insert->setToolTip(QStringLiteral("Adds a slot at the time typed (Insert)"));
    remove->setToolTip(QStringLiteral("Deletes the slot chosen in the list (Delete)"));
    close->setToolTip(QStringLiteral("Esc"));
    for (QPushButton* b : {insert, remove, close}) {
        b->setAutoDefault(false);
    }
    connect(insert, &QPushButton::clicked, this, guarded(this, &frmAppTimeSlots::insertSlot));
    connect(remove, &QPushButton::clicked, this, guarded(this, &frmAppTimeSlots::deleteSlot));
    connect(close, &QPushButton::clicked, this, guarded(this, &QDialog::reject));
    // The list's own keys: Insert adds from the fields below, Delete removes the row.
    auto* insertKey = new QShortcut(QKeySequence(Qt::Key_Insert), m_list);
    insertKey->setContext(Qt::WidgetShortcut);
    connect(insertKey, &QShortcut::activated, this, guarded(this, [this] { m_time->setFocus(); }));
    auto* deleteKey = new QShortcut(QKeySequence(Qt::Key_Delete), m_list);
    deleteKey->setContext(Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, guarded(this, &frmAppTimeSlots::deleteSlot));
    // Enter on the type box adds the slot, so a row is typed time, Enter, type, Enter.
    auto* typeEnter = new QShortcut(QKeySequence(Qt::Key_Return), m_type);
    typeEnter->setContext(Qt::WidgetShortcut);
    connect(typeEnter, &QShortcut::activated, this, guarded(this, [this] {
                if (insertSlot()) {
                    m_time->setFocus();
                }
            }));
    m_remove = remove;
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, [this] { recordlist::enableForRow(m_list, {m_remove}); }));

    auto* adding = new QHBoxLayout;
    adding->addWidget(timeLabel);
    adding->addWidget(m_time);
    adding->addSpacing(12);
    adding->addWidget(typeLabel);
    adding->addWidget(m_type, 1);
    adding->addWidget(insert);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(remove);
    buttons->addStretch();
    buttons->addWidget(close);
    auto* hint =
        new QLabel(QStringLiteral("F2 (or a double click) changes the time or the type of the slot "
                                  "chosen; Left and Right move between them."),
                   this);
    hint->setEnabled(false);
    hint->setWordWrap(true);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(choose);
    layout->addWidget(m_list, 1);
    layout->addWidget(hint);
    layout->addLayout(adding);
    layout->addLayout(buttons);

    reloadSlotTypes();
    m_doctor->setFocus();
}

void frmAppTimeSlots::reloadSlotTypes() {
    const QString chosen = m_type->currentText();
    QList<ChoiceDelegate::Choice> choices;
    m_type->clear();
    for (const SlotType& t : LoadSlotTypes(m_db)) {
        m_type->addItem(slotSwatch(t.color), t.name, t.id);
        choices << ChoiceDelegate::Choice{t.name, t.id};
    }
    m_typeChoices->setChoices(choices);
    if (const int at = m_type->findText(chosen); at >= 0) {
        m_type->setCurrentIndex(at);
    }
    // A renamed, recoloured or purged type shows in the list too.
    refreshList(recordlist::currentKey(m_list).toInt());
}

void frmAppTimeSlots::showTemplate(const QString& doctorId, int day) {
    const int doctorAt = m_doctor->findData(doctorId, Qt::UserRole, Qt::MatchFixedString);
    const int dayAt = m_day->findData(day);
    if (doctorAt >= 0) {
        m_doctor->setCurrentIndex(doctorAt);
    }
    if (dayAt >= 0) {
        m_day->setCurrentIndex(dayAt);
    }
}

void frmAppTimeSlots::refreshList(int currentId) {
    m_rows = templateList(m_db, m_doctor->currentData().toString(), m_day->currentData().toInt());
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const TemplateRow& r : std::as_const(m_rows)) {
            auto* item = new QTreeWidgetItem(m_list, {TimeText(r.slot.time), r.typeName});
            item->setData(kTime, recordlist::kKeyRole, QString::number(r.slot.id));
            item->setData(kType, Qt::UserRole, r.slot.slotType);
            item->setIcon(kType, slotSwatch(r.color));
            item->setTextAlignment(kTime, Qt::AlignRight | Qt::AlignVCenter);
            item->setFlags(item->flags() | Qt::ItemIsEditable);
        }
    }
    m_list->resizeColumnToContents(kTime);
    m_list->setColumnWidth(kTime, m_list->columnWidth(kTime) + 16);
    recordlist::keepCurrent(m_list, currentId > 0 ? QString::number(currentId) : QString());
    recordlist::enableForRow(m_list, {m_remove});
}

bool frmAppTimeSlots::insertSlot() {
    const std::optional<int> time = parseTimeText(m_time->text());
    if (!time) {
        m_prompter.error({invalidTimeProblem(m_time->text())});
        m_time->setFocus();
        return false;
    }
    if (m_type->currentIndex() < 0) {
        m_prompter.error(
            {QStringLiteral("Please choose a slot type; the slot types are set up "
                            "under Slot Types.")});
        return false;
    }
    TemplateSlot slot;
    slot.doctorId = m_doctor->currentData().toString();
    slot.day = m_day->currentData().toInt();
    slot.time = *time;
    slot.slotType = m_type->currentData().toInt();
    if (const QString problem = insertTemplateSlot(m_db, m_log, slot); !problem.isEmpty()) {
        m_prompter.error({problem});
        return false;
    }
    m_time->clear();
    refreshList(slot.id);
    return true;
}

void frmAppTimeSlots::deleteSlot() {
    const int id = recordlist::currentKey(m_list).toInt();
    if (id <= 0) {
        return;
    }
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (!deleteTemplateSlot(m_db, m_prompter, m_log, id)) {
        return;
    }
    refreshList(0);
    // The cursor stays where the row was, so a run of slots is deleted key after key.
    if (m_list->topLevelItemCount() > 0) {
        m_list->setCurrentItem(m_list->topLevelItem(qMin(row, m_list->topLevelItemCount() - 1)));
    }
}

void frmAppTimeSlots::rowEdited(QTreeWidgetItem* item, int column) {
    const int id = item->data(kTime, recordlist::kKeyRole).toString().toInt();
    const auto listed = std::find_if(m_rows.cbegin(), m_rows.cend(),
                                     [id](const TemplateRow& r) { return r.slot.id == id; });
    if (listed == m_rows.cend()) {
        return;
    }
    QString problem;
    if (column == kTime) {
        const QString typed = item->text(kTime);
        const std::optional<int> time = parseTimeText(typed);
        if (time && *time == listed->slot.time) {
            return;
        }
        problem = time ? setTemplateTime(m_db, m_log, id, *time) : invalidTimeProblem(typed);
    } else {
        const int type = item->data(kType, Qt::UserRole).toInt();
        if (type == listed->slot.slotType) {
            return;
        }
        problem = setTemplateType(m_db, m_log, id, type);
    }
    // After the editor has let go of the row: the list is drawn again as stored, a refused
    // text put back, and then the reason is shown.
    QTimer::singleShot(0, this, guarded(this, [this, id, problem] {
                           refreshList(id);
                           if (!problem.isEmpty()) {
                               m_prompter.error({problem});
                           }
                       }));
}

}  // namespace brimsett
