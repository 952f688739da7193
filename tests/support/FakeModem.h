#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace brimsett::test {

// Plays the modem and the host behind it on a pseudo-terminal pair: the code under test opens
// device() as it would a serial port, and a thread of this class works through a script on
// the other end. Steps run in order once start() is called:
//   expect(text)   wait until the text has arrived (anywhere after the last expected text)
//   answer(text)   write the text back
//   pause(ms)      let time pass, reading what comes
//   quiet(ms)      nothing may arrive for that long (a modem's guard time), else the script fails
//   drop()         hang up: the pseudo-terminal's far end closes
//   run(hook)      hand the line to a hook, such as a file transfer program
// A script that has ended (or failed) keeps reading whatever comes and answers nothing: a
// silent modem is an empty script.
class FakeModem {
public:
    // The hook gets the far end's descriptor and the text read but not yet expected (which
    // it may consume). It returns false when the script should fail.
    using Hook = std::function<bool(int fd, QByteArray& pending)>;

    FakeModem();
    ~FakeModem();
    FakeModem(const FakeModem&) = delete;
    FakeModem& operator=(const FakeModem&) = delete;

    // The device to open, such as /dev/pts/3; empty when no pseudo-terminal could be had
    // (problem() says why).
    QString device() const { return m_device; }
    QString problem() const { return m_problem; }

    FakeModem& expect(const QByteArray& text);
    FakeModem& answer(const QByteArray& text);
    // expect(text), then answer(reply).
    FakeModem& on(const QByteArray& text, const QByteArray& reply);
    FakeModem& pause(int ms);
    FakeModem& quiet(int ms);
    FakeModem& drop();
    FakeModem& run(Hook hook);
    void start();

    // Waits up to `ms` for the script's end; true when every step was played.
    bool finished(int ms);
    // Why the script stopped early; empty while it still waits for an expected text.
    QString failure() const;
    // Everything read from the line so far.
    QByteArray received() const;

private:
    struct Step {
        enum Kind { Expect, Answer, Pause, Quiet, Drop, Run } kind;
        QByteArray text;
        int ms = 0;
        Hook hook;
    };
    void play();
    // Reads what comes within `ms` (-1: until something comes); false when told to stop or
    // the line is gone.
    bool pump(int ms);
    bool playStep(const Step& step);
    void fail(const QString& why);

    int m_master = -1;
    int m_slave = -1;
    int m_wake[2] = {-1, -1};
    QString m_device;
    QString m_problem;
    QList<Step> m_script;
    QByteArray m_pending;  // read, not yet expected (the thread's own)
    std::thread m_thread;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QByteArray m_received;
    QString m_failure;
    bool m_done = false;
    bool m_played = false;
};

}  // namespace brimsett::test
