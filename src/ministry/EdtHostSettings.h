#pragma once

#include <QChar>
#include <QList>
#include <QMap>
#include <QString>

namespace brimsett {

// The packet network's and the ministry host's side of a dial-up logon, kept as general
// single-character settings of `edtparams` beside the telephone number and port: what is
// sent (the network user identifier, its password, the host's network address) and the
// texts awaited (prompts, acceptance and refusal wordings). Each text setting may name
// several texts separated by ";". A setting left empty means its default, so an office
// changes only what its service words differently.
namespace edthost {

constexpr QChar kNui = QLatin1Char('U');          // empty: a direct line, no DataPac
constexpr QChar kNuiPassword = QLatin1Char('W');  // kept sealed
constexpr QChar kAddress = QLatin1Char('A');      // GONet's DataPac address
constexpr QChar kNuiPrompt = QLatin1Char('B');    // the PAD asks for the NUI
constexpr QChar kNuiPasswordPrompt = QLatin1Char('D');
constexpr QChar kAddressPrompt = QLatin1Char('K');  // the PAD asks where to call
constexpr QChar kNuiRejected = QLatin1Char('R');
constexpr QChar kCallConnected = QLatin1Char('C');
constexpr QChar kCallCleared = QLatin1Char('L');  // followed by the network's reason
constexpr QChar kUserPrompt = QLatin1Char('I');
constexpr QChar kPasswordPrompt = QLatin1Char('J');
constexpr QChar kHostMenu = QLatin1Char('M');     // logged on: the host's main menu
constexpr QChar kHostRefused = QLatin1Char('F');  // the line holding it is the reason
constexpr QChar kMustChange = QLatin1Char('H');
constexpr QChar kNewPasswordPrompt = QLatin1Char('E');
constexpr QChar kVerifyPrompt = QLatin1Char('V');  // empty list: the host asks once
constexpr QChar kPasswordChanged = QLatin1Char('G');
// The host's wording of its five refusals of a new password, in the order of
// PasswordRefusal.
constexpr QChar kUsedBefore = QLatin1Char('1');
constexpr QChar kTooShort = QLatin1Char('2');
constexpr QChar kRepeated = QLatin1Char('3');
constexpr QChar kLikeUserId = QLatin1Char('4');
constexpr QChar kTooLong = QLatin1Char('5');

struct Setting {
    QChar key;
    QString label;     // as the setup screen names it
    QString fallback;  // used while nothing is stored
    bool secret = false;
};

// Every setting of the logon, in the setup screen's order.
const QList<Setting>& settings();
// The stored value, or the default when none is stored.
QString value(const QMap<QChar, QString>& general, QChar key);
// The setup screen's name of a general setting; empty when it is not one of these.
QString label(QChar key);

}  // namespace edthost

}  // namespace brimsett
