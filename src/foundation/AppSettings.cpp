#include "foundation/AppSettings.h"

#include "foundation/Clock.h"
#include "foundation/DateText.h"

namespace brimsett {

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kOptions = QStringLiteral("Options");
const QString kOn = QStringLiteral("1");

QString optionKey(int n) {
    return QStringLiteral("Option%1").arg(n);
}
QString labelKey(int n) {
    return QStringLiteral("OptionChartLabel%1").arg(n);
}
QString switchKey(int n) {
    return QStringLiteral("Switch%1").arg(n);
}

}  // namespace

AppSettings AppSettings::loadAll(SettingsStore& store, const QString& programFolder) {
    AppSettings s;
    store.save(kGeneral, QStringLiteral("Open"), kOn);
    store.save(kGeneral, QStringLiteral("AppPath"), programFolder);
    s.appPath = programFolder;

    s.dbPath = store.get(kGeneral, QStringLiteral("dbPath"), programFolder);
    s.dbPPath = store.get(kGeneral, QStringLiteral("dbPPath"), programFolder);
    s.lastDoctor = store.get(kGeneral, QStringLiteral("LastDoctor"));
    if (s.lastDoctor.size() > 3) {
        s.lastDoctor.clear();  // longer than any office code: a stale value from elsewhere
    }
    s.lastSLI = store.get(kGeneral, QStringLiteral("LastSLI"));
    s.lastDoctorReconcile = store.get(kGeneral, QStringLiteral("LastDoctorReconcile"));
    s.lastDoctorPTC = store.get(kGeneral, QStringLiteral("LastDoctorPTC"));
    s.lastDoctorApp = store.get(kGeneral, QStringLiteral("LastDoctorApp"));
    s.submitMethod =
        store.readNumber(kGeneral, QStringLiteral("SubmitMethod"), QStringLiteral("0"));
    s.edtPasswordReminder =
        store.readNumber(kGeneral, QStringLiteral("EDTPasswordReminder"), QStringLiteral("0"));
    s.diskIDCounter =
        store.readNumber(kGeneral, QStringLiteral("DiskIDCounter"), QStringLiteral("0"));

    // A store that has never held switch 1 is a first run: turn on the switches a new
    // office expects before reading them all.
    if (store.get(kOptions, optionKey(1), QStringLiteral("2")) == QLatin1String("2")) {
        for (int n : {3, 6, 8}) {
            store.save(kOptions, optionKey(n), kOn);
        }
        for (int n : {1, 2}) {
            store.save(kOptions, labelKey(n), kOn);
        }
    }
    for (int n = 1; n <= kSwitchCount; ++n) {
        s.option[n] = store.readFlag(kOptions, optionKey(n));
    }
    s.nextIDUnder = store.readNumber(kOptions, QStringLiteral("NextIDUnder"), QStringLiteral("0"));
    s.invoiceMessage = store.readLines(kOptions, QStringLiteral("InvoiceMessage"));
    s.referralFormMessage = store.readLines(kOptions, QStringLiteral("ReferralFormMessage"));
    s.receiptMessage = store.readLines(kOptions, QStringLiteral("ReceiptMessage"));
    s.printInvoice =
        store.readNumber(kOptions, QStringLiteral("PrintInvoice"), QStringLiteral("0"));
    s.printReceipt =
        store.readNumber(kOptions, QStringLiteral("PrintReceipt"), QStringLiteral("0"));
    s.printLabelEnvelope =
        store.readNumber(kOptions, QStringLiteral("PrintLabelEnvelope"), QStringLiteral("0"));
    s.printLabelChart =
        store.readNumber(kOptions, QStringLiteral("PrintLabelChart"), QStringLiteral("0"));
    s.printLabelCount =
        store.readNumber(kOptions, QStringLiteral("PrintLabelCount"), QStringLiteral("1"));
    for (int n = 1; n <= kLabelSwitchCount; ++n) {
        s.optionChartLabel[n] = store.readFlag(kOptions, labelKey(n));
    }
    s.printerPort = store.get(kOptions, QStringLiteral("PrinterPort"), QStringLiteral("LPT1"));
    s.wideOn = store.get(kOptions, QStringLiteral("WideOn"), QStringLiteral("#14"));
    s.wideOff = store.get(kOptions, QStringLiteral("WideOff"));
    s.boldOn = store.get(kOptions, QStringLiteral("BoldOn"), QStringLiteral("#27#69#27#71"));
    s.boldOff = store.get(kOptions, QStringLiteral("BoldOff"), QStringLiteral("#27#70#27#72"));
    s.track0 = store.get(kOptions, QStringLiteral("Track0"));
    s.menuFont = store.get(kOptions, QStringLiteral("MenuFont"), QStringLiteral("Arial"));
    s.menuSize = store.readNumber(kOptions, QStringLiteral("MenuSize"), QStringLiteral("16"));
    s.menuSkip = store.readNumber(kOptions, QStringLiteral("MenuSkip"), QStringLiteral("6"));

    s.backupPath = store.get(QStringLiteral("Backup"), QStringLiteral("BackupPath"));
    s.restorePath = store.get(QStringLiteral("Backup"), QStringLiteral("RestorePath"));
    for (int n = 1; n <= 2; ++n) {
        s.submitDiskSwitch[n] = store.readFlag(QStringLiteral("SubmitDisk"), switchKey(n));
    }
    for (int n = 1; n <= 4; ++n) {
        s.receiveDiskSwitch[n] = store.readFlag(QStringLiteral("ReceiveDisk"), switchKey(n));
    }

    const QString app = QStringLiteral("Appointment");
    s.timeSlot = store.readNumber(app, QStringLiteral("TimeSlot"), QStringLiteral("2"));
    s.hourStart = store.get(app, QStringLiteral("HourStart"), QStringLiteral("08:00 AM"));
    s.hourEnd = store.get(app, QStringLiteral("HourEnd"), QStringLiteral("05:00 PM"));
    s.appPrintOnlyApps = store.readFlag(app, QStringLiteral("PrintOnlyApps"), QStringLiteral("0"));
    s.appPrintColor = store.readFlag(app, QStringLiteral("PrintColor"), QStringLiteral("0"));
    s.appPrintOptions = store.readFlag(app, QStringLiteral("PrintOptions"), kOn);
    s.appSortOrder = store.readNumber(app, QStringLiteral("AppSortOrder"), QStringLiteral("0"));
    s.columnServCode = store.readFlag(app, QStringLiteral("ColumnServCode"), kOn);
    s.columnDiagCode = store.readFlag(app, QStringLiteral("ColumnDiagCode"), kOn);
    s.alwaysAskTime = store.readFlag(app, QStringLiteral("AlwaysAskTime"), QStringLiteral("0"));
    s.dontPrintOutside =
        store.readFlag(app, QStringLiteral("DontPrintOutside"), QStringLiteral("0"));
    s.appLineHeight = store.readReal(app, QStringLiteral("LineHeight"), QStringLiteral("1"));
    s.dailyCalendar = store.readFlag(app, QStringLiteral("DailyCalendar"), kOn);
    s.sevenDayWeek = store.readFlag(app, QStringLiteral("SevenDayWeek"), QStringLiteral("0"));

    const QString print = QStringLiteral("Print");
    s.printFontName = store.get(print, QStringLiteral("FontName"), QStringLiteral("Arial"));
    s.printFontSize = store.readNumber(print, QStringLiteral("FontSize"), QStringLiteral("12"));
    s.printHeaderFontSize =
        store.readNumber(print, QStringLiteral("HeaderFontSize"), QStringLiteral("22"));
    s.printColor = store.readNumber(print, QStringLiteral("PrintColor"), QStringLiteral("0"));
    s.printLineHeight = store.readReal(print, QStringLiteral("LineHeight"), QStringLiteral("1.2"));
    s.printSkipHeaderLines =
        store.readNumber(print, QStringLiteral("SkipHeaderLines"), QStringLiteral("0"));
    return s;
}

void AppSettings::saveOptions(SettingsStore& store) {
    const QString backup = QStringLiteral("Backup");
    store.save(backup, QStringLiteral("BackupPath"), backupPath);
    store.save(backup, QStringLiteral("RestorePath"), restorePath);
    for (int n = 1; n <= 2; ++n) {
        store.saveFlag(QStringLiteral("SubmitDisk"), switchKey(n), submitDiskSwitch[n]);
    }
    for (int n = 1; n <= 4; ++n) {
        store.saveFlag(QStringLiteral("ReceiveDisk"), switchKey(n), receiveDiskSwitch[n]);
    }

    const QString app = QStringLiteral("Appointment");
    store.saveNumber(app, QStringLiteral("TimeSlot"), timeSlot);
    store.save(app, QStringLiteral("HourStart"), hourStart);
    store.save(app, QStringLiteral("HourEnd"), hourEnd);
    store.saveFlag(app, QStringLiteral("PrintOnlyApps"), appPrintOnlyApps);
    store.saveFlag(app, QStringLiteral("PrintColor"), appPrintColor);
    store.saveFlag(app, QStringLiteral("PrintOptions"), appPrintOptions);
    store.saveNumber(app, QStringLiteral("AppSortOrder"), appSortOrder);
    store.saveFlag(app, QStringLiteral("ColumnServCode"), columnServCode);
    store.saveFlag(app, QStringLiteral("ColumnDiagCode"), columnDiagCode);
    store.saveFlag(app, QStringLiteral("AlwaysAskTime"), alwaysAskTime);
    store.saveFlag(app, QStringLiteral("DontPrintOutside"), dontPrintOutside);
    store.saveReal(app, QStringLiteral("LineHeight"), appLineHeight);
    store.saveFlag(app, QStringLiteral("DailyCalendar"), dailyCalendar);
    store.saveFlag(app, QStringLiteral("SevenDayWeek"), sevenDayWeek);

    const QString print = QStringLiteral("Print");
    store.save(print, QStringLiteral("FontName"), printFontName);
    store.saveNumber(print, QStringLiteral("FontSize"), printFontSize);
    store.saveNumber(print, QStringLiteral("HeaderFontSize"), printHeaderFontSize);
    store.saveNumber(print, QStringLiteral("PrintColor"), printColor);
    store.saveReal(print, QStringLiteral("LineHeight"), printLineHeight);
    store.saveNumber(print, QStringLiteral("SkipHeaderLines"), printSkipHeaderLines);

    // Switch 26 is turned on once for every installation that has never stored it.
    if (store.get(kOptions, optionKey(26)).isEmpty()) {
        option[26] = true;
    }
    for (int n = 1; n <= kSwitchCount; ++n) {
        store.saveFlag(kOptions, optionKey(n), option[n]);
    }
    store.saveNumber(kOptions, QStringLiteral("NextIDUnder"), nextIDUnder);
    store.saveLines(kOptions, QStringLiteral("InvoiceMessage"), invoiceMessage);
    store.saveLines(kOptions, QStringLiteral("ReferralFormMessage"), referralFormMessage);
    store.saveLines(kOptions, QStringLiteral("ReceiptMessage"), receiptMessage);
    store.saveNumber(kOptions, QStringLiteral("PrintInvoice"), printInvoice);
    store.saveNumber(kOptions, QStringLiteral("PrintReceipt"), printReceipt);
    store.saveNumber(kOptions, QStringLiteral("PrintLabelEnvelope"), printLabelEnvelope);
    store.saveNumber(kOptions, QStringLiteral("PrintLabelChart"), printLabelChart);
    store.saveNumber(kOptions, QStringLiteral("PrintLabelCount"), printLabelCount);
    for (int n = 1; n <= kLabelSwitchCount; ++n) {
        store.saveFlag(kOptions, labelKey(n), optionChartLabel[n]);
    }
    store.save(kOptions, QStringLiteral("PrinterPort"), printerPort);
    store.save(kOptions, QStringLiteral("WideOn"), wideOn);
    store.save(kOptions, QStringLiteral("WideOff"), wideOff);
    store.save(kOptions, QStringLiteral("BoldOn"), boldOn);
    store.save(kOptions, QStringLiteral("BoldOff"), boldOff);
    store.save(kOptions, QStringLiteral("Track0"), track0);
    store.save(kOptions, QStringLiteral("MenuFont"), menuFont);
    store.saveNumber(kOptions, QStringLiteral("MenuSize"), menuSize);
    store.saveNumber(kOptions, QStringLiteral("MenuSkip"), menuSkip);

    store.save(kGeneral, QStringLiteral("dbPath"), dbPath);
    store.save(kGeneral, QStringLiteral("dbPPath"), dbPPath);
    store.save(kGeneral, QStringLiteral("LastDoctor"), lastDoctor);
    store.save(kGeneral, QStringLiteral("LastSLI"), lastSLI);
    store.save(kGeneral, QStringLiteral("LastDoctorReconcile"), lastDoctorReconcile);
    store.save(kGeneral, QStringLiteral("LastDoctorPTC"), lastDoctorPTC);
    store.save(kGeneral, QStringLiteral("LastDoctorApp"), lastDoctorApp);
    store.saveNumber(kGeneral, QStringLiteral("SubmitMethod"), submitMethod);
    store.saveNumber(kGeneral, QStringLiteral("EDTPasswordReminder"), edtPasswordReminder);
    store.saveNumber(kGeneral, QStringLiteral("DiskIDCounter"), diskIDCounter);
}

void AppSettings::saveAll(SettingsStore& store, const Clock& clock) {
    saveOptions(store);
    store.save(kGeneral, QStringLiteral("RunDateLast"), datetext::slashed(clock.today()));
    store.save(kGeneral, QStringLiteral("Open"), QStringLiteral("0"));
    store.sync();
}

}  // namespace brimsett
