#pragma once

class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// Menu action 12 ("Manage Codes") opens the list of code tables, from which each table's
// editor opens: frmOHIPCodes, frmCodes, frmDiagCodes, frmExplCodes and the four quick-code
// tables. Every window is opened once and brought forward when asked for again; all belong
// to parent, so that closing the main menu closes them (each asking about unsaved edits).
void registerCodeScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                         const SqlLog& log, Prompter& prompter, QWidget* parent);

}  // namespace brimsett
