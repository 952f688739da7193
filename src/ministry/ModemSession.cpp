#include "ministry/ModemSession.h"

#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QRegularExpression>

namespace brimsett {

namespace {

// Text kept for the next wait; a host that talks on and on is not remembered beyond this.
constexpr qsizetype kKeptText = 64 * 1024;

const QString kDialResults =
    QStringLiteral("CONNECT;BUSY;NO CARRIER;NO DIALTONE;NO DIAL TONE;NO ANSWER;ERROR");
enum DialResult { kConnect, kBusy, kNoCarrier, kNoDialtone, kNoDialTone, kNoAnswer, kError };

struct Match {
    int index = -1;
    qsizetype end = 0;
};

// The awaited text whose last character comes first in `text`; on a tie the one named first.
Match firstComplete(const QByteArray& text, const QList<QByteArray>& wanted) {
    Match best;
    for (int i = 0; i < wanted.size(); ++i) {
        if (wanted[i].isEmpty()) {
            continue;
        }
        const qsizetype at = text.indexOf(wanted[i]);
        if (at < 0) {
            continue;
        }
        const qsizetype end = at + wanted[i].size();
        if (best.index < 0 || end < best.end) {
            best = {i, end};
        }
    }
    return best;
}

}  // namespace

ModemSession::ModemSession(EdtEventSink sink, std::chrono::milliseconds second)
    : m_sink(sink), m_line(sink), m_second(second) {}

void ModemSession::tell(EdtEvent kind, const QString& text) const {
    if (m_sink) {
        m_sink(kind, text);
    }
}

void ModemSession::tellAll(EdtEvent kind, const QStringList& lines) const {
    for (const QString& line : lines) {
        tell(kind, line);
    }
}

void ModemSession::step(const QString& text) const {
    tell(EdtEvent::Step, text);
}

bool ModemSession::send(const QString& text) {
    return m_line.send(text.toLatin1());
}

TextSeen ModemSession::waitFor(const QString& texts, int timeoutSeconds) {
    tell(EdtEvent::Awaited, texts);
    QList<QByteArray> wanted;
    for (const QString& text : texts.split(QLatin1Char(';'))) {
        wanted << text.toLatin1();
    }
    const QDeadlineTimer deadline(m_second * timeoutSeconds, Qt::PreciseTimer);
    for (;;) {
        const Match seen = firstComplete(m_pending, wanted);
        if (seen.index >= 0) {
            const QByteArray used = m_pending.left(seen.end);
            m_pending.remove(0, seen.end);
            return {seen.index, false, used};
        }
        if (m_line.lost() || !m_line.isOpen()) {
            return {-1, true, {}};
        }
        if (deadline.hasExpired()) {
            break;
        }
        m_pending += m_line.read(std::chrono::milliseconds(deadline.remainingTime()));
        if (m_pending.size() > kKeptText) {
            m_pending.remove(0, m_pending.size() - kKeptText);
        }
    }
    tell(EdtEvent::Error, QStringLiteral("WaitFor Timed Out!"));
    return {};
}

bool ModemSession::dialable(const QString& number) {
    static const QRegularExpression digits(QStringLiteral("^[0-9*#,Ww ()-]*[0-9][0-9*#,Ww ()-]*$"));
    return digits.match(number).hasMatch();
}

bool ModemSession::command(const QByteArray& text) {
    m_pending.clear();
    return m_line.send(text + '\r');
}

DialOutcome ModemSession::dial(const QString& number, int timeoutSeconds) {
    step(QStringLiteral("Dialing..."));
    if (!dialable(number)) {
        tell(EdtEvent::Error,
             QStringLiteral("The telephone number \"%1\" cannot be dialled.").arg(number));
        return DialOutcome::Refused;
    }
    for (const QString& init : initCommands()) {
        if (!command(init.toLatin1())) {
            if (!m_line.isOpen()) {
                tellAll(EdtEvent::Error, ModemLine::noModemMessage());
                return DialOutcome::NoModem;
            }
            return DialOutcome::LineLost;
        }
        const TextSeen seen = waitFor(QStringLiteral("OK;ERROR"), kCommandSeconds);
        if (seen.lost) {
            return DialOutcome::LineLost;
        }
        if (seen.index != 0) {
            // Silence, garbage or a refusal of the plainest commands: no modem is there.
            tellAll(EdtEvent::Error, ModemLine::noModemMessage());
            return DialOutcome::NoModem;
        }
    }
    QElapsedTimer taken;
    taken.start();
    if (!command("ATDT" + number.toLatin1())) {
        return DialOutcome::LineLost;
    }
    const TextSeen seen = waitFor(kDialResults, timeoutSeconds);
    if (seen.lost) {
        return DialOutcome::LineLost;
    }
    switch (seen.index) {
        case kConnect: {
            m_online = true;
            const qint64 seconds = taken.elapsed() / m_second.count();
            step(QStringLiteral("Dial was successful."));
            step(QStringLiteral("(Connected in %1 second%2.)")
                     .arg(seconds)
                     .arg(seconds == 1 ? "" : "s"));
            return DialOutcome::Connected;
        }
        case kBusy:
            tellAll(EdtEvent::Error, {QStringLiteral("The line is busy."),
                                      QStringLiteral("Please try again later.")});
            return DialOutcome::Busy;
        case kNoCarrier:
        case kNoAnswer:
            tell(EdtEvent::Error, QStringLiteral("There is no carrier."));
            return DialOutcome::NoCarrier;
        case kNoDialtone:
        case kNoDialTone:
            tellAll(EdtEvent::Error,
                    {QStringLiteral("*** There is no dial tone. ***"),
                     QStringLiteral("Please check that the telephone line is plugged into the"),
                     QStringLiteral("modem and that no one else is using the telephone.")});
            return DialOutcome::NoDialTone;
        case kError:
            tell(EdtEvent::Error, QStringLiteral("The modem refused to dial \"%1\".").arg(number));
            return DialOutcome::Refused;
        default:
            break;
    }
    // Any character stops a modem that is still dialling.
    m_line.send("\r");
    tellAll(EdtEvent::Error, {QStringLiteral("Time out error."),
                              QStringLiteral("(Could not establish connection within %1 seconds.)")
                                  .arg(timeoutSeconds)});
    return DialOutcome::TimedOut;
}

void ModemSession::idle(int seconds) {
    const QDeadlineTimer deadline(m_second * seconds, Qt::PreciseTimer);
    while (!deadline.hasExpired() && m_line.isOpen() && !m_line.lost()) {
        m_line.read(std::chrono::milliseconds(deadline.remainingTime()));
    }
}

void ModemSession::hangUp() {
    step(QStringLiteral("Hanging up..."));
    if (m_line.isOpen() && !m_line.lost()) {
        if (m_online) {
            // The escape is only heard between two guard times without text.
            idle(kGuardSeconds);
            m_pending.clear();
            if (m_line.send("+++")) {
                waitFor(QStringLiteral("OK"), kGuardSeconds + kHangUpSeconds);
            }
        }
        // Sent even when the escape got no answer: a modem already back in command mode
        // hears it; one that hears nothing hangs up when DTR drops.
        if (command("ATH0")) {
            waitFor(QStringLiteral("OK;NO CARRIER;ERROR"), kHangUpSeconds);
        }
    }
    m_online = false;
    m_pending.clear();
    m_line.close();
}

}  // namespace brimsett
