#include "FakeModem.h"

#include <QElapsedTimer>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>
#include <cerrno>

namespace brimsett::test {

FakeModem::FakeModem() {
    char name[256] = {};
    if (openpty(&m_master, &m_slave, name, nullptr, nullptr) != 0) {
        m_problem = QStringLiteral("openpty: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        return;
    }
    // Raw both ways, as a modem's line is: no echo, no line editing, CR stays CR. The slave
    // stays open here too, so the far end never sees the line vanish between the program's
    // opening and closing of it.
    termios raw{};
    tcgetattr(m_slave, &raw);
    cfmakeraw(&raw);
    tcsetattr(m_slave, TCSANOW, &raw);
    if (pipe(m_wake) != 0) {
        m_problem = QStringLiteral("pipe: %1").arg(QString::fromLocal8Bit(strerror(errno)));
        return;
    }
    m_device = QString::fromLocal8Bit(name);
}

FakeModem::~FakeModem() {
    if (m_thread.joinable()) {
        const char stop = 'x';
        [[maybe_unused]] ssize_t written = write(m_wake[1], &stop, 1);
        m_thread.join();
    }
    for (int fd : {m_master, m_slave, m_wake[0], m_wake[1]}) {
        if (fd >= 0) {
            close(fd);
        }
    }
}

FakeModem& FakeModem::expect(const QByteArray& text) {
    m_script << Step{Step::Expect, text, 0, {}};
    return *this;
}

FakeModem& FakeModem::answer(const QByteArray& text) {
    m_script << Step{Step::Answer, text, 0, {}};
    return *this;
}

FakeModem& FakeModem::on(const QByteArray& text, const QByteArray& reply) {
    return expect(text).answer(reply);
}

FakeModem& FakeModem::pause(int ms) {
    m_script << Step{Step::Pause, {}, ms, {}};
    return *this;
}

FakeModem& FakeModem::quiet(int ms) {
    m_script << Step{Step::Quiet, {}, ms, {}};
    return *this;
}

FakeModem& FakeModem::drop() {
    m_script << Step{Step::Drop, {}, 0, {}};
    return *this;
}

FakeModem& FakeModem::run(Hook hook) {
    m_script << Step{Step::Run, {}, 0, std::move(hook)};
    return *this;
}

void FakeModem::start() {
    if (m_device.isEmpty() || m_thread.joinable()) {
        return;
    }
    m_thread = std::thread([this] { play(); });
}

bool FakeModem::finished(int ms) {
    std::unique_lock lock(m_mutex);
    m_changed.wait_for(lock, std::chrono::milliseconds(ms), [this] { return m_done; });
    return m_played;
}

QString FakeModem::failure() const {
    std::lock_guard lock(m_mutex);
    return m_failure;
}

QByteArray FakeModem::received() const {
    std::lock_guard lock(m_mutex);
    return m_received;
}

void FakeModem::fail(const QString& why) {
    std::lock_guard lock(m_mutex);
    m_failure = why;
}

bool FakeModem::pump(int ms) {
    if (m_master < 0) {
        return false;
    }
    pollfd fds[2] = {{m_master, POLLIN, 0}, {m_wake[0], POLLIN, 0}};
    const int ready = poll(fds, 2, ms);
    if (ready < 0) {
        return errno == EINTR;
    }
    if (fds[1].revents != 0) {
        return false;
    }
    if (fds[0].revents == 0) {
        return true;
    }
    char buffer[4096];
    const ssize_t count = read(m_master, buffer, sizeof buffer);
    if (count <= 0) {
        // The slave stays open here, so this is only a closed pair.
        return count < 0 && (errno == EINTR || errno == EAGAIN);
    }
    const QByteArray text(buffer, count);
    m_pending += text;
    std::lock_guard lock(m_mutex);
    m_received += text;
    return true;
}

bool FakeModem::playStep(const Step& step) {
    switch (step.kind) {
        case Step::Expect:
            for (;;) {
                const qsizetype at = m_pending.indexOf(step.text);
                if (at >= 0) {
                    m_pending.remove(0, at + step.text.size());
                    return true;
                }
                if (!pump(-1)) {
                    fail(QStringLiteral("stopped while expecting \"%1\"")
                             .arg(QString::fromLatin1(step.text)));
                    return false;
                }
            }
        case Step::Answer: {
            qsizetype done = 0;
            while (done < step.text.size()) {
                const ssize_t count =
                    write(m_master, step.text.constData() + done, step.text.size() - done);
                if (count < 0) {
                    if (errno == EINTR) {
                        continue;
                    }
                    fail(QStringLiteral("could not answer: %1")
                             .arg(QString::fromLocal8Bit(strerror(errno))));
                    return false;
                }
                done += count;
            }
            return true;
        }
        case Step::Pause:
        case Step::Quiet: {
            QElapsedTimer clock;
            clock.start();
            const qsizetype before = m_pending.size();
            while (clock.elapsed() < step.ms) {
                if (!pump(static_cast<int>(step.ms - clock.elapsed()))) {
                    return false;
                }
                if (step.kind == Step::Quiet && m_pending.size() > before) {
                    fail(QStringLiteral("\"%1\" arrived %2 ms into a quiet time of %3 ms")
                             .arg(QString::fromLatin1(m_pending.mid(before)))
                             .arg(clock.elapsed())
                             .arg(step.ms));
                    return false;
                }
            }
            return true;
        }
        case Step::Drop:
            close(m_master);
            m_master = -1;
            return true;
        case Step::Run:
            if (!step.hook(m_master, m_pending)) {
                fail(QStringLiteral("the hook failed"));
                return false;
            }
            return true;
    }
    return false;
}

void FakeModem::play() {
    bool played = true;
    for (const Step& step : m_script) {
        if (!playStep(step)) {
            played = false;
            break;
        }
    }
    {
        std::lock_guard lock(m_mutex);
        m_done = true;
        m_played = played;
    }
    m_changed.notify_all();
    // Keep reading, so a writer is never held up and every text is seen.
    while (pump(-1)) {
    }
}

}  // namespace brimsett::test
