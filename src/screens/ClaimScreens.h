#pragma once

#include <functional>

class QWidget;

namespace brimsett {

namespace appointments {
struct BillingStart;
}

class ActionRegistry;
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;
struct MoneyFormat;

// Menu action 1 ("Claims") opens frmClaim: made on first use, brought forward after. The
// claim entry options are read from the store each time the window is made, so a change on
// the options screen shows the next time claims are opened. The window belongs to parent, so
// closing the main menu closes it (asking about unsaved changes). It opens where it was last
// left (the store's "Windows" section). Returns the way in for billing a visit from the
// appointment book: it opens or brings forward that same window and starts the visit's claim
// there (frmClaim::startFromAppointment), false when the desk stayed on the claim before.
std::function<bool(const appointments::BillingStart&)> registerClaimScreen(
    ActionRegistry& registry, Database& db, AppSettings& settings, SettingsStore& store,
    Prompter& prompter, const Clock& clock, const SqlLog& log, const MoneyFormat& money,
    QWidget* parent);

}  // namespace brimsett
