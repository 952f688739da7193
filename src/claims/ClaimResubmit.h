#pragma once

#include <QString>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;

// Putting a rejected claim back to pending from claim entry. The office finds it by the
// account number the ministry's reports print; every claim under that account with a rejected
// item (the parts of a split claim share it) is put back, after the question "Resubmit
// account N (NAME)? Its claims go back to Pending Claims." (title "Resubmit", default No).
// Nothing found, or nothing rejected, is told and changes nothing.
class ClaimResubmit {
public:
    ClaimResubmit(Database& db, Prompter& prompter, const Clock& clock, const SqlLog& log);

    // How many claims went back to pending (0 when none did).
    int resubmitAccount(const QString& typedAccount);

private:
    Database& m_db;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
};

}  // namespace brimsett
