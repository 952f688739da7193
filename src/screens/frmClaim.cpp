#include "screens/frmClaim.h"

#include "appointments/BookBilling.h"
#include "claims/ClaimEntryRecord.h"
#include "claims/ClaimSave.h"
#include "claims/ClaimStore.h"
#include "claims/PayProgram.h"
#include "foundation/ActionRegistry.h"
#include "foundation/AppSettings.h"
#include "foundation/DateText.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "foundation/UnsavedChanges.h"
#include "ministry/ThirdPartyRegister.h"
#include "patients/HealthNumbers.h"
#include "patients/ProviderRegister.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/ThirdPartyScreens.h"
#include "screens/frmClaimGrid.h"
#include "screens/frmClaimPending.h"

#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStatusBar>
#include <QVBoxLayout>

namespace brimsett {

frmClaim::frmClaim(Database& db, AppSettings& settings, const ClaimEntryOptions& options,
                   Prompter& prompter, const Clock& clock, const SqlLog& log, MoneyFormat money,
                   ActionRegistry& actions, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_options(options),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_clock(clock),
      m_log(log),
      m_money(money),
      m_actions(actions),
      m_cells(db, options, money),
      m_register(db, settings, m_prompter, clock, log),
      m_search(db, settings) {
    setWindowTitle(kTitle);
    auto* top = new QWidget;
    auto* topLayout = new QVBoxLayout(top);
    topLayout->setContentsMargins(0, 0, 0, 0);
    topLayout->addWidget(buildHeader());
    m_grid = new frmClaimGrid(m_cells,
                              {[this] {
                                   return payprog::claimType(m_program->currentIndex() >= 0
                                                                 ? m_program->currentText()
                                                                 : QString());
                               },
                               [this] { return specialty(); }},
                              settings, clock, m_prompter, money);
    // Small enough for a 600-pixel screen; the splitter gives the rows more room on a larger one.
    m_grid->setMinimumHeight(m_grid->verticalHeader()->defaultSectionSize() * 4);
    topLayout->addWidget(m_grid, 1);
    m_pending = new frmClaimPending(db, settings, m_prompter, clock, log, money);
    auto* halves = new QSplitter(Qt::Vertical);
    halves->setChildrenCollapsible(false);
    halves->addWidget(top);
    halves->addWidget(m_pending);
    halves->setStretchFactor(0, 3);
    halves->setStretchFactor(1, 2);
    m_status = new QStatusBar;
    m_status->setSizeGripEnabled(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(halves, 1);
    layout->addWidget(buildButtons());

    connect(m_grid, &frmClaimGrid::note, this, guarded(this, &frmClaim::setStatus));
    connect(m_pending, &frmClaimPending::note, this, guarded(this, &frmClaim::setStatus));
    connect(m_pending, &frmClaimPending::openRequested, this, guarded(this, &frmClaim::openClaim));
    connect(m_pending, &frmClaimPending::claimDeleted, this,
            guarded(this, &frmClaim::claimDeleted));
    m_pending->setLeaveOpenClaim([this] {
        if (!m_base.claimId) {
            return true;
        }
        if (!mayLeaveCurrent()) {
            return false;
        }
        startNew();
        return true;
    });
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            guarded(this, &QWidget::close));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), this), &QShortcut::activated, this,
            guarded(this, &frmClaim::save));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_N), this), &QShortcut::activated, this,
            guarded(this, &frmClaim::newClicked));

    loadProviders();
    loadPayers();
    orderTabs();
    m_provider->setCurrentIndex(
        m_provider->findData(m_settings.lastDoctor, Qt::UserRole, Qt::MatchFixedString));
    startNew();
    resize(1020, 720);
}

frmClaim::~frmClaim() = default;

void frmClaim::loadProviders() {
    try {
        m_providers = ProviderRegister(m_db, m_settings, m_prompter, m_log).list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    for (const Provider& p : std::as_const(m_providers)) {
        m_provider->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
    }
    m_pending->setProviders(m_providers);
}

void frmClaim::loadPayers() {
    const QVariant chosen = m_payer->currentData();
    QList<ThirdPartyChoice> choices;
    try {
        choices = thirdPartyChoices(m_db);
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("The third party payers could not be read."), e.message()});
    }
    const QSignalBlocker quiet(m_payer);
    m_payer->clear();
    for (const ThirdPartyChoice& choice : std::as_const(choices)) {
        m_payer->addItem(choice.text, choice.id);
    }
    m_payer->setCurrentIndex(chosen.isValid() ? m_payer->findData(chosen) : -1);
}

QString frmClaim::specialty() const {
    const QString doctorId = m_provider->currentData().toString();
    for (const Provider& p : m_providers) {
        if (p.doctorId == doctorId) {
            return p.specCode;
        }
    }
    return {};
}

ClaimEntry frmClaim::entryOnScreen() const {
    ClaimEntry entry = m_base;
    entry.doctorId = m_provider->currentData().toString();
    for (const Binding& b : m_bindings) {
        entry.*b.member = b.edit->text().trimmed();
    }
    entry.healthNum = hn::fromTyped(entry.healthNum);
    entry.versionCode = entry.versionCode.toUpper();
    entry.sex = entry.sex.toUpper();
    entry.province = entry.province.toUpper();
    entry.payProg = m_program->currentIndex() >= 0 ? m_program->currentText() : QString();
    const bool thirdParty = payprog::indexOf(entry.payProg) == payprog::ThirdParty;
    entry.thirdPartyId = thirdParty && m_payer->currentIndex() >= 0
                             ? QString::number(m_payer->currentData().toLongLong())
                             : QString();
    entry.sli = m_sli->currentText().trimmed().toUpper();
    entry.manualReview = m_manualReview->isChecked();
    entry.rows = m_grid->rows();
    return entry;
}

void frmClaim::putFields(const ClaimEntry& entry) {
    for (const Binding& b : m_bindings) {
        b.edit->setText(entry.*b.member);
        b.edit->setCursorPosition(0);
    }
    PatientEntry names;
    names.lName = entry.lName;
    names.fName = entry.fName;
    m_patientName->setText(names.displayName(m_settings.option[8]));
}

void frmClaim::putOnScreen(const ClaimEntry& entry) {
    m_base = entry;
    m_provider->setCurrentIndex(
        m_provider->findData(entry.doctorId, Qt::UserRole, Qt::MatchFixedString));
    putFields(entry);
    const int program = m_program->findText(entry.payProg);
    m_program->setCurrentIndex(entry.payProg.isEmpty() ? -1
                               : program >= 0          ? program
                                                       : int(payprog::ThirdParty));
    m_payer->setCurrentIndex(
        entry.thirdPartyId.isEmpty() ? -1 : m_payer->findData(entry.thirdPartyId.toLongLong()));
    programChanged();
    m_sli->setCurrentIndex(-1);
    m_sli->setEditText(entry.sli);
    m_manualReview->setChecked(entry.manualReview);
    m_grid->setRows(entry.rows);
    m_patient = PatientRegister::readId(entry.patientId);
    m_shownVersion = entry.versionCode.trimmed().toUpper();
    setWindowTitle(kTitle);
}

bool frmClaim::hasChanges() const {
    const ClaimEntry onScreen = entryOnScreen();
    // A new claim without items has nothing billed yet that leaving could lose.
    return !(onScreen == m_shown) && (m_shown.claimId || !onScreen.filledRows().isEmpty());
}

bool frmClaim::mayLeaveCurrent() {
    m_grid->commitOpenCell();
    return mayLeaveChanges(m_prompter, kTitle, hasChanges(), [this] { return save(); });
}

void frmClaim::startNew() {
    ClaimEntry fresh;
    fresh.doctorId = m_provider->currentData().toString();
    fresh.payProg = m_options.defClaim;
    fresh.sli = m_settings.lastSLI;
    putOnScreen(fresh);
    m_shown = entryOnScreen();
    focusStart();
}

void frmClaim::newClicked() {
    if (mayLeaveCurrent()) {
        startNew();
    }
}

bool frmClaim::startFromAppointment(const appointments::BillingStart& start) {
    if (!mayLeaveCurrent()) {
        return false;
    }
    startNew();
    m_provider->setCurrentIndex(
        m_provider->findData(start.doctorId, Qt::UserRole, Qt::MatchFixedString));
    m_patientId->setText(QString::number(start.patientId));
    if (!showPatient(start.patientId)) {
        m_prompter.tell(kTitle, {QString::fromLatin1(kNoSuchPatient)}, Icon::Information);
        m_patientId->selectAll();
        return false;
    }
    setStatus(
        m_provider->currentIndex() < 0
            ? QStringLiteral("Provider %1 is not on file: choose the provider.").arg(start.doctorId)
            : QStringLiteral("Billing appointment %1.").arg(start.appId));
    ItemEntry first;
    first.diagCode = start.diagCode;
    first.serviceDate = datetext::slashed(start.serviceDate);
    m_grid->setRows({first});
    if (!start.serviceCode.isEmpty()) {
        // As if typed at the desk: the code is completed, priced and takes its premiums.
        m_grid->item(0, frmClaimGrid::Code)->setText(start.serviceCode);
    }
    m_grid->setCurrentCell(0, start.serviceCode.isEmpty() ? frmClaimGrid::Code : frmClaimGrid::Fee);
    m_grid->setFocus();
    return true;
}

void frmClaim::focusStart() {
    QWidget* first = m_settings.option[14] ? static_cast<QWidget*>(m_provider) : m_patientId;
    first->setFocus();
}

void frmClaim::setStatus(const QString& text) {
    m_status->showMessage(text);
}

QString frmClaim::statusLine() const {
    return m_status->currentMessage();
}

void frmClaim::programChanged() {
    const bool thirdParty = m_program->currentIndex() == payprog::ThirdParty;
    m_payer->setEnabled(thirdParty);
    m_payers->setEnabled(thirdParty && m_actions.hasAction(kActionThirdParty));
}

void frmClaim::openPayers() {
    m_actions.runAction(kActionThirdParty);
    // The payer screen stays open beside this one; the list is read again on coming back.
    loadPayers();
}

void frmClaim::claimDeleted(qint64 claimId) {
    // The claim being edited is gone: what is on the screen can no longer be saved over it.
    if (m_base.claimId == claimId) {
        startNew();
    }
}

bool frmClaim::openClaim(qint64 claimId) {
    if (!mayLeaveCurrent()) {
        return false;
    }
    std::optional<ClaimRecord> claim;
    try {
        claim = ClaimStore(m_db, m_clock, m_log).load(claimId);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The claim could not be read."), e.message()});
        return false;
    }
    if (!claim || !claim->isPending()) {
        m_prompter.tell(kTitle, {QStringLiteral("Claim %1 is no longer pending.").arg(claimId)},
                        Icon::Information);
        m_pending->reload();
        return false;
    }
    putOnScreen(claimentry::fromRecord(*claim, m_money));
    m_shown = entryOnScreen();
    setWindowTitle(kTitle + QStringLiteral(" - Account ") + claim->acctNum);
    setStatus(QStringLiteral("Editing claim %1 (account %2).").arg(claimId).arg(claim->acctNum));
    focusStart();
    return true;
}

bool frmClaim::save() {
    m_grid->commitOpenCell();
    ClaimEntry entry = entryOnScreen();
    // The register follows a version code changed here on a patient it supplied.
    const bool versionEdited = m_patient && entry.patientId == QString::number(*m_patient) &&
                               entry.versionCode != m_shownVersion;
    std::optional<ClaimSave::Saved> saved;
    try {
        ClaimSave saver(m_db, m_prompter, m_clock, m_settings, m_options, m_log, m_money);
        saved = saver.save(entry, versionEdited);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The claim could not be saved."), e.message()});
        return false;
    }
    if (!saved) {
        // The checks may have chosen the program, asked for a manual review or priced a
        // premium: the screen shows the claim as they left it.
        const int row = m_grid->currentRow();
        const int column = m_grid->currentColumn();
        m_program->setCurrentIndex(m_program->findText(entry.payProg));
        m_manualReview->setChecked(entry.manualReview);
        m_grid->setRows(entry.rows);
        m_grid->setCurrentCell(std::max(0, row), std::max(0, column));
        return false;
    }
    startNew();
    m_patientId->setFocus();
    setStatus(saved->statusLine);
    m_pending->reload();
    return true;
}

void frmClaim::changeEvent(QEvent* event) {
    // Back from the payer screen, perhaps with a new payer.
    if (event->type() == QEvent::ActivationChange && isActiveWindow() && m_payer->isEnabled()) {
        loadPayers();
    }
    QWidget::changeEvent(event);
}

void frmClaim::closeEvent(QCloseEvent* event) {
    if (mayLeaveCurrent()) {
        event->accept();
    } else {
        event->ignore();
    }
}

}  // namespace brimsett
