#pragma once

#include <QString>

class QWidget;

namespace brimsett {

class ActionRegistry;
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;
struct MoneyFormat;

// The two screens of the exchange with the ministry, each made on first use and brought
// forward after; the windows belong to parent, so closing the main menu closes them.
// Menu action 14 ("Submit Claims") opens frmPrepare, action 15 ("Reconcile") frmReceive.
inline constexpr int kActionSubmitClaims = 14;
inline constexpr int kActionReconcile = 15;

void registerTransferScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, Prompter& prompter, const Clock& clock,
                             const SqlLog& log, const MoneyFormat& money,
                             const QString& officeFolder, QWidget* parent);

}  // namespace brimsett
