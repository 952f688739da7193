#pragma once

class QWidget;

namespace brimsett {

class AccessLevels;
class ActionRegistry;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;
struct MoneyFormat;

// Menu action 12 ("Manage Codes") opens the list of code tables, from which each table's
// editor opens: frmOHIPCodes, frmCodes, frmDiagCodes, frmExplCodes and the four quick-code
// tables; its last entry runs the "Third Party Payers" action. Every window is opened once and
// brought forward when asked for again; all belong to parent, so that closing the main menu closes
// them (each asking about unsaved edits). The fees are the billing staff's business: the list asks
// for the "Billing Secretary" password when passwords are in use.
void registerCodeScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                         const SqlLog& log, Prompter& prompter, const MoneyFormat& money,
                         const AccessLevels& access, QWidget* parent);

}  // namespace brimsett
