#include "ministry/ClaimTransfer.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "ministry/BatchRegister.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/FolderExchange.h"
#include "ministry/TransferFiles.h"

#include <QDir>
#include <QFileInfo>

namespace brimsett {

namespace {

const QString kSubmitTitle = QStringLiteral("Submit Claims");
const QString kFetchTitle = QStringLiteral("Reconcile");
const QString kFinishedTitle = QStringLiteral("Finished");

QStringList notAvailable() {
    return {QStringLiteral("This part of Brimsett is not available yet."),
            QStringLiteral("Please choose \"3.5'' Disk(s)\" or \"EDT / Internet\".")};
}

// The disk folder, or none (and the user told) when it is not there to be used.
std::optional<QString> diskFolder(const QString& folder, Prompter& prompter, const QString& title) {
    const QFileInfo info(folder);
    if (folder.isEmpty() || !info.isDir()) {
        prompter.tell(title,
                      {QStringLiteral("The disk folder %1 does not exist.")
                           .arg(quotedInMessage(QDir::toNativeSeparators(folder))),
                       QStringLiteral("Please insert the disk or choose another folder.")},
                      Icon::Critical);
        return std::nullopt;
    }
    return QDir(folder).absolutePath() + QLatin1Char('/');
}

bool copyToDisk(const TransferPlaces& places, const QString& fileName, Prompter& prompter,
                const QString& title) {
    const std::optional<QString> disk = diskFolder(places.diskFolder, prompter, title);
    if (!disk) {
        return false;
    }
    QString problem;
    const std::optional<QByteArray> bytes =
        transferfiles::readAll(places.officeFolder + fileName, &problem);
    if (bytes) {
        problem = transferfiles::place(*bytes, *disk + fileName, *disk);
    }
    if (!problem.isEmpty()) {
        prompter.tell(title, {problem, QStringLiteral("The file was not submitted.")},
                      Icon::Critical);
        return false;
    }
    return true;
}

}  // namespace

ClaimTransfer::ClaimTransfer(Database& db, SettingsStore& store, const Clock& clock,
                             Prompter& prompter, TransferWait& wait, const SqlLog& log,
                             TransferPlaces places)
    : m_db(db),
      m_store(store),
      m_clock(clock),
      m_prompter(prompter),
      m_wait(wait),
      m_log(log),
      m_places(std::move(places)) {}

bool ClaimTransfer::submit(const QString& fileName, TransferMethod method) {
    if (method == TransferMethod::DialUp) {
        m_prompter.tell(kSubmitTitle, notAvailable(), Icon::Information);
        return false;
    }
    // Only a name: claim files are sent from the office folder.
    const bool plainName = !fileName.isEmpty() && !fileName.contains(QLatin1Char('/')) &&
                           !fileName.contains(QLatin1Char('\\'));
    if (!plainName || !QFileInfo(m_places.officeFolder + fileName).isFile()) {
        m_prompter.error({QStringLiteral("This submission file does not exist.")});
        return false;
    }
    BatchRegister batches(m_db, m_prompter, m_log);
    bool hasBatches = false;
    std::optional<QDate> before;
    try {
        hasBatches = !batches.ofFile(fileName).empty();
        before = batches.submittedOn(fileName);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The file was not submitted."), e.message()});
        return false;
    }
    // The creation record alone is not enough: a preparation killed before its commit
    // leaves a record (and perhaps the file) but no batch, and its claims are still pending.
    if (m_store.get(QStringLiteral("Batch"), fileName) != QLatin1String("1") || !hasBatches) {
        m_prompter.error({QStringLiteral("Brimsett does not have a record of creating this batch "
                                         "file."),
                          QStringLiteral("Please contact technical support for further "
                                         "assistance.")});
        return false;
    }
    if (before && !m_prompter.confirm(
                      QStringLiteral("Resubmit"),
                      {QStringLiteral("This file (%1) was").arg(fileName),
                       QStringLiteral("already submitted on %1.").arg(datetext::slashed(*before)),
                       QStringLiteral("Would you like to submit it again?")})) {
        m_prompter.tell(kFinishedTitle, {QStringLiteral("Batch was not re-submitted.")},
                        Icon::Information);
        return false;
    }

    if (!handOver(fileName, method, kSubmitTitle)) {
        return false;
    }
    // Recorded before the user is told, so that the date is there whatever they do next.
    QString notRecorded;
    try {
        batches.markSubmitted(fileName, m_clock.today());
    } catch (const DbError& e) {
        notRecorded = e.message();
    }
    m_prompter.tell(kSubmitTitle,
                    {method == TransferMethod::Disk
                         ? QStringLiteral("%1 was copied to %2.")
                               .arg(fileName, QDir::toNativeSeparators(m_places.diskFolder))
                         : QStringLiteral("File Submission successful.")},
                    Icon::Information);
    if (!notRecorded.isEmpty()) {
        m_prompter.error({QStringLiteral("The file was handed over, but its submission date "
                                         "could not be recorded."),
                          notRecorded});
        return false;
    }
    if (before) {
        m_prompter.tell(kFinishedTitle, {QStringLiteral("Re-submission finished.")},
                        Icon::Information);
    }
    return true;
}

bool ClaimTransfer::handOver(const QString& fileName, TransferMethod method, const QString& title) {
    switch (method) {
        case TransferMethod::DialUp:
            m_prompter.tell(title, notAvailable(), Icon::Information);
            return false;
        case TransferMethod::Disk:
            return copyToDisk(m_places, fileName, m_prompter, title);
        case TransferMethod::Folder:
            break;
    }
    return FolderExchange(m_places.officeFolder, m_prompter, m_wait, m_clock, title).send(fileName);
}

std::optional<QStringList> ClaimTransfer::fetchAnswers(const QString& doctorId,
                                                       TransferMethod method) {
    if (method == TransferMethod::DialUp) {
        m_prompter.tell(kFetchTitle, notAvailable(), Icon::Information);
        return std::nullopt;
    }
    if (method == TransferMethod::Disk) {
        const std::optional<QString> disk =
            diskFolder(m_places.diskFolder, m_prompter, kFetchTitle);
        if (!disk) {
            return std::nullopt;
        }
        if (!QDir(*disk).isReadable()) {
            // The medium is there but cannot be listed: a damaged disk.
            m_prompter.tell(QStringLiteral("Disk Error"),
                            {QStringLiteral("This diskette is defective."),
                             QStringLiteral("Call your local Ministry of Health"),
                             QStringLiteral("office for a replacement disk.")},
                            Icon::Critical);
            return std::nullopt;
        }
        return transferfiles::filesIn(*disk);
    }
    QString userId;
    try {
        userId = EdtParams(m_db, m_prompter, m_clock, m_log,
                           m_places.officeFolder + EdtPasswordSeal::kKeyFileName)
                     .userId(doctorId);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("Nothing was downloaded."), e.message()});
        return std::nullopt;
    }
    if (userId.isEmpty()) {
        m_prompter.tell(kFetchTitle, {QStringLiteral("EDT setup incomplete for this Provider.")},
                        Icon::Warning);
        return std::nullopt;
    }
    // The agent reads the login from the request's name: a name that had to be changed
    // would ask for someone else's files, so such an id is refused rather than altered.
    if (const QString problem = EdtParams::userIdProblem(userId); !problem.isEmpty()) {
        m_prompter.tell(kFetchTitle, {problem, QStringLiteral("Please correct it in EDT Setup.")},
                        Icon::Warning);
        return std::nullopt;
    }
    return FolderExchange(m_places.officeFolder, m_prompter, m_wait, m_clock, kFetchTitle)
        .fetch(userId);
}

}  // namespace brimsett
