#include "claims/ClaimChecks.h"
#include "claims/ClaimFieldForms.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "patients/HealthNumbers.h"
#include "patients/PatientEntry.h"
#include "patients/PatientValidation.h"

#include <QSqlQuery>

#include <algorithm>

namespace brimsett {

namespace {

constexpr int kOnlyOntarioSwitch = 1;

// The widths of the claim file's fields: a longer value would be cut there, and anything but
// letters and digits would reach the ministry garbled.
constexpr int kHealthNumWidth = 10;
constexpr int kRegistrationWidth = 12;  // a reciprocal claim's own header
constexpr int kVersionCodeWidth = 2;
constexpr int kSliWidth = 4;
// The payer's own number is kept in the claim only, in a column of 30.
constexpr int kRegNumWidth = 30;

bool fitsField(const QString& text, int width) {
    return text.size() <= width && hn::allLettersOrDigits(text);
}

bool isType(QChar type, const char* letters) {
    return !type.isNull() && QLatin1String(letters).contains(type);
}

}  // namespace

ClaimChecks::ClaimChecks(Database& db, Prompter& prompter, const Clock& clock,
                         const AppSettings& settings, MoneyFormat money)
    : m_db(db), m_prompter(prompter), m_clock(clock), m_settings(settings), m_money(money) {}

QStringList ClaimChecks::claimProblems(const ClaimEntry& c) const {
    QStringList problems;
    const QChar type = c.claimType();
    const QDate today = m_clock.today();
    const QString patientId = c.patientId.trimmed();
    const QString number = c.healthNum.trimmed();
    const QString version = c.versionCode.trimmed();
    const QString sex = c.sex.trimmed().toUpper();
    const QString province = c.province.trimmed().toUpper();
    const QString refDoc = c.refDoc.trimmed();
    const QString facility = c.facilityNum.trimmed();
    const QString refLab = c.refLab.trimmed();
    const QString doctorId = c.doctorId.trimmed();
    const QString sli = c.sli.trimmed();
    const QString regNum = c.regNum.trimmed();

    // The claim copies the patient from the register, so the patient must be there.
    if (!hn::allDigits(patientId) || patientId.toLongLong() <= 0 ||
        m_db.scalar(QStringLiteral("Select Count(*) From patients Where PatientID=?"),
                    {patientId.toLongLong()}, QStringLiteral("CheckClaim: looking for the patient"))
                .toInt() == 0) {
        problems << QStringLiteral("Invalid Patient ID.");
    }
    if (type.isNull()) {
        problems << QStringLiteral("Claim type must be selected.");
    }
    if (!type.isNull() && !isType(type, "DT") && number.isEmpty()) {
        problems << QStringLiteral("You must enter a health card number.");
    }
    bool numberTold = false;
    if (type == QLatin1Char('H') && !number.isEmpty() && !hn::ontarioCheck(number)) {
        problems << QStringLiteral("You must enter a valid Ontario health card number.");
        numberTold = true;
    }
    if (type == QLatin1Char('R') && !number.isEmpty() &&
        !hn::checkByProvince(number, province, m_settings.option[kOnlyOntarioSwitch])) {
        problems << QStringLiteral("You must enter a valid health card number.");
        numberTold = true;
    }
    // What the checks above let through must still fit the claim file (WCB numbers, and a
    // province whose rule is lenient or unknown).
    const int numberWidth = type == QLatin1Char('R') ? kRegistrationWidth : kHealthNumWidth;
    if (isType(type, "HRW") && !number.isEmpty() && !numberTold &&
        !fitsField(number, numberWidth)) {
        problems << quotedInMessage(number) +
                        QStringLiteral(
                            " is not a valid health card number (it must be at most "
                            "%1 letters or digits).")
                            .arg(numberWidth);
    }
    if (!version.isEmpty() && !hn::allLetters(version)) {
        problems << QStringLiteral("Version code is invalid, must be letters only.");
    } else if (version.size() > kVersionCodeWidth) {
        problems << QStringLiteral("Version code is invalid, must be 2 letters at most.");
    }

    const QDate dob = readTypedDate(c.dob);
    if (c.dob.trimmed().isEmpty()) {
        problems << QStringLiteral("Date of Birth must be entered.");
    } else if (!dob.isValid()) {
        problems << quotedInMessage(c.dob) + QStringLiteral(" is not a valid date of birth.");
    } else if (dob > today) {
        problems << QStringLiteral("Date of birth cannot be a future date.");
    }
    if (sex.isEmpty()) {
        problems << QStringLiteral("The patient's sex must be entered.");
    } else if (sex != QLatin1String("M") && sex != QLatin1String("F")) {
        problems << QStringLiteral("Invalid sex ('") + c.sex.trimmed() +
                        QStringLiteral("'; must be 'M' or 'F').");
    }

    if (type == QLatin1Char('T')) {
        const QString payer = c.thirdPartyId.trimmed();
        if (payer.isEmpty()) {
            problems << QStringLiteral("Please select which third party to bill.");
        } else if (!hn::allDigits(payer) ||
                   m_db.scalar(QStringLiteral("Select Count(*) From thirdparty"
                                              " Where ThirdPartyID=?"),
                               {payer.toLongLong()},
                               QStringLiteral("CheckClaim: looking for the third party"))
                           .toInt() == 0) {
            problems << quotedInMessage(payer) + QStringLiteral(" is not a valid Third Party ID.");
        }
    }

    if (type == QLatin1Char('R')) {
        if (province.isEmpty()) {
            problems << QStringLiteral("The province must be entered. (RMB)");
        } else {
            QSqlQuery row =
                m_db.exec(QStringLiteral("Select ProvName, Format From provincodes"
                                         " Where Upper(ProvinCode)=?"),
                          {province}, QStringLiteral("CheckClaim: reading the province"));
            if (!row.next()) {
                problems << QStringLiteral("Invalid province (") + c.province.trimmed() +
                                QStringLiteral(").");
            } else {
                // A NULL length (any length) may come back as 0 from an integer column.
                const QString format =
                    row.isNull(1) ? QString() : row.value(1).toString().trimmed();
                if (!format.isEmpty() && !number.isEmpty() &&
                    format != QString::number(number.size())) {
                    problems << QStringLiteral(
                                    "Health card number (registration number) must be ") +
                                    format + QStringLiteral(" digits for ") +
                                    row.value(0).toString() + QLatin1Char('.');
                }
            }
        }
        if (c.fName.trimmed().isEmpty() || c.lName.trimmed().isEmpty()) {
            problems << QStringLiteral("The patient's full name must be entered. (RMB)");
        }
        if (sex.isEmpty()) {
            problems << QStringLiteral("The patient's sex must be entered. (RMB)");
        }
    }
    if (isType(type, "HW") && province != QLatin1String("ON")) {
        problems << QStringLiteral("The province must be ''ON'' for OHIP (HCP,WCB) claims.");
    }

    if (!refDoc.isEmpty()) {
        if (!claimform::isProviderNumber(refDoc)) {
            problems << quotedInMessage(refDoc) +
                            QStringLiteral(
                                " is not a valid referring doctor code (it must be a 6 "
                                "digit number).");
        } else if (claimform::isReservedProviderNumber(refDoc)) {
            problems << QStringLiteral("Invalid referring doctor number.");
        }
    }
    if (!facility.isEmpty() && !claimform::isFacilityNumber(facility)) {
        problems << quotedInMessage(facility) + QStringLiteral(" is not a valid facility number.");
    }
    problems << admitDateProblems(c.admitDate, dob, today);
    if (!refLab.isEmpty() && !claimform::isRefLabNumber(refLab)) {
        problems << quotedInMessage(refLab) +
                        QStringLiteral(" is not a valid referring lab number.");
    }
    if (regNum.size() > kRegNumWidth ||
        std::any_of(regNum.begin(), regNum.end(), [](QChar ch) { return !ch.isPrint(); })) {
        problems << quotedInMessage(regNum) +
                        QStringLiteral(
                            " is not a valid registration number (it must be at most 30 "
                            "characters).");
    }
    if (!sli.isEmpty() && !fitsField(sli, kSliWidth)) {
        problems << quotedInMessage(sli) +
                        QStringLiteral(
                            " is not a valid service location indicator (it must be at most 4 "
                            "letters or digits).");
    }

    if (doctorId.isEmpty()) {
        problems << QStringLiteral("The doctor's name must be entered");
    } else if (m_db.scalar(QStringLiteral("Select Count(*) From doctors Where Upper(DoctorID)=?"),
                           {doctorId.toUpper()},
                           QStringLiteral("CheckClaim: looking for the provider"))
                   .toInt() == 0) {
        problems << quotedInMessage(doctorId) + QStringLiteral(" is not a valid doctor ID.");
    }
    return problems;
}

bool ClaimChecks::CheckClaim(const ClaimEntry& claim) {
    const QStringList problems = claimProblems(claim);
    if (problems.isEmpty()) {
        return true;
    }
    return m_prompter.confirm(
        kErrorTitle, QStringList{kProblemsHeading} + problems + QStringList{QString(), kSaveAnyway},
        Icon::Critical);
}

bool ClaimChecks::checkBeforeSave(ClaimEntry& claim) {
    return CheckClaim(claim) && CheckRows(claim) && CheckExpired(claim) && CheckDates(claim);
}

}  // namespace brimsett
