#pragma once

#include "appointments/BookHours.h"

#include <variant>

namespace brimsett {

class CliArgs;
class CliSession;

// The hours a command of the book covers: the book's shown hours, each replaced by --from or
// --to when given (an hour such as 8, 8am, 17 or 5pm; the last hour counts whole). The exit
// status instead when an option does not read or the hours run backwards, the usage error
// printed. The session must be open: the shown hours are settings.
std::variant<appointments::ShownHours, int> hoursOption(CliSession& session, const CliArgs& args);

}  // namespace brimsett
