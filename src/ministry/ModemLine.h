#pragma once

#include "ministry/EdtEvents.h"

#include <QByteArray>
#include <QSerialPort>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace brimsett {

// A line speed as the setup screen names it: "57600,n,8,1" is baud, parity (n, e, o, m, s),
// data bits (5 to 8) and stop bits (1, 1.5, 2).
struct LineSpeed {
    qint32 baud = 0;
    QSerialPort::Parity parity = QSerialPort::NoParity;
    QSerialPort::DataBits dataBits = QSerialPort::Data8;
    QSerialPort::StopBits stopBits = QSerialPort::OneStop;

    static std::optional<LineSpeed> parse(const QString& text);
};

// The serial line to the modem. Every text written and read, and every failure, goes to the
// session's event sink as it happens. A line that fails while open (the device went away, the
// other end hung up) is lost: "LOST CONNECTION" is told once, and from then on nothing is
// sent or read until it is closed.
class ModemLine {
public:
    explicit ModemLine(EdtEventSink sink);
    ~ModemLine();
    ModemLine(const ModemLine&) = delete;
    ModemLine& operator=(const ModemLine&) = delete;

    static QStringList noModemMessage() {
        return {QStringLiteral("Could not access the modem."),
                QStringLiteral("Please check that the modem port setting is correct,"),
                QStringLiteral("and there is no other software using the modem.")};
    }
    static inline const QString kLost = QStringLiteral("LOST CONNECTION");

    // Opens the device (such as /dev/ttyS0) at the speed, with hardware flow control, data
    // terminal ready raised. False when it cannot be opened (told: the modem message and the
    // system's reason).
    bool open(const QString& device, const QString& speed);
    bool isOpen() const { return m_port.isOpen(); }
    bool lost() const { return m_lost; }
    // The open descriptor, for a file transfer run over the line; -1 when closed.
    int handle() const;

    // Writes the text and waits until it has left. False when the line is closed or lost.
    bool send(const QByteArray& text);
    // What arrives within `wait` (returns as soon as anything is there); empty on time-out
    // or when the line is lost.
    QByteArray read(std::chrono::milliseconds wait);
    // After the line was lent out (to a file transfer run on handle()): false, and the line
    // lost, when the far end hung up or the modem shows no carrier where the port can tell.
    bool check();
    // Drops data terminal ready (a modem set to do so hangs up) and closes the port.
    void close();

private:
    void tell(EdtEvent kind, const QString& text) const;
    // False, and the line lost, unless the port's last error was only a time-out.
    bool stillThere();
    bool lose();

    EdtEventSink m_sink;
    QSerialPort m_port;
    bool m_lost = false;
};

}  // namespace brimsett
