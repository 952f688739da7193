#pragma once

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"

#include <QString>

#include <optional>

namespace brimsett {

class Prompter;

// A database on a server is backed up by pg_dump into the office folder under the same dated
// name with this ending ("medical-YYYYMMDD-HHMMSS.dump"), in its custom format.
constexpr const char* kServerBackupEnding = ".dump";

// Copies the open SQLite database, while it stays in use, to "medical-YYYYMMDD-HHMMSS.mdb"
// beside the live file, through SQLite's online backup so that pages still in the
// write-ahead log and writes by other programs are copied consistently. The copy is a
// single self-contained file (rollback journal, not WAL) that can be carried elsewhere.
//
// An existing file is never overwritten: when the name is taken (two backups within one
// second, or a restore's kept database) the next free second is used, so every backup keeps
// the dated form that restore lists and sorts. Returns the backup's full path; throws
// DbError saying what went wrong, and leaves no partial file behind. A database without a
// file (in memory) is backed up into the office folder. A database on a server is dumped
// (see kServerBackupEnding) and the dump's contents read back before it counts as made.
QString backupDatabase(Database& db, const OfficePaths& paths, const Clock& clock);

// Puts the backup `file` back in place of the office's database at `location`, once the user
// has agreed to lose what was entered since. An office file is handed over to the next start
// ("medical-r.mdb"), which keeps the replaced one under its dated name; a server database
// takes a dump's tables in one transaction. Throws DbError when the file is not a backup of
// the office's kind; no value when the user said No. Otherwise a line saying what was done.
std::optional<QString> restoreDatabase(const QString& location, const OfficePaths& paths,
                                       const QString& file, Prompter& prompter);

}  // namespace brimsett
