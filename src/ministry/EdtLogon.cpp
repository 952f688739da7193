#include "ministry/EdtLogon.h"

#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "ministry/EdtHostSettings.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/ModemSession.h"
#include "ministry/NewPasswordAsker.h"

namespace brimsett {

namespace {

const QString kTimeOut = QStringLiteral("DataPac timeout error.");
const QString kDisconnected = QStringLiteral("You were disconnected from DataPac.");
const QString kRejected = QStringLiteral("DataPac (NUI) UserID or password was rejected.");
// A PAD waking on a line of its own; it answers with its NUI prompt.
const QByteArray kAttention = ".\r";
const QList<QChar> kRefusalKeys{edthost::kUsedBefore, edthost::kTooShort, edthost::kRepeated,
                                edthost::kLikeUserId, edthost::kTooLong};

// The line the text ends, from its beginning.
QString lastLine(const QByteArray& text) {
    const qsizetype cut = std::max(text.lastIndexOf('\r'), text.lastIndexOf('\n'));
    return QString::fromLatin1(text.mid(cut + 1));
}

}  // namespace

struct EdtLogon::Seen {
    QChar key;  // the setting whose text came first; none on a time-out or a lost line
    bool lost = false;
    QString line;  // the matched line up to the end of the match
};

EdtLogon::EdtLogon(ModemSession& session, EdtEventSink sink, EdtParams& params, Prompter& prompter,
                   NewPasswordAsker& asker, std::function<void(const QString&)> conceal)
    : m_session(session),
      m_sink(std::move(sink)),
      m_params(params),
      m_prompter(prompter),
      m_asker(asker),
      m_conceal(std::move(conceal)) {}

void EdtLogon::tell(EdtEvent kind, const QString& text) const {
    if (m_sink) {
        m_sink(kind, text);
    }
}

QStringList EdtLogon::refusalMessage(const QString& password, PasswordRefusal why) {
    static const QStringList reasons{
        QStringLiteral("because it was used previously."),
        QStringLiteral("because it is too short (should be at least 8 characters)."),
        QStringLiteral("because it has identical characters together."),
        QStringLiteral("because it is too similar to your UserID."),
        QStringLiteral("because it is too long.")};
    return {
        QStringLiteral("GONet did not accept '") + password + QStringLiteral("' as a new password"),
        reasons.at(int(why))};
}

bool EdtLogon::sendLine(const QString& text) {
    return m_session.send(text + QLatin1Char('\r'));
}

bool EdtLogon::sendSecret(const QString& secret) {
    if (m_conceal) {
        m_conceal(secret);
    }
    return sendLine(secret);
}

EdtLogon::Seen EdtLogon::await(const QMap<QChar, QString>& general, const QList<QChar>& keys) {
    QStringList texts;
    QList<QChar> owner;
    for (const QChar key : keys) {
        for (const QString& text : edthost::value(general, key).split(QLatin1Char(';'))) {
            if (!text.trimmed().isEmpty()) {
                texts << text;
                owner << key;
            }
        }
    }
    if (texts.isEmpty()) {
        return {};
    }
    const TextSeen seen = m_session.waitFor(texts.join(QLatin1Char(';')), m_seconds);
    if (!seen) {
        return {QChar(), seen.lost, {}};
    }
    return {owner.at(seen.index), false, lastLine(seen.text)};
}

QString EdtLogon::restOfLine() {
    // The reason follows on the same line; a host that does not end it gives what it sent.
    const TextSeen seen = m_session.waitFor(QStringLiteral("\r;\n"), 2);
    return seen ? QString::fromLatin1(seen.text.chopped(1)) : QString();
}

LogonOutcome EdtLogon::logOn(const QString& doctorId) {
    QMap<QChar, QString> general;
    try {
        general = m_params.general();
    } catch (const DbError& e) {
        return hostRefused(QStringLiteral("the EDT settings could not be read: ") + e.message());
    }
    m_seconds = EdtParams::readTimeOut(general.value(EdtParams::kTimeOut))
                    .value_or(EdtParams::kDefaultTimeOut);
    if (!edthost::value(general, edthost::kNui).isEmpty()) {
        const LogonOutcome network = dataPac(general);
        if (network != LogonOutcome::LoggedOn) {
            return network;
        }
    }
    return goNet(doctorId, general);
}

LogonOutcome EdtLogon::dataPacFailed(const Seen& seen) {
    if (seen.key == edthost::kNuiRejected) {
        tell(EdtEvent::Error, kRejected);
        return LogonOutcome::DataPacRejected;
    }
    if (seen.key == edthost::kCallCleared) {
        QString reason = restOfLine().trimmed();
        while (reason.startsWith(QLatin1Char('-')) || reason.startsWith(QLatin1Char(':'))) {
            reason = reason.mid(1).trimmed();
        }
        if (reason.isEmpty()) {
            reason = QStringLiteral("the network cleared the call");
        }
        tell(EdtEvent::Error, QStringLiteral("Could not log on to Bell DataPac."));
        tell(EdtEvent::Error, QStringLiteral("Reason: ") + reason);
        return LogonOutcome::DataPacRefused;
    }
    tell(EdtEvent::Error, seen.lost ? kDisconnected : kTimeOut);
    return seen.lost ? LogonOutcome::DataPacDisconnected : LogonOutcome::DataPacTimeOut;
}

LogonOutcome EdtLogon::dataPac(const QMap<QChar, QString>& general) {
    using namespace edthost;
    m_session.step(QStringLiteral("Logging on to DataPac..."));
    const QString address = value(general, kAddress);
    QString problem;
    const std::optional<QString> password = m_params.generalSecret(kNuiPassword, &problem);
    if (address.isEmpty() || !password) {
        tell(EdtEvent::Error, QStringLiteral("Could not log on to Bell DataPac."));
        tell(
            EdtEvent::Error,
            QStringLiteral("Reason: ") +
                (address.isEmpty() ? QStringLiteral("no GONet DataPac Address is set in EDT Setup.")
                                   : problem));
        return LogonOutcome::DataPacRefused;
    }
    // Each step: what is sent, then what the network must answer to go on.
    struct Step {
        QString text;
        bool secret;
        QChar next;
    };
    const Step steps[] = {{QString(), false, kNuiPrompt},
                          {value(general, kNui), false, kNuiPasswordPrompt},
                          {*password, true, kAddressPrompt},
                          {address, false, kCallConnected}};
    for (const Step& step : steps) {
        const bool sent = step.text.isNull() ? m_session.send(QString::fromLatin1(kAttention))
                          : step.secret      ? sendSecret(step.text)
                                             : sendLine(step.text);
        if (!sent) {
            return dataPacFailed({QChar(), true, {}});
        }
        const Seen seen = await(general, {step.next, kNuiRejected, kCallCleared});
        if (seen.key != step.next) {
            return dataPacFailed(seen);
        }
    }
    return LogonOutcome::LoggedOn;
}

LogonOutcome EdtLogon::hostRefused(const QString& reason) {
    tell(EdtEvent::Error,
         QStringLiteral("Could not log on to GONet (") + reason + QStringLiteral(")."));
    tell(EdtEvent::Error, QStringLiteral("Check the GONet UserID and password,"));
    tell(EdtEvent::Error, QStringLiteral("or try again later."));
    return LogonOutcome::GoNetRefused;
}

LogonOutcome EdtLogon::goNet(const QString& doctorId, const QMap<QChar, QString>& general) {
    using namespace edthost;
    m_session.step(QStringLiteral("Logging on to GONet..."));
    m_session.step(QStringLiteral("Getting GONet login information from profile ") + doctorId);
    EdtLogin login;
    try {
        login = m_params.login(doctorId);
    } catch (const DbError& e) {
        return hostRefused(QStringLiteral("the login could not be read: ") + e.message());
    }
    if (login.userId.isEmpty() || !login.hasPassword) {
        return hostRefused(QStringLiteral("no UserID and password are set for ") + doctorId);
    }
    if (!login.password) {
        return hostRefused(login.passwordProblem);
    }
    const auto answered = [&](const Seen& seen, QChar wanted) -> std::optional<LogonOutcome> {
        if (seen.key == wanted) {
            return std::nullopt;
        }
        if (seen.lost) {
            return LogonOutcome::LineLost;
        }
        if (seen.key == kHostRefused) {
            return hostRefused((seen.line + restOfLine()).trimmed());
        }
        return hostRefused(QStringLiteral("GONet did not answer"));
    };
    if (auto failed = answered(await(general, {kUserPrompt, kHostRefused}), kUserPrompt)) {
        return *failed;
    }
    if (!sendLine(login.userId)) {
        return LogonOutcome::LineLost;
    }
    if (auto failed = answered(await(general, {kPasswordPrompt, kHostRefused}), kPasswordPrompt)) {
        return *failed;
    }
    if (!sendSecret(*login.password)) {
        return LogonOutcome::LineLost;
    }
    const Seen seen = await(general, {kHostMenu, kMustChange, kHostRefused});
    if (seen.key == kMustChange) {
        return changePassword(doctorId, general);
    }
    if (auto failed = answered(seen, kHostMenu)) {
        return *failed;
    }
    if (login.changeMarker.trimmed() == QLatin1String("1")) {
        // The password typed in EDT Setup has now been taken by the host.
        try {
            m_params.clearChangeMarker(doctorId);
        } catch (const DbError& e) {
            tell(EdtEvent::Error, e.message());
        }
    }
    return LogonOutcome::LoggedOn;
}

std::optional<QString> EdtLogon::typedTwice() {
    QStringList lines{QStringLiteral("Type the new GONet password:")};
    for (;;) {
        const std::optional<QString> first = m_asker.ask(lines);
        if (!first) {
            return std::nullopt;
        }
        const std::optional<QString> again =
            m_asker.ask({QStringLiteral("Type the new GONet password again:")});
        if (!again) {
            return std::nullopt;
        }
        QString problem;
        if (*first != *again) {
            problem = QStringLiteral("The two passwords typed are not the same.");
        } else if (first->isEmpty()) {
            problem = QStringLiteral("The new password cannot be empty.");
        } else if (first->toUtf8().size() > EdtPasswordSeal::kMaxPasswordBytes) {
            problem = QStringLiteral("The password can be at most %1 characters.")
                          .arg(EdtPasswordSeal::kMaxPasswordBytes);
        } else {
            return first;
        }
        m_prompter.tell(kChangeTitle, {problem}, Icon::Warning);
        lines = QStringList{problem, QStringLiteral("Type the new GONet password:")};
    }
}

LogonOutcome EdtLogon::changePassword(const QString& doctorId,
                                      const QMap<QChar, QString>& general) {
    using namespace edthost;
    const QStringList demand{QStringLiteral("The GONet password was accepted,"),
                             QStringLiteral("but you must change your password now.")};
    for (const QString& line : demand) {
        m_session.step(line);
    }
    m_prompter.tell(kChangeTitle, demand, Icon::Information);
    QList<QChar> answers{kVerifyPrompt, kPasswordChanged};
    answers += kRefusalKeys;
    for (;;) {
        const std::optional<QString> typed = typedTwice();
        if (!typed) {
            tell(EdtEvent::Error, QStringLiteral("The password change was cancelled."));
            return LogonOutcome::Cancelled;
        }
        Seen seen = await(general, {kNewPasswordPrompt});
        if (!seen.key.isNull()) {
            if (!sendSecret(*typed)) {
                return LogonOutcome::LineLost;
            }
            seen = await(general, answers);
            if (seen.key == kVerifyPrompt) {
                if (!sendSecret(*typed)) {
                    return LogonOutcome::LineLost;
                }
                seen = await(general, answers.mid(1));
            }
        }
        if (seen.lost) {
            return LogonOutcome::LineLost;
        }
        if (seen.key.isNull() || seen.key == kVerifyPrompt) {
            return hostRefused(QStringLiteral("the new password was not answered"));
        }
        if (seen.key == kPasswordChanged) {
            m_session.step(QStringLiteral("The new GONet password was accepted."));
            if (!m_params.storeNewPassword(doctorId, *typed)) {
                tell(EdtEvent::Error, QStringLiteral("The new password was not saved."));
            }
            if (await(general, {kHostMenu}).key != kHostMenu) {
                return hostRefused(QStringLiteral("GONet did not answer"));
            }
            return LogonOutcome::LoggedOn;
        }
        const QStringList refused =
            refusalMessage(*typed, PasswordRefusal(kRefusalKeys.indexOf(seen.key)));
        for (const QString& line : refused) {
            tell(EdtEvent::Error, line);
        }
        m_prompter.tell(kChangeTitle, refused, Icon::Warning);
    }
}

}  // namespace brimsett
