#pragma once

#include <QString>
#include <QStringList>

namespace brimsett {

struct ServerAddress;

// Backups of an office database on a PostgreSQL server, made and put back by the server's
// own client programs (pg_dump, pg_restore), found on the PATH. The connection goes to them
// as a libpq connection string; the password stays where libpq keeps it (~/.pgpass, the
// service file), and they never ask for one. Every failure throws DbError with the
// program's own words.
namespace serverbackup {

// libpq's "key=value" form of the address, values quoted where needed.
QString connectionString(const ServerAddress& address);

// Writes the database in pg_dump's custom format into `file` (which may exist, empty),
// then reads the file's table of contents back to make sure it is whole.
void dump(const ServerAddress& address, const QString& file);

// The table of contents of a dump; throws when the file is not one pg_restore can read.
QStringList contents(const QString& file);

// Replaces the database's tables with those of the dump in one transaction: a failure
// leaves the database as it was.
void restore(const ServerAddress& address, const QString& file);

}  // namespace serverbackup
}  // namespace brimsett
