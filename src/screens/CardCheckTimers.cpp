#include "screens/CardCheckTimers.h"

#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "hcv/HcvSettings.h"

namespace brimsett {

CardCheckTimers::CardCheckTimers(Database& db, const SettingsStore& store, const Clock& clock,
                                 Prompter& prompter, const SqlLog& log, const QString& officeFolder,
                                 std::function<void(const QString& healthNum)> answerStored,
                                 QObject* parent)
    : QObject(parent), m_prompter(prompter) {
    hcv::CardExchange::Hooks hooks;
    hooks.startWait = [this] { m_wait.start(); };
    hooks.stopWait = [this] { m_wait.stop(); };
    hooks.answerStored = std::move(answerStored);
    m_exchange = std::make_unique<hcv::CardExchange>(db, store, clock, prompter, log, officeFolder,
                                                     std::move(hooks));
    m_exchange->setPollingOn(hcv::HcvSettings::read(store).pollingOn);

    m_wait.setSingleShot(true);
    m_wait.setInterval(kWaitMs);
    connect(&m_wait, &QTimer::timeout, this, [this] { m_exchange->waitExpired(); });
    m_poll.setInterval(kPollMs);
    connect(&m_poll, &QTimer::timeout, this, &CardCheckTimers::pollNow);
    if (m_exchange->pollingOn()) {
        m_poll.start();
    }
}

void CardCheckTimers::pollNow() {
    if (m_inPoll) {
        return;
    }
    m_inPoll = true;
    try {
        m_exchange->PollCardResponses();
        m_toldFailure = false;
    } catch (const DbError& e) {
        // Told once, not every few seconds while the database is away; the answers stay in
        // their folder and are taken once it is back.
        if (!m_toldFailure) {
            m_toldFailure = true;
            m_prompter.error(
                {QStringLiteral("Health card answers could not be read."), e.message()});
        }
    }
    m_inPoll = false;
}

void CardCheckTimers::requestAsked(const QString& healthNum, const QString& versionCode) {
    const QString title = QStringLiteral("Check Card");
    if (healthNum.trimmed().isEmpty()) {
        m_prompter.tell(title, {QStringLiteral("There is no health number to check.")},
                        Icon::Information);
        return;
    }
    if (m_exchange->RequestCardCheck(healthNum, versionCode, false).outcome ==
            hcv::CardExchange::Outcome::AnsweredToday &&
        m_prompter.confirm(title, {QStringLiteral("This card was already checked today."),
                                   QStringLiteral("Check it again?")})) {
        m_exchange->RequestCardCheck(healthNum, versionCode, true);
    }
}

}  // namespace brimsett
