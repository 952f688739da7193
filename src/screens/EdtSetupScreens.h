#pragma once

#include <QString>

class QWidget;

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// Opens frmEDTSetup ("EDT Setup") over parent and returns when it is closed, on the given
// provider when one is named. officeFolder (ending in "/") holds the key file that seals
// the passwords.
void openEdtSetup(Database& db, AppSettings& settings, Prompter& prompter, const Clock& clock,
                  const SqlLog& log, const QString& officeFolder, QWidget* parent,
                  const QString& doctorId = {});

}  // namespace brimsett
