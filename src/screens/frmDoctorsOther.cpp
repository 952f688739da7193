#include "screens/frmDoctorsOther.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "patients/ProviderCodeLists.h"
#include "patients/ReferringDoctorSearch.h"
#include "screens/EnterMovesOn.h"
#include "screens/FieldCase.h"
#include "screens/ProviderScreens.h"
#include "screens/RecordButtons.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

using Field = ReferringDoctor::Field;

}  // namespace

frmDoctorsOther::frmDoctorsOther(Database& db, const AppSettings& settings, const SqlLog& log,
                                 Prompter& prompter, QWidget* parent)
    : QDialog(parent),
      m_db(db),
      m_settings(settings),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_register(db, m_prompter, log) {
    setWindowTitle(QStringLiteral("Referring Doctors"));
    m_enter = new EnterMovesOn(this);

    // Created in the order Tab should follow: search, list, fields, buttons.
    m_find = new QLineEdit(this);
    m_find->setPlaceholderText(QStringLiteral("Last name, \"last, first\" or billing number"));
    m_find->setClearButtonEnabled(true);
    m_enter->watch(m_find);
    connect(m_find, &QLineEdit::textChanged, this, guarded(this, &frmDoctorsOther::search));

    m_list = recordlist::make(
        this, {QStringLiteral("Billing No."), QStringLiteral("Name"), QStringLiteral("City")}, 1);
    m_list->setMinimumWidth(340);
    m_enter->watch(m_list);
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmDoctorsOther::listRowChanged));
    m_more = new QLabel(QStringLiteral("More doctors match: type more of the name."), this);
    m_more->setVisible(false);

    auto* findLabel = new QLabel(QStringLiteral("F&ind:"), this);
    findLabel->setBuddy(m_find);
    auto* findRow = new QHBoxLayout;
    findRow->addWidget(findLabel);
    findRow->addWidget(m_find);
    auto* left = new QVBoxLayout;
    left->addLayout(findRow);
    left->addWidget(m_list, 1);
    left->addWidget(m_more);

    QWidget* fields = fieldsPanel();

    const RecordButtons buttons =
        recordButtons(this, &frmDoctorsOther::newClicked, &frmDoctorsOther::saveClicked,
                      &frmDoctorsOther::deleteClicked, &frmDoctorsOther::reject);

    auto* body = new QHBoxLayout;
    body->addLayout(left, 1);
    body->addWidget(fields);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(body);
    layout->addLayout(buttons.row);

    search();
    showOnFields(ReferringDoctor{}, QString());
    m_find->setFocus();
}

QLineEdit* frmDoctorsOther::lineFor(Field field, int widthInChars) {
    QLineEdit* line =
        recordlist::sizedLine(this, ReferringDoctor::column(field).maxLength, widthInChars);
    m_lines.insert(field, line);
    m_enter->watch(line);
    return line;
}

QWidget* frmDoctorsOther::fieldsPanel() {
    auto* panel = new QWidget(this);
    auto* form = new QFormLayout(panel);
    form->setContentsMargins(0, 0, 0, 0);
    form->addRow(QStringLiteral("&Billing number:"), lineFor(Field::ProviderNum, 6));
    form->addRow(QStringLiteral("Sal&utation:"), lineFor(Field::Salutation, 8));
    form->addRow(QStringLiteral("&First name:"), lineFor(Field::FName, 0));
    form->addRow(QStringLiteral("&Last name:"), lineFor(Field::LName, 0));
    m_specialty = new QComboBox(panel);
    try {
        providerscreens::fillCodeBox(m_specialty, specialtyChoices(m_db));
    } catch (const DbError& e) {
        fail(QStringLiteral("The specialties could not be read."), e);
    }
    m_enter->watch(m_specialty);
    form->addRow(QStringLiteral("S&pecialty:"), m_specialty);
    form->addRow(QStringLiteral("&Address:"), lineFor(Field::Address, 0));
    form->addRow(QStringLiteral("Address line &2:"), lineFor(Field::Address2, 0));
    form->addRow(QStringLiteral("Ci&ty:"), lineFor(Field::City, 0));
    form->addRow(QStringLiteral("Pro&vince:"), lineFor(Field::Province, 2));
    QLineEdit* postalCode = lineFor(Field::PostalCode, 8);
    capitalsAsTyped(postalCode);
    form->addRow(QStringLiteral("Postal &code:"), postalCode);
    form->addRow(QStringLiteral("P&hone:"), lineFor(Field::Phone, 0));
    form->addRow(QStringLiteral("Fa&x:"), lineFor(Field::Fax, 0));
    panel->setMinimumWidth(400);
    return panel;
}

void frmDoctorsOther::fail(const QString& doing, const DbError& e) {
    m_prompter.error({doing, e.message()});
}

void frmDoctorsOther::search() {
    ReferringDoctorMatches matches;
    try {
        matches = ReferringDoctorSearch(m_db, m_settings).find(m_find->text());
    } catch (const DbError& e) {
        fail(QStringLiteral("The referring doctors could not be searched."), e);
    }
    {
        const QSignalBlocker quiet(m_list);
        m_list->clear();
        for (const ReferringDoctor& d : std::as_const(matches.rows)) {
            auto* item = new QTreeWidgetItem(m_list, {d.providerNum, d.displayName(), d.city});
            item->setData(0, recordlist::kKeyRole, d.providerNum);
        }
    }
    m_list->resizeColumnToContents(0);
    m_more->setVisible(matches.more);
    selectInList(m_savedNum);
}

void frmDoctorsOther::selectInList(const QString& providerNum) {
    recordlist::select(m_list, providerNum);
}

void frmDoctorsOther::listRowChanged(QTreeWidgetItem* current, QTreeWidgetItem*) {
    if (current == nullptr) {
        return;
    }
    // Saving may rebuild the list, which must not happen inside the list's own signal.
    const QString target = current->data(0, recordlist::kKeyRole).toString();
    QTimer::singleShot(0, this, guarded(this, [this, target] {
                           if (target != m_savedNum && !showNumber(target)) {
                               selectInList(m_savedNum);
                           }
                       }));
}

bool frmDoctorsOther::showNumber(const QString& providerNum) {
    if (!leaveShown()) {
        return false;
    }
    std::optional<ReferringDoctor> doctor;
    try {
        doctor = m_register.load(providerNum);
    } catch (const DbError& e) {
        fail(QStringLiteral("The referring doctor could not be read."), e);
    }
    if (doctor) {
        showOnFields(*doctor, doctor->providerNum);
    } else {
        ReferringDoctor fresh;
        fresh.providerNum = providerNum;
        showOnFields(fresh, QString());
        m_lines.value(Field::LName)->setFocus();
    }
    selectInList(m_savedNum);
    return true;
}

void frmDoctorsOther::newClicked() {
    if (!leaveShown()) {
        return;
    }
    showOnFields(ReferringDoctor{}, QString());
    selectInList(QString());
    m_lines.value(Field::ProviderNum)->setFocus();
}

bool frmDoctorsOther::saveClicked() {
    const std::optional<ReferringDoctor> stored = m_register.save(fromFields(), m_savedNum);
    if (!stored) {
        if (const auto field = m_register.badField()) {
            QWidget* widget = *field == Field::SpecCode ? static_cast<QWidget*>(m_specialty)
                                                        : m_lines.value(*field);
            widget->setFocus();
        }
        return false;
    }
    showOnFields(*stored, stored->providerNum);
    search();
    return true;
}

void frmDoctorsOther::deleteClicked() {
    if (!m_savedNum.isEmpty() && !m_register.remove(m_savedNum)) {
        return;
    }
    // A new doctor not yet saved is simply dropped.
    showOnFields(ReferringDoctor{}, QString());
    search();
    m_find->setFocus();
}

bool frmDoctorsOther::leaveShown() {
    return mayLeaveChanges(m_prompter, ReferringDoctorRegister::kLeaveTitle, changed(),
                           [this] { return saveClicked(); });
}

void frmDoctorsOther::reject() {
    if (leaveShown()) {
        QDialog::reject();
    }
}

void frmDoctorsOther::showOnFields(const ReferringDoctor& doctor, const QString& savedNum) {
    m_shown = doctor;
    m_savedNum = savedNum;
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        it.value()->setText(doctor.value(it.key()));
        it.value()->setCursorPosition(0);
    }
    providerscreens::setBoxCode(m_specialty, doctor.specCode);
}

ReferringDoctor frmDoctorsOther::fromFields() const {
    ReferringDoctor d;
    for (auto it = m_lines.cbegin(); it != m_lines.cend(); ++it) {
        d.setValue(it.key(), it.value()->text());
    }
    d.specCode = providerscreens::boxCode(m_specialty);
    return d;
}

bool frmDoctorsOther::changed() const {
    return fromFields().normalised() != m_shown.normalised();
}

}  // namespace brimsett
