#pragma once

#include <QDate>
#include <QString>
#include <QVariant>

class QSqlRecord;

namespace brimsett {

// What the patient screen says about a date or a number it cannot read.
inline constexpr const char* kInvalidDate = "Invalid Date.";
inline constexpr const char* kInvalidNumber = "Invalid number.";

// A patient as the screen holds it: every `Patients` column, each as the text the user
// typed (messages quote that text back), `Flag` as a flag.
//
// Dates are shown "YYYY/MM/DD". A typed date is also read in the forms "YYYYMMDD" and
// "YYYY-MM-DD" (see readTypedDate); nothing else is a date.
//
// The card-validation columns (`BatchID`, `HNCheckDate`, `Response`, `Status`) and the lab link
// (`HL7PatID`) are written by other parts of the program. They are loaded so that the screen
// can show them, but a save never writes them: editing a patient must not blank a card answer.
struct PatientEntry {
    QString patientId;  // empty for a new patient the program numbers itself
    QString healthNum;
    QString versionCode;
    QString expYear;  // card expiry date
    QString fName;
    QString lName;
    QString dob;
    QString sex;
    QString address;
    QString city;
    QString province;
    QString postalCode;
    QString country;
    QString hPhone;
    QString wPhone;
    QString refDoc;
    QString famDoc;
    QString facilityNum;
    QString admitDate;
    QString notes;
    bool flag = false;

    // Shown only; never written from here.
    QString batchId;
    QString hnCheckDate;
    QString response;
    QString status;
    QString hl7PatId;

    // A row of `Patients` (any column order, names compared without regard to case); NULL
    // reads as empty text, stored dates as "YYYY/MM/DD".
    static PatientEntry fromRecord(const QSqlRecord& record);

    // "LName, FName" when lastNameFirst (switch 8), otherwise "FName LName"; a missing part
    // leaves no stray comma or blank.
    QString displayName(bool lastNameFirst) const;

    // Every field compared as text: the "no changes" test of a save.
    bool operator==(const PatientEntry& other) const = default;
};

// A typed date in the form "YYYY/MM/DD", "YYYYMMDD" or "YYYY-MM-DD" (blanks around it
// ignored); an invalid QDate for anything else, including impossible dates like 2023/02/30.
QDate readTypedDate(const QString& text);

// A stored date value (QDate, QDateTime or ISO text) as the screen shows it, "YYYY/MM/DD";
// empty for NULL. A stored text that is not a date is returned as it stands.
QString dateTextOf(const QVariant& stored);

}  // namespace brimsett
