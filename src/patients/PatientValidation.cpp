#include "patients/PatientValidation.h"

#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "patients/HealthNumbers.h"

#include <QSqlQuery>

namespace brimsett {

namespace {

constexpr int kOnlyOntarioSwitch = 1;
constexpr int kEmptyFieldWarningsSwitch = 22;

bool isBillingNumber(const QString& text) {
    return text.size() == 6 && hn::allDigits(text);
}

}  // namespace

QStringList admitDateProblems(const QString& typed, const QDate& dob, const QDate& today) {
    if (typed.trimmed().isEmpty()) {
        return {};
    }
    const QDate admit = readTypedDate(typed);
    if (!admit.isValid()) {
        return {quotedInMessage(typed) + QStringLiteral(" is not a valid admit date.")};
    }
    QStringList problems;
    if (admit > today) {
        problems << QStringLiteral("The admit date cannot be a future date.");
    }
    if (dob.isValid() && admit < dob) {
        problems << QStringLiteral("The admit date cannot be earlier than the date of birth.");
    }
    return problems;
}

PatientValidation::PatientValidation(Database& db, const AppSettings& settings, Prompter& prompter,
                                     const Clock& clock)
    : m_db(db), m_settings(settings), m_prompter(prompter), m_clock(clock) {}

std::optional<QString> PatientValidation::duplicateOf(const QString& number,
                                                      const QString& province,
                                                      std::optional<qint64> ownId) {
    // Manitoba registration numbers are shared within a family.
    if (number.isEmpty() || province.toUpper() == QLatin1String("MB")) {
        return std::nullopt;
    }
    // Text and length both: some engines ignore trailing blanks when comparing text, and a
    // stored number with trailing blanks is not the same number.
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select PatientID, FName, LName From patients"
                       " Where HealthNum=? And Length(HealthNum)=? Order By PatientID"),
        {number, number.size()}, QStringLiteral("looking for another patient with the number"));
    while (q.next()) {
        if (ownId && q.value(0).toLongLong() == *ownId) {
            continue;
        }
        return q.value(1).toString() + QLatin1Char(' ') + q.value(2).toString();
    }
    return std::nullopt;
}

QStringList PatientValidation::healthNumberProblems(const PatientEntry& entry,
                                                    std::optional<qint64> ownId) {
    QStringList problems;
    if (!hn::checkByProvince(entry.healthNum, entry.province.toUpper(),
                             m_settings.option[kOnlyOntarioSwitch])) {
        problems << quotedInMessage(entry.healthNum) +
                        QStringLiteral(" is not a valid health card number.");
    }
    return problems + duplicateProblems(entry, ownId);
}

QStringList PatientValidation::duplicateProblems(const PatientEntry& entry,
                                                 std::optional<qint64> ownId) {
    const auto other = duplicateOf(entry.healthNum, entry.province, ownId);
    if (!other) {
        return {};
    }
    return {QStringLiteral("There is already an existing patient (") + *other + QLatin1Char(')'),
            QStringLiteral("with health card number ") + quotedInMessage(entry.healthNum) +
                QLatin1Char('.')};
}

QStringList PatientValidation::fieldProblems(const PatientEntry& entry) const {
    QStringList problems;
    const QDate today = m_clock.today();
    const QDate dob = readTypedDate(entry.dob);

    if (!entry.versionCode.isEmpty() && !hn::allLetters(entry.versionCode)) {
        problems << quotedInMessage(entry.versionCode) +
                        QStringLiteral(" is not a valid version code, must be letters only.");
    }
    if (!entry.expYear.isEmpty()) {
        const QDate expiry = readTypedDate(entry.expYear);
        if (!expiry.isValid()) {
            problems << quotedInMessage(entry.expYear) +
                            QStringLiteral(" is not a valid expiry date.");
        } else if (dob.isValid() && expiry < dob) {
            problems << QStringLiteral("The expiry date cannot be earlier than the date of birth.");
        }
    }
    if (!entry.dob.isEmpty()) {
        if (!dob.isValid()) {
            problems << quotedInMessage(entry.dob) +
                            QStringLiteral(" is not a valid date of birth.");
        } else if (dob > today) {
            problems << QStringLiteral("The date of birth cannot be a future date.");
        }
    }
    if (!entry.sex.isEmpty()) {
        const QString sex = entry.sex.toUpper();
        if (sex != QLatin1String("M") && sex != QLatin1String("F")) {
            problems << QStringLiteral("Please enter M for male or F for female.");
        }
    }
    if (!entry.refDoc.isEmpty() && !isBillingNumber(entry.refDoc)) {
        problems << QStringLiteral("Invalid referring doctor.");
    }
    if (!entry.famDoc.isEmpty() && !isBillingNumber(entry.famDoc)) {
        problems << QStringLiteral("Invalid family doctor.");
    }
    if (!entry.facilityNum.isEmpty()) {
        if (entry.facilityNum.size() != 4) {
            problems << QStringLiteral("Invalid Facility Number (must be 4 characters long).");
        } else if (!hn::allLettersOrDigits(entry.facilityNum)) {
            problems << QStringLiteral(
                "Invalid characters in Facility Number (must be alphanumeric).");
        }
    }
    problems << admitDateProblems(entry.admitDate, dob, today);
    return problems;
}

QStringList PatientValidation::emptyFields(const PatientEntry& entry) const {
    QStringList labels;
    if (!m_settings.option[kEmptyFieldWarningsSwitch]) {
        return labels;
    }
    if (entry.dob.isEmpty()) {
        labels << QStringLiteral("Date of Birth");
    }
    if (entry.sex.isEmpty()) {
        labels << QStringLiteral("Sex");
    }
    if (entry.refDoc.isEmpty()) {
        labels << QStringLiteral("Refr. Doctor");
    }
    return labels;
}

void PatientValidation::showErrors(const QStringList& problems) {
    m_prompter.tell(QLatin1String(kErrorsTitle),
                    QStringList{QLatin1String(kErrorsHeading), QString()} + problems,
                    Icon::Warning);
}

bool PatientValidation::check(const PatientEntry& entry, std::optional<qint64> ownId) {
    const QStringList numberProblems = healthNumberProblems(entry, ownId);
    if (!numberProblems.isEmpty()) {
        showErrors(numberProblems);
        return false;
    }
    if (!entry.healthNum.isEmpty() &&
        !hn::checkLengthAgainstTable(m_db, m_prompter, entry.healthNum, entry.province.toUpper())) {
        return false;
    }
    const QStringList problems = fieldProblems(entry);
    if (!problems.isEmpty()) {
        showErrors(problems);
        return false;
    }
    const QStringList empty = emptyFields(entry);
    if (empty.isEmpty()) {
        return true;
    }
    return m_prompter.confirm(
        QLatin1String(kEmptyFieldsTitle),
        QStringList{QStringLiteral("The following fields were left empty"), QString()} + empty +
            QStringList{QStringLiteral("Are you sure you want to save the changes?")});
}

}  // namespace brimsett
