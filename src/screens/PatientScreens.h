#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QWidget;

namespace brimsett {

class ActionRegistry;
class Clock;
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
class frmPatients;
struct AppSettings;

// The patient window of a running program: menu action 2 and the receiver words that
// sibling programs send about patients.
//  - "PATIENT id": brings the patient window forward on that patient ("OK", or "NOT FOUND").
//  - "PATIENTFROMAPP id": the same from the appointment book; without an id (or 0) the
//    window comes forward on a new patient, for the booking of someone not yet registered.
//  - "VPAT id": opens nothing; answers "id|LName|FName|HealthNum|VersionCode|DOB|Sex" or
//    "NOT FOUND", so a sibling can show whom it is about to book.
class PatientScreens : public QObject {
    Q_OBJECT

public:
    // The window opens where it was last left (the store's "Windows" section).
    PatientScreens(Database& db, const AppSettings& settings, SettingsStore& store,
                   Prompter& prompter, const Clock& clock, const SqlLog& log, QWidget* owner);
    ~PatientScreens() override;

    void registerIn(ActionRegistry& registry);
    // The one patient window, made on first use and brought forward.
    frmPatients& show();

    // The window's "Check Card" asks this (none: the button is not shown).
    void setCardCheck(
        std::function<void(const QString& healthNum, const QString& versionCode)> check);
    // An answer was stored for the patient of this health number.
    void cardAnswered(const QString& healthNum);

private:
    QString openOn(const QString& argument, bool newWhenEmpty);
    QString describe(const QString& argument);

    Database& m_db;
    const AppSettings& m_settings;
    SettingsStore& m_store;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    QWidget* m_owner;
    QPointer<frmPatients> m_window;
    std::function<void(const QString&, const QString&)> m_cardCheck;
};

}  // namespace brimsett
