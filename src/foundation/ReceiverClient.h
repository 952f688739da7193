#pragma once

#include "foundation/OfficePaths.h"

#include <QString>

#include <optional>

namespace brimsett {

// The sending side of the command receiver, for the command-line program and sibling tools:
// blocks until the answer comes or the time is up.

// Sends one command line ("PATIENT 1234") to the program running on this office folder and
// returns its answer line without the "\n". No value when no program is running there or it
// did not answer in time; error then says which.
std::optional<QString> sendCommand(const OfficePaths& paths, const QString& line, int timeoutMs,
                                   QString* error);

// Whether a program is receiving commands for this office folder.
bool receiverRunning(const OfficePaths& paths);

}  // namespace brimsett
