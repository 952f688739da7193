#pragma once

#include "foundation/SettingsStore.h"

#include <QString>

#include <array>

namespace brimsett {

class Clock;

// Every setting that is loaded once at start-up and written back at shutdown.
// Member names follow the keys; defaults are those a store without any keys yields.
struct AppSettings {
    static constexpr int kSwitchCount = 28;
    static constexpr int kLabelSwitchCount = 9;

    // "General"
    QString appPath;
    QString dbPath;
    QString dbPPath;
    QString lastDoctor;
    QString lastSLI;
    QString lastDoctorReconcile;
    QString lastDoctorPTC;
    QString lastDoctorApp;
    int submitMethod = 0;
    int edtPasswordReminder = 0;
    int diskIDCounter = 0;

    // "Options": switches are numbered from 1; element 0 is unused.
    std::array<bool, kSwitchCount + 1> option{};
    int nextIDUnder = 0;
    QString invoiceMessage;
    QString referralFormMessage;
    QString receiptMessage;
    int printInvoice = 0;
    int printReceipt = 0;
    int printLabelEnvelope = 0;
    int printLabelChart = 0;
    int printLabelCount = 1;
    std::array<bool, kLabelSwitchCount + 1> optionChartLabel{};
    QString printerPort = QStringLiteral("LPT1");
    QString wideOn = QStringLiteral("#14");
    QString wideOff;
    QString boldOn = QStringLiteral("#27#69#27#71");
    QString boldOff = QStringLiteral("#27#70#27#72");
    QString track0;
    QString menuFont = QStringLiteral("Arial");
    int menuSize = 16;
    int menuSkip = 6;

    // "Backup", "SubmitDisk", "ReceiveDisk"
    QString backupPath;
    QString restorePath;
    std::array<bool, 3> submitDiskSwitch{};   // 1..2
    std::array<bool, 5> receiveDiskSwitch{};  // 1..4

    // "Appointment"
    int timeSlot = 2;
    QString hourStart = QStringLiteral("08:00 AM");
    QString hourEnd = QStringLiteral("05:00 PM");
    bool appPrintOnlyApps = false;
    bool appPrintColor = false;
    bool appPrintOptions = true;
    int appSortOrder = 0;
    bool columnServCode = true;
    bool columnDiagCode = true;
    bool alwaysAskTime = false;
    bool dontPrintOutside = false;
    double appLineHeight = 1.0;
    bool dailyCalendar = true;
    bool sevenDayWeek = false;

    // "Print"
    QString printFontName = QStringLiteral("Arial");
    int printFontSize = 12;
    int printHeaderFontSize = 22;
    int printColor = 0;
    double printLineHeight = 1.2;
    int printSkipHeaderLines = 0;

    bool sqlLogOn() const { return !track0.isEmpty(); }

    // Start-up: writes "Open" = "1" and "AppPath", applies the first-run defaults, then
    // reads every key. programFolder ends with "/".
    static AppSettings loadAll(SettingsStore& store, const QString& programFolder);
    // Shutdown (and the options screen): writes every key section by section, "RunDateLast"
    // from the clock, and "Open" = "0" last.
    void saveAll(SettingsStore& store, const Clock& clock);
    // The options screen's part of saving: everything but "Open" and "RunDateLast".
    void saveOptions(SettingsStore& store);
};

}  // namespace brimsett
