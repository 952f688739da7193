#pragma once

#include <QString>

#include <optional>

namespace brimsett {

// The password for the command line: $BRIMSETT_PASSWORD for scripts, else a line typed with
// the echo off when standard input is a terminal; none otherwise. Never an argument, which
// every user of the computer could read in the process list.
std::optional<QString> cliPassword();

}  // namespace brimsett
