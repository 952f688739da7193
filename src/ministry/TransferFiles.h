#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QStringList>

#include <optional>

// The file work of a transfer. Every failure comes back as a sentence for the user; nothing
// is left half written.
namespace brimsett::transferfiles {

// Creates each folder under base (ending in "/") when missing. Empty when all are there,
// otherwise the problem with the first that could not be made.
QString makeFolders(const QString& base, const QStringList& folders);

// Reads a whole file; none (and the problem) when it cannot be read.
std::optional<QByteArray> readAll(const QString& path, QString* problem);

// Puts the bytes at target whole or not at all: written under a hidden temporary name in
// stagingFolder, then renamed over any file of that name, so whoever watches the target's
// folder never sees half a file. The staging folder must be on the same drive as the target.
// Empty when done, otherwise the problem.
QString place(const QByteArray& bytes, const QString& target, const QString& stagingFolder);

// Makes room in folder (ending in "/") for a file of `name` arriving with `bytes`: an earlier
// file of that name with other content is kept as name + "." + the moment's stamp (then
// "-2", "-3", ...); one with the same content is simply replaced. Empty when done, otherwise
// the problem.
QString makeRoom(const QString& folder, const QString& name, const QByteArray& bytes,
                 const QDateTime& now);

// The names of the files in a folder, in name order, leaving out folders and hidden files
// (a file still being written under a hidden name is not taken); empty when it is missing.
QStringList filesIn(const QString& folder);

}  // namespace brimsett::transferfiles
