#include "screens/frmReceive.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/ClaimTransfer.h"
#include "ministry/FolderExchange.h"
#include "patients/ProviderRegister.h"
#include "screens/AnswerGrid.h"
#include "screens/BusyParts.h"
#include "screens/RecordList.h"
#include "screens/RepaintingWait.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
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

QPushButton* button(QWidget* parent, const QString& name, const QString& caption,
                    const QString& tip = {}) {
    auto* b = new QPushButton(caption, parent);
    b->setObjectName(name);
    b->setAutoDefault(false);
    b->setToolTip(tip);
    return b;
}

}  // namespace

frmReceive::frmReceive(Database& db, AppSettings& settings, SettingsStore& store,
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
      m_folder(std::move(officeFolder)) {
    setWindowTitle(kTitle);
    if (!m_folder.isEmpty() && !m_folder.endsWith(QLatin1Char('/'))) {
        m_folder += QLatin1Char('/');
    }
    m_listFolder = m_folder + FolderExchange::kDownload + QLatin1Char('/');

    // Created in the order Tab should follow.
    QWidget* fetch = buildFetchRow();
    QWidget* files = buildFilePanel();
    QWidget* errors = buildErrorPanel();
    m_status = new QLabel(this);
    m_status->setObjectName(QStringLiteral("lblStatus"));
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* close =
        button(this, QStringLiteral("cmdClose"), QStringLiteral("&Close"), QStringLiteral("Esc"));
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(new QShortcut(QKeySequence(Qt::Key_Escape), this), &QShortcut::activated, this,
            &QWidget::close);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(m_status, 1);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(fetch);
    layout->addWidget(files, 3);
    layout->addWidget(errors, 2);
    layout->addLayout(bottom);

    loadDoctors();
    reloadFiles();
    resize(860, 640);
    m_list->setFocus();
}

QWidget* frmReceive::buildFetchRow() {
    auto* panel = new QGroupBox(QStringLiteral("Fetch the ministry's answers"), this);
    m_doctor = new QComboBox(panel);
    m_doctor->setObjectName(QStringLiteral("cboDoctor"));
    m_doctor->setMinimumContentsLength(28);
    m_doctor->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    auto* doctorLabel = new QLabel(QStringLiteral("&Doctor:"), panel);
    doctorLabel->setBuddy(m_doctor);

    m_method = new QComboBox(panel);
    m_method->setObjectName(QStringLiteral("cboMethod"));
    m_method->addItems(transferMethodNames());
    m_method->setCurrentIndex(std::clamp(m_settings.submitMethod, 0, 2));
    connect(m_method, &QComboBox::currentIndexChanged, this, &frmReceive::methodChanged);
    auto* methodLabel = new QLabel(QStringLiteral("Met&hod:"), panel);
    methodLabel->setBuddy(m_method);

    m_cmdReceive = button(panel, QStringLiteral("cmdReceive"), QStringLiteral("Recei&ve"),
                          QStringLiteral("Fetches the files the ministry has for the doctor"));
    connect(m_cmdReceive, &QPushButton::clicked, this, &frmReceive::receiveClicked);

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
    connect(m_list, &QTreeWidget::currentItemChanged, this, &frmReceive::updateButtons);
    // Enter (or a double click) on a file reads it.
    connect(m_list, &QTreeWidget::itemActivated, this, &frmReceive::LoadData);
    auto* listDelete = new QShortcut(QKeySequence(Qt::Key_Delete), m_list);
    listDelete->setContext(Qt::WidgetShortcut);
    connect(listDelete, &QShortcut::activated, this, &frmReceive::deleteClicked);

    m_cmdRead = button(m_filePanel, QStringLiteral("cmdRead"), QStringLiteral("&Read"),
                       QStringLiteral("Reads the file and shows its report (Enter)"));
    m_cmdEdit = button(m_filePanel, QStringLiteral("cmdEdit"), QStringLiteral("&Edit"),
                       QStringLiteral("Opens the file in the text editor"));
    m_cmdDelete = button(m_filePanel, QStringLiteral("cmdDelete"), QStringLiteral("De&lete"),
                         QStringLiteral("Deletes the file (Delete)"));
    auto* refresh = button(m_filePanel, QStringLiteral("cmdRefresh"), QStringLiteral("Re&fresh"),
                           QStringLiteral("Lists the folder again"));
    connect(m_cmdRead, &QPushButton::clicked, this, &frmReceive::LoadData);
    connect(m_cmdEdit, &QPushButton::clicked, this, &frmReceive::editClicked);
    connect(m_cmdDelete, &QPushButton::clicked, this, &frmReceive::deleteClicked);
    connect(refresh, &QPushButton::clicked, this, [this] { reloadFiles(); });

    // "WILL" is the normal run; the label says which the next reading does.
    m_reconcile = new QCheckBox(m_filePanel);
    m_reconcile->setObjectName(QStringLiteral("chkReconcile"));
    m_reconcile->setChecked(true);
    m_reconcile->setToolTip(QStringLiteral("Off: the file is only checked and printed"));
    connect(m_reconcile, &QCheckBox::toggled, this, &frmReceive::showReconcileChoice);
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

void frmReceive::loadDoctors() {
    QList<Provider> providers;
    try {
        providers = ProviderRegister(m_db, m_settings, m_prompter, m_log).list();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The providers could not be read."), e.message()});
    }
    for (const Provider& p : std::as_const(providers)) {
        m_doctor->addItem(p.doctorId + QStringLiteral(" - ") + p.displayName(), p.doctorId);
    }
    int chosen =
        m_doctor->findData(m_settings.lastDoctorReconcile, Qt::UserRole, Qt::MatchFixedString);
    if (chosen < 0 && m_doctor->count() == 1) {
        chosen = 0;
    }
    m_doctor->setCurrentIndex(chosen);
    connect(m_doctor, &QComboBox::currentIndexChanged, this, &frmReceive::doctorChanged);
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

void frmReceive::methodChanged(int index) {
    if (index < 0) {
        return;
    }
    m_settings.submitMethod = index;
    m_store.saveNumber(QStringLiteral("General"), QStringLiteral("SubmitMethod"), index);
    m_store.sync();
}

void frmReceive::reloadFiles(const QString& select) {
    const std::optional<WaitingFile> current = selectedFile();
    const QString keep = select.isEmpty() && current ? current->fileName : select;
    m_files = waitingFiles(m_listFolder);
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
    if (!selectFile(keep) && m_list->topLevelItemCount() > 0) {
        m_list->setCurrentItem(m_list->topLevelItem(0));
    }
    updateButtons();
}

std::optional<WaitingFile> frmReceive::selectedFile() const {
    const QTreeWidgetItem* item = m_list ? m_list->currentItem() : nullptr;
    if (item == nullptr) {
        return std::nullopt;
    }
    const QString key = item->data(0, recordlist::kKeyRole).toString();
    for (const WaitingFile& f : m_files) {
        if (f.fileName == key) {
            return f;
        }
    }
    return std::nullopt;
}

bool frmReceive::selectFile(const QString& fileName) {
    for (int i = 0; i < m_list->topLevelItemCount() && !fileName.isEmpty(); ++i) {
        QTreeWidgetItem* item = m_list->topLevelItem(i);
        if (item->data(0, recordlist::kKeyRole).toString() == fileName) {
            m_list->setCurrentItem(item);
            m_list->scrollToItem(item);
            return true;
        }
    }
    return false;
}

void frmReceive::updateButtons() {
    const bool chosen = m_list->currentItem() != nullptr;
    for (QPushButton* b : {m_cmdRead, m_cmdEdit, m_cmdDelete}) {
        b->setEnabled(chosen);
    }
}

QString frmReceive::statusLine() const {
    return m_status->text();
}

void frmReceive::setStatus(const QString& text) {
    m_status->setText(text);
}

QString frmReceive::chooseDiskFolder() {
    if (m_chooseDiskFolder) {
        return m_chooseDiskFolder();
    }
    static QString last = QDir::homePath();  // where the last dialog of the run ended
    const QString chosen = QFileDialog::getExistingDirectory(
        this, QStringLiteral("The disk with the ministry's files"), last);
    if (!chosen.isEmpty()) {
        last = chosen;
    }
    return chosen;
}

void frmReceive::receiveClicked() {
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
    const QString doctor =
        m_doctor->currentIndex() >= 0 ? m_doctor->currentData().toString() : QString();
    setStatus({});
    std::optional<QStringList> fetched;
    {
        const BusyParts busy({m_filePanel, m_cmdReceive});
        fetched = transfer.fetchAnswers(doctor, method);
    }
    if (!fetched) {
        setStatus(QStringLiteral("Nothing was received."));
        return;
    }
    if (method == TransferMethod::Disk) {
        m_listFolder = QDir(places.diskFolder).absolutePath() + QLatin1Char('/');
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
