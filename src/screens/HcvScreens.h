#pragma once

#include <QDate>
#include <QString>

#include <functional>

class QWidget;

namespace brimsett {

class ActionRegistry;
class Clock;
class Database;
class PatientScreens;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

namespace hcv {
class CardExchange;
}

// What the health card windows are made with.
struct HcvScreenParts {
    Database& db;
    AppSettings& settings;
    SettingsStore& store;
    const SqlLog& log;
    Prompter& prompter;
    const Clock& clock;
    hcv::CardExchange& exchange;  // the program's one real-time exchange (its polling flag)
    PatientScreens& patients;     // where a swiped card's patient is opened or started
    QString officeFolder;         // ends with "/"
    QWidget* parent;
};

// Opens "OBEC - Overnight Health Card Validation" on a doctor and a day (either may be empty).
using OpenCheckHealth = std::function<void(const QString& doctorId, const QDate& day)>;

// The health card windows of a running program:
//  - menu action 13 and the receiver's "SWIPE [text]" bring "Swipe Health Card" forward,
//    the text swiped when one is given (answer "OK", or the refusal's first line);
//  - "VSWIPE text" opens nothing and answers the card's fields
//    "HN|VC|Last|First|Middle|Expiry|Sex|DOB", or the refusal's first line.
// Returns the opener of the overnight validation window.
OpenCheckHealth registerHcvScreens(ActionRegistry& registry, const HcvScreenParts& parts);

}  // namespace brimsett
