#pragma once

#include "patients/PatientEntry.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
struct AppSettings;

// The admission date rules that a patient and a claim share: a typed date that reads, not in
// the future, not before the date of birth (when that reads). Empty text has no problems.
QStringList admitDateProblems(const QString& typed, const QDate& dob, const QDate& today);

// The checks a patient passes before it is saved. Nothing is written here.
//
// check() runs them in this order and talks to the user itself:
//  1. the province's health number rule (switch 1 limits it to Ontario numbers);
//  2. the duplicate health number test;
//  3. problems so far are shown ("Errors", exclamation icon) and stop the save;
//  4. the number's length against `provincodes`, which may ask; No stops the save quietly;
//  5. version code, expiry date, date of birth, sex, referring and family doctor, facility
//     number and admit date; their problems are shown the same way and stop the save;
//  6. with switch 22 on, empty date of birth, sex and referring doctor are listed in one
//     Yes/No question (default No); only Yes lets the save go on.
// An empty health number (possible only when switch 1 spares its province) is neither tested
// for duplicates nor against `provincodes`: there is no number to compare.
class PatientValidation {
public:
    static constexpr const char* kErrorsTitle = "Errors";
    static constexpr const char* kErrorsHeading =
        "Patient cannot be saved due to the following problem(s):";
    static constexpr const char* kEmptyFieldsTitle = "Empty Fields";

    PatientValidation(Database& db, const AppSettings& settings, Prompter& prompter,
                      const Clock& clock);

    // Whether the patient may be saved. ownId is the stored id of the patient being edited
    // (its own row is not a duplicate); none for a new patient.
    bool check(const PatientEntry& entry, std::optional<qint64> ownId);

    // The pieces of check(), each a list of message lines (one problem may take two lines).
    // Steps 1 and 2:
    QStringList healthNumberProblems(const PatientEntry& entry, std::optional<qint64> ownId);
    // Step 2 alone: the two lines naming the other patient, or none.
    QStringList duplicateProblems(const PatientEntry& entry, std::optional<qint64> ownId);
    // Step 5, in the order of the fields above:
    QStringList fieldProblems(const PatientEntry& entry) const;
    // The labels of step 6 ("Date of Birth", "Sex", "Refr. Doctor"); empty when switch 22 is off.
    QStringList emptyFields(const PatientEntry& entry) const;

    // The first other patient with exactly this number (text and length alike), as
    // "FName LName"; none when the number is free. Manitoba numbers are never duplicates.
    std::optional<QString> duplicateOf(const QString& number, const QString& province,
                                       std::optional<qint64> ownId);

private:
    void showErrors(const QStringList& problems);

    Database& m_db;
    const AppSettings& m_settings;
    Prompter& m_prompter;
    const Clock& m_clock;
};

}  // namespace brimsett
