#pragma once

#include "hcv/CardExchange.h"

#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>

namespace brimsett {

// The main screen's side of the real-time card check: the program's one CardExchange, the
// poll timer that reads the answer folder while polling is on ("TCP1" at start-up), and the
// one-shot wait for an answer after a request.
class CardCheckTimers : public QObject {
    Q_OBJECT

public:
    // Answers are small files a local agent drops within seconds; a look every few seconds
    // costs one folder listing.
    static constexpr int kPollMs = 5000;
    // The service answers in seconds; a minute without an answer means it is down.
    static constexpr int kWaitMs = 60000;

    // answerStored: an answer was stored for the patient of that health number.
    CardCheckTimers(Database& db, const SettingsStore& store, const Clock& clock,
                    Prompter& prompter, const SqlLog& log, const QString& officeFolder,
                    std::function<void(const QString& healthNum)> answerStored,
                    QObject* parent = nullptr);

    hcv::CardExchange& exchange() { return *m_exchange; }
    bool polling() const { return m_poll.isActive(); }
    bool waiting() const { return m_wait.isActive(); }

    // One look at the answer folders now (what each tick does).
    void pollNow();

    // A check the user asked for on a screen: a card already answered today is sent again
    // only when they say so.
    void requestAsked(const QString& healthNum, const QString& versionCode);

private:
    Prompter& m_prompter;
    std::unique_ptr<hcv::CardExchange> m_exchange;
    QTimer m_poll;
    QTimer m_wait;
    // A "TW HCV" message box runs its own event loop, in which the next tick comes: the poll
    // then in progress must not be entered a second time.
    bool m_inPoll = false;
    bool m_toldFailure = false;
};

}  // namespace brimsett
