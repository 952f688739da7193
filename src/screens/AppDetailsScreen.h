#pragma once

#include "appointments/AppointmentDetails.h"

#include <functional>

class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
class frmAppDetails;
struct AppSettings;

// The appointment details of a running program and the receiver words about appointments:
//   "FROMAPPAPPOINTMENT id" brings frmAppDetails forward on that appointment: "OK", or
//                           "NOT FOUND"
//   "VAPP id"               opens nothing: "AppID|AppDate|Time|AppLength|DoctorID|PatientID|
//                           PatientName|PatientPhone|Status|SlotType", or "NOT FOUND"
// The window is opened once, belongs to parent, and opens where it was last left. The
// function returned gives that window, made or brought forward, to the appointment book.
// The window asks `card` for the card check of an Ontario patient it saves.
std::function<frmAppDetails*()> registerAppDetailsScreen(ActionRegistry& registry, Database& db,
                                                         AppSettings& settings,
                                                         SettingsStore& store, const SqlLog& log,
                                                         Prompter& prompter, QWidget* parent,
                                                         appointments::CardCheck card = {});

}  // namespace brimsett
