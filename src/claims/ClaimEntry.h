#pragma once

#include <QChar>
#include <QList>
#include <QString>
#include <optional>

namespace brimsett {

// One row of the item grid as the user typed it. Messages quote these texts back.
struct ItemEntry {
    QString serviceCode;  // full code with its suffix letter, "A007A"
    QString diagCode;
    QString numServ;
    QString fee;          // typed amount, "33.70" or "1,234.50"
    QString serviceDate;  // "YYYY/MM/DD" (also read as "YYYYMMDD" or "YYYY-MM-DD")

    // A row with nothing typed in any cell; the checks and the writer skip it.
    bool isEmpty() const;
    bool operator==(const ItemEntry&) const = default;
};

// The claim on the entry screen: the provider, the patient fields copied from the register
// (and possibly edited), the program and its extras, and the item grid. Everything is text as
// typed, so that the checks can quote a bad value; dates are read as patient dates are.
struct ClaimEntry {
    std::optional<qint64> claimId;  // set when the claim was opened from the database

    QString doctorId;
    QString patientId;
    QString healthNum;
    QString versionCode;
    QString fName;
    QString lName;
    QString dob;
    QString sex;
    QString province;

    QString payProg;       // stored form, "HCP - P" ... "Third Party"
    QString thirdPartyId;  // for "Third Party"
    QString refDoc;
    QString facilityNum;
    QString admitDate;
    QString refLab;
    QString regNum;
    QString sli;
    bool manualReview = false;
    bool acFlag = false;

    QList<ItemEntry> rows;

    // "H", "R", "W", "D" or "T" from the program; null when none is chosen.
    QChar claimType() const;
    // Rows with something typed in them, in grid order.
    QList<ItemEntry> filledRows() const;
    bool operator==(const ClaimEntry&) const = default;
};

}  // namespace brimsett
