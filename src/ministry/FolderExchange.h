#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Clock;
class Prompter;
class TransferWait;

// The "EDT / Internet" way: the office folder's exchange folders, which a transfer agent
// beside the program watches. Claim files and answer requests go into
// "OutboundSubmission"; the agent confirms a claim file with "OutboundSubmission/Done/"
// name ".done" and leaves the ministry's answers in "InboundSubmission" (or a file ending in
// ".nofiles" when there are none), which are taken into "Download" and acknowledged with
// "InboundSubmission/Ok/" name ".ok".
class FolderExchange {
public:
    static constexpr int kSubmitLooks = 50;
    static constexpr int kSubmitPauseMs = 1000;
    static constexpr int kFetchLooks = 21;
    static constexpr int kFetchPauseMs = 2000;
    static inline const QString kOutbound = QStringLiteral("OutboundSubmission");
    static inline const QString kInbound = QStringLiteral("InboundSubmission");
    static inline const QString kDownload = QStringLiteral("Download");

    FolderExchange(QString officeFolder, Prompter& prompter, TransferWait& wait, const Clock& clock,
                   QString title);

    // Hands the claim file (in the office folder) to the agent and waits for its receipt.
    // False when it could not be handed over or no receipt came (told why).
    bool send(const QString& fileName);

    // Asks the agent for the waiting answers of a transfer login and takes them into
    // "Download". Their names (none came: empty); no value when the request failed or the
    // agent did not answer (told why).
    std::optional<QStringList> fetch(const QString& userId);

    // "R" + user id + ".txt".
    static QString requestName(const QString& userId);

private:
    bool take(const QString& name);
    QString path(const QString& relative) const { return m_office + relative; }
    void fail(const QStringList& lines);

    QString m_office;
    Prompter& m_prompter;
    TransferWait& m_wait;
    const Clock& m_clock;
    QString m_title;
};

}  // namespace brimsett
