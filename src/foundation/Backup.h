#pragma once

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"

#include <QString>

namespace brimsett {

// Copies the open SQLite database, while it stays in use, to "medical-YYYYMMDD-HHMMSS.mdb"
// beside the live file, through SQLite's online backup so that pages still in the
// write-ahead log and writes by other programs are copied consistently. The copy is a
// single self-contained file (rollback journal, not WAL) that can be carried elsewhere.
//
// An existing file is never overwritten: when the name is taken (two backups within one
// second, or a restore's kept database) the next free second is used, so every backup keeps
// the dated form that restore lists and sorts. Returns the backup's full path; throws
// DbError saying what went wrong, and leaves no partial file behind. A database without a
// file (in memory) is backed up into the office folder.
QString backupDatabase(Database& db, const OfficePaths& paths, const Clock& clock);

}  // namespace brimsett
