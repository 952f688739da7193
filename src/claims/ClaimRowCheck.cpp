#include "claims/ClaimChecks.h"
#include "claims/ClaimFieldForms.h"
#include "claims/DiagnosticCodes.h"
#include "claims/DirectCodes.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "patients/HealthNumbers.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

#include <optional>

namespace brimsett {

namespace {

constexpr int kNoAgeLimit = 999;

// An age range of a code; a missing end is open. The schedule writes "no limit" as a
// minimum of 0 and a maximum of 999; an empty or 0 maximum is read as open too, so that a
// hand-made row with blanks never refuses every patient.
struct AgeBand {
    int min = 0;
    std::optional<int> max;

    static AgeBand of(const QVariant& min, const QVariant& max) {
        AgeBand band;
        band.min = qMax(0, min.toInt());
        const int upper = max.toInt();
        if (upper > 0 && upper < kNoAgeLimit) {
            band.max = upper;
        }
        return band;
    }
    bool isOpen() const { return min == 0 && !max; }
    bool holds(int age) const { return age >= min && (!max || age <= *max); }
    QString text() const {
        if (min > 0 && max) {
            return QStringLiteral("%1 to %2").arg(min).arg(*max);
        }
        return max ? QStringLiteral("%1 or younger").arg(*max)
                   : QStringLiteral("%1 or older").arg(min);
    }
};

// Specialty codes are two digits, but a hand-edited schedule row may hold "8" for "08".
bool sameSpecialty(const QString& a, const QString& b) {
    if (hn::allDigits(a) && hn::allDigits(b)) {
        return a.toInt() == b.toInt();
    }
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

// Whole years at the date; a birthday counts from its own day.
int ageAt(const QDate& dob, const QDate& date) {
    int age = date.year() - dob.year();
    if (date.month() < dob.month() || (date.month() == dob.month() && date.day() < dob.day())) {
        --age;
    }
    return age;
}

}  // namespace

// The rule columns of a schedule code. The first age band is the schedule's own limit; the
// second and third, where the office has filled them, are further ages at which the code may
// be billed.
struct ClaimChecks::CodeRules {
    QString specCode;
    QString sex;
    AgeBand bands[3];
    bool reqDiagCode = false;
    bool reqRefDoctor = false;
    bool reqFacilityNum = false;
    bool reqAdmitDate = false;
    bool reqManualReview = false;

    bool ageAllowed(int age) const {
        if (bands[0].isOpen() || bands[0].holds(age)) {
            return true;
        }
        return (!bands[1].isOpen() && bands[1].holds(age)) ||
               (!bands[2].isOpen() && bands[2].holds(age));
    }
    QString agesText() const {
        QStringList ranges{bands[0].text()};
        for (int i = 1; i < 3; ++i) {
            if (!bands[i].isOpen()) {
                ranges << bands[i].text();
            }
        }
        return ranges.join(QLatin1String(" or "));
    }
};

QString ClaimChecks::doctorSpecialty(const QString& doctorId) const {
    return m_db
        .scalar(QStringLiteral("Select SpecCode From doctors Where Upper(DoctorID)=?"),
                {doctorId.trimmed().toUpper()},
                QStringLiteral("CheckRows: reading the provider's specialty"))
        .toString()
        .trimmed();
}

bool ClaimChecks::inDirectList(const QString& code) const {
    return directcodes::find(m_db, code,
                             QStringLiteral("CheckRows: looking for the direct service code"))
        .has_value();
}

std::optional<ClaimChecks::CodeRules> ClaimChecks::scheduleRules(const QString& code) const {
    if (!claimform::isScheduleItemCode(code)) {
        return std::nullopt;
    }
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select SpecCode, Sex, MinimumAge, MaximumAge, MinAge2, MaxAge2,"
                                 " MinAge3, MaxAge3, ReqDiagCode, ReqRefDoctor, ReqFacilityNum,"
                                 " ReqAdmitDate, ReqManualReview From servicecodes"
                                 " Where Upper(Trim(ServiceCode))=?"),
                  {code.left(4)}, QStringLiteral("CheckRows: reading the service code"));
    if (!q.next()) {
        return std::nullopt;
    }
    CodeRules r;
    r.specCode = q.value(0).toString().trimmed();
    r.sex = q.value(1).toString().trimmed().toUpper();
    for (int i = 0; i < 3; ++i) {
        r.bands[i] = AgeBand::of(q.value(2 + 2 * i), q.value(3 + 2 * i));
    }
    r.reqDiagCode = q.value(8).toInt() != 0;
    r.reqRefDoctor = q.value(9).toInt() != 0;
    r.reqFacilityNum = q.value(10).toInt() != 0;
    r.reqAdmitDate = q.value(11).toInt() != 0;
    r.reqManualReview = q.value(12).toInt() != 0;
    return r;
}

QStringList ClaimChecks::problemsOfRow(const ClaimEntry& claim, const ItemEntry& row,
                                       const QString& specialty, bool& manualReview) const {
    QStringList problems;
    const QChar type = claim.claimType();
    const bool direct = type == QLatin1Char('D') || type == QLatin1Char('T');
    const QString code = row.serviceCode.trimmed();
    const QString upperCode = code.toUpper();
    const QString diag = row.diagCode.trimmed();
    const QDate serviceDate = readTypedDate(row.serviceDate);

    std::optional<CodeRules> rules;
    if (direct) {
        if (!inDirectList(upperCode)) {
            problems << quotedInMessage(code) +
                            QStringLiteral(" is not a valid direct service code.");
        }
    } else {
        rules = scheduleRules(upperCode);
        if (!rules) {
            problems << quotedInMessage(code) + QStringLiteral(" is not a valid service code.");
        }
    }

    if (type == QLatin1Char('W') &&
        (upperCode.startsWith(QLatin1Char('T')) || upperCode.startsWith(QLatin1Char('V')))) {
        problems << QStringLiteral(
            "Service codes prefixed by T or V are excluded from WCB submissions.");
    }
    if (rules) {
        if (!rules->specCode.isEmpty() && !sameSpecialty(rules->specCode, specialty)) {
            problems << QStringLiteral("Service Code ") + code +
                            QStringLiteral(
                                " can only be billed by a provider with specialty code ") +
                            rules->specCode + QLatin1Char('.');
        }
        const QString sex = claim.sex.trimmed().toUpper();
        if ((rules->sex == QLatin1String("F") || rules->sex == QLatin1String("M")) &&
            sex != rules->sex) {
            problems << QStringLiteral("Service Code ") + code +
                            QStringLiteral(" can only be billed for ") +
                            (rules->sex == QLatin1String("F") ? QStringLiteral("female")
                                                              : QStringLiteral("male")) +
                            QStringLiteral(" patients.");
        }
        const QDate dob = readTypedDate(claim.dob);
        if (dob.isValid() && serviceDate.isValid() && !rules->ageAllowed(ageAt(dob, serviceDate))) {
            problems << QStringLiteral("Service Code ") + code +
                            QStringLiteral(" can only be billed for patients aged ") +
                            rules->agesText() + QLatin1Char('.');
        }
        if (rules->reqDiagCode && diag.isEmpty()) {
            problems << QStringLiteral("Service Code ") + code +
                            QStringLiteral(" requires a diagnostic code.");
        }
    }

    if (!diag.isEmpty()) {
        if (!claimform::isDiagnosticCode(diag)) {
            problems << quotedInMessage(diag) + QStringLiteral(" is not a valid diagnostic code.");
        } else if (!diagcodes::isListed(
                       m_db, diag, QStringLiteral("CheckRows: looking for the diagnostic code"))) {
            problems << quotedInMessage(diag) +
                            QStringLiteral(
                                " is not listed in Brimsett as a valid diagnostic code.");
        }
    }

    // Digits only: "1.5" or "+2" is no count of services.
    const QString numServ = row.numServ.trimmed();
    const int services = numServ.toInt();
    if (!hn::allDigits(numServ) || services < 1 || services > 99) {
        problems << quotedInMessage(numServ) +
                        QStringLiteral(" is invalid for number of services (must be 1-99).");
    }

    const QString feeText = row.fee.trimmed();
    if (feeText.isEmpty()) {
        problems << QStringLiteral("Fee must be entered.");
    } else if (const std::optional<Money> fee = Money::parse(feeText, m_money); !fee) {
        problems << quotedInMessage(feeText) + QStringLiteral(" is not a valid fee.");
    } else if (*fee <= Money()) {
        problems << QStringLiteral("Fee must be greater than zero.");
    } else if (*fee > Money::fromCents(500000)) {
        problems << QStringLiteral("Fee cannot be greater $5,000.");
    }

    if (row.serviceDate.trimmed().isEmpty()) {
        problems << QStringLiteral("Service date must be entered.");
    } else if (!serviceDate.isValid()) {
        problems << quotedInMessage(row.serviceDate.trimmed()) +
                        QStringLiteral(" is not a valid service date.");
    }

    if (rules) {
        if (rules->reqAdmitDate && !readTypedDate(claim.admitDate).isValid()) {
            problems << QStringLiteral("This service code requires an admit date.");
        }
        if (rules->reqFacilityNum && !claimform::isFacilityNumber(claim.facilityNum.trimmed())) {
            problems << QStringLiteral("This service code requires a 4-digit facility number.");
        }
        if (rules->reqRefDoctor && !claimform::isProviderNumber(claim.refDoc.trimmed())) {
            problems << QStringLiteral(
                "This service code requires a 6-digit referring doctor number.");
        }
        manualReview = manualReview || rules->reqManualReview;
    }
    return problems;
}

ClaimChecks::RowReview ClaimChecks::reviewRows(const ClaimEntry& claim) const {
    RowReview review;
    const QString specialty = doctorSpecialty(claim.doctorId);
    bool anyCode = false;
    for (qsizetype i = 0; i < claim.rows.size(); ++i) {
        const ItemEntry& row = claim.rows.at(i);
        if (row.isEmpty()) {
            continue;
        }
        anyCode = anyCode || !row.serviceCode.trimmed().isEmpty();
        const QString place = QStringLiteral("Row: %1 - ").arg(i + 1);
        for (const QString& problem : problemsOfRow(claim, row, specialty, review.manualReview)) {
            review.problems << place + problem;
        }
    }
    if (!anyCode) {
        review.problems << QStringLiteral("You must enter at least one service code.");
    }
    return review;
}

bool ClaimChecks::CheckRows(ClaimEntry& claim) {
    const RowReview review = reviewRows(claim);
    if (review.manualReview) {
        claim.manualReview = true;
    }
    if (review.problems.isEmpty()) {
        return true;
    }
    m_prompter.error(QStringList{kProblemsHeading} + review.problems);
    return false;
}

}  // namespace brimsett
