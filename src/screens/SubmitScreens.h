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

// Menu action 14 ("Submit Claims") opens frmPrepare: made on first use, brought forward
// after. The window belongs to parent, so closing the main menu closes it.
inline constexpr int kActionSubmitClaims = 14;

void registerSubmitScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                          SettingsStore& store, Prompter& prompter, const Clock& clock,
                          const SqlLog& log, const MoneyFormat& money, const QString& officeFolder,
                          QWidget* parent);

}  // namespace brimsett
