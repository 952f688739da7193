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
#include <QGridLayout>
#include <QGroupBox>
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

enum Column {
    DocColumn,
    AccountColumn,
    PatientColumn,
    NameColumn,
    ProgramColumn,
    ServiceColumn,
    DiagColumn,
    DateColumn,
    FeeColumn,
    PaidColumn
};

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

QPushButton* button(QWidget* parent, const QString& name, const QString& caption,
                    const QString& tip) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    b->setToolTip(tip);
    return b;
}

QLabel* labelFor(QWidget* field, const QString& text, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(field);
    return label;
}

QLineEdit* line(QWidget* parent, const QString& name, int maxLength, int widthInChars,
                const QString& placeholder = {}) {
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(name);
    edit->setMaxLength(maxLength);
    edit->setPlaceholderText(placeholder);
    edit->setFixedWidth(edit->fontMetrics().horizontalAdvance(QLatin1Char('0')) * widthInChars +
                        16);
    return edit;
}

QComboBox* choiceList(QWidget* parent, const QString& name, int minimumChars) {
    auto* box = new QComboBox(parent);
    box->setObjectName(name);
    box->setMinimumContentsLength(minimumChars);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return box;
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

QWidget* frmPastClaims::buildFilters() {
    auto* box = new QGroupBox(this);
    box->setObjectName(QStringLiteral("grpFilters"));
    m_doctor = choiceList(box, QStringLiteral("cboDoctor"), 22);
    m_program = choiceList(box, QStringLiteral("cboProgram"), 11);
    // The payer goes with "Third Party"; it takes the keys from the program when shown.
    m_payer = choiceList(box, QStringLiteral("cboThirdParty"), 18);
    m_status = choiceList(box, QStringLiteral("cboStatus"), 14);
    m_byService = new QRadioButton(QStringLiteral("By Ser&vice Date"), box);
    m_byService->setObjectName(QStringLiteral("optByService"));
    m_byService->setChecked(true);
    m_byBilled = new QRadioButton(QStringLiteral("By &Billed Date"), box);
    m_byBilled->setObjectName(QStringLiteral("optByBilled"));
    m_from = line(box, QStringLiteral("txtStart"), 10, 10, QStringLiteral("YYYY/MM/DD"));
    m_to = line(box, QStringLiteral("txtEnd"), 10, 10, QStringLiteral("YYYY/MM/DD"));
    m_batch = choiceList(box, QStringLiteral("cboBatch"), 14);
    m_diag = line(box, QStringLiteral("txtDiag"), 4, 5);
    m_service = line(box, QStringLiteral("txtService"), 5, 6);
    m_invoice = line(box, QStringLiteral("txtInvoice"), 12, 9);
    m_ra = choiceList(box, QStringLiteral("cboRA"), 18);
    m_facility = choiceList(box, QStringLiteral("cboFacility"), 14);
    connect(m_program, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmPastClaims::programChanged));

    auto* grid = new QGridLayout(box);
    grid->setContentsMargins(8, 6, 8, 6);
    grid->setVerticalSpacing(4);
    const auto pair = [](QWidget* a, QWidget* b, QWidget* c = nullptr) {
        auto* row = new QHBoxLayout;
        row->setSpacing(6);
        row->addWidget(a);
        row->addWidget(b);
        if (c != nullptr) {
            row->addWidget(c);
        }
        row->addStretch();
        return row;
    };
    grid->addWidget(labelFor(m_doctor, QStringLiteral("&Doctor:"), box), 0, 0);
    grid->addWidget(m_doctor, 0, 1);
    grid->addWidget(labelFor(m_program, QStringLiteral("P&rogram:"), box), 0, 2);
    grid->addLayout(pair(m_program, m_payer), 0, 3);
    auto* statusLabel = labelFor(m_status, QStringLiteral("&Status:"), box);
    grid->addWidget(statusLabel, 0, 4);
    grid->addWidget(m_status, 0, 5);

    grid->addLayout(pair(m_byService, m_byBilled), 1, 0, 1, 2);
    auto* dates = new QHBoxLayout;
    dates->setSpacing(6);
    dates->addWidget(labelFor(m_from, QStringLiteral("&From:"), box));
    dates->addWidget(m_from);
    dates->addSpacing(8);
    dates->addWidget(labelFor(m_to, QStringLiteral("&To:"), box));
    dates->addWidget(m_to);
    dates->addStretch();
    grid->addLayout(dates, 1, 2, 1, 2);
    grid->addWidget(labelFor(m_batch, QStringLiteral("Batc&h:"), box), 1, 4);
    grid->addWidget(m_batch, 1, 5);

    auto* codes = new QHBoxLayout;
    codes->setSpacing(6);
    codes->addWidget(labelFor(m_diag, QStringLiteral("Dia&g. code:"), box));
    codes->addWidget(m_diag);
    codes->addSpacing(8);
    codes->addWidget(labelFor(m_service, QStringLiteral("Service c&ode:"), box));
    codes->addWidget(m_service);
    codes->addStretch();
    grid->addLayout(codes, 2, 0, 1, 2);
    grid->addWidget(labelFor(m_invoice, QStringLiteral("&Invoice:"), box), 2, 2);
    auto* invoiceRow = new QHBoxLayout;
    invoiceRow->addWidget(m_invoice);
    auto* raLabel = labelFor(m_ra, QStringLiteral("R&A file:"), box);
    invoiceRow->addSpacing(8);
    invoiceRow->addWidget(raLabel);
    invoiceRow->addWidget(m_ra);
    invoiceRow->addStretch();
    grid->addLayout(invoiceRow, 2, 3);
    auto* facilityLabel = labelFor(m_facility, QStringLiteral("Facilit&y:"), box);
    grid->addWidget(facilityLabel, 2, 4);
    grid->addWidget(m_facility, 2, 5);
    grid->setColumnStretch(3, 1);

    // The filters the office has not switched on are not shown (and filter nothing).
    statusLabel->setVisible(m_options.status);
    m_status->setVisible(m_options.status);
    raLabel->setVisible(m_options.remittance);
    m_ra->setVisible(m_options.remittance);
    facilityLabel->setVisible(m_options.facility);
    m_facility->setVisible(m_options.facility);

    // Enter in any filter searches.
    for (QWidget* field : std::initializer_list<QWidget*>{
             m_doctor, m_program, m_payer, m_status, m_byService, m_byBilled, m_from, m_to, m_batch,
             m_diag, m_service, m_invoice, m_ra, m_facility}) {
        field->installEventFilter(this);
    }
    return box;
}

QWidget* frmPastClaims::buildList() {
    auto* panel = new QWidget(this);
    m_list = new QTreeWidget(panel);
    m_list->setObjectName(QStringLiteral("grdClaims"));
    m_list->setHeaderLabels(pastclaims::gridCaptions());
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAlternatingRowColors(true);
    m_list->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_list->header()->setSectionsClickable(true);
    m_list->header()->setSortIndicatorShown(false);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(NameColumn, QHeaderView::Stretch);
    m_list->headerItem()->setTextAlignment(FeeColumn, Qt::AlignRight | Qt::AlignVCenter);
    m_list->headerItem()->setTextAlignment(PaidColumn, Qt::AlignRight | Qt::AlignVCenter);
    connect(m_list->header(), &QHeaderView::sectionClicked, this,
            guarded(this, &frmPastClaims::headingClicked));
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmPastClaims::updateButtons));
    // Enter (or a double click) on a row opens its claim.
    connect(m_list, &QTreeWidget::itemActivated, this, guarded(this, &frmPastClaims::openClaim));

    m_statusLine = new QLabel(panel);
    m_statusLine->setObjectName(QStringLiteral("lblStatus"));
    m_totals = new QLabel(panel);
    m_totals->setObjectName(QStringLiteral("lblTotals"));
    m_totals->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    QFont bold = m_totals->font();
    bold.setBold(true);
    m_totals->setFont(bold);

    auto* below = new QHBoxLayout;
    below->addWidget(m_statusLine, 1);
    below->addWidget(m_totals);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list, 1);
    layout->addLayout(below);
    return panel;
}

QWidget* frmPastClaims::buildButtons() {
    auto* panel = new QWidget(this);
    m_cmdOpen = button(panel, QStringLiteral("cmdOpen"), QStringLiteral("Open clai&m"),
                       QStringLiteral("Opens the row's claim in Claims (Enter on the row)"));
    m_cmdResubmit = button(panel, QStringLiteral("cmdResubmit"), QStringLiteral("Res&ubmit"),
                           QStringLiteral("Puts the row's claim back to pending"));
    m_cmdCloseReject =
        button(panel, QStringLiteral("cmdCloseReject"), QStringLiteral("Close re&jection"),
               QStringLiteral("Closes the row's rejected item"));
    auto* rejected =
        button(panel, QStringLiteral("cmdShowReject"), QStringLiteral("Sho&w rejected"),
               QStringLiteral("The rejected items of the filters, with their codes"));
    auto* patients = button(panel, QStringLiteral("cmdPatients"), QStringLiteral("Patie&nt list"),
                            QStringLiteral("The patients of the filters, one line each"));
    auto* mark = button(panel, QStringLiteral("cmdMark"), QStringLiteral("Mar&k invoice paid"),
                        QStringLiteral("Every item of the invoice's claims becomes paid"));
    auto* print = button(panel, QStringLiteral("cmdPrint"), QStringLiteral("&Print"),
                         QStringLiteral("Prints the list"));
    // Its letter is the hint's Alt+E.
    auto* exportButton = button(panel, QStringLiteral("cmdExport"), QStringLiteral("&Export"),
                                QStringLiteral("Writes the list to a text file (Alt+E)"));
    auto* clearButton = button(panel, QStringLiteral("cmdClear"), QStringLiteral("&Clear"),
                               QStringLiteral("Every box back to all, the list emptied"));
    auto* close =
        button(panel, QStringLiteral("cmdClose"), QStringLiteral("C&lose"), QStringLiteral("Esc"));
    connect(m_cmdOpen, &QPushButton::clicked, this, guarded(this, &frmPastClaims::openClaim));
    connect(m_cmdResubmit, &QPushButton::clicked, this, guarded(this, &frmPastClaims::resubmit));
    connect(m_cmdCloseReject, &QPushButton::clicked, this,
            guarded(this, &frmPastClaims::closeRejection));
    connect(rejected, &QPushButton::clicked, this, guarded(this, &frmPastClaims::showRejected));
    connect(patients, &QPushButton::clicked, this, guarded(this, &frmPastClaims::showPatients));
    connect(mark, &QPushButton::clicked, this, guarded(this, &frmPastClaims::markInvoicePaid));
    connect(print, &QPushButton::clicked, this, guarded(this, &frmPastClaims::print));
    connect(exportButton, &QPushButton::clicked, this, guarded(this, &frmPastClaims::exportData));
    connect(clearButton, &QPushButton::clicked, this, guarded(this, &frmPastClaims::clear));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));

    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(4);
    for (QPushButton* b : {m_cmdOpen, m_cmdResubmit, m_cmdCloseReject, rejected}) {
        row->addWidget(b);
    }
    row->addSpacing(10);
    row->addWidget(patients);
    row->addWidget(mark);
    row->addSpacing(10);
    row->addWidget(print);
    row->addWidget(exportButton);
    row->addStretch();
    row->addWidget(clearButton);
    row->addWidget(close);
    return panel;
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
        .arg(m_found.fee.format(m_money), m_found.paid.format(m_money));
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
    m_cmdResubmit->setEnabled(item && item->batchId != kPendingBatch);
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
    setStatus(QStringLiteral("%1 items of invoice %2 marked paid.").arg(*marked).arg(invoice));
    if (!m_found.items.isEmpty()) {
        refresh();
        setStatus(QStringLiteral("%1 items of invoice %2 marked paid.").arg(*marked).arg(invoice));
    }
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
    // Only a pending claim may be changed: an answered one goes back to pending first.
    if (item->batchId != kPendingBatch) {
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
    if (!item || item->batchId == kPendingBatch) {
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
