#include "screens/frmThirdParty.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "screens/EnterMovesOn.h"
#include "screens/FieldCase.h"
#include "screens/RecordButtons.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

using Field = ThirdParty::Field;

// The label of each field with its access letter; the buttons take N, S and D.
const QHash<Field, QString>& accessLabels() {
    static const QHash<Field, QString> labels = {
        {Field::ThirdPartyID, QStringLiteral("Third Party ID")},
        {Field::Name, QStringLiteral("Company Na&me")},
        {Field::Contact, QStringLiteral("Contact &Person")},
        {Field::Address, QStringLiteral("&Address")},
        {Field::City, QStringLiteral("Ci&ty")},
        {Field::Province, QStringLiteral("Pro&vince")},
        {Field::PostalCode, QStringLiteral("Postal &Code")},
        {Field::Country, QStringLiteral("Co&untry")},
        {Field::Phone, QStringLiteral("P&hone")},
        {Field::Email, QStringLiteral("&Email")},
    };
    return labels;
}

// Characters shown in each field; 0 takes the panel's width.
int widthOf(Field field) {
    switch (field) {
        case Field::ThirdPartyID:
            return 6;
        case Field::Province:
            return 4;
        case Field::PostalCode:
            return 8;
        case Field::Phone:
            return 14;
        default:
            return 0;
    }
}

QString listKey(qint64 id) {
    return id == 0 ? QString() : QString::number(id);
}

}  // namespace

frmThirdParty::frmThirdParty(Database& db, Prompter& prompter, const SqlLog& log, QWidget* parent)
    : QDialog(parent),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_register(db, m_prompter, log) {
    setWindowTitle(QStringLiteral("Third Party"));
    m_enter = new EnterMovesOn(this);

    // Created in the order Tab should follow: list, fields, buttons.
    m_list = recordlist::make(
        this, {QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("Contact Person")}, 1);
    m_list->setMinimumWidth(380);
    m_enter->watch(m_list);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmThirdParty::listRowChanged));

    QWidget* fields = fieldsPanel();

    const RecordButtons buttons =
        recordButtons(this, &frmThirdParty::newClicked, &frmThirdParty::saveClicked,
                      &frmThirdParty::deleteClicked, &frmThirdParty::reject,
                      QStringLiteral("Deletes the payer with all its claims"));

    auto* body = new QHBoxLayout;
    body->addWidget(m_list, 1);
    body->addWidget(fields);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body, 1);
    layout->addLayout(buttons.row);

    refreshList();
    showOnFields(ThirdParty{});
    m_lines.value(Field::Name)->setFocus();
}

QWidget* frmThirdParty::fieldsPanel() {
    auto* panel = new QWidget(this);
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    for (const ThirdParty::Column& c : ThirdParty::columns()) {
        QLineEdit* line = recordlist::sizedLine(panel, c.maxLength, widthOf(c.field));
        auto* label = new QLabel(panel);
        label->setBuddy(line);
        m_lines.insert(c.field, line);
        m_labels.insert(c.field, label);
        form->addRow(label, line);
        if (c.field == Field::ThirdPartyID) {
            // The program numbers the payers.
            line->setReadOnly(true);
            line->setFocusPolicy(Qt::NoFocus);
            line->setPlaceholderText(QStringLiteral("new"));
            QPalette plain = line->palette();
            plain.setColor(QPalette::Base, plain.color(QPalette::Window));
            line->setPalette(plain);
        } else {
            m_enter->watch(line);
        }
    }
    connect(m_lines.value(Field::City), &QLineEdit::editingFinished, this,
            guarded(this, &frmThirdParty::cityLeft));
    capitalsAsTyped(m_lines.value(Field::PostalCode));
    // Shown as they will be stored ("ON", "K1P 5N2") once the user moves on.
    for (Field f : {Field::Province, Field::PostalCode}) {
        QLineEdit* line = m_lines.value(f);
        connect(line, &QLineEdit::editingFinished, this, guarded(this, [this, line, f] {
                    line->setText(fromFields().normalised().value(f));
                }));
    }
    // Province and postal code are mandatory only for a Canadian address.
    connect(m_lines.value(Field::Country), &QLineEdit::textChanged, this,
            guarded(this, &frmThirdParty::markMandatory));
    auto* legend = new QLabel(QStringLiteral("* must be filled in"), panel);
    legend->setEnabled(false);
    form->addRow(QString(), legend);
    panel->setMinimumWidth(380);
    return panel;
}

void frmThirdParty::markMandatory() {
    const ThirdParty typed = fromFields();
    for (auto it = m_labels.cbegin(); it != m_labels.cend(); ++it) {
        const bool mark = ThirdPartyRegister::mandatory(typed, it.key());
        it.value()->setText(accessLabels().value(it.key()) +
                            (mark ? QStringLiteral(" *:") : QStringLiteral(":")));
    }
}

void frmThirdParty::fail(const QString& doing, const DbError& e) {
    m_prompter.error({doing, e.message()});
}

void frmThirdParty::refreshList() {
    QList<ThirdPartyListRow> rows;
    try {
        rows = m_register.list();
    } catch (const DbError& e) {
        fail(QStringLiteral("The third party payers could not be read."), e);
    }
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const ThirdPartyListRow& r : std::as_const(rows)) {
            auto* item = new QTreeWidgetItem(m_list, {QString::number(r.id), r.name, r.contact});
            item->setData(0, recordlist::kKeyRole, listKey(r.id));
            item->setTextAlignment(0, Qt::AlignRight | Qt::AlignVCenter);
        }
    }
    m_list->resizeColumnToContents(0);
    m_list->resizeColumnToContents(2);
    recordlist::select(m_list, listKey(m_savedId));
}

void frmThirdParty::listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem*) {
    if (current == nullptr) {
        return;
    }
    // Saving may rebuild the list, which must not happen inside the list's own signal.
    const qint64 target = current->data(0, recordlist::kKeyRole).toLongLong();
    QTimer::singleShot(0, this, guarded(this, [this, target] {
                           if (target != m_savedId && !showPayer(target)) {
                               recordlist::select(m_list, listKey(m_savedId));
                           }
                       }));
}

bool frmThirdParty::showPayer(qint64 id) {
    if (!leaveShown()) {
        return false;
    }
    std::optional<ThirdParty> payer;
    try {
        payer = m_register.load(id);
    } catch (const DbError& e) {
        fail(QStringLiteral("The third party could not be read."), e);
    }
    if (!payer) {
        refreshList();  // gone meanwhile
        return false;
    }
    showOnFields(*payer);
    recordlist::select(m_list, listKey(m_savedId));
    return true;
}

void frmThirdParty::newClicked() {
    if (!leaveShown()) {
        return;
    }
    showOnFields(ThirdParty{});
    recordlist::select(m_list, QString());
    m_lines.value(Field::Name)->setFocus();
}

bool frmThirdParty::saveClicked() {
    const std::optional<qint64> id = m_register.save(fromFields());
    if (!id) {
        if (const auto field = m_register.badField()) {
            m_lines.value(*field)->setFocus();
        }
        return false;
    }
    // Shown as stored, so that the screen holds no change of its own.
    ThirdParty stored = fromFields().normalised();
    stored.thirdPartyId = QString::number(*id);
    showOnFields(stored);
    refreshList();
    emit payersChanged();
    return true;
}

void frmThirdParty::deleteClicked() {
    if (m_savedId != 0) {
        if (!m_register.remove(m_savedId)) {
            return;
        }
        emit payersChanged();
    }
    // A new payer not yet saved is simply dropped.
    showOnFields(ThirdParty{});
    refreshList();
    m_lines.value(Field::Name)->setFocus();
}

void frmThirdParty::cityLeft() {
    QLineEdit* city = m_lines.value(Field::City);
    std::optional<CityQuickCode> found;
    try {
        found = m_register.cityQuickCode(city->text());
    } catch (const DbError& e) {
        fail(QStringLiteral("The city quick codes could not be read."), e);
    }
    if (!found) {
        return;
    }
    city->setText(found->city);
    QLineEdit* phone = m_lines.value(Field::Phone);
    const QString area = found->phoneArea.trimmed();
    if (phone->text().trimmed().isEmpty() && !area.isEmpty()) {
        const bool bare = area.size() == 3 && area.toInt() > 0;
        phone->setText((bare ? QLatin1Char('(') + area + QLatin1Char(')') : area) +
                       QLatin1Char(' '));
    }
}

bool frmThirdParty::leaveShown() {
    return mayLeaveChanges(m_prompter, ThirdPartyRegister::kLeaveTitle, changed(),
                           [this] { return saveClicked(); });
}

void frmThirdParty::reject() {
    if (leaveShown()) {
        QDialog::reject();
    }
}

void frmThirdParty::showOnFields(const ThirdParty& payer) {
    m_shown = payer;
    m_savedId = payer.thirdPartyId.toLongLong();
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        it.value()->setText(payer.value(it.key()));
        it.value()->setCursorPosition(0);
    }
    markMandatory();
}

ThirdParty frmThirdParty::fromFields() const {
    ThirdParty t;
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        t.setValue(it.key(), it.value()->text());
    }
    return t;
}

bool frmThirdParty::changed() const {
    return fromFields().normalised() != m_shown.normalised();
}

}  // namespace brimsett
