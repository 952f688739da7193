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

const QString kTitle = QStringLiteral("Patients");

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

void frmPatients::setCardCheck(CardCheck check) {
    m_cardCheck = std::move(check);
    m_checkCard->setVisible(static_cast<bool>(m_cardCheck));
}

void frmPatients::cardAnswered(const QString& healthNum) {
    if (!m_storedId || hn::fromTyped(m_healthNum->text()) != healthNum) {
        return;
    }
    if (!hasChanges()) {
        QWidget* focused = focusWidget();
        showPatient(*m_storedId);
        if (focused) {
            focused->setFocus();
        }
        return;
    }
    const std::optional<PatientEntry> stored = m_register.load(*m_storedId);
    if (!stored) {
        return;
    }
    for (const Binding& b : m_bindings) {
        if (m_cardFields.contains(b.edit)) {
            b.edit->setText((*stored).*b.member);
            m_shown.*b.member = (*stored).*b.member;
        }
    }
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
