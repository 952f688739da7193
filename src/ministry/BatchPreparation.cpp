#include "ministry/BatchPreparation.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/KillPoints.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "ministry/BatchNumbers.h"
#include "ministry/ClaimFileBatch.h"
#include "ministry/ClaimFileNames.h"
#include "ministry/ClaimFilePlacement.h"
#include "patients/PatientEntry.h"

#include <QFile>
#include <QSqlRecord>

#include <algorithm>

namespace brimsett {

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kCounterKey = QStringLiteral("DiskIDCounter");
const QString kNoGroup = QStringLiteral("0000");
const QString kBatchSection = QStringLiteral("Batch");

// A typed date as "YYYYMMDD" for comparing with a claim's date; empty when it is not one.
std::optional<QString> dateKey(const QString& typed) {
    const QDate date = readTypedDate(typed.trimmed());
    if (!date.isValid()) {
        return std::nullopt;
    }
    return datetext::yyyymmdd(date);
}

}  // namespace

BatchPreparation::BatchPreparation(Database& db, SettingsStore& store, AppSettings& settings,
                                   const Clock& clock, Prompter& prompter, const SqlLog& log,
                                   QString officeFolder)
    : m_db(db),
      m_store(store),
      m_settings(settings),
      m_clock(clock),
      m_prompter(prompter),
      m_log(log),
      m_folder(std::move(officeFolder)) {}

std::optional<PreparedFile> BatchPreparation::prepare(const PrepareRequest& request) {
    const QString doctorId = request.doctorId.trimmed().toUpper();
    if (doctorId.isEmpty()) {
        m_prompter.error({QStringLiteral("Please select a doctor.")});
        return std::nullopt;
    }
    ClaimFileBatch::Dates dates;
    dates.by = request.dateBy;
    // No cut-off compares with a date no claim reaches.
    dates.cutOff = QStringLiteral("30000101");
    if (!request.cutOff.trimmed().isEmpty()) {
        const auto key = dateKey(request.cutOff);
        if (!key) {
            m_prompter.error(
                {quotedInMessage(request.cutOff) + QStringLiteral(" is not a valid date.")});
            return std::nullopt;
        }
        dates.cutOff = *key;
    }
    if (m_settings.option[18] && !request.start.trimmed().isEmpty()) {
        const auto key = dateKey(request.start);
        if (!key) {
            m_prompter.error(
                {quotedInMessage(request.start) + QStringLiteral(" is not a valid date.")});
            return std::nullopt;
        }
        dates.start = *key;
    }

    std::optional<Doctor> found = readDoctor(doctorId);
    if (!found) {
        m_prompter.tell(QStringLiteral("Error"),
                        {QStringLiteral("Doctor Not Found."),
                         QStringLiteral("Please check that the Doctor ID is correct.")},
                        Icon::Warning);
        return std::nullopt;
    }
    const Doctor& doctor = *found;
    const QString stem =
        fileStem(doctor.id, doctor.groupNum, doctor.providerNum, request.oneProfile);

    const QDate today = m_clock.today();
    PreparedFile file;
    QStringList logLines;
    QStringList withoutItems;
    QStringList setAside;
    // What has to be undone should the preparation fail part-way.
    std::optional<int> counter;
    bool recorded = false;
    bool placed = false;
    bool committing = false;
    try {
        // The write lock is taken here and held to the commit: the file's name, the file and
        // its batches are made by one preparation at a time.
        Transaction tx(m_db, QStringLiteral("preparing a claim file"));
        setAside = claimfileplacement::setAsideOrphans(m_db, m_store, m_folder);
        const claimfilenames::Taken taken =
            claimfilenames::take(m_db, m_store, m_folder, today, stem);
        counter = taken.counter;
        m_settings.diskIDCounter = taken.counter;
        file.fileName = taken.fileName;
        file.path = m_folder + file.fileName;
        killpoints::reach("counter-taken");

        QByteArray bytes;
        ClaimFileBatch writer(m_db, m_progress);
        for (const auto& [specCode, doctors] :
             batchDoctors(doctor.id, doctor.groupNum, doctor.providerNum, doctor.specCode,
                          request.oneProfile)) {
            const ClaimFileBatch::Header header{doctor.mohOffice, doctor.groupNum,
                                                doctor.providerNum, specCode};
            ClaimFileBatch::Written written = writer.write(doctors, dates, today, header);
            withoutItems << written.withoutItems;
            // A batch without a claim header would be refused whole; its doctors' claims
            // (none, or only ones without items) stay pending.
            if (written.batch.claims > 0) {
                written.batch.batchId = batchnumbers::nextBatchId(m_db, today);
                writer.record(written.batch, header, file.fileName, doctors, logLines);
                bytes += written.bytes;
                file.batches.push_back(written.batch);
            }
            writer.restoreHeldBack(doctors);
        }
        if (file.batches.empty()) {
            tx.commit();  // only the held-back claims were touched, and put back
            claimfilenames::giveBack(m_store, taken.counter);
            m_settings.diskIDCounter = m_store.readNumber(kGeneral, kCounterKey);
            appendWithoutItems(withoutItems);
            tellSetAside(setAside);
            m_prompter.tell(QStringLiteral("Submit Claims"),
                            {QStringLiteral("No claims to submit.")}, Icon::Information);
            return std::nullopt;
        }
        // The transfer refuses a file the program has no record of making. The record comes
        // before the file and the commit, so a kill after the commit cannot leave a batch
        // that may not be sent; a record without a batch is cleared by the next preparation.
        m_store.save(kBatchSection, file.fileName, QStringLiteral("1"));
        recorded = true;
        if (!m_store.sync()) {
            throw DbError(
                QStringLiteral("recording the claim file ") + file.fileName, {},
                QStringLiteral("the settings file %1 cannot be written").arg(m_store.path()));
        }
        killpoints::reach("batch-recorded");
        if (const QString problem = claimfileplacement::placeNew(bytes, m_folder, file.fileName);
            !problem.isEmpty()) {
            throw DbError(QStringLiteral("writing the claim file ") + file.path, {}, problem);
        }
        placed = true;
        killpoints::reach("claimfile-placed");
        committing = true;
        tx.commit();
    } catch (...) {
        // A commit whose answer was lost may have saved the batch: the file and its record
        // stay for the next preparation, which keeps them with their batch or sets them aside.
        if (committing) {
            throw;
        }
        if (placed) {
            QFile::remove(file.path);
        }
        if (recorded) {
            m_store.remove(kBatchSection, file.fileName);
            m_store.sync();
        }
        if (counter) {
            claimfilenames::giveBack(m_store, *counter);
            m_settings.diskIDCounter = m_store.readNumber(kGeneral, kCounterKey);
        }
        throw;
    }
    killpoints::reach("committed");
    for (const QString& line : logLines) {
        m_log.write(line);
    }
    appendWithoutItems(withoutItems);
    tellSetAside(setAside);
    return file;
}

std::optional<BatchPreparation::Doctor> BatchPreparation::readDoctor(const QString& doctorId) {
    // Read and let go before the preparation's transaction begins: a read still open then
    // would keep it from waiting its turn behind another program's write.
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From doctors Where DoctorID=?"), {doctorId},
                            QStringLiteral("reading the doctor"));
    if (!q.next()) {
        return std::nullopt;
    }
    const QSqlRecord row = q.record();
    return Doctor{doctorId, recordvalue::textOf(row, "GroupNum"),
                  recordvalue::textOf(row, "ProviderNum"), recordvalue::textOf(row, "MOHOffice"),
                  recordvalue::textOf(row, "SpecCode")};
}

void BatchPreparation::tellSetAside(const QStringList& names) {
    if (names.isEmpty()) {
        return;
    }
    m_prompter.tell(QStringLiteral("Submit Claims"),
                    QStringList{QStringLiteral("A preparation that did not finish left these claim "
                                               "files, which were never recorded as batches:")} +
                        names +
                        QStringList{QStringLiteral("They were moved to the folder %1 and must not "
                                                   "be sent; their claims stayed pending.")
                                        .arg(claimfileplacement::setAsideFolder())},
                    Icon::Warning);
}

QString BatchPreparation::fileStem(const QString& doctorId, const QString& groupNum,
                                   const QString& providerNum, bool oneProfile) {
    QString where;
    QVariantList values;
    if (oneProfile) {
        where = QStringLiteral("Where DoctorID=?");
        values << doctorId;
    } else if (groupNum != kNoGroup) {
        where = QStringLiteral("Where GroupNum=?");
        values << groupNum;
    } else {
        where = QStringLiteral("Where ProviderNum=?");
        values << providerNum;
    }
    QSqlQuery q = m_db.exec(QStringLiteral("Select Distinct ProviderNum From doctors ") + where,
                            values, QStringLiteral("reading the billing number's providers"));
    QStringList providers;
    while (q.next()) {
        providers << q.value(0).toString();
    }
    return providers.size() == 1 ? providers.front() : groupNum;
}

std::vector<std::pair<QString, QStringList>> BatchPreparation::batchDoctors(
    const QString& doctorId, const QString& groupNum, const QString& providerNum,
    const QString& specCode, bool oneProfile) {
    std::vector<std::pair<QString, QStringList>> batches;
    if (oneProfile) {
        batches.emplace_back(specCode, QStringList{doctorId});
        return batches;
    }
    // One batch per specialty: the billing number's doctors of that specialty, whatever
    // their location. A second location of the same specialty would find nothing left.
    // A missing specialty or location sorts first on every engine.
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select DoctorID, SpecCode, LocationCode From doctors "
                       "Where GroupNum=? And ProviderNum=? "
                       "Order By Coalesce(SpecCode,''), Coalesce(LocationCode,''), DoctorID"),
        {groupNum, providerNum}, QStringLiteral("reading the billing number's doctors"));
    while (q.next()) {
        const QString specialty = q.value(1).toString();
        auto it = std::find_if(batches.begin(), batches.end(),
                               [&](const auto& b) { return b.first == specialty; });
        if (it == batches.end()) {
            batches.emplace_back(specialty, QStringList{});
            it = std::prev(batches.end());
        }
        it->second << q.value(0).toString();
    }
    return batches;
}

void BatchPreparation::appendWithoutItems(const QStringList& lines) {
    if (lines.isEmpty()) {
        return;
    }
    QFile file(m_folder + QStringLiteral("HeadersNoItems.txt"));
    // A note for the office; failing to write it must not undo the batch.
    if (file.open(QIODevice::Append | QIODevice::Text)) {
        for (const QString& line : lines) {
            file.write(line.toUtf8() + '\n');
        }
    }
}

}  // namespace brimsett
