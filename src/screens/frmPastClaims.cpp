#include "screens/frmPastClaims.h"

#include "claims/ClaimStore.h"
#include "claims/PayProgram.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/ThirdPartyRegister.h"
#include "patients/ProviderRegister.h"
#include "reports/Report.h"
#include "screens/PastClaimsPatients.h"
#include "screens/ReportPreview.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"
#include "screens/frmPastClaimsReject.h"

#include <QColor>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

constexpr int kClaimRole = Qt::UserRole;
constexpr int kItemRole = Qt::UserRole + 1;

const QStringList& statusNames() {
    // In the order of pastclaims::StatusFilter.
    static const QStringList names = {QStringLiteral("All"),
                                      QStringLiteral("Pending"),
                                      QStringLiteral("Out./Submitted"),
                                      QStringLiteral("Rejected"),
                                      QStringLiteral("Rejected Closed"),
                                      QStringLiteral("Paid")};
    return names;
}

// A claim the ministry answered: one sent in a batch, not a direct or third party claim
// (whose batch is their program's marker); only such a claim goes back to pending.
bool sentToMinistry(const pastclaims::PastItem& item) {
    return item.batchId != kPendingBatch &&
           item.batchId != batchIdForProgram(payprog::storedForm(payprog::Direct)) &&
           item.batchId != batchIdForProgram(payprog::storedForm(payprog::ThirdParty));
}

QString amount(const std::optional<Money>& value, const MoneyFormat& format) {
    return value ? value->format(format) : QString();
}

}  // namespace

frmPastClaims::frmPastClaims(Database& db, AppSettings& settings, SettingsStore& store,
                             Prompter& prompter, const Clock& clock, const SqlLog& log,
                             MoneyFormat money, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_store(store),
      m_prompter(ScreenPrompter::attach(prompter, this)),
      m_clock(clock),
      m_log(log),
      m_money(money),
      m_options(pastclaims::ScreenOptions::read(store)),
      m_sort(pastclaims::defaultSort()) {
    setWindowTitle(kTitle);
    setObjectName(QStringLiteral("frmPastClaims"));

    // Made in the order Tab follows.
    QWidget* filterBox = buildFilters();
    auto* hint = new QLabel(kHint, this);
    hint->setObjectName(QStringLiteral("lblHint"));
    hint->setWordWrap(true);
    QWidget* list = buildList();
    QWidget* buttons = buildButtons();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(filterBox);
    layout->addWidget(hint);
    layout->addWidget(list, 1);
    layout->addWidget(buttons);

    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            guarded(this, &QWidget::close));

    loadChoices();
    // Connected after loading: only the user's choice is remembered.
    connect(m_doctor, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmPastClaims::doctorChanged));
    programChanged();
    m_cmdOpen->setVisible(false);  // until a way into claim entry is given
    updateButtons();
    resize(1000, 560);
    m_doctor->setFocus();
}

void frmPastClaims::loadChoices() {
    m_doctor->addItem(QStringLiteral("All doctors"), QString());
    QList<Provider> providers;
    try {
        providers = ProviderRegister(m_db, m_settings, m_prompter, m_log).list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    for (const Provider& p : std::as_const(providers)) {
        m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
    }
    m_doctor->setCurrentIndex(std::max(
        0, m_doctor->findData(m_settings.lastDoctorPTC, Qt::UserRole, Qt::MatchFixedString)));

    m_program->addItem(QStringLiteral("All Claims"), QString());
    for (const QString& program : payprog::storedForms()) {
        m_program->addItem(program, program);
    }
    m_status->addItems(statusNames());
    m_batch->addItem(QStringLiteral("All Batch Files"), QString());
    m_ra->addItem(QStringLiteral("All RA Files"), QString());
    m_facility->addItem(QStringLiteral("All"), QString());
    try {
        for (const ThirdPartyChoice& payer : thirdPartyChoices(m_db)) {
            m_payer->addItem(payer.text, QString::number(payer.id));
        }
        for (const QString& batch : pastclaims::batchChoices(m_db)) {
            m_batch->addItem(batch, batch);
        }
        if (m_options.remittance) {
            for (const QString& ra : pastclaims::remittanceChoices(m_db)) {
                m_ra->addItem(ra, ra);
            }
        }
        if (m_options.facility) {
            for (const QString& facility : pastclaims::facilityChoices(m_db)) {
                m_facility->addItem(facility, facility);
            }
        }
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("The choices of the filters could not be read."), e.message()});
    }
    m_payer->setCurrentIndex(-1);
}

void frmPastClaims::setClaimOpener(std::function<bool(qint64)> open) {
    m_openClaim = std::move(open);
    m_cmdOpen->setVisible(static_cast<bool>(m_openClaim));
    updateButtons();
}

pastclaims::Filters frmPastClaims::filters() const {
    pastclaims::Filters f;
    f.doctorId = m_doctor->currentData().toString();
    f.includeNoDoctor = m_options.withoutDoctor;
    f.payProg = m_program->currentData().toString();
    if (f.payProg == payprog::storedForm(payprog::ThirdParty)) {
        f.thirdPartyId =
            m_payer->currentIndex() >= 0 ? m_payer->currentData().toString() : QString();
    }
    f.dateBasis = m_byBilled->isChecked() ? pastclaims::DateBasis::BilledDate
                                          : pastclaims::DateBasis::ServiceDate;
    f.from = m_from->text().trimmed();
    f.to = m_to->text().trimmed();
    f.diagCode = m_diag->text().trimmed();
    f.servicePrefix = m_service->text().trimmed();
    f.invoiceNum = m_invoice->text().trimmed();
    if (m_options.status) {
        f.status = static_cast<pastclaims::StatusFilter>(std::max(0, m_status->currentIndex()));
    }
    f.batchId = m_batch->currentData().toString();
    if (m_options.remittance) {
        f.ra = m_ra->currentData().toString();
    }
    if (m_options.facility) {
        f.facility = m_facility->currentData().toString();
    }
    return f;
}

bool frmPastClaims::search() {
    const pastclaims::Filters f = filters();
    const std::optional<pastclaims::Found> found =
        pastclaims::findItems(m_db, m_prompter, f, m_sort);
    if (!found) {
        return false;
    }
    m_shownFilters = f;
    m_found = *found;
    showFound();
    return true;
}

void frmPastClaims::refresh() {
    std::optional<std::pair<qint64, int>> keep;
    if (const auto item = currentItem()) {
        keep = std::make_pair(item->claimId, item->itemId);
    }
    const std::optional<pastclaims::Found> found =
        pastclaims::findItems(m_db, m_prompter, m_shownFilters, m_sort);
    if (found) {
        m_found = *found;
        showFound(keep);
    }
}

void frmPastClaims::showFound(std::optional<std::pair<qint64, int>> keep) {
    m_list->clear();
    QList<QTreeWidgetItem*> rows;
    rows.reserve(m_found.items.size());
    QTreeWidgetItem* current = nullptr;
    for (const pastclaims::PastItem& item : std::as_const(m_found.items)) {
        QString service = item.serviceCode;
        if (!item.serviceDescription.isEmpty()) {
            service += QStringLiteral(" ") + item.serviceDescription;
        }
        auto* row = new QTreeWidgetItem(
            {item.doctorId, item.acctNum,
             item.patientId ? QString::number(item.patientId) : QString(), item.patientName,
             item.payProg, service, item.diagCode, datetext::slashed(item.serviceDate),
             amount(item.feeSubm, m_money), amount(item.feePaid, m_money)});
        row->setTextAlignment(FeeColumn, Qt::AlignRight | Qt::AlignVCenter);
        row->setTextAlignment(PaidColumn, Qt::AlignRight | Qt::AlignVCenter);
        row->setData(0, kClaimRole, item.claimId);
        row->setData(0, kItemRole, item.itemId);
        QString tip = itemStatusName(item.batchId, item.status);
        if (!item.errors.isEmpty()) {
            tip += QStringLiteral(": ") + item.errors;
        }
        row->setToolTip(NameColumn, tip);
        // The rows the desk still has to act on stand out.
        if (item.status == static_cast<int>(ItemStatus::Rejected)) {
            for (int c = 0; c < m_list->columnCount(); ++c) {
                row->setBackground(c, QColor(0xf8, 0xd7, 0xd7));
            }
        }
        row->setToolTip(ServiceColumn, service);
        rows << row;
        if (keep && keep->first == item.claimId && keep->second == item.itemId) {
            current = row;
        }
    }
    m_list->addTopLevelItems(rows);
    for (int c = 0; c < m_list->columnCount(); ++c) {
        if (c != NameColumn) {
            m_list->resizeColumnToContents(c);
            m_list->setColumnWidth(c, m_list->columnWidth(c) + 12);
        }
    }
    m_list->setColumnWidth(ServiceColumn, std::min(m_list->columnWidth(ServiceColumn), 220));
    if (current == nullptr && !rows.isEmpty()) {
        current = rows.first();
    }
    if (current != nullptr) {
        m_list->setCurrentItem(current);
        m_list->scrollToItem(current);
    }
    m_totals->setText(totalsLine());
    setStatus(QStringLiteral("%1 items found.").arg(m_found.items.size()));
    updateButtons();
}

QString frmPastClaims::totalsLine() const {
    return QStringLiteral("Total Fee: %1    Total Paid: %2")
        .arg(m_found.fee.currency(m_money), m_found.paid.currency(m_money));
}

QString frmPastClaims::statusLine() const {
    return m_statusLine->text();
}

void frmPastClaims::setStatus(const QString& text) {
    m_statusLine->setText(text);
}

std::optional<pastclaims::PastItem> frmPastClaims::currentItem() const {
    const QTreeWidgetItem* row = m_list->currentItem();
    if (row == nullptr) {
        return std::nullopt;
    }
    const qint64 claimId = row->data(0, kClaimRole).toLongLong();
    const int itemId = row->data(0, kItemRole).toInt();
    for (const pastclaims::PastItem& item : m_found.items) {
        if (item.claimId == claimId && item.itemId == itemId) {
            return item;
        }
    }
    return std::nullopt;
}

void frmPastClaims::updateButtons() {
    const std::optional<pastclaims::PastItem> item = currentItem();
    m_cmdOpen->setEnabled(item.has_value() && m_openClaim);
    m_cmdResubmit->setEnabled(item && sentToMinistry(*item));
    m_cmdCloseReject->setEnabled(item && item->status == static_cast<int>(ItemStatus::Rejected));
}

bool frmPastClaims::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
            key->modifiers() == Qt::NoModifier) {
            guarded(this, &frmPastClaims::search)();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void frmPastClaims::programChanged() {
    const bool thirdParty =
        m_program->currentData().toString() == payprog::storedForm(payprog::ThirdParty);
    m_payer->setVisible(thirdParty);
    if (thirdParty && m_program->hasFocus()) {
        m_payer->setFocus();
    }
}

void frmPastClaims::doctorChanged(int index) {
    if (index < 0) {
        return;
    }
    m_settings.lastDoctorPTC = m_doctor->currentData().toString();
    m_store.save(QStringLiteral("General"), QStringLiteral("LastDoctorPTC"),
                 m_settings.lastDoctorPTC);
    m_store.sync();
}

void frmPastClaims::headingClicked(int column) {
    const QStringList keys = pastclaims::sortKeys();
    if (column < 0 || column >= keys.size()) {
        return;
    }
    m_sort = keys.at(column);
    m_list->header()->setSortIndicatorShown(true);
    m_list->header()->setSortIndicator(column, Qt::AscendingOrder);
    if (!m_found.items.isEmpty()) {
        refresh();
    }
}

QString frmPastClaims::doctorName() const {
    if (m_shownFilters.doctorId.isEmpty()) {
        return {};
    }
    const int index = m_doctor->findData(m_shownFilters.doctorId);
    return index >= 0 ? m_doctor->itemText(index) : m_shownFilters.doctorId;
}

void frmPastClaims::print() {
    showReportPreview(pastclaims::pastClaimsReport(m_found, m_shownFilters, doctorName()),
                      reports::ReportStyle::fromSettings(m_settings), this);
}

void frmPastClaims::exportData() {
    if (!m_prompter.confirm(kExportTitle, {QStringLiteral("Export Data?")})) {
        return;
    }
    QString path;
    if (m_chooseExportFile) {
        path = m_chooseExportFile();
    } else {
        path = QFileDialog::getSaveFileName(this, kExportTitle,
                                            QDir::homePath() + QStringLiteral("/pastclaims.txt"),
                                            QStringLiteral("Text files (*.txt);;All files (*)"));
    }
    if (path.isEmpty()) {
        return;
    }
    const QString failure = pastclaims::exportItems(m_found.items, path);
    if (failure.isEmpty()) {
        m_prompter.tell(kExportTitle, {QStringLiteral("Successfully saved to text file.")},
                        Icon::Information);
    } else {
        m_prompter.tell(kExportTitle, {QStringLiteral("Error: ") + failure}, Icon::Critical);
    }
}

void frmPastClaims::showPatients() {
    const std::optional<QList<pastclaims::PatientLine>> lines =
        pastclaims::patientList(m_db, m_prompter, filters());
    if (lines) {
        showPatientList(*lines, m_money, reports::ReportStyle::fromSettings(m_settings), this);
    }
}

void frmPastClaims::markInvoicePaid() {
    const QString invoice = m_invoice->text().trimmed();
    const std::optional<int> marked = pastclaims::markInvoicePaid(m_db, m_prompter, m_log, invoice);
    if (!marked) {
        m_invoice->setFocus();
        return;
    }
    if (!m_found.items.isEmpty()) {
        refresh();
    }
    setStatus(QStringLiteral("%1 items of invoice %2 marked paid.").arg(*marked).arg(invoice));
}

void frmPastClaims::showRejected() {
    const std::optional<QList<pastclaims::RejectedLine>> lines =
        pastclaims::rejectedItems(m_db, m_prompter, filters());
    if (!lines) {
        return;
    }
    if (m_rejectWindow) {
        m_rejectWindow->close();
    }
    m_rejectWindow = new frmPastClaimsReject(*lines, m_money,
                                             reports::ReportStyle::fromSettings(m_settings), this);
    m_rejectWindow->setAttribute(Qt::WA_DeleteOnClose);
    m_rejectWindow->show();
    m_rejectWindow->raise();
    m_rejectWindow->activateWindow();
}

void frmPastClaims::openClaim() {
    const std::optional<pastclaims::PastItem> item = currentItem();
    if (!item || !m_openClaim) {
        return;
    }
    // Only a pending claim may be changed: one the ministry answered goes back to pending
    // first. Claim entry itself says why any other claim stays as it is.
    if (sentToMinistry(*item)) {
        resubmit();
        const std::optional<pastclaims::PastItem> now = currentItem();
        if (!now || now->claimId != item->claimId || now->batchId != kPendingBatch) {
            return;
        }
    }
    m_openClaim(item->claimId);
}

void frmPastClaims::resubmit() {
    const std::optional<pastclaims::PastItem> item = currentItem();
    if (!item || !sentToMinistry(*item)) {
        return;
    }
    if (!m_prompter.confirm(
            QStringLiteral("Resubmit"),
            {QStringLiteral("Resubmit claim %1 (%2, account %3)?")
                 .arg(item->claimId)
                 .arg(item->patientName, item->acctNum),
             QStringLiteral("Its items go back to Pending Claims; their payments and errors "
                            "are cleared.")})) {
        return;
    }
    ClaimStore(m_db, m_clock, m_log).resubmit(item->claimId);
    refresh();
    setStatus(QStringLiteral("Claim %1 is pending again.").arg(item->claimId));
}

void frmPastClaims::closeRejection() {
    const std::optional<pastclaims::PastItem> item = currentItem();
    if (!item || item->status != static_cast<int>(ItemStatus::Rejected)) {
        return;
    }
    if (!m_prompter.confirm(QStringLiteral("Close Rejection"),
                            {QStringLiteral("Close the rejection of claim %1 (%2, account %3)?")
                                 .arg(item->claimId)
                                 .arg(item->patientName, item->acctNum),
                             QStringLiteral("Its rejected items become Rejected Closed and are "
                                            "not resubmitted.")})) {
        return;
    }
    ClaimStore(m_db, m_clock, m_log).closeRejection(item->claimId);
    refresh();
    setStatus(QStringLiteral("The rejection of claim %1 is closed.").arg(item->claimId));
}

void frmPastClaims::clear() {
    m_doctor->setCurrentIndex(0);
    m_program->setCurrentIndex(0);
    m_payer->setCurrentIndex(-1);
    m_byService->setChecked(true);
    for (QLineEdit* edit : {m_from, m_to, m_diag, m_service, m_invoice}) {
        edit->clear();
    }
    for (QComboBox* box : {m_status, m_batch, m_ra, m_facility}) {
        box->setCurrentIndex(0);
    }
    m_sort = pastclaims::defaultSort();
    m_list->header()->setSortIndicatorShown(false);
    m_found = {};
    m_shownFilters = {};
    m_list->clear();
    m_totals->clear();
    setStatus({});
    updateButtons();
    m_doctor->setFocus();
}

}  // namespace brimsett
