#include "ministry/ModemLine.h"

#include <poll.h>

#include <algorithm>
#include <climits>

namespace brimsett {

namespace {

// A modem that holds the line (hardware flow control) longer than this is not taking text.
constexpr int kWriteMs = 5000;

}  // namespace

std::optional<LineSpeed> LineSpeed::parse(const QString& text) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4) {
        return std::nullopt;
    }
    LineSpeed line;
    bool ok = false;
    line.baud = parts[0].trimmed().toInt(&ok);
    if (!ok || line.baud <= 0) {
        return std::nullopt;
    }
    // The letters' order is the parities' below.
    static constexpr QSerialPort::Parity parities[] = {
        QSerialPort::NoParity, QSerialPort::EvenParity, QSerialPort::OddParity,
        QSerialPort::MarkParity, QSerialPort::SpaceParity};
    const QString parity = parts[1].trimmed().toLower();
    const qsizetype parityAt = parity.size() == 1 ? QStringLiteral("neoms").indexOf(parity) : -1;
    const int bits = parts[2].trimmed().toInt(&ok);
    const QStringList stops = {"1", "1.5", "2"};
    static constexpr QSerialPort::StopBits stopBits[] = {
        QSerialPort::OneStop, QSerialPort::OneAndHalfStop, QSerialPort::TwoStop};
    const qsizetype stopAt = stops.indexOf(parts[3].trimmed());
    if (parityAt < 0 || !ok || bits < 5 || bits > 8 || stopAt < 0) {
        return std::nullopt;
    }
    line.parity = parities[parityAt];
    line.dataBits = static_cast<QSerialPort::DataBits>(bits);
    line.stopBits = stopBits[stopAt];
    return line;
}

ModemLine::ModemLine(EdtEventSink sink) : m_sink(std::move(sink)) {}

ModemLine::~ModemLine() {
    close();
}

void ModemLine::tell(EdtEvent kind, const QString& text) const {
    if (m_sink) {
        m_sink(kind, text);
    }
}

bool ModemLine::open(const QString& device, const QString& speed) {
    close();
    m_lost = false;
    const std::optional<LineSpeed> line = LineSpeed::parse(speed);
    if (!line) {
        tell(
            EdtEvent::Error,
            QStringLiteral("The line speed \"%1\" is not of the form \"57600,n,8,1\".").arg(speed));
        return false;
    }
    QString reason;
    if (device.trimmed().isEmpty()) {
        reason = QStringLiteral("no modem port is set");
    } else {
        m_port.setPortName(device);
        if (!m_port.open(QIODevice::ReadWrite)) {
            reason = m_port.errorString();
        } else if (!m_port.setBaudRate(line->baud) || !m_port.setParity(line->parity) ||
                   !m_port.setDataBits(line->dataBits) || !m_port.setStopBits(line->stopBits) ||
                   !m_port.setFlowControl(QSerialPort::HardwareControl)) {
            reason = m_port.errorString();
            m_port.close();
        }
    }
    if (!reason.isEmpty()) {
        m_port.clearError();
        for (const QString& text : noModemMessage()) {
            tell(EdtEvent::Error, text);
        }
        tell(EdtEvent::Error, QStringLiteral("(%1: %2)").arg(device, reason));
        return false;
    }
    // A modem set to hang up when it drops needs it raised; a line without modem signals
    // refuses, which is no fault.
    m_port.setDataTerminalReady(true);
    m_port.clearError();
    // Whatever the modem said before this session is not an answer to it.
    m_port.clear(QSerialPort::Input);
    return true;
}

int ModemLine::handle() const {
    return m_port.isOpen() ? m_port.handle() : -1;
}

bool ModemLine::stillThere() {
    const QSerialPort::SerialPortError error = m_port.error();
    m_port.clearError();
    if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError) {
        return true;
    }
    return lose();
}

bool ModemLine::lose() {
    m_lost = true;
    tell(EdtEvent::Error, kLost);
    return false;
}

bool ModemLine::send(const QByteArray& text) {
    if (!m_port.isOpen() || m_lost) {
        return false;
    }
    tell(EdtEvent::Sent, QString::fromLatin1(text));
    if (m_port.write(text) != text.size()) {
        return stillThere() && lose();
    }
    while (m_port.bytesToWrite() > 0) {
        // Held back all that time (or failed): nothing at the other end is reading.
        if (!m_port.waitForBytesWritten(kWriteMs)) {
            return stillThere() && lose();
        }
    }
    return stillThere();
}

QByteArray ModemLine::read(std::chrono::milliseconds wait) {
    if (!m_port.isOpen() || m_lost) {
        return {};
    }
    const int waitMs = static_cast<int>(std::clamp<qint64>(wait.count(), 0, INT_MAX));
    if (m_port.bytesAvailable() == 0 && !m_port.waitForReadyRead(waitMs)) {
        stillThere();
        return {};
    }
    const QByteArray text = m_port.readAll();
    if (!text.isEmpty()) {
        tell(EdtEvent::Received, QString::fromLatin1(text));
    }
    return text;
}

bool ModemLine::check() {
    if (!m_port.isOpen() || m_lost) {
        return false;
    }
    pollfd line{static_cast<int>(m_port.handle()), POLLIN, 0};
    if (poll(&line, 1, 0) < 0 || (line.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0) {
        return lose();
    }
    // A pseudo-terminal cannot tell its modem signals; a port that can and shows no carrier
    // has lost the call.
    const QSerialPort::PinoutSignals pins = m_port.pinoutSignals();
    const bool known = m_port.error() == QSerialPort::NoError;
    m_port.clearError();
    if (known && !(pins & QSerialPort::DataCarrierDetectSignal)) {
        return lose();
    }
    return true;
}

void ModemLine::close() {
    if (!m_port.isOpen()) {
        return;
    }
    m_port.setDataTerminalReady(false);
    m_port.close();
    m_port.clearError();
}

}  // namespace brimsett
