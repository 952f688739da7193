#include "screens/frmReceive.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/ClaimTransfer.h"
#include "ministry/FolderExchange.h"
#include "screens/AnswerGrid.h"
#include "screens/BusyParts.h"
#include "screens/RecordList.h"
#include "screens/SlotGuard.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTableWidget>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

namespace brimsett {

namespace {

enum Column { FileColumn, ProviderColumn, DateColumn };

}  // namespace

frmReceive::frmReceive(Database& db, AppSettings& settings, SettingsStore& store,
                       Prompter& prompter, const Clock& clock, const SqlLog& log, MoneyFormat money,
                       QString officeFolder, QWidget* parent)
    : TransferScreen(db, settings, store, prompter, clock, log, money, std::move(officeFolder),
                     parent) {
    setWindowTitle(kTitle);
    m_listFolder = m_folder + FolderExchange::kDownload + QLatin1Char('/');

    // Created in the order Tab should follow.
    QWidget* fetch = buildFetchRow();
    QWidget* files = buildFilePanel();
    QWidget* errors = buildErrorPanel();
    QLabel* status = makeStatusLine();
    auto* close =
        button(this, QStringLiteral("cmdClose"), QStringLiteral("&Close"), QStringLiteral("Esc"));
    connect(close, &QPushButton::clicked, this, guarded(this, &QWidget::close));

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(status, 1);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fetch);
    layout->addWidget(files, 3);
    layout->addWidget(errors, 2);
    layout->addLayout(bottom);

    loadDoctors(m_settings.lastDoctorReconcile);
    // Connected after loading: only the user's choice is remembered.
    connect(m_doctor, &QComboBox::currentIndexChanged, this,
            guarded(this, &frmReceive::doctorChanged));
    reloadFiles();
    resize(860, 640);
    m_list->setFocus();
}

QWidget* frmReceive::buildFetchRow() {
    auto* panel = new QGroupBox(QStringLiteral("Fetch the ministry's answers"), this);
    auto* doctorLabel = labelFor(makeDoctorList(panel), QStringLiteral("&Doctor:"), panel);
    auto* methodLabel = labelFor(makeMethodList(panel), QStringLiteral("Met&hod:"), panel);

    m_cmdReceive = button(panel, QStringLiteral("cmdReceive"), QStringLiteral("Recei&ve"),
                          QStringLiteral("Fetches the files the ministry has for the doctor"));
    connect(m_cmdReceive, &QPushButton::clicked, this, guarded(this, &frmReceive::receiveClicked));

    auto* row = new QHBoxLayout(panel);
    row->addWidget(doctorLabel);
    row->addWidget(m_doctor);
    row->addSpacing(12);
    row->addWidget(methodLabel);
    row->addWidget(m_method);
    row->addWidget(m_cmdReceive);
    row->addStretch();
    return panel;
}

QWidget* frmReceive::buildFilePanel() {
    m_filePanel = new QGroupBox(this);
    m_list = recordlist::make(
        m_filePanel,
        {QStringLiteral("File Name"), QStringLiteral("Provider"), QStringLiteral("Date")},
        DateColumn);
    m_list->setObjectName(QStringLiteral("lstFiles"));
    connect(m_list, &QTreeWidget::currentItemChanged, this,
            guarded(this, &frmReceive::updateButtons));
    // Enter (or a double click) on a file reads it.
    connect(m_list, &QTreeWidget::itemActivated, this, guarded(this, &frmReceive::LoadData));
    auto* listDelete = new QShortcut(QKeySequence(Qt::Key_Delete), m_list);
    listDelete->setContext(Qt::WidgetShortcut);
    connect(listDelete, &QShortcut::activated, this, guarded(this, &frmReceive::deleteClicked));

    m_cmdRead = button(m_filePanel, QStringLiteral("cmdRead"), QStringLiteral("&Read"),
                       QStringLiteral("Reads the file and shows its report (Enter)"));
    m_cmdEdit = button(m_filePanel, QStringLiteral("cmdEdit"), QStringLiteral("&Edit"),
                       QStringLiteral("Opens the file in the text editor"));
    m_cmdDelete = button(m_filePanel, QStringLiteral("cmdDelete"), QStringLiteral("De&lete"),
                         QStringLiteral("Deletes the file (Delete)"));
    auto* refresh = button(m_filePanel, QStringLiteral("cmdRefresh"), QStringLiteral("Re&fresh"),
                           QStringLiteral("Lists the folder again"));
    connect(m_cmdRead, &QPushButton::clicked, this, guarded(this, &frmReceive::LoadData));
    connect(m_cmdEdit, &QPushButton::clicked, this, guarded(this, &frmReceive::editClicked));
    connect(m_cmdDelete, &QPushButton::clicked, this, guarded(this, &frmReceive::deleteClicked));
    connect(refresh, &QPushButton::clicked, this, guarded(this, [this] { reloadFiles(); }));

    // "WILL" is the normal run; the label says which the next reading does.
    m_reconcile = new QCheckBox(m_filePanel);
    m_reconcile->setObjectName(QStringLiteral("chkReconcile"));
    m_reconcile->setChecked(true);
    m_reconcile->setToolTip(QStringLiteral("Off: the file is only checked and printed"));
    connect(m_reconcile, &QCheckBox::toggled, this,
            guarded(this, &frmReceive::showReconcileChoice));
    showReconcileChoice();
    m_progress = new QLabel(m_filePanel);
    m_progress->setObjectName(QStringLiteral("lblProgress"));

    auto* side = new QVBoxLayout;
    side->addWidget(m_cmdRead);
    side->addWidget(m_cmdEdit);
    side->addWidget(m_cmdDelete);
    side->addSpacing(12);
    side->addWidget(refresh);
    side->addStretch();
    auto* body = new QHBoxLayout;
    body->addWidget(m_list, 1);
    body->addLayout(side);
    auto* readRow = new QHBoxLayout;
    readRow->addWidget(m_reconcile);
    readRow->addSpacing(24);
    readRow->addWidget(m_progress, 1);
    auto* layout = new QVBoxLayout(m_filePanel);
    layout->addLayout(body, 1);
    layout->addLayout(readRow);
    return m_filePanel;
}

QWidget* frmReceive::buildErrorPanel() {
    auto* panel = new QGroupBox(QStringLiteral("Error&s found in the file"), this);
    m_errors = answergrid::make(panel, received::errorColumns());
    m_errors->setObjectName(QStringLiteral("grdErrors"));
    auto* layout = new QVBoxLayout(panel);
    layout->addWidget(m_errors);
    return panel;
}

void frmReceive::showReconcileChoice() {
    // The mnemonic is the same letter in both labels, so Alt+W always toggles.
    m_reconcile->setText(m_reconcile->isChecked() ? QStringLiteral("&WILL reconcile")
                                                  : QStringLiteral("&will NOT reconcile"));
}

void frmReceive::doctorChanged(int index) {
    if (index < 0) {
        return;
    }
    m_settings.lastDoctorReconcile = m_doctor->currentData().toString();
    m_store.save(QStringLiteral("General"), QStringLiteral("LastDoctorReconcile"),
                 m_settings.lastDoctorReconcile);
    m_store.sync();
}

void frmReceive::reloadFiles(const QString& select) {
    const std::optional<WaitingFile> current = selectedFile();
    const QString keep = select.isEmpty() && current ? current->fileName : select;
    m_files = waitingFiles(m_listFolder, &m_db);
    m_filePanel->setTitle(
        QStringLiteral("&Answer files in %1").arg(QDir::toNativeSeparators(m_listFolder)));
    m_list->clear();
    for (const WaitingFile& f : std::as_const(m_files)) {
        auto* item =
            new QTreeWidgetItem(m_list, {f.fileName, f.provider, datetext::slashed(f.date)});
        item->setData(0, recordlist::kKeyRole, f.fileName);
    }
    for (int c = FileColumn; c < DateColumn; ++c) {
        m_list->resizeColumnToContents(c);
        m_list->setColumnWidth(c, std::max(m_list->columnWidth(c) + 24, 110));
    }
    recordlist::keepCurrent(m_list, keep);
    updateButtons();
}

std::optional<WaitingFile> frmReceive::selectedFile() const {
    return recordlist::currentRecord(m_list, m_files,
                                     [](const WaitingFile& r) { return r.fileName; });
}

bool frmReceive::selectFile(const QString& fileName) {
    return recordlist::showRow(m_list, fileName);
}

void frmReceive::updateButtons() {
    recordlist::enableForRow(m_list, {m_cmdRead, m_cmdEdit, m_cmdDelete});
}

void frmReceive::receiveClicked() {
    static QString lastDisk = QDir::homePath();  // where the last dialog of the run ended
    const std::optional<TransferPlaces> places =
        placesForTransfer(QStringLiteral("The disk with the ministry's files"), lastDisk);
    if (!places) {
        return;
    }
    ClaimTransfer transfer = transferTo(*places);
    setStatus({});
    std::optional<QStringList> fetched;
    {
        const BusyParts busy({m_filePanel, m_cmdReceive});
        fetched = transfer.fetchAnswers(doctorId(), method());
    }
    if (!fetched) {
        setStatus(QStringLiteral("Nothing was received."));
        return;
    }
    if (method() == TransferMethod::Disk) {
        m_listFolder = QDir(places->diskFolder).absolutePath() + QLatin1Char('/');
    } else {
        m_listFolder = m_folder + FolderExchange::kDownload + QLatin1Char('/');
    }
    reloadFiles(fetched->isEmpty() ? QString() : fetched->first());
    setStatus(fetched->size() == 1 ? QStringLiteral("1 file received.")
                                   : QStringLiteral("%1 files received.").arg(fetched->size()));
    m_list->setFocus();
}

void frmReceive::editClicked() {
    const std::optional<WaitingFile> file = selectedFile();
    if (!file) {
        return;
    }
    const bool opened = m_openFile ? m_openFile(file->path)
                                   : QDesktopServices::openUrl(QUrl::fromLocalFile(file->path));
    if (!opened) {
        m_prompter.error({QStringLiteral("No text editor could open %1.").arg(file->fileName)});
    }
}

void frmReceive::deleteClicked() {
    const std::optional<WaitingFile> file = selectedFile();
    if (!file || !m_prompter.confirm(QStringLiteral("Delete File"),
                                     {QStringLiteral("Are you sure you want to delete this file?"),
                                      file->fileName})) {
        return;
    }
    if (QFile::remove(file->path)) {
        setStatus(QStringLiteral("%1 was deleted.").arg(file->fileName));
    } else {
        m_prompter.error({QStringLiteral("The file %1 could not be deleted.").arg(file->fileName)});
    }
    reloadFiles();
}

}  // namespace brimsett
