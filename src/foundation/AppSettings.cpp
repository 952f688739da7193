#include "foundation/AppSettings.h"

#include "foundation/Clock.h"
#include "foundation/DateText.h"

#include <algorithm>
#include <variant>

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

// One stored key and the member that holds it. The default of every key is the member's
// value in a default-constructed AppSettings, so each default is written down once.
struct Binding {
    const char* section;
    const char* key;
    std::variant<QString AppSettings::*, int AppSettings::*, bool AppSettings::*,
                 double AppSettings::*>
        member;
    bool multiLine = false;
};

// Groups in the order they are saved.
const Binding kBackup[] = {
    {"Backup", "BackupPath", &AppSettings::backupPath},
    {"Backup", "RestorePath", &AppSettings::restorePath},
};

const Binding kAppointment[] = {
    {"Appointment", "TimeSlot", &AppSettings::timeSlot},
    {"Appointment", "HourStart", &AppSettings::hourStart},
    {"Appointment", "HourEnd", &AppSettings::hourEnd},
    {"Appointment", "PrintOnlyApps", &AppSettings::appPrintOnlyApps},
    {"Appointment", "PrintColor", &AppSettings::appPrintColor},
    {"Appointment", "PrintOptions", &AppSettings::appPrintOptions},
    {"Appointment", "AppSortOrder", &AppSettings::appSortOrder},
    {"Appointment", "ColumnServCode", &AppSettings::columnServCode},
    {"Appointment", "ColumnDiagCode", &AppSettings::columnDiagCode},
    {"Appointment", "AlwaysAskTime", &AppSettings::alwaysAskTime},
    {"Appointment", "DontPrintOutside", &AppSettings::dontPrintOutside},
    {"Appointment", "LineHeight", &AppSettings::appLineHeight},
    {"Appointment", "DailyCalendar", &AppSettings::dailyCalendar},
    {"Appointment", "SevenDayWeek", &AppSettings::sevenDayWeek},
};

const Binding kPrint[] = {
    {"Print", "FontName", &AppSettings::printFontName},
    {"Print", "FontSize", &AppSettings::printFontSize},
    {"Print", "HeaderFontSize", &AppSettings::printHeaderFontSize},
    {"Print", "PrintColor", &AppSettings::printColor},
    {"Print", "LineHeight", &AppSettings::printLineHeight},
    {"Print", "SkipHeaderLines", &AppSettings::printSkipHeaderLines},
};

// After the 28 switches.
const Binding kOptionsHead[] = {
    {"Options", "NextIDUnder", &AppSettings::nextIDUnder},
    {"Options", "InvoiceMessage", &AppSettings::invoiceMessage, true},
    {"Options", "ReferralFormMessage", &AppSettings::referralFormMessage, true},
    {"Options", "ReceiptMessage", &AppSettings::receiptMessage, true},
    {"Options", "PrintInvoice", &AppSettings::printInvoice},
    {"Options", "PrintReceipt", &AppSettings::printReceipt},
    {"Options", "PrintLabelEnvelope", &AppSettings::printLabelEnvelope},
    {"Options", "PrintLabelChart", &AppSettings::printLabelChart},
    {"Options", "PrintLabelCount", &AppSettings::printLabelCount},
};

// After the chart label switches.
const Binding kOptionsTail[] = {
    {"Options", "PrinterPort", &AppSettings::printerPort},
    {"Options", "WideOn", &AppSettings::wideOn},
    {"Options", "WideOff", &AppSettings::wideOff},
    {"Options", "BoldOn", &AppSettings::boldOn},
    {"Options", "BoldOff", &AppSettings::boldOff},
    {"Options", "Track0", &AppSettings::track0},
    {"Options", "MenuFont", &AppSettings::menuFont},
    {"Options", "MenuSize", &AppSettings::menuSize},
    {"Options", "MenuSkip", &AppSettings::menuSkip},
};

const Binding kGeneralKeys[] = {
    {"General", "dbPath", &AppSettings::dbPath},
    {"General", "dbPPath", &AppSettings::dbPPath},
    {"General", "LastDoctor", &AppSettings::lastDoctor},
    {"General", "LastSLI", &AppSettings::lastSLI},
    {"General", "LastDoctorReconcile", &AppSettings::lastDoctorReconcile},
    {"General", "LastDoctorPTC", &AppSettings::lastDoctorPTC},
    {"General", "LastDoctorApp", &AppSettings::lastDoctorApp},
    {"General", "SubmitMethod", &AppSettings::submitMethod},
    {"General", "EDTPasswordReminder", &AppSettings::edtPasswordReminder},
    {"General", "DiskIDCounter", &AppSettings::diskIDCounter},
};

template <std::size_t N>
void readGroup(const SettingsStore& store, AppSettings& s, const Binding (&group)[N]) {
    for (const Binding& b : group) {
        const QString section = QString::fromLatin1(b.section);
        const QString key = QString::fromLatin1(b.key);
        std::visit(
            [&](auto member) {
                auto& value = s.*member;
                using T = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<T, QString>) {
                    value = b.multiLine ? store.readLines(section, key, value)
                                        : store.get(section, key, value);
                } else if constexpr (std::is_same_v<T, bool>) {
                    value = store.readFlag(section, key, value ? kOn : QStringLiteral("0"));
                } else if constexpr (std::is_same_v<T, int>) {
                    value = store.readNumber(section, key, QString::number(value));
                } else {
                    value = store.readReal(section, key, QString::number(value));
                }
            },
            b.member);
    }
}

template <std::size_t N>
void writeGroup(SettingsStore& store, const AppSettings& s, const Binding (&group)[N]) {
    for (const Binding& b : group) {
        const QString section = QString::fromLatin1(b.section);
        const QString key = QString::fromLatin1(b.key);
        std::visit(
            [&](auto member) {
                const auto& value = s.*member;
                using T = std::decay_t<decltype(value)>;
                if constexpr (std::is_same_v<T, QString>) {
                    b.multiLine ? store.saveLines(section, key, value)
                                : store.save(section, key, value);
                } else if constexpr (std::is_same_v<T, bool>) {
                    store.saveFlag(section, key, value);
                } else if constexpr (std::is_same_v<T, int>) {
                    store.saveNumber(section, key, value);
                } else {
                    store.saveReal(section, key, value);
                }
            },
            b.member);
    }
}

template <std::size_t N>
void readSwitches(const SettingsStore& store, const QString& section, QString (*key)(int),
                  std::array<bool, N>& flags) {
    for (std::size_t n = 1; n < N; ++n) {
        flags[n] = store.readFlag(section, key(static_cast<int>(n)));
    }
}

template <std::size_t N>
void writeSwitches(SettingsStore& store, const QString& section, QString (*key)(int),
                   const std::array<bool, N>& flags) {
    for (std::size_t n = 1; n < N; ++n) {
        store.saveFlag(section, key(static_cast<int>(n)), flags[n]);
    }
}

}  // namespace

AppSettings AppSettings::loadAll(SettingsStore& store, const QString& programFolder) {
    AppSettings s;
    store.save(kGeneral, QStringLiteral("Open"), kOn);
    store.save(kGeneral, QStringLiteral("AppPath"), programFolder);
    s.appPath = programFolder;
    s.dbPath = programFolder;
    s.dbPPath = programFolder;

    readGroup(store, s, kGeneralKeys);
    if (s.lastDoctor.size() > 3) {
        s.lastDoctor.clear();  // longer than any office code: a stale value from elsewhere
    }

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
    readSwitches(store, kOptions, optionKey, s.option);
    readGroup(store, s, kOptionsHead);
    readSwitches(store, kOptions, labelKey, s.optionChartLabel);
    readGroup(store, s, kOptionsTail);

    readGroup(store, s, kBackup);
    readSwitches(store, QStringLiteral("SubmitDisk"), switchKey, s.submitDiskSwitch);
    readSwitches(store, QStringLiteral("ReceiveDisk"), switchKey, s.receiveDiskSwitch);
    readGroup(store, s, kAppointment);
    readGroup(store, s, kPrint);
    return s;
}

void AppSettings::saveOptions(SettingsStore& store) {
    writeGroup(store, *this, kBackup);
    writeSwitches(store, QStringLiteral("SubmitDisk"), switchKey, submitDiskSwitch);
    writeSwitches(store, QStringLiteral("ReceiveDisk"), switchKey, receiveDiskSwitch);
    writeGroup(store, *this, kAppointment);
    writeGroup(store, *this, kPrint);

    // Switch 26 is turned on once for every installation that has never stored it.
    if (store.get(kOptions, optionKey(26)).isEmpty()) {
        option[26] = true;
    }
    writeSwitches(store, kOptions, optionKey, option);
    writeGroup(store, *this, kOptionsHead);
    writeSwitches(store, kOptions, labelKey, optionChartLabel);
    writeGroup(store, *this, kOptionsTail);
    // The claim file counter is saved the moment a preparation takes a number; another
    // program on the same settings (the command line) may have taken one since this one
    // started, and writing an older count back would hand out a file name twice.
    diskIDCounter =
        std::max(diskIDCounter, store.readNumber(kGeneral, QStringLiteral("DiskIDCounter")));
    writeGroup(store, *this, kGeneralKeys);
}

void AppSettings::saveAll(SettingsStore& store, const Clock& clock) {
    saveOptions(store);
    store.save(kGeneral, QStringLiteral("RunDateLast"), datetext::slashed(clock.today()));
    store.save(kGeneral, QStringLiteral("Open"), QStringLiteral("0"));
    store.sync();
}

}  // namespace brimsett
