#include "ministry/EdtHostSettings.h"

namespace brimsett::edthost {

const QList<Setting>& settings() {
    // Defaults are the wordings a DataPac PAD and the GONet host show; an office whose
    // service words them otherwise changes them in EDT Setup.
    static const QList<Setting> all{
        {kNui, QStringLiteral("DataPac NUI"), QString()},
        {kNuiPassword, QStringLiteral("DataPac NUI Password"), QString(), true},
        {kAddress, QStringLiteral("GONet DataPac Address"), QString()},
        {kNuiPrompt, QStringLiteral("DataPac NUI Prompt"), QStringLiteral("NUI?")},
        {kNuiPasswordPrompt, QStringLiteral("DataPac Password Prompt"), QStringLiteral("PASSWORD")},
        {kAddressPrompt, QStringLiteral("DataPac Address Prompt"), QStringLiteral("ADDRESS")},
        {kNuiRejected, QStringLiteral("DataPac NUI Rejected"),
         QStringLiteral("NUI REJECTED;INVALID NUI")},
        {kCallConnected, QStringLiteral("DataPac Call Connected"),
         QStringLiteral("call connected")},
        {kCallCleared, QStringLiteral("DataPac Call Cleared"), QStringLiteral("call cleared")},
        {kUserPrompt, QStringLiteral("GONet UserID Prompt"), QStringLiteral("USERID")},
        {kPasswordPrompt, QStringLiteral("GONet Password Prompt"),
         QStringLiteral("ENTER PASSWORD")},
        {kHostMenu, QStringLiteral("GONet Main Menu"), QStringLiteral("MAIN MENU")},
        {kHostRefused, QStringLiteral("GONet Logon Refused"),
         QStringLiteral("INVALID;REVOKED;NOT AUTHORIZED")},
        {kMustChange, QStringLiteral("GONet Must Change"), QStringLiteral("MUST BE CHANGED")},
        {kNewPasswordPrompt, QStringLiteral("GONet New Password Prompt"),
         QStringLiteral("ENTER NEW PASSWORD")},
        {kVerifyPrompt, QStringLiteral("GONet Verify Prompt"),
         QStringLiteral("VERIFY NEW PASSWORD")},
        {kPasswordChanged, QStringLiteral("GONet Password Changed"),
         QStringLiteral("PASSWORD CHANGED")},
        {kUsedBefore, QStringLiteral("Refused: Used Before"), QStringLiteral("PREVIOUSLY USED")},
        {kTooShort, QStringLiteral("Refused: Too Short"), QStringLiteral("TOO SHORT")},
        {kRepeated, QStringLiteral("Refused: Repeated Characters"),
         QStringLiteral("IDENTICAL CHARACTERS")},
        {kLikeUserId, QStringLiteral("Refused: Like UserID"), QStringLiteral("SIMILAR TO USERID")},
        {kTooLong, QStringLiteral("Refused: Too Long"), QStringLiteral("TOO LONG")},
    };
    return all;
}

QString value(const QMap<QChar, QString>& general, QChar key) {
    const QString stored = general.value(key).trimmed();
    if (!stored.isEmpty()) {
        return stored;
    }
    for (const Setting& s : settings()) {
        if (s.key == key) {
            return s.fallback;
        }
    }
    return {};
}

QString label(QChar key) {
    for (const Setting& s : settings()) {
        if (s.key == key) {
            return s.label;
        }
    }
    return {};
}

}  // namespace brimsett::edthost
