#include "screens/frmPatients.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "patients/HealthNumbers.h"
#include "patients/NameCase.h"
#include "patients/PatientValidation.h"
#include "patients/ReferringDoctorRegister.h"
#include "patients/ReferringDoctorSearch.h"
#include "screens/EnterMovesOn.h"
#include "screens/FieldCase.h"
#include "screens/RecordList.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

enum FindBy { ByName, ByHealthNumber, ByPhone, ById };

const QString kTitle = QStringLiteral("Patients");

// Fields laid out in a grid, two label-field pairs to a row.
class FieldGrid {
public:
    explicit FieldGrid(QGroupBox* box) : m_grid(new QGridLayout(box)) {
        m_grid->setColumnStretch(1, 1);
        m_grid->setColumnStretch(3, 1);
    }
    void add(const QString& label, QWidget* field, int span = 1) {
        if (m_column + span > 2) {
            next();
        }
        auto* caption = new QLabel(label);
        caption->setBuddy(field);
        m_grid->addWidget(caption, m_row, m_column * 2);
        m_grid->addWidget(field, m_row, m_column * 2 + 1, 1, span * 2 - 1);
        m_column += span;
    }
    void next() {
        ++m_row;
        m_column = 0;
    }
    // A line of its own across the box, under the fields so far.
    void addLine(QWidget* widget) {
        next();
        m_grid->addWidget(widget, m_row, 0, 1, 4);
        next();
    }

private:
    QGridLayout* m_grid;
    int m_row = 0;
    int m_column = 0;
};

}  // namespace

frmPatients::frmPatients(Database& db, const AppSettings& settings, Prompter& prompter,
                         const Clock& clock, const SqlLog& log, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_log(log),
      m_clock(clock),
      m_register(db, settings, m_prompter, clock, log),
      m_search(db, settings) {
    setWindowTitle(kTitle);
    // Enter moves on through the fields, as the desk types a patient in one go.
    m_enter = new EnterMovesOn(this);
    // On a small screen the fields scroll; the buttons below them stay in sight. The desk may
    // move the line between the list of found patients and the fields.
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidget(buildRecord());
    auto* split = new QSplitter(Qt::Vertical);
    split->setChildrenCollapsible(false);
    split->addWidget(buildSearch());
    split->addWidget(scroll);
    split->setStretchFactor(0, 2);
    split->setStretchFactor(1, 3);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(split, 1);
    layout->addWidget(buildButtons());

    auto* escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, guarded(this, &QWidget::close));
    auto* saveKey = new QShortcut(QKeySequence::Save, this);
    connect(saveKey, &QShortcut::activated, this, guarded(this, &frmPatients::save));
    auto* findKey = new QShortcut(QKeySequence(Qt::Key_F3), this);
    connect(findKey, &QShortcut::activated, this, guarded(this, [this] {
                m_findText->setFocus();
                m_findText->selectAll();
            }));
    startNew();
    resize(900, 680);
}

QWidget* frmPatients::buildSearch() {
    auto* box = new QGroupBox(QStringLiteral("Find a patient (F3)"));
    m_findBy = new QComboBox;
    m_findBy->addItem(QStringLiteral("Name (Last, First)"), ByName);
    m_findBy->addItem(QStringLiteral("Health Number"), ByHealthNumber);
    m_findBy->addItem(QStringLiteral("Phone"), ByPhone);
    m_findBy->addItem(QStringLiteral("Patient ID"), ById);
    m_findBy->setObjectName(QStringLiteral("findBy"));
    m_findText = new QLineEdit;
    m_findText->setObjectName(QStringLiteral("findText"));
    m_findText->setPlaceholderText(QStringLiteral("e.g. Smi*, Jo  -  * any text, ? one letter"));
    // Without an access letter: F3 reaches the box and Enter there finds.
    auto* findButton = new QPushButton(QStringLiteral("Find"));
    connect(findButton, &QPushButton::clicked, this, guarded(this, &frmPatients::find));
    connect(m_findText, &QLineEdit::returnPressed, this, guarded(this, &frmPatients::find));

    m_results = recordlist::make(
        box,
        {QStringLiteral("ID"), QStringLiteral("Name"), QStringLiteral("Health Number"),
         QStringLiteral("Birth Date"), QStringLiteral("Phone")},
        1);
    // A busy desk looks through several namesakes at once, even on a small screen.
    const int rowHeight = m_results->fontMetrics().height() + 6;
    m_results->setMinimumHeight(m_results->header()->sizeHint().height() + 6 * rowHeight +
                                2 * m_results->frameWidth());
    m_results->installEventFilter(this);
    connect(m_results, &QTreeWidget::itemActivated, this, guarded(this, &frmPatients::openChosen));
    m_resultNote = new QLabel;

    auto* row = new QHBoxLayout;
    auto* byLabel = new QLabel(QStringLiteral("By:"));
    byLabel->setBuddy(m_findBy);
    row->addWidget(byLabel);
    row->addWidget(m_findBy);
    row->addWidget(m_findText, 1);
    row->addWidget(findButton);
    auto* layout = new QVBoxLayout(box);
    layout->addLayout(row);
    layout->addWidget(m_results);
    layout->addWidget(m_resultNote);
    return box;
}

QLineEdit* frmPatients::field(QString PatientEntry::*member, int maxLength, const QString& hint) {
    auto* edit = new QLineEdit;
    edit->setMaxLength(maxLength);
    edit->setPlaceholderText(hint);
    m_enter->watch(edit);
    m_bindings.push_back({member, edit});
    return edit;
}

QWidget* frmPatients::buildRecord() {
    const QString dateHint = QStringLiteral("YYYY/MM/DD");
    auto* record = new QWidget;
    auto* columns = new QGridLayout(record);
    columns->setContentsMargins(0, 0, 0, 0);

    auto* identity = new QGroupBox(QStringLiteral("Patient"));
    FieldGrid who(identity);
    m_id = field(&PatientEntry::patientId, 10);
    m_id->removeEventFilter(m_enter);  // Enter there looks the patient up
    m_lName = field(&PatientEntry::lName, 50);
    who.add(QStringLiteral("Patient &ID:"), m_id);
    m_state = new QLabel;
    who.add(QString(), m_state);
    who.add(QStringLiteral("&Last Name:"), m_lName);
    QLineEdit* fName = field(&PatientEntry::fName, 50);
    who.add(QStringLiteral("&First Name:"), fName);
    // Names typed in one case are given the capitals the desk would write by hand.
    for (QLineEdit* name : {m_lName, fName}) {
        connect(name, &QLineEdit::editingFinished, this,
                guarded(this, [name] { name->setText(nameCase(name->text())); }));
    }
    who.add(QStringLiteral("&Birth Date:"), field(&PatientEntry::dob, 10, dateHint));
    who.add(QStringLiteral("Se&x:"), field(&PatientEntry::sex, 1, QStringLiteral("M or F")));
    connect(m_id, &QLineEdit::returnPressed, this, guarded(this, &frmPatients::idEntered));
    connect(m_id, &QLineEdit::textEdited, this, guarded(this, &frmPatients::idTyped));

    auto* card = new QGroupBox(QStringLiteral("Health Card"));
    FieldGrid cardGrid(card);
    m_healthNum = field(&PatientEntry::healthNum, 12);
    m_province = field(&PatientEntry::province, 2, QStringLiteral("ON"));
    m_provinceName = new QLabel;
    m_healthNote = new QLabel;
    m_healthNote->setObjectName(QStringLiteral("healthNumberNote"));
    m_healthNote->setStyleSheet(QStringLiteral("color: #b00000;"));
    cardGrid.add(QStringLiteral("&Health Number:"), m_healthNum);
    cardGrid.add(QStringLiteral("&Version:"), field(&PatientEntry::versionCode, 2));
    cardGrid.add(QStringLiteral("Pr&ovince:"), m_province);
    cardGrid.add(QString(), m_provinceName);
    cardGrid.add(QStringLiteral("Expiry:"), field(&PatientEntry::expYear, 10, dateHint));
    cardGrid.addLine(m_healthNote);
    connect(m_healthNum, &QLineEdit::editingFinished, this,
            guarded(this, &frmPatients::healthNumberLeft));
    connect(m_province, &QLineEdit::textChanged, this,
            guarded(this, &frmPatients::provinceChanged));

    auto* address = new QGroupBox(QStringLiteral("Address"));
    FieldGrid where(address);
    where.add(QStringLiteral("&Address:"), field(&PatientEntry::address, 50), 2);
    where.add(QStringLiteral("Ci&ty:"), field(&PatientEntry::city, 30));
    QLineEdit* postalCode = field(&PatientEntry::postalCode, 10);
    capitalsAsTyped(postalCode);
    where.add(QStringLiteral("&Postal Code:"), postalCode);
    where.add(QStringLiteral("Co&untry:"), field(&PatientEntry::country, 30));
    where.next();
    where.add(QStringLiteral("Ho&me Phone:"), field(&PatientEntry::hPhone, 20));
    where.add(QStringLiteral("&Work Phone:"), field(&PatientEntry::wPhone, 20));

    auto* doctors = new QGroupBox(QStringLiteral("Doctors and Hospital"));
    FieldGrid care(doctors);
    // The doctor's name shows under the number; with switch 24 a name typed into the field
    // and Enter looks the number up.
    for (auto [member, label] :
         {std::pair{&PatientEntry::refDoc, QStringLiteral("&Referring Dr.:")},
          std::pair{&PatientEntry::famDoc, QStringLiteral("Famil&y Dr.:")}}) {
        QLineEdit* number = field(member, 6);
        number->installEventFilter(this);
        auto* name = new QLabel;
        m_doctorNames.insert(number, name);
        connect(number, &QLineEdit::textChanged, this,
                guarded(this, [this, number] { showDoctorName(number); }));
        care.add(label, number);
    }
    care.next();
    for (QLabel* name : m_doctorNames) {
        care.add(QString(), name);
    }
    care.add(QStringLiteral("Facility:"), field(&PatientEntry::facilityNum, 4));
    care.add(QStringLiteral("A&dmit Date:"), field(&PatientEntry::admitDate, 10, dateHint));
    care.add(QStringLiteral("Notes:"), field(&PatientEntry::notes, 200), 2);
    m_flag = new QCheckBox(QStringLiteral("Fla&g"));
    care.add(QString(), m_flag);

    // Written by the card validation exchange; shown so the desk sees the last answer.
    auto* check = new QGroupBox(QStringLiteral("Card Validation"));
    FieldGrid checkGrid(check);
    const auto shown = [this](QString PatientEntry::*member) {
        QLineEdit* edit = field(member, 50);
        edit->setReadOnly(true);
        edit->setFocusPolicy(Qt::NoFocus);
        m_cardFields << edit;
        return edit;
    };
    checkGrid.add(QStringLiteral("Checked:"), shown(&PatientEntry::hnCheckDate));
    checkGrid.add(QStringLiteral("Response:"), shown(&PatientEntry::response));
    checkGrid.add(QStringLiteral("Status:"), shown(&PatientEntry::status));
    checkGrid.add(QStringLiteral("Batch:"), shown(&PatientEntry::batchId));

    columns->addWidget(identity, 0, 0);
    columns->addWidget(card, 0, 1);
    columns->addWidget(address, 1, 0);
    columns->addWidget(doctors, 1, 1);
    columns->addWidget(check, 2, 0, 1, 2);
    columns->setRowStretch(3, 1);
    applySwitches();
    return record;
}

QWidget* frmPatients::buildButtons() {
    auto* bar = new QWidget;
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(0, 0, 0, 0);
    auto* newButton = new QPushButton(QStringLiteral("&New"));
    auto* saveButton = new QPushButton(QStringLiteral("&Save"));
    m_delete = new QPushButton(QStringLiteral("D&elete Account"));
    auto* closeButton = new QPushButton(QStringLiteral("&Close"));
    saveButton->setToolTip(QStringLiteral("Ctrl+S"));
    closeButton->setToolTip(QStringLiteral("Esc"));
    connect(newButton, &QPushButton::clicked, this, guarded(this, &frmPatients::newClicked));
    connect(saveButton, &QPushButton::clicked, this, guarded(this, &frmPatients::save));
    connect(m_delete, &QPushButton::clicked, this, guarded(this, &frmPatients::deleteAccount));
    connect(closeButton, &QPushButton::clicked, this, guarded(this, &QWidget::close));
    for (QPushButton* b : {newButton, saveButton, m_delete, closeButton}) {
        b->setAutoDefault(false);
    }
    row->addWidget(newButton);
    row->addStretch();
    row->addWidget(saveButton);
    row->addWidget(m_delete);
    row->addWidget(closeButton);
    return bar;
}

void frmPatients::applySwitches() {
    m_flag->setVisible(m_settings.option[25]);
}

PatientEntry frmPatients::entryOnScreen() const {
    // Card answers are never edited here, so they are carried over from what was shown.
    PatientEntry entry = m_shown;
    for (const Binding& b : m_bindings) {
        if (!m_cardFields.contains(b.edit)) {
            entry.*b.member = b.edit->text().trimmed();
        }
    }
    entry.healthNum = hn::fromTyped(entry.healthNum);
    entry.province = entry.province.toUpper();
    entry.sex = entry.sex.toUpper();
    entry.versionCode = entry.versionCode.toUpper();
    entry.flag = m_flag->isChecked();
    return entry;
}

void frmPatients::putOnScreen(const PatientEntry& entry) {
    for (const Binding& b : m_bindings) {
        b.edit->setText(entry.*b.member);
        b.edit->setCursorPosition(0);
    }
    m_flag->setChecked(entry.flag);
    m_healthNote->clear();
    m_shown = entry;
    m_state->setText(m_storedId
                         ? QString()
                         : QStringLiteral("New patient (next ID %1)").arg(m_register.nextId()));
    m_delete->setEnabled(m_storedId.has_value());
    applySwitches();
}

bool frmPatients::showPatient(qint64 id) {
    std::optional<PatientEntry> entry = m_register.load(id);
    if (!entry) {
        return false;
    }
    m_storedId = id;
    putOnScreen(*entry);
    setWindowTitle(kTitle + QStringLiteral(" - ") + entry->displayName(m_settings.option[8]));
    m_lName->setFocus();
    return true;
}

void frmPatients::startNew(const PatientEntry& prefill) {
    m_storedId.reset();
    PatientEntry entry = prefill;
    if (entry.province.isEmpty()) {
        entry.province = QStringLiteral("ON");
    }
    putOnScreen(entry);
    // What was filled in for the new patient counts as typed, so leaving it still asks.
    m_shown = PatientEntry{};
    m_shown.province = entry.province;
    setWindowTitle(kTitle + QStringLiteral(" - New Patient"));
    m_id->setFocus();
}

bool frmPatients::hasChanges() const {
    PatientEntry onScreen = entryOnScreen();
    // A number in the id field alone is a look-up, not a patient worth saving.
    onScreen.patientId = m_shown.patientId;
    return !(onScreen == m_shown);
}

bool frmPatients::mayLeaveCurrent() {
    // A refused save keeps the patient on the screen to be corrected.
    return mayLeaveChanges(m_prompter, kTitle, hasChanges(), [this] { return save(); });
}

void frmPatients::idTyped(const QString& text) {
    const auto letter =
        std::find_if(text.begin(), text.end(), [](QChar c) { return c.isLetter(); });
    if (!m_settings.option[6] || letter == text.end()) {
        return;
    }
    // The desk began the name in the id field: the letters go on in the last name.
    const qsizetype at = letter - text.begin();
    m_id->setText(text.left(at));
    m_lName->setText(text.mid(at));
    m_lName->setFocus();
    m_lName->end(false);
}

void frmPatients::idEntered() {
    const QString typed = m_id->text().trimmed();
    // On a new patient being typed in, a number is the id the patient is to get.
    const bool fillingNew = !m_storedId && hasChanges() && !entryOnScreen().lName.isEmpty();
    if (typed.isEmpty() || fillingNew || (m_storedId && typed == QString::number(*m_storedId))) {
        m_lName->setFocus();
        return;
    }
    const std::optional<qint64> id = PatientRegister::readId(typed);
    if (!id) {
        m_prompter.tell(kTitle, {QString::fromLatin1(kInvalidNumber)}, Icon::Warning);
        m_id->selectAll();
        return;
    }
    if (!m_register.exists(*id)) {
        m_prompter.tell(kTitle, {QString::fromLatin1(kNoSuchPatient)}, Icon::Information);
        if (m_storedId) {
            m_id->setText(QString::number(*m_storedId));
            m_id->selectAll();
        } else {
            // The number stays: typing the patient in now gives it as the new patient's id,
            // which the save offers to use.
            m_lName->setFocus();
        }
        return;
    }
    if (mayLeaveCurrent()) {
        showPatient(*id);
    }
}

void frmPatients::find() {
    const QString typed = m_findText->text().trimmed();
    PatientMatches matches;
    switch (m_findBy->currentData().toInt()) {
        case ByName: {
            const int comma = typed.indexOf(QLatin1Char(','));
            matches = comma < 0 ? m_search.byName(typed)
                                : m_search.byName(typed.left(comma).trimmed(),
                                                  typed.mid(comma + 1).trimmed());
            break;
        }
        case ByHealthNumber:
            matches = m_search.byHealthNumber(hn::fromTyped(typed));
            break;
        case ByPhone:
            matches = m_search.byPhone(typed);
            break;
        case ById: {
            const std::optional<qint64> id = PatientRegister::readId(typed);
            if (!id) {
                m_prompter.tell(kTitle, {QString::fromLatin1(kInvalidNumber)}, Icon::Warning);
                return;
            }
            matches = m_search.byId(*id);
            break;
        }
    }
    m_results->clear();
    for (const PatientMatch& match : matches.rows) {
        auto* item = new QTreeWidgetItem(m_results, {QString::number(match.id), match.name,
                                                     match.healthNumber, match.dob, match.phone});
        item->setData(0, recordlist::kKeyRole, match.id);
    }
    for (int column = 0; column < m_results->columnCount(); ++column) {
        if (column != 1) {
            m_results->resizeColumnToContents(column);
        }
    }
    m_resultNote->setText(
        matches.rows.isEmpty() ? QStringLiteral("No patient found.")
        : matches.more ? QStringLiteral("The first %1 patients; type more to narrow the list.")
                             .arg(matches.rows.size())
                       : QStringLiteral("%1 patient(s) found.").arg(matches.rows.size()));
    if (!matches.rows.isEmpty()) {
        m_results->setCurrentItem(m_results->topLevelItem(0));
        m_results->setFocus();
    }
}

void frmPatients::openChosen() {
    QTreeWidgetItem* item = m_results->currentItem();
    if (item == nullptr || !mayLeaveCurrent()) {
        return;
    }
    if (!showPatient(item->data(0, recordlist::kKeyRole).toLongLong())) {
        m_prompter.tell(kTitle, {QString::fromLatin1(kNoSuchPatient)}, Icon::Information);
    }
}

bool frmPatients::save() {
    const PatientEntry entry = entryOnScreen();
    const PatientRegister::SaveResult result =
        m_storedId ? m_register.saveChanges(*m_storedId, entry) : m_register.saveNew(entry);
    if (result.outcome == PatientRegister::Outcome::Unchanged) {
        return true;
    }
    if (result.outcome != PatientRegister::Outcome::Saved) {
        return false;
    }
    showPatient(result.savedId);
    m_state->setText(QStringLiteral("Saved."));
    emit patientSaved(result.savedId);
    return true;
}

void frmPatients::deleteAccount() {
    if (m_storedId && m_register.deleteAccount(*m_storedId)) {
        m_results->clear();
        m_resultNote->clear();
        startNew();
    }
}

void frmPatients::newClicked() {
    if (mayLeaveCurrent()) {
        startNew();
    }
}

void frmPatients::healthNumberLeft() {
    const QString number = hn::fromTyped(m_healthNum->text());
    // A number typed without a province most likely belongs where its form says.
    if (m_province->text().trimmed().isEmpty()) {
        m_province->setText(hn::guessProvince(number));
    }
    checkHealthNumber();
}

void frmPatients::checkHealthNumber() {
    // Told beside the field rather than in a box, so the keys go on to wherever the desk
    // went; the save refuses the number all the same.
    const PatientEntry entry = entryOnScreen();
    const QStringList problems = entry.healthNum.isEmpty()
                                     ? QStringList()
                                     : PatientValidation(m_db, m_settings, m_prompter, m_clock)
                                           .healthNumberProblems(entry, m_storedId);
    m_healthNote->setText(problems.join(QLatin1Char('\n')));
}

void frmPatients::provinceChanged() {
    const QString code = m_province->text().trimmed().toUpper();
    QString name;
    if (code.size() == 2) {
        name = m_db.scalar(QStringLiteral("Select ProvName From provincodes Where ProvinCode=?"),
                           {code}, QStringLiteral("reading the province name"))
                   .toString();
    }
    m_provinceName->setText(name);
    if (!m_healthNote->text().isEmpty()) {
        checkHealthNumber();  // the number may be right for the province now given
    }
}

void frmPatients::showDoctorName(QLineEdit* number) {
    const QString typed = number->text().trimmed();
    std::optional<ReferringDoctor> doctor;
    if (typed.size() == 6 && hn::allDigits(typed)) {
        doctor = ReferringDoctorRegister(m_db, m_prompter, m_log).load(typed);
    }
    m_doctorNames.value(number)->setText(
        doctor ? doctor->displayName()
               : (typed.size() == 6 ? QStringLiteral("(not in Referring Doctors)") : QString()));
}

bool frmPatients::pickDoctor(QLineEdit* number) {
    const QString typed = number->text().trimmed();
    if (!m_settings.option[24] || typed.isEmpty() || typed.front().isDigit()) {
        return false;
    }
    const ReferringDoctorMatches found = ReferringDoctorSearch(m_db, m_settings).find(typed);
    if (found.rows.size() == 1) {
        number->setText(found.rows.first().providerNum);
        return false;  // and on to the next field
    }
    if (found.rows.isEmpty()) {
        m_doctorNames.value(number)->setText(QStringLiteral("No referring doctor found."));
        return true;
    }
    QMenu choices(this);
    for (const ReferringDoctor& doctor : found.rows) {
        QAction* choice =
            choices.addAction(doctor.providerNum + QStringLiteral("  ") + doctor.displayName() +
                              QStringLiteral("  ") + doctor.city);
        choice->setData(doctor.providerNum);
    }
    if (QAction* chosen = choices.exec(number->mapToGlobal(QPoint(0, number->height())))) {
        number->setText(chosen->data().toString());
    }
    return true;
}

bool frmPatients::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        if (enter && watched == m_results) {
            openChosen();
            return true;
        }
        auto* number = qobject_cast<QLineEdit*>(watched);
        if (enter && m_doctorNames.contains(number)) {
            return pickDoctor(number);
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmPatients::closeEvent(QCloseEvent* event) {
    if (mayLeaveCurrent()) {
        event->accept();
    } else {
        event->ignore();
    }
}

}  // namespace brimsett
