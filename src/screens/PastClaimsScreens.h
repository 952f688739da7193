#pragma once

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

// Menu action 6 ("Past Claims", on the print menu) opens frmPastClaims: made on first use and
// brought forward after; the window belongs to parent, so closing the main menu closes it.
// A claim opened from it goes to the claim entry window of menu action 1 ("Claims"), the
// one the desk already has open, if any.
inline constexpr int kActionPastClaims = 6;

void registerPastClaimsScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                              SettingsStore& store, Prompter& prompter, const Clock& clock,
                              const SqlLog& log, const MoneyFormat& money, QWidget* parent);

}  // namespace brimsett
