#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

// Asks the user for a new transfer password while the host waits: the session window shows
// a dialog, the command line reads a line of standard input. Called once for the password
// and once more to type it again.
class NewPasswordAsker {
public:
    virtual ~NewPasswordAsker() = default;
    // The typed password; none when the user cancelled.
    virtual std::optional<QString> ask(const QStringList& lines) = 0;
};

}  // namespace brimsett
