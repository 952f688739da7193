#pragma once

#include <QString>

namespace brimsett {

// How a transfer waits for the agent on the other side of an exchange folder: a screen keeps
// repainting (and shows the status text), the command line sleeps, a test need not wait.
class TransferWait {
public:
    virtual ~TransferWait() = default;
    virtual void pause(int milliseconds) = 0;
    // A progress text such as "Please Wait (3)".
    virtual void status(const QString& text) = 0;
};

}  // namespace brimsett
