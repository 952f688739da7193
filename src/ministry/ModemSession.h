#pragma once

#include "ministry/EdtEvents.h"
#include "ministry/ModemLine.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

namespace brimsett {

// What a wait for text saw.
struct TextSeen {
    int index = -1;     // which of the awaited texts came first; -1: none
    bool lost = false;  // the line was lost while waiting
    QByteArray text;    // what the wait used up: the text read up to the end of the match
    explicit operator bool() const { return index >= 0; }
};

enum class DialOutcome {
    Connected,
    Busy,
    NoCarrier,
    NoDialTone,
    TimedOut,
    Refused,   // the number cannot be dialled, or the modem refused the command
    NoModem,   // no modem answers on the port
    LineLost,  // the port failed
};

// A telephone call through a Hayes-compatible modem: dialling, text sent and awaited, and
// hanging up, each told to the session's event sink. Text read but not yet matched by a wait
// is kept for the next one; the modem's own commands first forget it, so an old "OK" never
// answers them.
class ModemSession {
public:
    // `second` is how long a second of the session's time-outs and guard times lasts; only
    // tests shorten it.
    explicit ModemSession(EdtEventSink sink,
                          std::chrono::milliseconds second = std::chrono::seconds(1));

    // Reset to the modem's stored profile; then no echo, word result codes, busy and dial
    // tone detection, carrier detect following the carrier, hang up when DTR drops.
    static QStringList initCommands() { return {"ATZ", "ATE0V1Q0X4&C1&D2"}; }
    static constexpr int kCommandSeconds = 3;
    static constexpr int kGuardSeconds = 1;
    static constexpr int kHangUpSeconds = 2;

    bool open(const QString& device, const QString& speed) { return m_line.open(device, speed); }
    ModemLine& line() { return m_line; }
    bool online() const { return m_online; }

    // Tells a step of the session.
    void step(const QString& text) const;
    bool send(const QString& text);
    // Waits for any of the texts separated by ";" (blank ones are ignored); the first to be
    // complete in what arrives wins. A time-out is logged as "WaitFor Timed Out!".
    TextSeen waitFor(const QString& texts, int timeoutSeconds);

    // Initialises the modem and dials the number with tone dialling, waiting `timeoutSeconds`
    // for the call to connect. Every outcome is told.
    DialOutcome dial(const QString& number, int timeoutSeconds);
    // Leaves the call (escape to command mode, "ATH0"), drops DTR and closes the port, even
    // when the modem answers nothing or the line is gone.
    void hangUp();

    // A number the modem can dial: digits, "*", "#", pauses ",", "W", and blanks, "-", "(",
    // ")" for readability.
    static bool dialable(const QString& number);

private:
    bool command(const QByteArray& text);
    void tell(EdtEvent kind, const QString& text) const;
    void tellAll(EdtEvent kind, const QStringList& lines) const;
    // Reads (and logs) whatever comes for `seconds`, keeping none of it.
    void idle(int seconds);

    EdtEventSink m_sink;
    ModemLine m_line;
    std::chrono::milliseconds m_second;
    QByteArray m_pending;
    bool m_online = false;
};

}  // namespace brimsett
