#include "screens/frmAppDetails.h"

#include "appointments/AppointmentBook.h"
#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "patients/ProviderRegister.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace brimsett {

using namespace appointments;

namespace {

constexpr int kEnterSavesNotesSwitch = 20;
const QString kTitle = QStringLiteral("Appointment Details");

// The values a change is judged by, as the fields hold them.
QStringList comparable(const DetailsInput& in) {
    return {in.doctorId.trimmed(),      in.patientId.trimmed(),
            in.patientName.trimmed(),   in.patientPhone.trimmed(),
            in.date.trimmed(),          in.time.trimmed(),
            in.length.trimmed(),        in.slotType.trimmed(),
            QString::number(in.status), in.notes,
            in.serviceCode.trimmed(),   in.diagCode.trimmed()};
}

void setBoxData(QComboBox* box, const QString& data) {
    int index = box->findData(data, Qt::UserRole, Qt::MatchFixedString);
    if (index < 0 && !data.isEmpty()) {
        // A number the lists lack (a removed doctor, a purged type) is still shown as stored.
        box->addItem(data, data);
        index = box->count() - 1;
    }
    box->setCurrentIndex(std::max(index, 0));
}

// A field just wide enough for the widest text it takes, so that a narrow window never
// cuts a date or a time short.
QLineEdit* fittedLine(QWidget* parent, int maxLength, const QString& widest) {
    auto* line = new QLineEdit(parent);
    line->setMaxLength(maxLength);
    line->setFixedWidth(
        QFontMetrics(line->font()).horizontalAdvance(widest + QStringLiteral("WW")));
    return line;
}

}  // namespace

frmAppDetails::frmAppDetails(Database& db, AppSettings& settings, Prompter& prompter,
                             const SqlLog& log, QWidget* parent)
    : QDialog(parent),
      m_db(db),
      m_settings(settings),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_log(log) {
    setWindowTitle(kTitle);

    auto* save = new QPushButton(QStringLiteral("&Save"), this);
    save->setToolTip(QStringLiteral("Ctrl+S"));
    auto* close = new QPushButton(QStringLiteral("Close"), this);
    close->setToolTip(QStringLiteral("Esc"));
    for (QPushButton* button : {save, close}) {
        button->setAutoDefault(false);  // Enter belongs to the fields
    }
    connect(save, &QPushButton::clicked, this, guarded(this, &frmAppDetails::save));
    connect(close, &QPushButton::clicked, this, guarded(this, &frmAppDetails::reject));
    auto* saveKey = new QShortcut(QKeySequence::Save, this);
    connect(saveKey, &QShortcut::activated, this, guarded(this, &frmAppDetails::save));

    m_readOnly =
        new QLabel(QStringLiteral("Made by the lab requisition program: read only here."), this);
    m_readOnly->setStyleSheet(QStringLiteral("color: #a00000"));
    m_readOnly->hide();

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(save);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(patientBox());
    layout->addWidget(appointmentBox());
    layout->addStretch();
    layout->addWidget(m_readOnly);
    layout->addLayout(buttons);
    lineUpLabels();

    auto* enter = new EnterMovesOn(this);
    for (QWidget* field : std::initializer_list<QWidget*>{
             m_patientId, m_callerName, m_callerPhone, m_doctor, m_date, m_time, m_length,
             m_slotType, m_status, m_serviceCode, m_diagCode}) {
        enter->watch(field);
    }
    if (m_settings.option[kEnterSavesNotesSwitch]) {
        m_notes->installEventFilter(this);
    } else {
        enter->watch(m_notes);
    }
    m_status->installEventFilter(this);

    fillLists();
    startNew({});
    setMinimumWidth(560);
}

QWidget* frmAppDetails::patientBox() {
    auto* box = new QGroupBox(QStringLiteral("Patient"), this);
    auto* form = new QFormLayout(box);
    m_patientId = fittedLine(box, 10, QStringLiteral("0000000000"));
    m_patientId->setToolTip(QStringLiteral("Empty for a caller not registered yet"));
    m_patientLine = new QLabel(box);
    m_patientLine->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* idRow = new QHBoxLayout;
    idRow->addWidget(m_patientId);
    idRow->addWidget(m_patientLine, 1);
    form->addRow(QStringLiteral("Patient &number:"), idRow);
    static_cast<QLabel*>(form->labelForField(idRow))->setBuddy(m_patientId);
    m_callerName = recordlist::sizedLine(box, 50, 0);
    m_callerPhone = recordlist::sizedLine(box, 20, 20);
    form->addRow(QStringLiteral("Na&me:"), m_callerName);
    form->addRow(QStringLiteral("P&hone:"), m_callerPhone);
    connect(m_patientId, &QLineEdit::textChanged, this,
            guarded(this, &frmAppDetails::showPatientLine));
    return box;
}

QWidget* frmAppDetails::appointmentBox() {
    auto* box = new QGroupBox(QStringLiteral("Appointment"), this);
    auto* form = new QFormLayout(box);
    m_doctor = new QComboBox(box);
    m_date = fittedLine(box, 10, QStringLiteral("0000/00/00"));
    m_date->setPlaceholderText(QStringLiteral("YYYY/MM/DD"));
    m_time = fittedLine(box, 8, QStringLiteral("00:00 am"));
    m_time->setPlaceholderText(QStringLiteral("9:15 am"));
    m_length = fittedLine(box, 4, QStringLiteral("0000"));
    m_slotType = new QComboBox(box);
    m_status = new QComboBox(box);
    m_status->addItems(detailsStatusNames());
    m_status->setToolTip(
        QStringLiteral("A letter picks a status: O Booked, C Confirmed, "
                       "W Waiting, S Seen, N No Show, B Billed, blank (None)"));
    m_notes = recordlist::sizedLine(box, 250, 0);
    m_serviceCode = fittedLine(box, 5, QStringLiteral("WWWWW"));
    m_diagCode = fittedLine(box, 4, QStringLiteral("WWWW"));

    auto* when = new QHBoxLayout;
    when->addWidget(m_date);
    auto* timeLabel = new QLabel(QStringLiteral("&Time:"), box);
    timeLabel->setBuddy(m_time);
    when->addSpacing(12);
    when->addWidget(timeLabel);
    when->addWidget(m_time);
    auto* lengthLabel = new QLabel(QStringLiteral("&Length:"), box);
    lengthLabel->setBuddy(m_length);
    when->addSpacing(12);
    when->addWidget(lengthLabel);
    when->addWidget(m_length);
    when->addWidget(new QLabel(QStringLiteral("min"), box));
    when->addStretch();

    auto* codes = new QHBoxLayout;
    codes->addWidget(m_serviceCode);
    auto* diagLabel = new QLabel(QStringLiteral("Dia&gnostic code:"), box);
    diagLabel->setBuddy(m_diagCode);
    codes->addSpacing(12);
    codes->addWidget(diagLabel);
    codes->addWidget(m_diagCode);
    codes->addStretch();

    form->addRow(QStringLiteral("&Doctor:"), m_doctor);
    form->addRow(QStringLiteral("D&ate:"), when);
    static_cast<QLabel*>(form->labelForField(when))->setBuddy(m_date);
    form->addRow(QStringLiteral("T&ype:"), m_slotType);
    form->addRow(QStringLiteral("Stat&us:"), m_status);
    form->addRow(QStringLiteral("N&otes:"), m_notes);
    form->addRow(QStringLiteral("Se&rvice code:"), codes);
    static_cast<QLabel*>(form->labelForField(codes))->setBuddy(m_serviceCode);
    connect(m_slotType, &QComboBox::activated, this, guarded(this, &frmAppDetails::slotTypeChosen));
    return box;
}

void frmAppDetails::lineUpLabels() {
    // One label width for both boxes, so that their fields start in one column.
    QList<QWidget*> labels;
    for (QFormLayout* form : findChildren<QFormLayout*>()) {
        for (int row = 0; row < form->rowCount(); ++row) {
            if (QLayoutItem* label = form->itemAt(row, QFormLayout::LabelRole)) {
                labels << label->widget();
            }
        }
    }
    int width = 0;
    for (QWidget* label : labels) {
        width = std::max(width, label->sizeHint().width());
    }
    for (QWidget* label : labels) {
        label->setMinimumWidth(width);
    }
}

void frmAppDetails::fillLists() {
    m_doctor->clear();
    m_doctor->addItem(QString(), QString());
    for (const Provider& p : ProviderRegister(m_db, m_settings, m_prompter, m_log).list()) {
        m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
    }
    m_slotType->clear();
    m_slotType->addItem(QString(), QString());
    for (const SlotType& type : LoadSlotTypes(m_db)) {
        m_slotType->addItem(type.name, QString::number(type.id));
    }
}

bool frmAppDetails::showAppointment(qint64 appId) {
    AppointmentStore store(m_db);
    std::optional<Appointment> stored = store.load(appId);
    if (!stored || !mayLeaveCurrent()) {
        return false;
    }
    // Saving on the way out may have changed the one asked for.
    stored = store.load(appId).value_or(*stored);
    showOnFields(DetailsInput::of(*stored));
    m_readOnly->setVisible(store.isRequisition(appId));
    return true;
}

void frmAppDetails::startNew(const DetailsInput& preset) {
    DetailsInput fresh = preset;
    fresh.appId = 0;
    if (fresh.status == 0) {
        fresh.status = 1;  // a booking made at the desk is Booked unless told otherwise
    }
    showOnFields(fresh);
    m_readOnly->hide();
    m_patientId->setFocus();
}

bool frmAppDetails::mayLeaveCurrent() {
    return mayLeaveChanges(m_prompter, kTitle, changed(), [this] { return save(); });
}

void frmAppDetails::reject() {
    if (mayLeaveCurrent()) {
        QDialog::reject();
    }
}

bool frmAppDetails::save() {
    DetailsInput input = fromFields();
    fillFromPatient(m_db, input);  // the book shows a registered patient's name and phone
    const std::optional<qint64> appId =
        AppointmentBook(m_db, m_prompter, m_log, m_card).save(input);
    if (!appId) {
        return false;
    }
    if (const std::optional<Appointment> stored = AppointmentStore(m_db).load(*appId)) {
        showOnFields(DetailsInput::of(*stored));
    }
    emit saved(*appId);
    return true;
}

void frmAppDetails::showOnFields(const DetailsInput& in) {
    m_shown = in;
    m_patientId->setText(in.patientId);
    showPatientLine();  // also when the number stays as it was
    m_callerName->setText(in.patientName);
    m_callerPhone->setText(in.patientPhone);
    setBoxData(m_doctor, in.doctorId);
    m_date->setText(in.date);
    m_time->setText(in.time);
    m_length->setText(in.length);
    setBoxData(m_slotType, in.slotType);
    m_status->setCurrentIndex(std::clamp(in.status, 0, m_status->count() - 1));
    m_notes->setText(in.notes);
    m_serviceCode->setText(in.serviceCode);
    m_diagCode->setText(in.diagCode);
    for (QLineEdit* line : findChildren<QLineEdit*>()) {
        line->setCursorPosition(0);
    }
    // What the fields show is the record as shown, so a list that lacks it is no change.
    m_shown = fromFields();
    m_shown.appId = in.appId;
    m_shown.menuPosition = in.menuPosition;
    m_shown.deleted = in.deleted;
}

DetailsInput frmAppDetails::fromFields() const {
    DetailsInput in;
    in.appId = m_shown.appId;
    in.menuPosition = m_shown.menuPosition;
    in.deleted = m_shown.deleted;
    in.patientId = m_patientId->text().trimmed();
    in.patientName = m_callerName->text();
    in.patientPhone = m_callerPhone->text();
    in.doctorId = m_doctor->currentData().toString();
    in.date = m_date->text();
    in.time = m_time->text();
    in.length = m_length->text();
    in.slotType = m_slotType->currentData().toString();
    in.status = m_status->currentIndex();
    in.notes = m_notes->text();
    in.serviceCode = m_serviceCode->text();
    in.diagCode = m_diagCode->text();
    return in;
}

void frmAppDetails::showPatientLine() {
    const std::optional<PatientShown> patient = shownPatient(m_db, m_patientId->text());
    // A registered patient's name and phone come from the patient's record when saved.
    m_callerName->setEnabled(!patient);
    m_callerPhone->setEnabled(!patient);
    if (!patient) {
        m_patientLine->setText(m_patientId->text().trimmed().isEmpty()
                                   ? QStringLiteral("Caller not registered: name and phone")
                                   : QStringLiteral("No such patient"));
        return;
    }
    QStringList parts{patient->line};
    if (!patient->hPhone.trimmed().isEmpty()) {
        parts << patient->hPhone.trimmed();
    }
    parts << QStringLiteral("DOB: ") + datetext::slashed(patient->dob);
    m_patientLine->setText(parts.join(QStringLiteral("   ")));
}

void frmAppDetails::slotTypeChosen(int index) {
    const std::optional<SlotType> type =
        slotTypeById(m_db, m_slotType->itemData(index).toString().toInt());
    if (!type) {
        return;
    }
    DetailsInput in = fromFields();
    chooseSlotType(in, *type);
    m_length->setText(in.length);
    m_serviceCode->setText(in.serviceCode);
    m_diagCode->setText(in.diagCode);
}

bool frmAppDetails::changed() const {
    return comparable(fromFields()) != comparable(m_shown);
}

bool frmAppDetails::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return QDialog::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    const bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier ||
                       key->modifiers() == Qt::ShiftModifier;
    if (watched == m_status && plain && key->text().size() == 1) {
        if (const std::optional<int> status = statusForLetter(key->text().front())) {
            m_status->setCurrentIndex(*status);
            return true;
        }
    }
    if (watched == m_notes && plain &&
        (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter)) {
        guarded(this, &frmAppDetails::save)();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace brimsett
