#include "screens/frmReceive.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/AnswerReports.h"
#include "screens/AnswerGrid.h"
#include "screens/BusyParts.h"
#include "screens/ReportPreview.h"
#include "screens/frmViewBatchEdit.h"
#include "screens/frmViewError.h"

#include <QApplication>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>

#include <algorithm>

// Reading the chosen answer file and showing what it says.
namespace brimsett {

namespace {

QString plural(qsizetype n, const QString& one, const QString& many) {
    return QStringLiteral("%1 %2").arg(n).arg(n == 1 ? one : many);
}

// What reading did, for the status line.
QString outcomeOf(const ReceivedAnswer& answer) {
    if (std::holds_alternative<remittance::Remittance>(answer.content)) {
        if (!answer.reconciled) {
            return QStringLiteral("checked only, nothing reconciled");
        }
        const remittance::ReconcileCounts& n = answer.counts;
        QString text = QStringLiteral("%1 paid, %2 rejected, %3 not found")
                           .arg(plural(n.paid, QStringLiteral("item"), QStringLiteral("items")))
                           .arg(n.rejected)
                           .arg(n.unmatched);
        if (n.alreadyRead > 0) {
            text += QStringLiteral(", %1 read before").arg(n.alreadyRead);
        }
        return text;
    }
    if (const auto* report = std::get_if<errorreport::ErrorReport>(&answer.content)) {
        if (!answer.reconciled) {
            return QStringLiteral("checked only, nothing marked");
        }
        const int marked = report->countOf(errorreport::ItemOutcome::MarkedRejected);
        const int unknown = report->countOf(errorreport::ItemOutcome::Unknown);
        return QStringLiteral("%1 marked rejected, %2 unknown")
            .arg(plural(marked, QStringLiteral("item"), QStringLiteral("items")))
            .arg(unknown);
    }
    const auto& edit = std::get<batchedit::Report>(answer.content);
    const auto rejected = std::count_if(edit.rows.cbegin(), edit.rows.cend(),
                                        [](const batchedit::Row& r) { return r.rejected; });
    return QStringLiteral("%1, %2 rejected")
        .arg(plural(edit.rows.size(), QStringLiteral("batch"), QStringLiteral("batches")))
        .arg(rejected);
}

}  // namespace

void frmReceive::LoadData() {
    const std::optional<WaitingFile> file = selectedFile();
    if (!file) {
        return;
    }
    ReadOptions options;
    options.reconcile = m_reconcile->isChecked();
    options.remittance.i2ToFullSubmitted = m_settings.option[16];
    options.remittance.autoSplit =
        m_store.get(QStringLiteral("Options"), QStringLiteral("AutoSplit")) == QLatin1String("1");

    m_errors->setRowCount(0);
    m_progress->clear();
    setStatus(QStringLiteral("Reading %1...").arg(file->fileName));
    m_status->repaint();
    const auto progress = [this](int linesRead, int totalLines) {
        m_progress->setText(received::progressText(linesRead, totalLines));
        m_progress->repaint();
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    };
    std::optional<ReceivedAnswer> answer;
    {
        const BusyParts busy({m_filePanel, m_cmdReceive});
        answer = readAnswer(m_db, m_log, m_prompter, file->path, options, progress);
    }
    if (!answer) {
        m_progress->clear();
        setStatus(QStringLiteral("%1 was not read.").arg(file->fileName));
        return;
    }
    QList<QStringList> rows;
    for (const received::LineError& e : answer->errors()) {
        rows << received::cellsOf(e);
    }
    answergrid::fill(m_errors, rows, 50);
    const qsizetype faults = answer->errors().size();
    setStatus(QStringLiteral("%1: %2; %3. Finished")
                  .arg(file->fileName, outcomeOf(*answer),
                       faults == 0
                           ? QStringLiteral("no errors")
                           : plural(faults, QStringLiteral("error"), QStringLiteral("errors"))));
    reloadFiles(file->fileName);
    showAnswer(*answer);
}

void frmReceive::showAnswer(const ReceivedAnswer& answer) {
    const reports::ReportStyle style = reports::ReportStyle::fromSettings(m_settings);
    const QDate today = m_clock.today();
    if (const auto* ra = std::get_if<remittance::Remittance>(&answer.content)) {
        try {
            showReportPreview(
                answerreports::remittanceReport(m_db, *ra, answer.fileName, today, m_money), style,
                this);
        } catch (const DbError& e) {
            m_prompter.error(
                {QStringLiteral("The remittance report could not be made."), e.message()});
        }
        return;
    }
    QWidget* view = nullptr;
    if (const auto* report = std::get_if<errorreport::ErrorReport>(&answer.content)) {
        view = new frmViewError(*report, answer.fileName, today, m_money, style, this);
    } else {
        view = new frmViewBatchEdit(std::get<batchedit::Report>(answer.content), answer.fileName,
                                    today, style, this);
    }
    view->setAttribute(Qt::WA_DeleteOnClose);
    view->show();
    view->raise();
    view->activateWindow();
}

}  // namespace brimsett
