#pragma once

#include "foundation/OfficePaths.h"

#include <QString>

namespace brimsett {

// The log of changed data that the other office computers replay: "Sync-Send/LOG.TXT" in
// the office folder, one statement per line ended by CR LF. The file is opened, appended
// and closed for each statement, so another process may take it away at any moment.
class SqlLog {
public:
    // on: the "Track0" setting is not empty (AppSettings::sqlLogOn()).
    SqlLog(OfficePaths paths, bool on) : m_paths(std::move(paths)), m_on(on) {}

    bool isOn() const { return m_on; }
    void setOn(bool on) { m_on = on; }
    QString path() const;

    // Appends the statement when logging is on. Failures are not reported: the change is
    // already in the database and the log must not undo or stop it. Line breaks inside the
    // statement become blanks so that it stays one line (values are quoted without any).
    // True when the line was written.
    bool write(const QString& statement) const;

private:
    OfficePaths m_paths;
    bool m_on = false;
};

}  // namespace brimsett
