#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QMap>
#include <QString>
#include <QThread>

#include <atomic>
#include <mutex>
#include <thread>

namespace brimsett::test {

// Stands in for the transfer agent beside the program: a thread of its own watches the
// office's "OutboundSubmission" folder, takes every file put there, confirms a claim file
// with "Done/" name ".done" and answers a request ("R" id ".txt") with the given files in
// "InboundSubmission", or with id ".nofiles" when it has none. It writes as a careful agent
// would: under a hidden name first, then renamed.
class TransferAgent {
public:
    TransferAgent(const QString& office, QMap<QString, QByteArray> answers = {})
        : m_out(office + QStringLiteral("OutboundSubmission/")),
          m_in(office + QStringLiteral("InboundSubmission/")),
          m_answers(std::move(answers)) {
        m_thread = std::thread([this] { run(); });
    }
    ~TransferAgent() {
        m_stop = true;
        m_thread.join();
    }

    // Every file taken, by name, with its content.
    QMap<QString, QByteArray> taken() const {
        std::lock_guard lock(m_mutex);
        return m_taken;
    }

private:
    static void write(const QString& path, const QByteArray& bytes) {
        const QString hidden = QFileInfo(path).absolutePath() + QStringLiteral("/.agent.tmp");
        QFile file(hidden);
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            file.write(bytes);
            file.close();
            QFile::rename(hidden, path);
        }
    }

    void run() {
        while (!m_stop) {
            for (const QString& name : QDir(m_out).entryList(QDir::Files, QDir::Name)) {
                QFile file(m_out + name);
                if (!file.open(QIODevice::ReadOnly)) {
                    continue;
                }
                const QByteArray bytes = file.readAll();
                file.close();
                QFile::remove(m_out + name);
                {
                    std::lock_guard lock(m_mutex);
                    m_taken.insert(name, bytes);
                }
                if (name.startsWith(QLatin1Char('R')) && name.endsWith(QStringLiteral(".txt"))) {
                    for (auto it = m_answers.cbegin(); it != m_answers.cend(); ++it) {
                        write(m_in + it.key(), it.value());
                    }
                    if (m_answers.isEmpty()) {
                        write(m_in + name.mid(1).chopped(4) + QStringLiteral(".nofiles"), {});
                    }
                } else {
                    write(m_out + QStringLiteral("Done/") + name + QStringLiteral(".done"), {});
                }
            }
            QThread::msleep(2);
        }
    }

    QString m_out;
    QString m_in;
    QMap<QString, QByteArray> m_answers;
    mutable std::mutex m_mutex;
    QMap<QString, QByteArray> m_taken;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace brimsett::test
