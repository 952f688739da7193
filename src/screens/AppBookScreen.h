#pragma once

#include "screens/frmAppBook.h"

class QWidget;

namespace brimsett {

class ActionRegistry;
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// The appointment book of a running program:
//   menu action 3 ("Appointments") shows it;
//   menu action 4 ("Today's Appts") prints today's day sheets of the providers it shows;
//   "FINDAPPOINTMENT id" shows it on that appointment's day, the appointment selected:
//   "OK", or "NOT FOUND".
// The book is made hidden as soon as the event loop runs, so that the first F5 shows it at
// once; closing it only hides it. It belongs to parent and opens where it was last left.
// Its "Card Checks" open the overnight card validation through `overnight`.
void registerAppBookScreen(ActionRegistry& registry, Database& db, AppSettings& settings,
                           SettingsStore& store, const SqlLog& log, Prompter& prompter,
                           const Clock& clock, frmAppBook::DetailsWindow details,
                           frmAppBook::BillAppointment bill, QWidget* parent,
                           frmAppBook::OvernightCheck overnight = {});

}  // namespace brimsett
