#include "ministry/EdtDownload.h"

#include "foundation/Clock.h"
#include "ministry/EdtFileTransfer.h"
#include "ministry/FolderExchange.h"
#include "ministry/ModemSession.h"
#include "ministry/TransferFiles.h"

namespace brimsett {

namespace {

QStringList transferFailed() {
    return {QStringLiteral("Could not download: the file transfer failed."),
            QStringLiteral("Try the reconciliation again.")};
}

QStringList timedOut() {
    return {QStringLiteral("Time out error occurred."),
            QStringLiteral("Try the reconciliation again.")};
}

}  // namespace

EdtDownload::EdtDownload(ModemSession& session, EdtEventSink sink, EdtFileTransfer& transfer,
                         const Clock& clock, QString officeFolder, int timeOutSeconds,
                         EdtHostMenu menu)
    : m_session(session),
      m_sink(std::move(sink)),
      m_transfer(transfer),
      m_clock(clock),
      m_office(std::move(officeFolder)),
      m_timeOut(timeOutSeconds),
      m_menu(std::move(menu)) {}

EdtDownload::Result EdtDownload::failed(QStringList message, QStringList files) const {
    for (const QString& line : std::as_const(message)) {
        if (m_sink) {
            m_sink(EdtEvent::Error, line);
        }
    }
    return {false, std::move(files), std::move(message)};
}

EdtDownload::Result EdtDownload::run() {
    const QString download = m_office + FolderExchange::kDownload + QLatin1Char('/');
    if (const QString problem = transferfiles::makeFolders(m_office, {FolderExchange::kDownload});
        !problem.isEmpty()) {
        return failed({problem, QStringLiteral("Nothing was downloaded.")});
    }
    if (!m_session.send(m_menu.download + QLatin1Char('\r'))) {
        return failed(transferFailed());
    }
    // The list's two wordings come first; the host's "none" is named last.
    const TextSeen list = m_session.waitFor(kList + QLatin1Char(';') + m_menu.noFiles, m_timeOut);
    if (!list) {
        return failed(list.lost ? transferFailed() : timedOut());
    }
    QStringList files;
    if (list.index < 2) {
        if (!m_session.send(m_menu.downloadAll + QLatin1Char('\r'))) {
            return failed(transferFailed());
        }
        const QString next = kStarted + QLatin1Char(';') + m_menu.shown;
        TextSeen seen = m_session.waitFor(next, m_timeOut);
        while (seen && seen.index == 0) {
            const TransferOutcome outcome = m_transfer.receive(
                download, m_clock.now(), m_timeOut + EdtFileTransfer::kReceiveSeconds, &files);
            if (outcome != TransferOutcome::Done) {
                return failed(outcome == TransferOutcome::TimedOut ? timedOut() : transferFailed(),
                              files);
            }
            // The host's closing line may be missed when the receiver read it with the end of
            // the transfer; the files are whole by then, so the next file or the menu will do.
            seen = m_session.waitFor(kFinished + QLatin1Char(';') + next, m_timeOut);
            if (seen && seen.index == 0) {
                seen = m_session.waitFor(next, m_timeOut);
            } else if (seen) {
                seen.index -= 1;
            }
        }
        if (seen.lost || (!seen && files.isEmpty())) {
            return failed(seen.lost ? transferFailed() : timedOut(), files);
        }
    }
    QStringList message;
    if (files.isEmpty()) {
        message = {QStringLiteral("No files were"), QStringLiteral("available for download."),
                   QStringLiteral("Please check again later.")};
    } else {
        message = {QStringLiteral("Successfully downloaded %1 files.").arg(files.size())};
    }
    for (const QString& line : std::as_const(message)) {
        m_session.step(line);
    }
    return {true, files, message};
}

}  // namespace brimsett
