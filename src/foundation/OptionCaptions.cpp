#include "foundation/OptionCaptions.h"

#include "foundation/AppSettings.h"

#include <array>

namespace brimsett {

namespace {

constexpr std::array<const char*, AppSettings::kSwitchCount> kOptionCaptions = {
    "Disable non Ontario Health Number checking",
    "Jump to Admit Date field first",
    "Use \"LastName, FirstName\" format on printouts",
    "Include 'Service Date' in Enter sequence",
    "Go to Claims screen after saving a New Patient (NC HCV)",
    "When letters are typed in Patient ID, jump to Last Name",
    "Always use whole text match when searching",
    "Use \"LastName, FirstName\" order on screen",
    "Hide Health Card Number on Third Party Invoices",
    "Automatically open Handry window",
    "Go to Claims screen after saving changes to a Patient (NC HCV)",
    "Show last used billing codes as default",
    "Enable advanced options on Submit Claims window",
    "Jump to Doctor field first",
    "Disable duplicate item check",
    "Reconcile I2 to full submitted amount",
    "Hide Health Card Number on Direct Invoices",
    "Enable advanced dating options on Submit Claims window",
    "Limit Resubmission to creating account",
    "Enable <ENTER> Save when selecting Notes on the Appointment detail screen",
    "Disable Name replace after Swipe",
    "Enable Sex/DOB/RefDoc warnings when left empty",
    "Disable Admit Date/ Refering Doctor/ Facility Number Import",
    "Enable Search for Refering/Family Doctors",
    "Enable Flag Field",
    "Enable E083 and E082 to only effect one code.",
    "Disable Save Warning",
    "Save requires HCN only",
};

constexpr std::array<const char*, AppSettings::kLabelSwitchCount> kChartLabelCaptions = {
    "Print Referring Doctor",
    "Print Family Doctor",
    "Move &Address to bottom of label",
    "Include Full Referring Doctor info",
    "Name Labels: Don't print Patient ID",
    "Ref. Doc. Address: Include Phone Numbers",
    "Envelope is centered in printer",
    "Print Patient Name in ALL CAPS",
    "Ask me before printing",
};

}  // namespace

QString optionCaption(int n) {
    return n >= 1 && n <= static_cast<int>(kOptionCaptions.size())
               ? QString::fromLatin1(kOptionCaptions[n - 1])
               : QString();
}

QString chartLabelCaption(int n) {
    return n >= 1 && n <= static_cast<int>(kChartLabelCaptions.size())
               ? QString::fromLatin1(kChartLabelCaptions[n - 1])
               : QString();
}

}  // namespace brimsett
