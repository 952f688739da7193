#include "hcv/OvernightFiles.h"

#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"
#include "ministry/TransferFiles.h"

#include <QSqlQuery>

namespace brimsett::hcv::overnightfiles {

namespace {

// The batches whose unsubmitted file of this name the new one would replace.
QStringList unsubmittedOthers(Database& db, const PreparedBatch& batch) {
    QSqlQuery q = db.exec(QStringLiteral("Select Distinct BatchID From [HN batches]"
                                         " Where FileName=? And BatchID<>? And SubmitDate Is Null"
                                         " Order By BatchID"),
                          {batch.fileName, batch.batchId},
                          QStringLiteral("reading the batches of ") + batch.fileName);
    QStringList ids;
    while (q.next()) {
        ids << q.value(0).toString();
    }
    return ids;
}

}  // namespace

bool write(Database& db, SettingsStore& store, Prompter& prompter, const SqlLog& log,
           const QString& officeFolder, const PreparedBatch& batch, const QByteArray& bytes) {
    const QString doing = QStringLiteral("preparing ") + batch.fileName;
    QStringList logLines;
    try {
        const QStringList others = unsubmittedOthers(db, batch);
        if (!others.isEmpty() &&
            !prompter.confirm(
                kTitle,
                {QStringLiteral("%1 still holds the cards of batch %2, which were "
                                "not submitted.")
                     .arg(batch.fileName, others.join(QStringLiteral(", "))),
                 QStringLiteral("Replace them with the cards of batch %1?").arg(batch.batchId)})) {
            return false;
        }
        Transaction t(db, doing);
        // One row per batch and file: preparing again replaces it, and an unsubmitted row of
        // another batch goes with the file it named.
        const QString remove = QStringLiteral(
            "Delete From [HN batches] Where FileName=? And (BatchID=? Or SubmitDate Is Null)");
        db.exec(remove, {batch.fileName, batch.batchId}, doing);
        logLines << QStringLiteral("Delete From [HN batches] Where FileName=") +
                        sqltext::quoteValue(batch.fileName) + QStringLiteral(" And (BatchID=") +
                        sqltext::quoteValue(batch.batchId) +
                        QStringLiteral(" Or SubmitDate Is Null)");
        db.exec(QStringLiteral("Insert Into [HN batches] (BatchID, FileName, Records, SubmitDate)"
                               " Values(?,?,?,NULL)"),
                {batch.batchId, batch.fileName, qint64(batch.cards.size())}, doing);
        logLines << QStringLiteral(
                        "Insert Into [HN batches] (BatchID, FileName, Records, "
                        "SubmitDate) Values(%1,%2,%3,NULL)")
                        .arg(sqltext::quoteValue(batch.batchId),
                             sqltext::quoteValue(batch.fileName))
                        .arg(batch.cards.size());
        for (const OvernightCard& card : batch.cards) {
            if (card.patientId == 0) {
                continue;
            }
            db.exec(QStringLiteral("Update patients Set BatchID=? Where PatientID=?"),
                    {batch.batchId, card.patientId}, doing);
            logLines << QStringLiteral("Update patients Set BatchID=%1 Where PatientID=%2")
                            .arg(sqltext::quoteValue(batch.batchId))
                            .arg(card.patientId);
        }
        // Against a kill at any moment: the file's creation record is dropped before the file
        // is replaced and given back only after the commit. Between the two the file cannot
        // be sent, so a file is never sent under a row that does not describe it; the file
        // is in place before the commit, so a committed row always has its file.
        const bool wasRecorded = store.get(kBatchSection, batch.fileName) == QLatin1String("1");
        store.remove(kBatchSection, batch.fileName);
        store.sync();
        if (const QString problem = transferfiles::place(bytes, batch.path, officeFolder);
            !problem.isEmpty()) {
            if (wasRecorded) {
                store.save(kBatchSection, batch.fileName, QStringLiteral("1"));
                store.sync();
            }
            prompter.error({problem, QStringLiteral("Nothing was prepared.")});
            return false;
        }
        t.commit();
    } catch (const DbError& e) {
        prompter.error({QStringLiteral("Nothing was prepared."), e.message()});
        return false;
    }
    store.save(kBatchSection, batch.fileName, QStringLiteral("1"));
    store.sync();
    for (const QString& line : logLines) {
        log.write(line);
    }
    return true;
}

}  // namespace brimsett::hcv::overnightfiles
