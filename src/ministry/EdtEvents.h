#pragma once

#include <QString>

#include <functional>

namespace brimsett {

// What a dial-up session tells its log, one event at a time, in the order it happens. The
// log colours each kind; the session window shows the steps.
enum class EdtEvent {
    Step,      // a step the user sees: "Dialing...", "Logging on to GONet..."
    Sent,      // text written to the line
    Awaited,   // the texts a wait looks for ("PLEASE BEGIN;YOUR UPLOAD")
    Received,  // text read from the line
    Error,     // a failure: "WaitFor Timed Out!", "LOST CONNECTION", "ABORTED", a refusal
};

using EdtEventSink = std::function<void(EdtEvent kind, const QString& text)>;

}  // namespace brimsett
