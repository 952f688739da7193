#pragma once

#include "ministry/ClaimTransfer.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>

#include <optional>

namespace brimsett {
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
class TransferWait;
}  // namespace brimsett

namespace brimsett::hcv {

// One card in a prepared overnight file, as the screen's grid shows it ("EDT", "Doctor",
// "Patient ID", "Health Number"): EDT is the file the card went into.
struct OvernightCard {
    QString fileName;
    QString doctorId;
    qint64 patientId = 0;  // 0 for a single card typed on the screen
    QString healthNum;
    QString versionCode;
};

struct PreparedBatch {
    QString batchId;   // "YYYYMMDD"
    QString fileName;  // "OBECA.txt" or "HCR000.dat"
    QString path;      // in the office folder
    QList<OvernightCard> cards;
};

// A patient's stored answer, for the screen's look-up.
struct StoredCheck {
    qint64 patientId = 0;
    QString name;  // "Last, First"
    int status = 0;
    QString response;
    QDateTime checkedAt;  // invalid when never answered
};

// The overnight health card validation files and their submission. Titles: "Error" for the
// refusals, "OBEC - Overnight Health Card Validation" for the rest. Preparing writes the file
// (owner-only, whole or not at all), its `[HN batches]` row, the patients' `BatchID` and the
// "Batch" setting of its name in one go; a refused or failed step leaves none of them.
class OvernightBatch {
public:
    static inline const QString kDayFile = QStringLiteral("OBECA.txt");
    static inline const QString kCardFile = QStringLiteral("HCR000.dat");

    OvernightBatch(Database& db, SettingsStore& store, const Clock& clock, Prompter& prompter,
                   const SqlLog& log, QString officeFolder);

    // "OBEC01" + health number (blank-padded, cut to 10) + version code (padded, cut to 2) +
    // CR LF; a NULL or empty version code is one blank instead of two.
    static QString obecLine(const QString& healthNum, const QVariant& versionCode);

    // The single-card record: "RPVR0300 " + health number (10) + version code (2) + the
    // doctor's ProviderNum (6) + FacilityNum (4) + transfer user id (8) + "HCNP", each
    // blank-padded and cut, + CR LF.
    static QString cardRecord(const QString& healthNum, const QString& versionCode,
                              const QString& providerNum, const QString& facilityNum,
                              const QString& userId);

    // The cards of the doctor's appointments on the typed day ("YYYY/MM/DD"), one per patient
    // with a registered row. Refusals: "Please select a doctor.", "'text' is not a valid
    // date.", "Doctor Not Found." / "Please check that the Doctor ID is correct.", "No patient
    // to submit.". An unsubmitted OBECA.txt of another day is replaced only after a question.
    std::optional<PreparedBatch> prepareDay(const QString& doctorId, const QString& typedDate);

    // One typed card for the chosen doctor into "HCR000.dat" (batch of today).
    std::optional<PreparedBatch> prepareCard(const QString& doctorId, const QString& healthNum,
                                             const QString& versionCode);

    // The files of a batch ("Select Distinct FileName ..."), in name order.
    QStringList filesOf(const QString& batchId);

    // Hands every file of the batch over the chosen way ("Uploading 'name' ..." through
    // `wait`), recording `SubmitDate` for each one handed over, and tells the summary ("The
    // file was" / "Both files were" / "All n files were" + " submitted successfully.", or
    // "No files were submitted.") under "EDT Submit". The number handed over.
    int submit(const QString& batchId, TransferMethod method, TransferWait& wait,
               const QString& diskFolder);

    // Patients whose HealthNum and VersionCode are the given ones (and whose Status is the
    // class, when one is given), with what is stored of their last answer.
    QList<StoredCheck> storedResults(const QString& healthNum, const QString& versionCode,
                                     std::optional<int> status = std::nullopt);

private:
    Database& m_db;
    SettingsStore& m_store;
    const Clock& m_clock;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QString m_office;
};

}  // namespace brimsett::hcv
