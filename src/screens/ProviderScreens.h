#pragma once

#include "patients/ProviderCodeLists.h"

#include <QList>
#include <QObject>
#include <QString>

class QComboBox;
class QWidget;

namespace brimsett {

class ActionRegistry;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// Menu action 11 ("Providers") opens frmDoctors. The receiver words:
//   "DOCTOR id"       brings frmDoctors forward on that provider: "OK", or "NOT FOUND"
//   "APPDOCTOR id"    the same, asked by the appointment book about one of its doctors
//   "VDOC id"         opens nothing: "DoctorID|LName|FName|ProviderNum|GroupNum|SpecCode",
//                     or "NOT FOUND"
//   "NOTPROVIDER num" brings frmDoctorsOther forward on the referring doctor with that billing
//                     number, or on a new one with the number filled in: "OK"; a number that
//                     is not 6 digits opens nothing: "BAD NUMBER"
// Each screen is opened once and brought forward when asked again; both belong to parent.
// frmDoctors opens where it was last left (the store's "Windows" section).
void registerProviderScreens(ActionRegistry& registry, Database& db, AppSettings& settings,
                             SettingsStore& store, const SqlLog& log, Prompter& prompter,
                             QWidget* parent);

// What the provider screens share: code boxes and the Enter key.
namespace providerscreens {

// An editable box listing "code - description" that also takes a typed code.
void fillCodeBox(QComboBox* box, const QList<CodeChoice>& choices);
void setBoxCode(QComboBox* box, const QString& code);
QString boxCode(const QComboBox* box);

}  // namespace providerscreens
}  // namespace brimsett
