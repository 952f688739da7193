#include "appointments/AppointmentDetails.h"

#include "appointments/AppointmentTime.h"
#include "appointments/SlotTypes.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "patients/HealthNumbers.h"

#include <QSqlQuery>

namespace brimsett::appointments {

namespace {

std::optional<int> number(const QString& text) {
    bool ok = false;
    const int n = text.trimmed().toInt(&ok);
    return ok ? std::optional<int>(n) : std::nullopt;
}

struct PatientRow {
    QString province;
    QString healthNum;
    QString versionCode;
};

std::optional<PatientRow> patientRow(Database& db, qint64 patientId) {
    QSqlQuery q = db.exec(
        QStringLiteral("Select Province, HealthNum, VersionCode From patients Where PatientID=?"),
        {patientId}, QStringLiteral("reading patient %1").arg(patientId));
    if (!q.next()) {
        return std::nullopt;
    }
    return PatientRow{q.value(0).toString().trimmed(), q.value(1).toString().trimmed(),
                      q.value(2).toString().trimmed()};
}

}  // namespace

DetailsInput DetailsInput::of(const Appointment& a) {
    DetailsInput in;
    in.appId = a.appId;
    in.doctorId = a.doctorId;
    in.patientId = a.patientId ? QString::number(*a.patientId) : QString();
    in.patientName = a.patientName;
    in.patientPhone = a.patientPhone;
    in.date = datetext::slashed(a.appDate);
    in.time = TimeText(a.appTime).trimmed();
    in.length = QString::number(a.appLength);
    in.slotType = QString::number(a.slotType);
    in.status = a.status;
    in.notes = a.notes;
    in.serviceCode = a.serviceCode;
    in.diagCode = a.diagCode;
    in.menuPosition = a.menuPosition;
    in.deleted = a.deleted;
    return in;
}

CheckedDetails checkDetails(Database& db, const DetailsInput& in) {
    CheckedDetails out;
    Appointment& a = out.appointment;
    QStringList& problems = out.problems;
    a.appId = in.appId;
    // Doctor numbers are kept in capitals, so the book and the claims find the doctor's rows.
    a.doctorId = in.doctorId.trimmed().toUpper();
    if (a.doctorId.isEmpty()) {
        problems << QStringLiteral("Doctor ID must be entered.");
    }

    std::optional<PatientRow> patient;
    if (!in.patientId.trimmed().isEmpty()) {
        bool ok = false;
        const qint64 id = in.patientId.trimmed().toLongLong(&ok);
        patient = ok ? patientRow(db, id) : std::nullopt;
        if (patient) {
            a.patientId = id;
        } else {
            problems << QStringLiteral("Invalid Patient ID.");
        }
    }

    if (in.date.trimmed().isEmpty()) {
        problems << QStringLiteral("Date must be entered.");
    } else {
        a.appDate = datetext::fromSlashed(in.date.trimmed());
        if (!a.appDate.isValid()) {
            problems << QStringLiteral("Invalid date.");
        }
    }

    const std::optional<int> time = parseTimeText(in.time);
    if (!time) {
        problems << invalidTimeProblem(in.time);
    }
    const std::optional<int> length = number(in.length);
    if (!length) {
        problems << QStringLiteral("Invalid Length.");
    } else if (*length <= 0) {
        problems << QStringLiteral("Length must be greater than zero.");
    } else if (*length > kMinutesPerDay) {
        problems << QStringLiteral("Length cannot be greater than 1440.");
    } else if (time && *time + *length > kMinutesPerDay) {
        problems << QStringLiteral("The appointment must end by midnight.");
    }
    a.appTime = time.value_or(0);
    a.appLength = length.value_or(0);

    const std::optional<int> type = number(in.slotType);
    if (!type || !slotTypeById(db, *type)) {
        problems << QStringLiteral("Invalid type.");
    }
    a.slotType = type.value_or(0);
    if (in.status < 0 || in.status >= kStatusCount) {
        problems << QStringLiteral("Invalid status: %1 is not one of 0 to 9.").arg(in.status);
    }

    if (patient && patient->province == QLatin1String("ON")) {
        if (!hn::ontarioCheck(patient->healthNum)) {
            problems << QLatin1Char('\'') + patient->healthNum +
                            QStringLiteral("' is not a valid health card number.");
        } else {
            out.card = PatientCard{patient->healthNum, patient->versionCode, true};
        }
    }

    a.patientName = in.patientName.trimmed();
    a.patientPhone = in.patientPhone.trimmed();
    a.status = in.status;
    a.notes = in.notes;
    a.serviceCode = in.serviceCode.trimmed();
    a.diagCode = in.diagCode.trimmed();
    a.menuPosition = in.menuPosition;
    a.deleted = in.deleted;
    return out;
}

std::optional<PatientShown> shownPatient(Database& db, const QString& patientId) {
    bool ok = false;
    const qint64 id = patientId.trimmed().toLongLong(&ok);
    if (!ok) {
        return std::nullopt;
    }
    QSqlQuery q =
        db.exec(QStringLiteral("Select LName, FName, HPhone, DOB From patients Where PatientID=?"),
                {id}, QStringLiteral("reading patient %1").arg(id));
    if (!q.next()) {
        return std::nullopt;
    }
    return PatientShown{q.value(0).toString() + QStringLiteral(", ") + q.value(1).toString(),
                        q.value(2).toString(),
                        QDate::fromString(q.value(3).toString().left(10), Qt::ISODate)};
}

void fillFromPatient(Database& db, DetailsInput& input) {
    if (const std::optional<PatientShown> patient = shownPatient(db, input.patientId)) {
        // Cut to the columns' widths, as the book's name and phone are only for showing.
        input.patientName = patient->line.left(50);
        input.patientPhone = patient->hPhone.left(20);
    }
}

void chooseSlotType(DetailsInput& input, const SlotType& type) {
    input.slotType = QString::number(type.id);
    input.length = QString::number(type.defaultLength);
    input.serviceCode = type.defaultServiceCode;
    input.diagCode = type.defaultDiagCode;
}

std::optional<int> statusForLetter(QChar letter) {
    const int i = QLatin1String(kStatusLetters).indexOf(letter.toUpper());
    return i < 0 ? std::nullopt : std::optional<int>(i);
}

QStringList detailsStatusNames() {
    return {QStringLiteral("(None)"),    QStringLiteral("Booked"),    QStringLiteral("Confirmed"),
            QStringLiteral("Waiting"),   QStringLiteral("Seen"),      QStringLiteral("No Show"),
            QStringLiteral("Billed"),    QStringLiteral("Cancelled"), QStringLiteral("Rescheduled"),
            QStringLiteral("Requistion")};
}

QString detailsStatusName(int status) {
    return detailsStatusNames().value(status);
}

}  // namespace brimsett::appointments
