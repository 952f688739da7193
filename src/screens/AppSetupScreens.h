#pragma once

class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// Menu action 40 ("Appointment Setup") opens the list of the book's setup windows: "Slot
// Types" (frmAppSetup), "Templates" (frmAppTimeSlots) and "Book Columns" (frmAppDoctors).
// Each is opened once and brought forward when asked again, where it was last left (the
// store's "Windows" section); all belong to parent. Templates offer the slot types as saved.
inline constexpr int kActionAppointmentSetup = 40;

void registerAppSetupScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, const SqlLog& log, Prompter& prompter,
                             QWidget* parent);

}  // namespace brimsett
