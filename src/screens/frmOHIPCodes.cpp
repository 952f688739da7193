#include "screens/frmOHIPCodes.h"

#include "claims/SobImport.h"
#include "foundation/Prompter.h"
#include "screens/SlotGuard.h"

#include <QBoxLayout>
#include <QFileDialog>
#include <QFileInfo>
#include <QProgressDialog>
#include <QPushButton>
#include <QShortcut>

namespace brimsett {

namespace {

const QString kUpdateTitle = QStringLiteral("Update Fee Schedules");

}  // namespace

frmOHIPCodes::frmOHIPCodes(Database& db, const SqlLog& log, Prompter& prompter,
                           const MoneyFormat& money, QString startFolder, QWidget* parent)
    : CodeTableEditor(codetables::serviceCodes(), db, log, prompter, money, parent),
      m_db(db),
      m_log(log),
      m_folder(std::move(startFolder)) {
    auto* update = new QPushButton(QStringLiteral("&Update Fee Schedules..."), this);
    update->setToolTip(QStringLiteral("Ctrl+U: import the ministry's schedule of benefits file"));
    update->setAutoDefault(false);
    connect(update, &QPushButton::clicked, this, guarded(this, &frmOHIPCodes::chooseScheduleFile));
    connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_U), this), &QShortcut::activated, this,
            guarded(this, &frmOHIPCodes::chooseScheduleFile));
    // Beside the editing buttons, before the stretch that pushes Close to the right.
    buttonRow()->insertSpacing(3, 24);
    buttonRow()->insertWidget(4, update);
}

void frmOHIPCodes::chooseScheduleFile() {
    const QString file = QFileDialog::getOpenFileName(this, kUpdateTitle, m_folder);
    if (file.isEmpty()) {
        return;
    }
    m_folder = QFileInfo(file).absolutePath();
    emit folderUsed(m_folder);
    updateFeeSchedules(file);
}

bool frmOHIPCodes::updateFeeSchedules(const QString& fileName) {
    // The import rewrites the rows on screen; edits made meanwhile would be lost.
    if (!leaveChanges()) {
        return false;
    }
    QProgressDialog progress(
        QStringLiteral("Updating the fee schedules from %1...").arg(QFileInfo(fileName).fileName()),
        QStringLiteral("Cancel"), 0, 0, this);
    progress.setWindowTitle(kUpdateTitle);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(400);
    progress.setAutoReset(false);
    bool cancelled = false;
    connect(&progress, &QProgressDialog::canceled, this, [&cancelled] { cancelled = true; });
    SobImport importer(m_db, prompter(), m_log);
    importer.setProgress([&progress, &cancelled](int done, int total) {
        progress.setMaximum(total);
        progress.setValue(done);  // a modal dialog takes its Cancel click here
        return !cancelled;
    });
    const SobImport::Result result = importer.run(fileName);
    progress.hide();  // closing it would count as a Cancel
    if (cancelled) {
        prompter().tell(kUpdateTitle,
                        {QStringLiteral("The update was cancelled; no fee was changed.")},
                        Icon::Information);
    }
    reload();
    return result.imported;
}

}  // namespace brimsett
