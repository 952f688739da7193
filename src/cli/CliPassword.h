#pragma once

#include <QString>

#include <optional>

namespace brimsett {

// The password for the command line: $BRIMSETT_PASSWORD for scripts, else a line typed with
// the echo off when standard input is a terminal; none otherwise. Never an argument, which
// every user of the computer could read in the process list.
std::optional<QString> cliPassword();

// One line of standard input; at a terminal the prompt goes to standard error first and the
// line is typed with the echo off. None at the end of input.
std::optional<QString> readUnseenLine(const QString& prompt);

}  // namespace brimsett
