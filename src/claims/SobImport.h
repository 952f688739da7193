#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// The import of the ministry's schedule of benefits master file into `servicecodes`
// ("Update Fee Schedules"). The whole import is one transaction; every message goes through
// the Prompter: the wrong-layout refusal, the per-line errors (with "FileName: " and
// "Line Number: ") and, at the end, "Processed " count " codes".
class SobImport {
public:
    struct Result {
        bool imported = false;   // false: the file could not be read or has the wrong layout
        int processed = 0;       // lines counted as processed
        QStringList lineErrors;  // one entry per bad line, as reported
    };

    // Called now and then with the lines done and the lines in the file; returning false
    // asks the import to stop (nothing is then written).
    using Progress = std::function<bool(int done, int total)>;

    SobImport(Database& db, Prompter& prompter, const SqlLog& log);

    void setProgress(Progress progress) { m_progress = std::move(progress); }
    Result run(const QString& fileName);

private:
    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
    Progress m_progress;
};

}  // namespace brimsett
