#include "screens/frmDoctors.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "patients/ProviderCodeLists.h"
#include "screens/EnterMovesOn.h"
#include "screens/ProviderScreens.h"
#include "screens/RecordButtons.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

using Field = Provider::Field;

}  // namespace

frmDoctors::frmDoctors(Database& db, AppSettings& settings, const SqlLog& log, Prompter& prompter,
                       QWidget* parent)
    : QDialog(parent),
      m_db(db),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_register(db, settings, m_prompter, log) {
    setWindowTitle(QStringLiteral("Providers"));
    m_enter = new EnterMovesOn(this);

    // Created in the order Tab should follow: list, fields, buttons.
    m_list = recordlist::make(
        this, {QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("Billing No.")}, 1);
    m_list->setMinimumWidth(320);
    m_enter->watch(m_list);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmDoctors::listRowChanged));

    QWidget* fields = fieldsPanel();

    RecordButtons buttons = recordButtons(this, &frmDoctors::newClicked, &frmDoctors::saveClicked,
                                          &frmDoctors::deleteClicked, &frmDoctors::reject);
    m_delete = buttons.remove;
    auto* referring = new QPushButton(QStringLiteral("&Referring Doctors..."), this);
    referring->setAutoDefault(false);
    connect(referring, &QPushButton::clicked, this,
            guarded(this, &frmDoctors::referringDoctorsRequested));
    buttons.addBeforeClose(referring);
    setTabOrder(referring, buttons.close);

    // On a small screen the fields scroll; the list and the buttons stay in sight.
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidget(fields);
    scroll->setMinimumWidth(fields->minimumWidth() +
                            scroll->verticalScrollBar()->sizeHint().width());
    auto* body = new QHBoxLayout;
    body->addWidget(m_list, 1);
    body->addWidget(scroll);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addLayout(buttons.row);

    reloadList();
    showFirst();
}

QLineEdit* frmDoctors::lineFor(Field field, int widthInChars) {
    QLineEdit* line = recordlist::sizedLine(this, Provider::column(field).maxLength, widthInChars);
    m_lines.insert(field, line);
    m_enter->watch(line);
    return line;
}

QWidget* frmDoctors::fieldsPanel() {
    auto* panel = new QWidget(this);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);

    auto* who = new QGroupBox(QStringLiteral("Provider"), panel);
    auto* whoForm = new QFormLayout(who);
    whoForm->addRow(QStringLiteral("Doctor &ID:"), lineFor(Field::DoctorID, 3));
    whoForm->addRow(QStringLiteral("&Title:"), lineFor(Field::Title, 0));
    whoForm->addRow(QStringLiteral("&First name:"), lineFor(Field::FName, 0));
    whoForm->addRow(QStringLiteral("&Last name:"), lineFor(Field::LName, 0));

    auto* billing = new QGroupBox(QStringLiteral("Billing"), panel);
    auto* billingForm = new QFormLayout(billing);
    billingForm->addRow(QStringLiteral("&Billing number:"), lineFor(Field::ProviderNum, 6));
    QLineEdit* group = lineFor(Field::GroupNum, 4);
    group->setPlaceholderText(QStringLiteral("0000"));
    group->setToolTip(QStringLiteral("0000 for a solo practitioner"));
    billingForm->addRow(QStringLiteral("&Group number:"), group);
    m_specialty = new QComboBox(billing);
    m_office = new QComboBox(billing);
    try {
        providerscreens::fillCodeBox(m_specialty, specialtyChoices(m_db));
        providerscreens::fillCodeBox(m_office, officeChoices(m_db));
    } catch (const DbError& e) {
        fail(QStringLiteral("The code lists could not be read."), e);
    }
    m_enter->watch(m_specialty);
    m_enter->watch(m_office);
    billingForm->addRow(QStringLiteral("S&pecialty:"), m_specialty);
    billingForm->addRow(QStringLiteral("Ministry &office:"), m_office);
    billingForm->addRow(QStringLiteral("Location &code:"), lineFor(Field::LocationCode, 4));
    billingForm->addRow(QStringLiteral("Facilit&y number:"), lineFor(Field::FacilityNum, 4));
    billingForm->addRow(QStringLiteral("Ser&vice location (SLI):"), lineFor(Field::SLI, 4));
    billingForm->addRow(QStringLiteral("&Modifier:"), lineFor(Field::Modifier, 3));
    billingForm->addRow(QStringLiteral("E&xplanatory code:"), lineFor(Field::ExplCode, 0));

    auto* contact = new QGroupBox(QStringLiteral("Contact"), panel);
    auto* contactForm = new QFormLayout(contact);
    contactForm->addRow(QStringLiteral("P&hone:"), lineFor(Field::Phone, 0));
    contactForm->addRow(QStringLiteral("F&ax:"), lineFor(Field::Fax, 0));
    contactForm->addRow(QStringLiteral("&Email:"), lineFor(Field::Email, 0));

    // One label width for the three boxes, so their fields line up.
    const QList<QFormLayout*> forms = {whoForm, billingForm, contactForm};
    int labelWidth = 0;
    for (QFormLayout* form : forms) {
        for (int row = 0; row < form->rowCount(); ++row) {
            if (QLayoutItem* label = form->itemAt(row, QFormLayout::LabelRole)) {
                labelWidth = std::max(labelWidth, label->widget()->sizeHint().width());
            }
        }
    }
    for (QFormLayout* form : forms) {
        for (int row = 0; row < form->rowCount(); ++row) {
            if (QLayoutItem* label = form->itemAt(row, QFormLayout::LabelRole)) {
                label->widget()->setMinimumWidth(labelWidth);
            }
        }
    }

    column->addWidget(who);
    column->addWidget(billing);
    column->addWidget(contact);
    column->addStretch();
    panel->setMinimumWidth(440);
    return panel;
}

void frmDoctors::fail(const QString& doing, const DbError& e) {
    m_prompter.error({doing, e.message()});
}

void frmDoctors::reloadList() {
    QList<Provider> providers;
    try {
        providers = m_register.list();
    } catch (const DbError& e) {
        fail(QStringLiteral("The providers could not be read."), e);
    }
    const QSignalBlocker quiet(m_list);
    m_list->clear();
    for (const Provider& p : std::as_const(providers)) {
        auto* item = new QTreeWidgetItem(m_list, {p.doctorId, p.displayName(), p.providerNum});
        item->setData(0, recordlist::kKeyRole, p.doctorId);
    }
    m_list->resizeColumnToContents(0);
    m_list->resizeColumnToContents(2);
}

void frmDoctors::selectInList(const QString& doctorId) {
    recordlist::select(m_list, doctorId);
}

void frmDoctors::listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem*) {
    if (current == nullptr) {
        return;
    }
    // Saving may rebuild the list, which must not happen inside the list's own signal.
    const QString target = current->data(0, recordlist::kKeyRole).toString();
    QTimer::singleShot(0, this, guarded(this, [this, target] {
                           if (target != m_savedId && !showProvider(target)) {
                               selectInList(m_savedId);
                           }
                       }));
}

bool frmDoctors::showProvider(const QString& doctorId) {
    std::optional<Provider> provider;
    try {
        provider = m_register.load(doctorId);
    } catch (const DbError& e) {
        fail(QStringLiteral("The provider could not be read."), e);
    }
    if (!provider || !leaveShown()) {
        return false;
    }
    // Saving on the way out may have renumbered or changed the one asked for.
    if (const auto again = m_register.load(doctorId)) {
        provider = again;
    }
    showOnFields(*provider, provider->doctorId);
    selectInList(provider->doctorId);
    return true;
}

void frmDoctors::newClicked() {
    if (!leaveShown()) {
        return;
    }
    showOnFields(Provider{}, QString());
    selectInList(QString());
    m_lines.value(Field::DoctorID)->setFocus();
}

bool frmDoctors::saveClicked() {
    const std::optional<Provider> stored = m_register.save(fromFields(), m_savedId);
    if (!stored) {
        if (const auto field = m_register.badField()) {
            QWidget* widget = m_lines.value(*field);
            if (*field == Field::SpecCode) {
                widget = m_specialty;
            } else if (*field == Field::MOHOffice) {
                widget = m_office;
            }
            widget->setFocus();
        }
        return false;
    }
    reloadList();
    showOnFields(*stored, stored->doctorId);
    selectInList(stored->doctorId);
    return true;
}

void frmDoctors::deleteClicked() {
    if (!m_savedId.isEmpty() && !m_register.remove(m_savedId)) {
        return;
    }
    // A new provider not yet saved is simply dropped.
    reloadList();
    showFirst();
}

void frmDoctors::showFirst() {
    std::optional<Provider> first;
    if (m_list->topLevelItemCount() > 0) {
        try {
            first =
                m_register.load(m_list->topLevelItem(0)->data(0, recordlist::kKeyRole).toString());
        } catch (const DbError& e) {
            fail(QStringLiteral("The provider could not be read."), e);
        }
    }
    showOnFields(first.value_or(Provider{}), first ? first->doctorId : QString());
    selectInList(m_savedId);
}

bool frmDoctors::leaveShown() {
    return mayLeaveChanges(m_prompter, ProviderRegister::kLeaveTitle, changed(),
                           [this] { return saveClicked(); });
}

void frmDoctors::reject() {
    if (leaveShown()) {
        QDialog::reject();
    }
}

void frmDoctors::showOnFields(const Provider& provider, const QString& savedId) {
    m_shown = provider;
    m_savedId = savedId;
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        it.value()->setText(provider.value(it.key()));
        it.value()->setCursorPosition(0);
    }
    providerscreens::setBoxCode(m_specialty, provider.specCode);
    providerscreens::setBoxCode(m_office, provider.mohOffice);
}

Provider frmDoctors::fromFields() const {
    Provider p;
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        p.setValue(it.key(), it.value()->text());
    }
    p.specCode = providerscreens::boxCode(m_specialty);
    p.mohOffice = providerscreens::boxCode(m_office);
    return p;
}

bool frmDoctors::changed() const {
    return fromFields().normalised() != m_shown.normalised();
}

}  // namespace brimsett
