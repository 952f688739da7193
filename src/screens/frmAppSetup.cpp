#include "screens/frmAppSetup.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "screens/EnterMovesOn.h"
#include "screens/OpenListEscape.h"
#include "screens/RecordButtons.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/SlotSwatch.h"

#include <QColorDialog>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

const QString kLeaveTitle = QStringLiteral("Time slot changed");

QString listKey(int id) {
    return id == 0 ? QString() : QString::number(id);
}

}  // namespace

frmAppSetup::frmAppSetup(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent)
    : QDialog(parent), m_db(db), m_prompter(ScreenPrompter::attach(prompter, this)), m_log(log) {
    setWindowTitle(QStringLiteral("Slot Types"));
    keepEscapeForOpenLists();
    auto* enter = new EnterMovesOn(this);

    m_list = recordlist::make(
        this, {QStringLiteral("Name"), QStringLiteral("Shortcut"), QStringLiteral("Length")}, 0);
    m_list->setMinimumWidth(300);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmAppSetup::listRowChanged));

    auto* fields = new QWidget(this);
    auto* form = new QFormLayout(fields);
    form->setContentsMargins(0, 0, 0, 0);
    const auto addRow = [&](const QString& label, QWidget* field) {
        auto* l = new QLabel(label, fields);
        l->setBuddy(field);
        form->addRow(l, field);
        enter->watch(field);
    };
    m_name = recordlist::sizedLine(fields, 50, 0);
    m_shortcut = recordlist::sizedLine(fields, 5, 7);
    m_kind = new QComboBox(fields);
    m_kind->addItem(QStringLiteral("Appointment"), kKindAppointment);
    m_kind->addItem(QStringLiteral("Blocked time"), kKindBlocked);
    m_kind->addItem(QStringLiteral("Reserved"), kKindReserved);
    m_length = recordlist::sizedLine(fields, 5, 7);
    m_color = new QPushButton(QStringLiteral("C&olour..."), fields);
    m_color->setAutoDefault(false);
    m_color->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    m_service = recordlist::sizedLine(fields, 5, 7);
    m_diag = recordlist::sizedLine(fields, 4, 7);
    addRow(QStringLiteral("Descri&ption:"), m_name);
    addRow(QStringLiteral("S&hortcut:"), m_shortcut);
    addRow(QStringLiteral("&Kind:"), m_kind);
    addRow(QStringLiteral("&Length (minutes):"), m_length);
    form->addRow(QStringLiteral("Colour:"), m_color);
    addRow(QStringLiteral("Default se&rvice code:"), m_service);
    addRow(QStringLiteral("Default dia&gnostic code:"), m_diag);
    connect(m_color, &QPushButton::clicked, this, guarded(this, &frmAppSetup::chooseColor));
    connect(m_kind, &QComboBox::activated, this, guarded(this, &frmAppSetup::kindChosen));
    fields->setMinimumWidth(340);

    const RecordButtons buttons =
        recordButtons(this, &frmAppSetup::newType, &frmAppSetup::save, &frmAppSetup::deleteType,
                      &frmAppSetup::reject,
                      QStringLiteral("Deletes the type with its appointments and templates"));

    auto* body = new QHBoxLayout;
    body->addWidget(m_list, 1);
    body->addWidget(fields);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addLayout(buttons.row);

    refreshList();
    if (m_list->topLevelItemCount() > 0) {
        showType(m_list->topLevelItem(0)->data(0, recordlist::kKeyRole).toInt());
    } else {
        newType();
    }
    m_list->setFocus();
}

void frmAppSetup::refreshList() {
    const QList<SlotType> types = LoadSlotTypes(m_db);
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const SlotType& t : types) {
            auto* item = new QTreeWidgetItem(
                m_list, {t.name, t.quickCode, QString::number(t.defaultLength)});
            item->setIcon(0, slotSwatch(t.color));
            item->setData(0, recordlist::kKeyRole, listKey(t.id));
            item->setTextAlignment(2, Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    m_list->resizeColumnToContents(1);
    m_list->resizeColumnToContents(2);
    recordlist::select(m_list, listKey(m_shown.id));
}

void frmAppSetup::listRowChanged(QTreeWidgetItem* current) {
    if (current == nullptr) {
        return;
    }
    // Saving rebuilds the list, which must not happen inside the list's own signal.
    const int target = current->data(0, recordlist::kKeyRole).toInt();
    QTimer::singleShot(0, this, guarded(this, [this, target] {
                           if (target != m_shown.id && !showType(target)) {
                               recordlist::select(m_list, listKey(m_shown.id));
                           }
                       }));
}

bool frmAppSetup::showType(int id) {
    if (!leaveShown()) {
        return false;
    }
    const std::optional<SlotType> type = slotTypeById(m_db, id);
    if (!type) {
        refreshList();  // gone meanwhile
        return false;
    }
    showOnFields(*type);
    recordlist::select(m_list, listKey(id));
    return true;
}

bool frmAppSetup::save() {
    SlotType type = fromFields();
    const QStringList problems = saveSlotType(m_db, m_log, type, m_length->text());
    if (!problems.isEmpty()) {
        m_prompter.error(problems);
        // The cursor goes to the first field named, in the order of the checks.
        const QString& first = problems.first();
        QWidget* field = first.contains(QLatin1String("description")) ? m_name
                         : first.contains(QLatin1String("hortcut"))   ? m_shortcut
                         : first.contains(QLatin1String("ength"))     ? m_length
                                                                  : static_cast<QWidget*>(m_kind);
        field->setFocus();
        return false;
    }
    showOnFields(type);
    refreshList();
    emit slotTypesChanged();
    return true;
}

void frmAppSetup::newType() {
    if (!leaveShown()) {
        return;
    }
    SlotType type;
    type.name = untitledSlotTypeName(m_db);
    type.color = 0xFFFFFF;
    showOnFields(type);
    m_length->clear();
    m_shownLength.clear();
    recordlist::select(m_list, QString());
    m_name->setFocus();
    m_name->selectAll();
}

void frmAppSetup::deleteType() {
    if (m_shown.id != 0) {
        if (!deleteSlotType(m_db, m_prompter, m_log, m_shown.id)) {
            return;
        }
        emit slotTypesChanged();
    }
    // A new type not yet saved is simply dropped.
    m_shown = SlotType{};
    showOnFields(m_shown);
    refreshList();
    if (m_list->topLevelItemCount() > 0) {
        showType(m_list->topLevelItem(0)->data(0, recordlist::kKeyRole).toInt());
    } else {
        newType();
    }
    m_list->setFocus();
}

void frmAppSetup::kindChosen() {
    // Told at once rather than at save: the reserved kind is the program's own, so no type
    // becomes one and none stops being one. The box goes back to the type's own kind.
    if ((m_kind->currentData().toInt() == kKindReserved) != isReserved(m_shown)) {
        m_kind->setCurrentIndex(m_kind->findData(m_shown.type));
        m_prompter.error({QStringLiteral("This slot type is reserved.")});
    }
}

void frmAppSetup::chooseColor() {
    const QColor chosen = QColorDialog::getColor(QColor::fromRgb(QRgb(m_colorValue)), this,
                                                 QStringLiteral("Slot Colour"));
    if (chosen.isValid()) {
        setColor(int(chosen.rgb() & 0xFFFFFF));
    }
}

void frmAppSetup::setColor(int color) {
    m_colorValue = color;
    m_color->setIcon(slotSwatch(color));
}

bool frmAppSetup::leaveShown() {
    return mayLeaveChanges(m_prompter, kLeaveTitle, changed(), [this] { return save(); });
}

void frmAppSetup::reject() {
    if (leaveShown()) {
        QDialog::reject();
    }
}

void frmAppSetup::showOnFields(const SlotType& type) {
    m_shown = type;
    m_shownLength = QString::number(type.defaultLength);
    m_name->setText(type.name);
    m_shortcut->setText(type.quickCode);
    m_kind->setCurrentIndex(m_kind->findData(type.type));
    m_length->setText(m_shownLength);
    setColor(type.color);
    m_service->setText(type.defaultServiceCode);
    m_diag->setText(type.defaultDiagCode);
    for (QLineEdit* line : {m_name, m_shortcut, m_length, m_service, m_diag}) {
        line->setCursorPosition(0);
    }
}

SlotType frmAppSetup::fromFields() const {
    SlotType t = m_shown;
    if (t.name != m_name->text()) {
        t.description.clear();  // follows the new name
    }
    t.name = m_name->text();
    t.quickCode = m_shortcut->text();
    t.type = m_kind->currentData().toInt();
    t.defaultLength = m_length->text().trimmed().toInt();
    t.color = m_colorValue;
    t.defaultServiceCode = m_service->text();
    t.defaultDiagCode = m_diag->text();
    return t;
}

bool frmAppSetup::changed() const {
    const SlotType t = fromFields();
    return t.name != m_shown.name || t.quickCode != m_shown.quickCode || t.type != m_shown.type ||
           m_length->text() != m_shownLength || t.color != m_shown.color ||
           t.defaultServiceCode != m_shown.defaultServiceCode ||
           t.defaultDiagCode != m_shown.defaultDiagCode;
}

}  // namespace brimsett
