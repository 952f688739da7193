#pragma once

#include "ministry/EdtEvents.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <atomic>
#include <chrono>

namespace brimsett {

class ModemLine;

enum class TransferOutcome {
    Done,
    Lost,      // the line went during the transfer: "LOST CONNECTION"
    Aborted,   // the transfer program gave up, could not start, or was cancelled: "ABORTED"
    TimedOut,  // it ran past its time and was stopped: "ABORTED" as well
};

// Files sent and received over an open modem line with ZMODEM, by the lrzsz package's `sz`
// and `rz` running on the line's descriptor as their standard input and output. Nothing else
// reads the line meanwhile (the session waits for the program without running an event
// loop), and the line's settings are put back afterwards, whatever the program did to them.
class EdtFileTransfer {
public:
    static inline const QString kAborted = QStringLiteral("ABORTED");
    static inline const QString kSender = QStringLiteral("sz");
    static inline const QString kReceiver = QStringLiteral("rz");
    // Binary (no line-end changes), every control character escaped (a packet network may
    // act on some), quiet; the receiver keeps upper-case names and writes only into its own
    // folder.
    static QStringList sendOptions() { return {"-b", "-e", "-q"}; }
    static QStringList receiveOptions() { return {"-b", "-e", "-q", "-u", "-R", "-E"}; }
    // A download's size is not known before: it may take this long beyond the time-out.
    static constexpr int kReceiveSeconds = 1800;

    // `second` as the session's: only tests shorten it.
    EdtFileTransfer(ModemLine& line, EdtEventSink sink,
                    std::chrono::milliseconds second = std::chrono::seconds(1));

    // Both programs can be found.
    static bool installed();
    // What a file of `bytes` may take at `baud`: the time-out, and three times what the bytes
    // need at ten bits each.
    static int sendSeconds(qint64 bytes, int baud, int timeOutSeconds);

    // Sends one file; `seconds` is the most it may take.
    TransferOutcome send(const QString& path, int seconds);
    // Receives what the far end sends into a hidden folder inside `folder` (ending in "/"),
    // then moves each file whole into `folder`, keeping an earlier file of the name with other
    // content as the exchange folder does. The names moved go to `received`. Nothing is moved
    // when the transfer failed.
    TransferOutcome receive(const QString& folder, const QDateTime& now, int seconds,
                            QStringList* received);

    // Stops a running transfer from another thread (it ends Aborted), and every later one
    // before it starts: the session is being cancelled.
    void cancel() { m_cancelled = true; }

private:
    TransferOutcome run(const QString& program, const QStringList& arguments, const QString& folder,
                        int seconds);
    TransferOutcome fail(TransferOutcome outcome, const QString& why);
    void tell(EdtEvent kind, const QString& text) const;

    ModemLine& m_line;
    EdtEventSink m_sink;
    std::chrono::milliseconds m_second;
    std::atomic<bool> m_cancelled{false};
};

}  // namespace brimsett
