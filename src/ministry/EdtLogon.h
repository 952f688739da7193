#pragma once

#include "ministry/EdtEvents.h"

#include <QChar>
#include <QMap>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimsett {

class EdtParams;
class ModemSession;
class NewPasswordAsker;
class Prompter;

enum class LogonOutcome {
    LoggedOn,
    DataPacTimeOut,
    DataPacDisconnected,
    DataPacRejected,  // the network user identifier or its password
    DataPacRefused,   // the network cleared the call
    GoNetRefused,
    Cancelled,  // the user gave up the password change
    LineLost,
};

// The host's five refusals of a new password, in the order of their settings.
enum class PasswordRefusal { UsedBefore, TooShort, Repeated, LikeUserId, TooLong };

// Logs on after the modem connected: through the DataPac packet network when a network
// user identifier is set (a direct line goes straight to the host), then to GONet with the
// doctor's login. When the host takes the password but demands a new one, the user types it
// twice and it is offered until the host takes it; then it is stored. Every password is
// handed to `conceal` before it is sent, so no log shows it.
class EdtLogon {
public:
    static inline const QString kChangeTitle = QStringLiteral("GONet Password Change");

    EdtLogon(ModemSession& session, EdtEventSink sink, EdtParams& params, Prompter& prompter,
             NewPasswordAsker& asker, std::function<void(const QString&)> conceal);

    LogonOutcome logOn(const QString& doctorId);

    static QStringList refusalMessage(const QString& password, PasswordRefusal why);

private:
    struct Seen;
    LogonOutcome dataPac(const QMap<QChar, QString>& general);
    LogonOutcome goNet(const QString& doctorId, const QMap<QChar, QString>& general);
    LogonOutcome changePassword(const QString& doctorId, const QMap<QChar, QString>& general);
    std::optional<QString> typedTwice();
    // Waits for the texts of the settings `keys`; which setting's text came first.
    Seen await(const QMap<QChar, QString>& general, const QList<QChar>& keys);
    // The rest of the line a matched text stands on (the host's reason after it).
    QString restOfLine();
    LogonOutcome dataPacFailed(const Seen& seen);
    LogonOutcome hostRefused(const QString& reason);
    bool sendLine(const QString& text);
    bool sendSecret(const QString& secret);
    void tell(EdtEvent kind, const QString& text) const;

    ModemSession& m_session;
    EdtEventSink m_sink;
    EdtParams& m_params;
    Prompter& m_prompter;
    NewPasswordAsker& m_asker;
    std::function<void(const QString&)> m_conceal;
    int m_seconds = 60;
};

}  // namespace brimsett
