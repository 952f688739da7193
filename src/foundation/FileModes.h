#pragma once

#include <QString>

// Every file of an office holds patient data, so only its user may read it.
namespace brimsett::filemodes {

// From here on the process creates folders 0700 and files 0600 (SQLite gives its -wal and
// -shm files the database's mode), whatever umask it was started with.
void ownerOnly();

// Takes group and other access away from a file or folder of this user's, for an office
// made before its files were kept private. Another user's file is left as it is.
void makePrivate(const QString& path);

}  // namespace brimsett::filemodes
