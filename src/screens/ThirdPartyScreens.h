#pragma once

class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SqlLog;

// Menu action 39 ("Third Party Payers") opens frmThirdParty: made on first use, brought
// forward after. Claim entry runs the action to let the user add a payer.
inline constexpr int kActionThirdParty = 39;

void registerThirdPartyScreen(ActionRegistry& registry, Database& db, Prompter& prompter,
                              const SqlLog& log, QWidget* parent);

}  // namespace brimsett
