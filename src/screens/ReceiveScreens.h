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

// Menu action 15 ("Reconcile") opens frmReceive: made on first use, brought forward after.
// The window belongs to parent, so closing the main menu closes it.
inline constexpr int kActionReconcile = 15;

void registerReceiveScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                           SettingsStore& store, Prompter& prompter, const Clock& clock,
                           const SqlLog& log, const MoneyFormat& money, const QString& officeFolder,
                           QWidget* parent);

}  // namespace brimsett
