#include "claims/ClaimChecks.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "patients/HealthNumbers.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

namespace brimsett {

namespace {

bool billedToOffice(const ClaimEntry& claim) {
    const QChar type = claim.claimType();
    return type == QLatin1Char('D') || type == QLatin1Char('T');
}

std::optional<qint64> patientNumber(const ClaimEntry& claim) {
    const QString id = claim.patientId.trimmed();
    if (!hn::allDigits(id)) {
        return std::nullopt;
    }
    return id.toLongLong();
}

// An item as the duplicate test compares it: code without regard to case, diagnostic code,
// service date.
struct ItemKey {
    QString code;
    QString diag;
    QDate date;
    bool operator==(const ItemKey&) const = default;
};

}  // namespace

QDate ClaimChecks::sixMonthLimit() const {
    return m_clock.today().addMonths(-6);
}

bool ClaimChecks::CheckExpired(const ClaimEntry& claim) {
    const auto patient = patientNumber(claim);
    if (!patient) {
        return true;
    }
    const QDate expiry = readTypedDate(dateTextOf(
        m_db.scalar(QStringLiteral("Select ExpYear From patients Where PatientID=?"), {*patient},
                    QStringLiteral("CheckExpired: reading the health card's expiry"))));
    if (!expiry.isValid() || expiry >= m_clock.today()) {
        return true;
    }
    return m_prompter.confirm(
        QStringLiteral("Expired Health Card"),
        {QStringLiteral("This patient's health card expired on ") + datetext::slashed(expiry),
         kSureToSave});
}

QStringList ClaimChecks::dateWarnings(const ClaimEntry& claim) const {
    QStringList lines;
    const QDate today = m_clock.today();
    const QDate limit = sixMonthLimit();
    const bool office = billedToOffice(claim);
    for (const ItemEntry& row : claim.filledRows()) {
        const QDate date = readTypedDate(row.serviceDate);
        if (!date.isValid()) {
            continue;
        }
        const QString shown = QLatin1Char('\'') + datetext::slashed(date) + QLatin1Char('\'');
        if (date > today) {
            lines << QStringLiteral("The service date ") + shown +
                         QStringLiteral(" is a future date.");
        } else if (!office && date < limit) {
            // The ministry pays only claims that reach it within six months of the service.
            lines << QStringLiteral("The service date ") + shown +
                         QStringLiteral(" is more than 6 months ago.");
        }
    }
    return lines;
}

bool ClaimChecks::CheckDates(const ClaimEntry& claim) {
    const QStringList warnings = dateWarnings(claim);
    if (warnings.isEmpty()) {
        return true;
    }
    QStringList lines = warnings;
    lines << QString();
    if (!billedToOffice(claim)) {
        lines << QStringLiteral("If you submit this claim to OHIP it may be rejected.");
    }
    lines << kSureToSave;
    return m_prompter.confirm(QStringLiteral("Service Dates"), lines);
}

QStringList ClaimChecks::duplicateItems(const ClaimEntry& claim) const {
    const auto patient = patientNumber(claim);
    if (!patient) {
        return {};
    }
    QString statement = QStringLiteral(
        "Select I.ServiceCode, I.DiagCode, I.ServiceDate From items I, claims C"
        " Where I.ClaimID=C.ClaimID And C.PatientID=? And Upper(C.DoctorID)=? And C.PayProg=?");
    QVariantList values{*patient, claim.doctorId.trimmed().toUpper(), claim.payProg};
    // An edited claim is stored already; its own items are no earlier bill.
    if (claim.claimId) {
        statement += QStringLiteral(" And C.ClaimID<>?");
        values << *claim.claimId;
    }
    QSqlQuery q = m_db.exec(statement, values,
                            QStringLiteral("CheckDouble: reading the patient's earlier items"));
    QList<ItemKey> earlier;
    while (q.next()) {
        earlier << ItemKey{q.value(0).toString().trimmed().toUpper(),
                           q.value(1).toString().trimmed(), readTypedDate(dateTextOf(q.value(2)))};
    }

    QStringList lines;
    for (const ItemEntry& row : claim.filledRows()) {
        const ItemKey key{row.serviceCode.trimmed().toUpper(), row.diagCode.trimmed(),
                          readTypedDate(row.serviceDate)};
        if (key.date.isValid() && earlier.contains(key)) {
            lines << QStringLiteral("Service Code: ") + key.code +
                         QStringLiteral("  |  Diag. Code: ") + key.diag +
                         QStringLiteral("  |  Service Date: ") + datetext::slashed(key.date);
        }
    }
    return lines;
}

bool ClaimChecks::CheckDouble(const ClaimEntry& claim) {
    const QStringList items = duplicateItems(claim);
    if (items.isEmpty()) {
        return true;
    }
    return m_prompter.confirm(
        QStringLiteral("Duplicate items"),
        QStringList{QStringLiteral("The items below have already"),
                    QStringLiteral("been billed for this patient:"), QString()} +
            items +
            QStringList{QString(), QStringLiteral("Are you sure you want to submit it again?")});
}

}  // namespace brimsett
