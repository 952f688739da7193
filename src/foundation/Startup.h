#pragma once

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/Money.h"
#include "foundation/OfficePaths.h"

#include <QLocale>
#include <QStringList>

#include <memory>
#include <optional>

namespace brimsett {

class AccessLevels;
class Clock;
class Prompter;
class SettingsStore;

// The start-up sequence shared by the program and the command line: a database for a
// new office, passwords and settings, a restore left for this start, opening, the schema
// upgrade and the amount format. Messages go through the prompter; `done` lists what
// was done, for people reading the command line's output.
class Startup {
public:
    enum class Outcome { Ready, RestartNeeded, OpenFailed, UpgradeFailed, SetupFailed };

    struct Result {
        Outcome outcome = Outcome::SetupFailed;
        std::unique_ptr<Database> db;
        AppSettings settings;
        MoneyFormat money;
        std::optional<OpenFailure> openFailure;
        QString error;
        QStringList done;
    };

    Startup(OfficePaths paths, SettingsStore& store, AccessLevels& access, const Clock& clock,
            Prompter& prompter, QLocale locale = QLocale::system());

    Result run();

    // The single steps, in the order run() takes them.
    // A missing medical.mdb in the office folder becomes a copy of "bsblank.db", or a new
    // database of the current layout when there is no template.
    bool prepareDatabaseFile(Result& result);
    // "medical-r.mdb" replaces medical.mdb; the replaced one is kept under a dated name.
    void applyPendingRestore(Result& result);

    // "," when the locale writes one half in its currency format with a comma, else ".".
    static MoneyFormat moneyFormatOf(const QLocale& locale);

private:
    OfficePaths m_paths;
    SettingsStore& m_store;
    AccessLevels& m_access;
    const Clock& m_clock;
    Prompter& m_prompter;
    QLocale m_locale;
};

}  // namespace brimsett
