#include "screens/frmPrepare.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/BatchPreparation.h"
#include "ministry/BatchReports.h"
#include "ministry/ClaimTransfer.h"
#include "patients/ProviderRegister.h"
#include "screens/EdtSetupScreens.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/RepaintingWait.h"
#include "screens/ReportPreview.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace brimsett {

namespace {

enum Column { DoctorColumn, BatchColumn, CountsColumn, TotalColumn, FileColumn, SubmittedColumn };

// The methods of the choice list, in the order "SubmitMethod" numbers them.
const QStringList& methodNames() {
    static const QStringList names = {QStringLiteral("3.5'' Disk(s)"),
                                      QStringLiteral("EDT / Phone Line Dial-Up"),
                                      QStringLiteral("EDT / Internet")};
    return names;
}

// The folder the disk dialog starts in: where the last one of the run ended, else the
// removable media of the system.
QString& lastDiskFolder() {
    static QString folder;
    return folder;
}

QString mediaFolder() {
    const QString user = qEnvironmentVariable("USER");
    for (const QString& candidate :
         {QStringLiteral("/media/") + user, QStringLiteral("/run/media/") + user,
          QStringLiteral("/media"), QDir::homePath()}) {
        if (!candidate.isEmpty() && QDir(candidate).exists()) {
            return candidate;
        }
    }
    return QDir::homePath();
}

// Work that must not be interrupted by the user: the window's controls wait, and the field
// that had the focus gets it back afterwards.
class Busy {
public:
    explicit Busy(QList<QWidget*> parts) : m_parts(std::move(parts)) {
        m_focus = QApplication::focusWidget();
        for (QWidget* part : m_parts) {
            part->setEnabled(false);
        }
        QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~Busy() {
        QApplication::restoreOverrideCursor();
        for (QWidget* part : m_parts) {
            part->setEnabled(true);
        }
        if (m_focus) {
            m_focus->setFocus();
        }
    }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

private:
    QList<QWidget*> m_parts;
    QPointer<QWidget> m_focus;
};

QPushButton* button(QWidget* parent, const QString& name, const QString& caption,
                    const QString& tip = {}) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    if (!tip.isEmpty()) {
        b->setToolTip(tip);
    }
    return b;
}

}  // namespace

frmPrepare::frmPrepare(Database& db, AppSettings& settings, SettingsStore& store,
                       Prompter& prompter, const Clock& clock, const SqlLog& log, MoneyFormat money,
                       QString officeFolder, QWidget* parent)
    : QWidget(parent, Qt::Window),
      m_db(db),
      m_settings(settings),
      m_store(store),
      m_prompter(prompter),
      m_clock(clock),
      m_log(log),
      m_money(money),
      m_folder(std::move(officeFolder)),
      m_batches(db, prompter, log) {
    setWindowTitle(kTitle);
    if (!m_folder.isEmpty() && !m_folder.endsWith(QLatin1Char('/'))) {
        m_folder += QLatin1Char('/');
    }

    // Created in the order Tab (and Enter) should follow.
    QWidget* prepare = buildPreparePanel();
    QWidget* batches = buildBatchPanel();
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prepare);
    layout->addWidget(batches, 1);
    layout->addWidget(m_status);

    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            &QWidget::close);

    loadDoctors();
    reloadBatches();
    resize(900, 620);
    m_doctor->setFocus();
}

QWidget* frmPrepare::buildPreparePanel() {
    auto* panel = new QGroupBox(QStringLiteral("Prepare a claim file"), this);
    auto* enter = new EnterMovesOn(this);

    m_doctor = new QComboBox(panel);
    m_doctor->setObjectName(QStringLiteral("cboDoctor"));
    m_doctor->setMinimumContentsLength(28);
    m_doctor->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    enter->watch(m_doctor);
    m_oneProfile = new QCheckBox(QStringLiteral("&One profile only"), panel);
    m_oneProfile->setObjectName(QStringLiteral("chkOneProfile"));
    m_oneProfile->setToolTip(
        QStringLiteral("Only the chosen doctor's claims; the other profiles of the billing "
                       "number stay pending"));

    const auto dateField = [&](const QString& name) {
        QLineEdit* line = recordlist::sizedLine(panel, 10, 10);
        line->setObjectName(name);
        line->setPlaceholderText(QStringLiteral("YYYY/MM/DD"));
        enter->watch(line);
        return line;
    };
    m_cutOff = dateField(QStringLiteral("txtCutOff"));
    m_cutOff->setToolTip(QStringLiteral("Empty: every pending claim"));
    m_start = dateField(QStringLiteral("txtStart"));
    m_start->setToolTip(QStringLiteral("Claims dated before this day stay pending"));

    m_byService = new QRadioButton(QStringLiteral("Latest &service date"), panel);
    m_byService->setObjectName(QStringLiteral("optDateService"));
    m_byCreated = new QRadioButton(QStringLiteral("Date cr&eated"), panel);
    m_byCreated->setObjectName(QStringLiteral("optDateCreated"));
    auto* optDate = new QButtonGroup(panel);
    optDate->addButton(m_byService);
    optDate->addButton(m_byCreated);
    m_byService->setChecked(true);  // as a doctor thinks of the month's work
    enter->watch(m_byService);
    enter->watch(m_byCreated);
    enter->watch(m_oneProfile);

    m_cmdStart = button(panel, QStringLiteral("cmdStart"), QStringLiteral("&Prepare Claim File"),
                        QStringLiteral("Writes the pending claims into a new claim file"));
    m_cmdStart->setAutoDefault(true);  // Enter on it presses it
    connect(m_cmdStart, &QPushButton::clicked, this, &frmPrepare::startClicked);
    m_progress = new QLabel(panel);
    m_progress->setObjectName(QStringLiteral("lblProgress"));
    m_progress->setMinimumWidth(
        m_progress->fontMetrics().horizontalAdvance(QStringLiteral("000,000 Records")));

    auto* doctorLabel = new QLabel(QStringLiteral("&Doctor:"), panel);
    doctorLabel->setBuddy(m_doctor);
    auto* cutOffLabel = new QLabel(QStringLiteral("&Cut-off date:"), panel);
    cutOffLabel->setBuddy(m_cutOff);
    m_startLabel = new QLabel(QStringLiteral("S&tart date:"), panel);
    m_startLabel->setBuddy(m_start);
    auto* cutOffHint = new QLabel(QStringLiteral("empty: every pending claim"), panel);
    cutOffHint->setEnabled(false);

    auto* doctorRow = new QHBoxLayout;
    doctorRow->addWidget(m_doctor);
    doctorRow->addSpacing(16);
    doctorRow->addWidget(m_oneProfile);
    doctorRow->addStretch();
    auto* cutOffRow = new QHBoxLayout;
    cutOffRow->addWidget(m_cutOff);
    cutOffRow->addWidget(cutOffHint);
    cutOffRow->addStretch();
    auto* dateByRow = new QHBoxLayout;
    dateByRow->addWidget(m_byService);
    dateByRow->addWidget(m_byCreated);
    dateByRow->addStretch();
    auto* startRow = new QHBoxLayout;
    startRow->addWidget(m_cmdStart);
    startRow->addWidget(m_progress);
    startRow->addStretch();

    auto* form = new QFormLayout(panel);
    form->addRow(doctorLabel, doctorRow);
    form->addRow(cutOffLabel, cutOffRow);
    form->addRow(m_startLabel, m_start);
    form->addRow(QStringLiteral("Compare with:"), dateByRow);
    form->addRow(QString(), startRow);
    // The start date belongs to the "advanced dating options" (switch 18).
    const bool advanced = m_settings.option[18];
    m_startLabel->setVisible(advanced);
    m_start->setVisible(advanced);

    // The tab order follows the form, the box beside the doctor last before the button.
    QWidget::setTabOrder(m_doctor, m_cutOff);
    QWidget::setTabOrder(m_cutOff, m_start);
    QWidget::setTabOrder(m_start, m_byService);
    QWidget::setTabOrder(m_byService, m_byCreated);
    QWidget::setTabOrder(m_byCreated, m_oneProfile);
    QWidget::setTabOrder(m_oneProfile, m_cmdStart);
    return panel;
}

QWidget* frmPrepare::buildBatchPanel() {
    // Alt+B goes to the list, the group's first field.
    auto* panel = new QGroupBox(QStringLiteral("&Batches, newest first"), this);
    m_list = recordlist::make(
        panel,
        {QStringLiteral("Doctor"), QStringLiteral("Batch ID"), QStringLiteral("Claims/Records"),
         QStringLiteral("Total"), QStringLiteral("File Name"), QStringLiteral("Submitted")},
        SubmittedColumn);
    m_list->setObjectName(QStringLiteral("lstBatches"));
    m_list->headerItem()->setTextAlignment(CountsColumn, Qt::AlignRight | Qt::AlignVCenter);
    m_list->headerItem()->setTextAlignment(TotalColumn, Qt::AlignRight | Qt::AlignVCenter);
    connect(m_list, &QTreeWidget::currentItemChanged, this, &frmPrepare::updateButtons);
    auto* listDelete = new QShortcut(QKeySequence(Qt::Key_Delete), m_list);
    listDelete->setContext(Qt::WidgetShortcut);
    connect(listDelete, &QShortcut::activated, this, &frmPrepare::deleteClicked);

    m_cmdSummary = button(panel, QStringLiteral("cmdSummary"), QStringLiteral("Print Su&mmary"),
                          QStringLiteral("The submission summary of the batch's claim file"));
    m_cmdClaims = button(panel, QStringLiteral("cmdClaims"), QStringLiteral("Print Cla&ims"),
                         QStringLiteral("The claims and items of the batch"));
    m_cmdReverse =
        button(panel, QStringLiteral("cmdReverse"), QStringLiteral("&Reverse Submission"),
               QStringLiteral("Puts the batch's claims back to pending"));
    m_cmdDelete =
        button(panel, QStringLiteral("cmdDeleteBatch"), QStringLiteral("De&lete Batch Record"),
               QStringLiteral("Removes the batch from the list; its claims stay in it (Delete)"));
    connect(m_cmdSummary, &QPushButton::clicked, this, &frmPrepare::summaryClicked);
    connect(m_cmdClaims, &QPushButton::clicked, this, &frmPrepare::claimsClicked);
    connect(m_cmdReverse, &QPushButton::clicked, this, &frmPrepare::reverseClicked);
    connect(m_cmdDelete, &QPushButton::clicked, this, &frmPrepare::deleteClicked);

    m_method = new QComboBox(panel);
    m_method->setObjectName(QStringLiteral("cboMethod"));
    m_method->addItems(methodNames());
    m_method->setCurrentIndex(std::clamp(m_settings.submitMethod, 0, 2));
    connect(m_method, &QComboBox::currentIndexChanged, this, &frmPrepare::methodChanged);
    auto* methodLabel = new QLabel(QStringLiteral("Met&hod:"), panel);
    methodLabel->setBuddy(m_method);
    m_cmdSubmit = button(panel, QStringLiteral("cmdSubmit"), QStringLiteral("S&ubmit"),
                         QStringLiteral("Hands the batch's claim file to the ministry"));
    connect(m_cmdSubmit, &QPushButton::clicked, this, &frmPrepare::submitClicked);
    // The transfer logins are set up where they are used.
    auto* setup = button(panel, QStringLiteral("cmdEDTSetup"), QStringLiteral("EDT Se&tup..."));
    connect(setup, &QPushButton::clicked, this, [this] {
        openEdtSetup(
            m_db, m_settings, m_prompter, m_clock, m_log, m_folder, this,
            m_doctor->currentIndex() >= 0 ? m_doctor->currentData().toString() : QString());
    });
    auto* close =
        button(panel, QStringLiteral("cmdClose"), QStringLiteral("Close"), QStringLiteral("Esc"));
    connect(close, &QPushButton::clicked, this, &QWidget::close);

    auto* side = new QVBoxLayout;
    side->addWidget(m_cmdSummary);
    side->addWidget(m_cmdClaims);
    side->addSpacing(12);
    side->addWidget(m_cmdReverse);
    side->addWidget(m_cmdDelete);
    side->addStretch();
    auto* body = new QHBoxLayout;
    body->addWidget(m_list, 1);
    body->addLayout(side);
    auto* submitRow = new QHBoxLayout;
    submitRow->addWidget(methodLabel);
    submitRow->addWidget(m_method);
    submitRow->addWidget(m_cmdSubmit);
    submitRow->addWidget(setup);
    submitRow->addStretch();
    submitRow->addWidget(close);

    auto* layout = new QVBoxLayout(panel);
    layout->addLayout(body, 1);
    layout->addLayout(submitRow);
    return panel;
}

void frmPrepare::loadDoctors() {
    QList<Provider> providers;
    try {
        providers = ProviderRegister(m_db, m_settings, m_prompter, m_log).list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    for (const Provider& p : std::as_const(providers)) {
        m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
    }
    int chosen = m_doctor->findData(m_settings.lastDoctor, Qt::UserRole, Qt::MatchFixedString);
    if (chosen < 0 && m_doctor->count() == 1) {
        chosen = 0;
    }
    m_doctor->setCurrentIndex(chosen);
}

void frmPrepare::reloadBatches(const QString& select) {
    const std::optional<BatchRow> current = selectedBatch();
    const QString keep = select.isEmpty() && current ? current->batchId : select;
    m_rows.clear();
    try {
        m_rows = m_batches.list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The batches could not be read."), e.message()});
    }
    m_list->clear();
    for (const BatchRow& b : m_rows) {
        auto* item =
            new QTreeWidgetItem(m_list, {b.doctorText(), b.batchId, b.countsText(),
                                         b.total.currency(m_money), b.fileName, b.submittedText()});
        item->setData(0, recordlist::kKeyRole, b.batchId);
        item->setTextAlignment(CountsColumn, Qt::AlignRight | Qt::AlignVCenter);
        item->setTextAlignment(TotalColumn, Qt::AlignRight | Qt::AlignVCenter);
    }
    for (int c = DoctorColumn; c < SubmittedColumn; ++c) {
        m_list->resizeColumnToContents(c);
        m_list->setColumnWidth(c, m_list->columnWidth(c) + 16);
    }
    if (!selectBatch(keep) && m_list->topLevelItemCount() > 0) {
        m_list->setCurrentItem(m_list->topLevelItem(0));
    }
    updateButtons();
}

std::optional<BatchRow> frmPrepare::selectedBatch() const {
    const QTreeWidgetItem* item = m_list ? m_list->currentItem() : nullptr;
    if (item == nullptr) {
        return std::nullopt;
    }
    const QString key = item->data(0, recordlist::kKeyRole).toString();
    for (const BatchRow& b : m_rows) {
        if (b.batchId == key) {
            return b;
        }
    }
    return std::nullopt;
}

bool frmPrepare::selectBatch(const QString& batchId) {
    for (int i = 0; i < m_list->topLevelItemCount() && !batchId.isEmpty(); ++i) {
        QTreeWidgetItem* item = m_list->topLevelItem(i);
        if (item->data(0, recordlist::kKeyRole).toString() == batchId) {
            m_list->setCurrentItem(item);
            m_list->scrollToItem(item);
            return true;
        }
    }
    return false;
}

void frmPrepare::updateButtons() {
    const bool chosen = m_list->currentItem() != nullptr;
    for (QPushButton* b : {m_cmdSummary, m_cmdClaims, m_cmdReverse, m_cmdDelete, m_cmdSubmit}) {
        b->setEnabled(chosen);
    }
}

QString frmPrepare::statusLine() const {
    return m_status->text();
}

void frmPrepare::setStatus(const QString& text) {
    m_status->setText(text);
}

void frmPrepare::startClicked() {
    PrepareRequest request;
    request.doctorId =
        m_doctor->currentIndex() >= 0 ? m_doctor->currentData().toString() : QString();
    request.cutOff = m_cutOff->text().trimmed();
    request.start = m_settings.option[18] ? m_start->text().trimmed() : QString();
    request.oneProfile = m_oneProfile->isChecked();
    request.dateBy = m_byCreated->isChecked() ? PrepareRequest::DateBy::Created
                                              : PrepareRequest::DateBy::LatestService;

    BatchPreparation preparation(m_db, m_store, m_settings, m_clock, m_prompter, m_log, m_folder);
    preparation.setProgress([this](int records) {
        m_progress->setText(QStringLiteral("%1 Records").arg(records));
        m_progress->repaint();
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    });
    setStatus({});
    m_progress->setText(QStringLiteral("0 Records"));
    m_progress->repaint();
    std::optional<PreparedFile> file;
    {
        const Busy busy({m_cmdStart, m_list->parentWidget()});
        try {
            file = preparation.prepare(request);
        } catch (const DbError& e) {
            m_prompter.error({QStringLiteral("The claim file could not be prepared."),
                              QStringLiteral("Nothing was changed."), e.message()});
        }
    }
    if (!file || file->batches.empty()) {
        m_progress->clear();
        reloadBatches();
        return;
    }
    int claims = 0;
    int records = 0;
    Money total;
    for (const PreparedBatch& b : file->batches) {
        claims += b.claims;
        records += b.records;
        total += b.total;
    }
    m_progress->setText(QStringLiteral("%1 Records").arg(records));
    const int batches = static_cast<int>(file->batches.size());
    setStatus(QStringLiteral("Claim file %1: %2 %3, %4 %5, %6.")
                  .arg(file->fileName)
                  .arg(batches)
                  .arg(batches == 1 ? QStringLiteral("batch") : QStringLiteral("batches"))
                  .arg(claims)
                  .arg(claims == 1 ? QStringLiteral("claim") : QStringLiteral("claims"))
                  .arg(total.currency(m_money)));
    reloadBatches(file->batches.front().batchId);
    m_list->setFocus();
}

void frmPrepare::deleteClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    if (m_batches.deleteRecord(batch->batchId)) {
        setStatus(QStringLiteral("Batch %1 was deleted from the list; its claims keep it.")
                      .arg(batch->batchId));
    }
    reloadBatches();
}

void frmPrepare::reverseClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    if (m_batches.reverse(batch->batchId)) {
        setStatus(QStringLiteral("Batch %1 was reversed: its claims are pending again.")
                      .arg(batch->batchId));
    }
    reloadBatches();
}

void frmPrepare::summaryClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    showReportPreview(
        batchreports::submissionSummary(m_batches, batch->fileName, m_clock.today(), m_money),
        reports::ReportStyle::fromSettings(m_settings), this);
}

void frmPrepare::claimsClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    const std::optional<reports::Report> report = batchreports::claimsSubmitted(
        m_batches, batch->batchId, m_clock.today(), m_money, m_settings.option[3]);
    if (report) {
        showReportPreview(*report, reports::ReportStyle::fromSettings(m_settings), this);
    }
}

void frmPrepare::methodChanged(int index) {
    if (index < 0) {
        return;
    }
    m_settings.submitMethod = index;
    m_store.saveNumber(QStringLiteral("General"), QStringLiteral("SubmitMethod"), index);
    m_store.sync();
}

QString frmPrepare::chooseDiskFolder() {
    if (m_chooseDiskFolder) {
        return m_chooseDiskFolder();
    }
    QString& last = lastDiskFolder();
    const QString chosen = QFileDialog::getExistingDirectory(
        this, QStringLiteral("The disk to copy the claim file to"),
        last.isEmpty() ? mediaFolder() : last);
    if (!chosen.isEmpty()) {
        last = chosen;
    }
    return chosen;
}

void frmPrepare::submitClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    const auto method = static_cast<TransferMethod>(std::clamp(m_method->currentIndex(), 0, 2));
    TransferPlaces places{m_folder, QString()};
    if (method == TransferMethod::Disk) {
        places.diskFolder = chooseDiskFolder();
        if (places.diskFolder.isEmpty()) {
            return;
        }
    }
    RepaintingWait wait([this](const QString& text) {
        m_status->setText(text);
        m_status->repaint();
    });
    ClaimTransfer transfer(m_db, m_store, m_clock, m_prompter, wait, m_log, places);
    bool sent = false;
    setStatus({});
    {
        const Busy busy({m_list->parentWidget(), m_cmdStart});
        sent = transfer.submit(batch->fileName, method);
    }
    setStatus(
        sent
            ? QStringLiteral("%1 was submitted (%2).").arg(batch->fileName, m_method->currentText())
            : QStringLiteral("%1 was not submitted.").arg(batch->fileName));
    reloadBatches(batch->batchId);
}

}  // namespace brimsett
