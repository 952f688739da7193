#pragma once

#include "foundation/Money.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// What the "Submit Claims" screen (or `brimsett-cli prepare`) asks for.
struct PrepareRequest {
    // Which date of a claim the cut-off and start dates are compared with.
    enum class DateBy { LatestService, Created };

    QString doctorId;
    QString cutOff;  // typed date; empty means no cut-off
    QString start;   // typed date; looked at only with switch 18 ("advanced dating")
    bool oneProfile = false;
    DateBy dateBy = DateBy::LatestService;
};

// One batch written into the claim file.
struct PreparedBatch {
    QString batchId;
    QString specCode;
    int claims = 0;      // claim headers (H)
    int reciprocal = 0;  // reciprocal headers (R)
    int items = 0;       // item records (T)
    int records = 0;     // every record of the batch, header and trailer included
    Money total;         // sum of the written items' FeeSubm
};

struct PreparedFile {
    QString fileName;  // without folder, e.g. "HC123456.007"
    QString path;      // in the office folder
    std::vector<PreparedBatch> batches;
};

// Batch preparation: the pending claims of one billing number become a claim file in the
// ministry's record format, one batch per specialty and location, each recorded in
// `batches` with its claims moved into it. The whole preparation is one transaction: when
// anything fails no claim is left held back, no `batches` row is added and no claim file is
// left behind; the file counter is given back. Killed at any moment, it leaves either the
// file with its batches and creation record, or pending claims and at most an unrecorded
// file that the next preparation sets aside. An existing file is never replaced.
class BatchPreparation {
public:
    BatchPreparation(Database& db, SettingsStore& store, AppSettings& settings, const Clock& clock,
                     Prompter& prompter, const SqlLog& log, QString officeFolder);

    // Called with the number of records written after every 32nd record, so a screen can
    // show "n Records" and repaint.
    void setProgress(std::function<void(int records)> progress) {
        m_progress = std::move(progress);
    }

    // None when the request was refused (no doctor, a cut-off that is not a date, a doctor
    // not found) or nothing was pending ("No claims to submit."); the prompter was told why.
    // A database or file failure throws DbError after rolling everything back.
    std::optional<PreparedFile> prepare(const PrepareRequest& request);

private:
    struct Doctor {
        QString id;
        QString groupNum;
        QString providerNum;
        QString mohOffice;
        QString specCode;
    };
    std::optional<Doctor> readDoctor(const QString& doctorId);
    // The name stem: the provider number when the billing number has one, else the group.
    QString fileStem(const QString& doctorId, const QString& groupNum, const QString& providerNum,
                     bool oneProfile);
    // The batches of the file: each specialty with its doctors.
    std::vector<std::pair<QString, QStringList>> batchDoctors(const QString& doctorId,
                                                              const QString& groupNum,
                                                              const QString& providerNum,
                                                              const QString& specCode,
                                                              bool oneProfile);
    // Says which unrecorded claim files a killed preparation had left and were moved away.
    void tellSetAside(const QStringList& names);
    void appendWithoutItems(const QStringList& lines);

    Database& m_db;
    SettingsStore& m_store;
    AppSettings& m_settings;
    const Clock& m_clock;
    Prompter& m_prompter;
    const SqlLog& m_log;
    QString m_folder;
    std::function<void(int)> m_progress;
};

}  // namespace brimsett
