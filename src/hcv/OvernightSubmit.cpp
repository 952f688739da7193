#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"
#include "hcv/OvernightBatch.h"
#include "hcv/OvernightFiles.h"
#include "ministry/SubmitSummary.h"
#include "ministry/TransferWait.h"
#include "patients/PatientEntry.h"

#include <QFileInfo>
#include <QSqlQuery>

namespace brimsett::hcv {

namespace {

const QString kSubmitTitle = QStringLiteral("EDT Submit");

// A stored date and time: a QDateTime from a server, ISO text from a file database.
QDateTime storedMoment(const QVariant& value) {
    if (value.isNull()) {
        return {};
    }
    if (value.typeId() == QMetaType::QDateTime) {
        return value.toDateTime();
    }
    if (value.typeId() == QMetaType::QDate) {
        return value.toDate().startOfDay();
    }
    QString text = value.toString().trimmed();
    if (text.size() > 10 && text.at(10) == QLatin1Char(' ')) {
        text[10] = QLatin1Char('T');
    }
    const QDateTime moment = QDateTime::fromString(text, Qt::ISODate);
    return moment.isValid() ? moment : QDateTime(QDate::fromString(text, Qt::ISODate), QTime());
}

}  // namespace

QStringList OvernightBatch::filesOf(const QString& batchId) {
    QSqlQuery q = m_db.exec(
        QStringLiteral(
            "Select Distinct FileName From [HN batches] Where BatchID=? Order By FileName"),
        {batchId}, QStringLiteral("reading the files of batch ") + batchId);
    QStringList names;
    while (q.next()) {
        names << q.value(0).toString();
    }
    return names;
}

int OvernightBatch::submit(const QString& batchId, TransferMethod method, TransferWait& wait,
                           const QString& diskFolder) {
    QStringList files;
    QList<QDate> submittedOn;
    try {
        QSqlQuery q = m_db.exec(QStringLiteral("Select FileName, Max(SubmitDate) From [HN batches]"
                                               " Where BatchID=? Group By FileName"
                                               " Order By FileName"),
                                {batchId}, QStringLiteral("reading the files of batch ") + batchId);
        while (q.next()) {
            files << q.value(0).toString();
            submittedOn << readTypedDate(dateTextOf(q.value(1)));
        }
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("No files were submitted."), e.message()});
        return 0;
    }
    ClaimTransfer transfer(m_db, m_store, m_clock, m_prompter, wait, m_log,
                           TransferPlaces{m_office, diskFolder});
    int sent = 0;
    for (qsizetype i = 0; i < files.size(); ++i) {
        const QString& name = files.at(i);
        wait.status(QStringLiteral("Uploading '") + name + QStringLiteral("' ..."));
        const bool plainName = !name.isEmpty() && !name.contains(QLatin1Char('/')) &&
                               !name.contains(QLatin1Char('\\'));
        if (!plainName || !QFileInfo(m_office + name).isFile()) {
            m_prompter.tell(
                kSubmitTitle,
                {QStringLiteral("The file to be submitted (%1) does not exist.").arg(name)},
                Icon::Warning);
            continue;
        }
        // The file of a fixed name holds the last batch prepared into it: a batch already
        // handed over may no longer be what the file holds, so it is prepared again instead.
        if (submittedOn.at(i).isValid()) {
            m_prompter.tell(kSubmitTitle,
                            {QStringLiteral("%1 of batch %2 was already submitted on %3.")
                                 .arg(name, batchId, datetext::slashed(submittedOn.at(i))),
                             QStringLiteral("Prepare it again to send it again.")},
                            Icon::Information);
            continue;
        }
        if (m_store.get(overnightfiles::kBatchSection, name) != QLatin1String("1")) {
            m_prompter.error({QStringLiteral("Brimsett does not have a record of creating this "
                                             "batch file."),
                              QStringLiteral("Please contact technical support for further "
                                             "assistance.")});
            continue;
        }
        if (!transfer.handOver(name, method, kSubmitTitle)) {
            continue;
        }
        ++sent;
        const QString today = datetext::isoDate(m_clock.today());
        try {
            Transaction t(m_db, QStringLiteral("recording the submission of ") + name);
            m_db.exec(QStringLiteral("Update [HN batches] Set SubmitDate=?"
                                     " Where BatchID=? And FileName=?"),
                      {today, batchId, name},
                      QStringLiteral("recording the submission of ") + name);
            t.commit();
        } catch (const DbError& e) {
            m_prompter.error({QStringLiteral("%1 was handed over, but its submission date could "
                                             "not be recorded.")
                                  .arg(name),
                              e.message()});
            continue;
        }
        m_log.write(QStringLiteral("Update [HN batches] Set SubmitDate=%1 Where BatchID=%2 And "
                                   "FileName=%3")
                        .arg(sqltext::quoteValue(today), sqltext::quoteValue(batchId),
                             sqltext::quoteValue(name)));
    }
    wait.status({});
    m_prompter.tell(kSubmitTitle, submitSummary(sent, int(files.size())), Icon::Information);
    return sent;
}

QList<StoredCheck> OvernightBatch::storedResults(const QString& healthNum,
                                                 const QString& versionCode,
                                                 std::optional<int> status) {
    QString sql = QStringLiteral(
        "Select PatientID, LName, FName, Status, Response, HNCheckDate From patients"
        " Where HealthNum=? And Coalesce(VersionCode,'')=?");
    QVariantList values{healthNum.trimmed(), versionCode.trimmed().toUpper()};
    if (status) {
        sql += QStringLiteral(" And Status=?");
        values << *status;
    }
    sql += QStringLiteral(" Order By PatientID");
    QSqlQuery q = m_db.exec(sql, values, QStringLiteral("reading the stored card checks"));
    QList<StoredCheck> found;
    while (q.next()) {
        found << StoredCheck{q.value(0).toLongLong(),
                             q.value(1).toString() + QStringLiteral(", ") + q.value(2).toString(),
                             q.value(3).toInt(), q.value(4).toString(), storedMoment(q.value(5))};
    }
    return found;
}

}  // namespace brimsett::hcv
