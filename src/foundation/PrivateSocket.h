#pragma once

#include <QString>

// Where the command receiver's socket may live, and who may be at its other end. A socket
// in a folder others can write to could be put there first by another user, who would then
// hear the office's commands and forge its answers.
namespace brimsett::privatesocket {

// $XDG_RUNTIME_DIR when it is this user's own private folder, else "<temp>/brimsett-<uid>",
// made 0700 when missing. Empty, with the reason in problem, when neither can be trusted.
QString folder(QString* problem = nullptr);

// A real folder (not a link), owned by this user, that no one else may enter.
bool isPrivateFolder(const QString& path);

// True when the process at the other end of a connected local socket runs as this user.
bool peerIsThisUser(qintptr socketDescriptor);

}  // namespace brimsett::privatesocket
