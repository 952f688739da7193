#pragma once

class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// The appointment details of a running program and the receiver words about appointments:
//   "FROMAPPAPPOINTMENT id" brings frmAppDetails forward on that appointment: "OK", or
//                           "NOT FOUND"
//   "VAPP id"               opens nothing: "AppID|AppDate|Time|AppLength|DoctorID|PatientID|
//                           PatientName|PatientPhone|Status|SlotType", or "NOT FOUND"
// The window is opened once, belongs to parent, and opens where it was last left.
void registerAppDetailsScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                              SettingsStore& store, const SqlLog& log, Prompter& prompter,
                              QWidget* parent);

}  // namespace brimsett
