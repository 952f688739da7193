#include "screens/frmPrepare.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/BatchPreparation.h"
#include "ministry/BatchReports.h"
#include "ministry/ClaimTransfer.h"
#include "screens/BusyParts.h"
#include "screens/EdtSetupScreens.h"
#include "screens/EnterMovesOn.h"
#include "screens/RecordList.h"
#include "screens/ReportPreview.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QApplication>
#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace brimsett {

namespace {

enum Column { DoctorColumn, BatchColumn, CountsColumn, TotalColumn, FileColumn, SubmittedColumn };

}  // namespace

frmPrepare::frmPrepare(Database& db, AppSettings& settings, SettingsStore& store,
                       Prompter& prompter, const Clock& clock, const SqlLog& log, MoneyFormat money,
                       QString officeFolder, QWidget* parent)
    : TransferScreen(db, settings, store, prompter, clock, log, money, std::move(officeFolder),
                     parent),
      m_batches(db, ScreenPrompter::of(this), log) {
    setWindowTitle(kTitle);

    // Created in the order Tab (and Enter) should follow.
    QWidget* prepare = buildPreparePanel();
    QWidget* batches = buildBatchPanel();
    QLabel* status = makeStatusLine();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(prepare);
    layout->addWidget(batches, 1);
    layout->addWidget(status);

    loadDoctors(m_settings.lastDoctor);
    reloadBatches();
    resize(900, 620);
    m_doctor->setFocus();
}

QWidget* frmPrepare::buildPreparePanel() {
    auto* panel = new QGroupBox(QStringLiteral("Prepare a claim file"), this);
    auto* enter = new EnterMovesOn(this);

    enter->watch(makeDoctorList(panel));
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
    connect(m_cmdStart, &QPushButton::clicked, this, guarded(this, &frmPrepare::startClicked));
    m_progress = new QLabel(panel);
    m_progress->setObjectName(QStringLiteral("lblProgress"));
    m_progress->setMinimumWidth(
        m_progress->fontMetrics().horizontalAdvance(QStringLiteral("000,000 Records")));

    auto* doctorLabel = labelFor(m_doctor, QStringLiteral("&Doctor:"), panel);
    auto* cutOffLabel = labelFor(m_cutOff, QStringLiteral("&Cut-off date:"), panel);
    m_startLabel = labelFor(m_start, QStringLiteral("S&tart date:"), panel);
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
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmPrepare::updateButtons));
    auto* listDelete = new QShortcut(QKeySequence(Qt::Key_Delete), m_list);
    listDelete->setContext(Qt::WidgetShortcut);
    connect(listDelete, &QShortcut::activated, this, guarded(this, &frmPrepare::deleteClicked));

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
    connect(m_cmdSummary, &QPushButton::clicked, this, guarded(this, &frmPrepare::summaryClicked));
    connect(m_cmdClaims, &QPushButton::clicked, this, guarded(this, &frmPrepare::claimsClicked));
    connect(m_cmdReverse, &QPushButton::clicked, this, guarded(this, &frmPrepare::reverseClicked));
    connect(m_cmdDelete, &QPushButton::clicked, this, guarded(this, &frmPrepare::deleteClicked));

    auto* methodLabel = labelFor(makeMethodList(panel), QStringLiteral("Met&hod:"), panel);
    m_cmdSubmit = button(panel, QStringLiteral("cmdSubmit"), QStringLiteral("S&ubmit"),
                         QStringLiteral("Hands the batch's claim file to the ministry"));
    connect(m_cmdSubmit, &QPushButton::clicked, this, guarded(this, &frmPrepare::submitClicked));
    // The transfer logins are set up where they are used.
    auto* setup = button(panel, QStringLiteral("cmdEDTSetup"), QStringLiteral("EDT Se&tup..."));
    connect(setup, &QPushButton::clicked, this, guarded(this, [this] {
                openEdtSetup(m_db, m_settings, m_prompter, m_clock, m_log, m_folder, this,
                             doctorId());
            }));
    auto* close =
        button(panel, QStringLiteral("cmdClose"), QStringLiteral("Close"), QStringLiteral("Esc"));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));

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
    recordlist::keepCurrent(m_list, keep);
    updateButtons();
}

std::optional<BatchRow> frmPrepare::selectedBatch() const {
    return recordlist::currentRecord(m_list, m_rows, [](const BatchRow& r) { return r.batchId; });
}

bool frmPrepare::selectBatch(const QString& batchId) {
    return recordlist::showRow(m_list, batchId);
}

void frmPrepare::updateButtons() {
    recordlist::enableForRow(m_list,
                             {m_cmdSummary, m_cmdClaims, m_cmdReverse, m_cmdDelete, m_cmdSubmit});
}

void frmPrepare::startClicked() {
    PrepareRequest request;
    request.doctorId = doctorId();
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
        const BusyParts busy({m_cmdStart, m_list->parentWidget()});
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

void frmPrepare::submitClicked() {
    const std::optional<BatchRow> batch = selectedBatch();
    if (!batch) {
        return;
    }
    const std::optional<TransferPlaces> places =
        placesForTransfer(QStringLiteral("The disk to copy the claim file to"), submitDiskFolder());
    if (!places) {
        return;
    }
    ClaimTransfer transfer = transferTo(*places);
    bool sent = false;
    setStatus({});
    {
        const BusyParts busy({m_list->parentWidget(), m_cmdStart});
        sent = transfer.submit(batch->fileName, method());
    }
    setStatus(
        sent
            ? QStringLiteral("%1 was submitted (%2).").arg(batch->fileName, m_method->currentText())
            : QStringLiteral("%1 was not submitted.").arg(batch->fileName));
    reloadBatches(batch->batchId);
}

}  // namespace brimsett
