#pragma once

#include <QString>
#include <QStringList>

namespace brimsett {
class Database;
class SettingsStore;
}  // namespace brimsett

// What the past-claims filters offer to choose from, and which filters the office shows.
namespace brimsett::pastclaims {

// The switches of section "Options" that show a filter or widen one ("1" is on).
struct ScreenOptions {
    bool status = false;         // "EnablePCStatus"
    bool remittance = false;     // "EnableRA"
    bool facility = false;       // "EnablePastFac"
    bool withoutDoctor = false;  // "OptPCNoDoc" (the options screen writes "OptPCnoDoc")
    static ScreenOptions read(const SettingsStore& store);
};

// Every batch number written so far, newest first.
QStringList batchChoices(Database& db);
// Every remittance file the claims were answered by: `RA` holds them joined by "!", so each
// is listed once, by name.
QStringList remittanceChoices(Database& db);
// Every facility an item names, by name.
QStringList facilityChoices(Database& db);

}  // namespace brimsett::pastclaims
