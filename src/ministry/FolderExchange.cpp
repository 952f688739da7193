#include "ministry/FolderExchange.h"

#include "foundation/Clock.h"
#include "foundation/Prompter.h"
#include "ministry/TransferFiles.h"
#include "ministry/TransferWait.h"

#include <QFile>
#include <QFileInfo>

namespace brimsett {

namespace {

QString waitText(int looksLeft) {
    return QStringLiteral("Please Wait (%1)").arg(looksLeft);
}

// Names with sizes: files still growing are not taken until two looks agree.
QStringList listing(const QString& folder, const QStringList& names) {
    QStringList seen;
    for (const QString& name : names) {
        seen << name + QLatin1Char('\t') + QString::number(QFileInfo(folder + name).size());
    }
    return seen;
}

}  // namespace

FolderExchange::FolderExchange(QString officeFolder, Prompter& prompter, TransferWait& wait,
                               const Clock& clock, QString title)
    : m_office(std::move(officeFolder)),
      m_prompter(prompter),
      m_wait(wait),
      m_clock(clock),
      m_title(std::move(title)) {}

QString FolderExchange::requestName(const QString& userId) {
    return QLatin1Char('R') + userId + QStringLiteral(".txt");
}

void FolderExchange::fail(const QStringList& lines) {
    m_wait.status({});
    m_prompter.tell(m_title, lines, Icon::Critical);
}

bool FolderExchange::send(const QString& fileName) {
    const QString outbound = path(kOutbound + QLatin1Char('/'));
    const QString receipt = outbound + QStringLiteral("Done/") + fileName + QStringLiteral(".done");
    const QString notSent = QStringLiteral("The file was not submitted.");
    QString problem = transferfiles::makeFolders(
        m_office, {kOutbound, kInbound, kInbound + QStringLiteral("/Done"),
                   kOutbound + QStringLiteral("/Done")});
    // A receipt left from an earlier hand-over would be taken for this one's.
    if (problem.isEmpty() && QFileInfo::exists(receipt) && !QFile::remove(receipt)) {
        problem = QStringLiteral("The earlier receipt %1 could not be removed.").arg(receipt);
    }
    const std::optional<QByteArray> bytes =
        problem.isEmpty() ? transferfiles::readAll(path(fileName), &problem) : std::nullopt;
    if (bytes) {
        problem = transferfiles::place(*bytes, outbound + fileName, m_office);
    }
    if (!problem.isEmpty()) {
        fail({problem, notSent});
        return false;
    }
    for (int look = 1; look <= kSubmitLooks; ++look) {
        if (QFileInfo::exists(receipt)) {
            QFile::remove(receipt);
            m_wait.status({});
            return true;
        }
        if (look < kSubmitLooks) {
            m_wait.status(waitText(kSubmitLooks - look));
            m_wait.pause(kSubmitPauseMs);
        }
    }
    // Taken back, so that an agent starting later does not send a file the office was told
    // had failed (and would then submit again).
    QFile::remove(outbound + fileName);
    fail({QStringLiteral("File Submission Failed. Please contact technical support.")});
    return false;
}

std::optional<QStringList> FolderExchange::fetch(const QString& userId) {
    const QString inbound = path(kInbound + QLatin1Char('/'));
    QString problem =
        transferfiles::makeFolders(m_office, {kOutbound, kOutbound + QStringLiteral("/Done"),
                                              kInbound, kInbound + QStringLiteral("/Done"),
                                              kInbound + QStringLiteral("/Ok"), kDownload});
    // A ".nofiles" left from an earlier request would answer this one at once.
    for (const QString& name : transferfiles::filesIn(inbound)) {
        if (problem.isEmpty() && name.endsWith(QStringLiteral(".nofiles"), Qt::CaseInsensitive) &&
            !QFile::remove(inbound + name)) {
            problem =
                QStringLiteral("The earlier answer %1 could not be removed.").arg(inbound + name);
        }
    }
    if (problem.isEmpty()) {
        problem = transferfiles::place(QByteArrayLiteral("!\r\n"),
                                       path(kOutbound + QLatin1Char('/') + requestName(userId)),
                                       m_office);
    }
    if (!problem.isEmpty()) {
        fail({problem, QStringLiteral("Nothing was downloaded.")});
        return std::nullopt;
    }

    QStringList seen;
    for (int look = 1; look <= kFetchLooks; ++look) {
        QStringList names = transferfiles::filesIn(inbound);
        bool noFiles = false;
        for (const QString& name : QStringList(names)) {
            if (name.endsWith(QStringLiteral(".nofiles"), Qt::CaseInsensitive)) {
                noFiles = true;
                QFile::remove(inbound + name);
                names.removeAll(name);
            }
        }
        const QStringList now = listing(inbound, names);
        if (!names.isEmpty() && (noFiles || now == seen || look == kFetchLooks)) {
            for (const QString& name : std::as_const(names)) {
                if (!take(name)) {
                    return std::nullopt;
                }
            }
            m_wait.status({});
            m_prompter.tell(m_title, {QStringLiteral("Finished!")}, Icon::Information);
            return names;
        }
        if (noFiles) {
            m_wait.status({});
            m_prompter.tell(m_title, {QStringLiteral("No Files were available for download.")},
                            Icon::Information);
            return QStringList();
        }
        seen = now;
        if (look < kFetchLooks) {
            m_wait.status(waitText(kFetchLooks - look));
            m_wait.pause(kFetchPauseMs);
        }
    }
    fail({QStringLiteral("The transfer agent did not answer."),
          QStringLiteral("Please check that it is running, then try again.")});
    return std::nullopt;
}

bool FolderExchange::take(const QString& name) {
    const QString source = path(kInbound + QLatin1Char('/') + name);
    const QString download = path(kDownload + QLatin1Char('/'));
    const QString target = download + name;
    QString problem;
    const std::optional<QByteArray> bytes = transferfiles::readAll(source, &problem);
    if (bytes) {
        problem = transferfiles::makeRoom(download, name, *bytes, m_clock.now());
    }
    if (bytes && problem.isEmpty()) {
        problem = transferfiles::place(*bytes, target, download);
    }
    if (problem.isEmpty() && !QFile::remove(source)) {
        problem =
            QStringLiteral("%1 was saved in %2 but could not be removed.").arg(source, download);
    }
    if (problem.isEmpty()) {
        problem = transferfiles::place(
            {}, path(kInbound + QStringLiteral("/Ok/") + name + QStringLiteral(".ok")), m_office);
    }
    if (!problem.isEmpty()) {
        fail({problem, QStringLiteral("The files not yet taken stay in %1 for the next time.")
                           .arg(path(kInbound))});
        return false;
    }
    return true;
}

}  // namespace brimsett
