#pragma once

#include "appointments/Appointment.h"

#include <QChar>
#include <QStringList>

#include <functional>

namespace brimsett {
class Database;
}  // namespace brimsett

// The appointment details: the values as typed, their checks, the status letters and the
// slot type's defaults.
namespace brimsett::appointments {

struct SlotType;

// The details as typed: date "YYYY/MM/DD", time "H:MM am"/"H:MMpm", length in minutes.
struct DetailsInput {
    qint64 appId = 0;  // 0 for a new appointment
    QString doctorId;
    QString patientId;  // empty for a caller not registered yet
    QString patientName;
    QString patientPhone;
    QString date;
    QString time;
    QString length;
    QString slotType;
    int status = 0;
    QString notes;
    QString serviceCode;
    QString diagCode;
    std::optional<qint64> menuPosition;
    bool deleted = false;

    // The details of a stored appointment, as the screen shows them.
    static DetailsInput of(const Appointment& appointment);
};

// The registered patient's card, for the card check requested after a save.
struct PatientCard {
    QString healthNum;
    QString versionCode;
    bool ontario = false;
};

struct CheckedDetails {
    Appointment appointment;  // complete only when there are no problems
    QStringList problems;     // in the order they are checked, shown together
    std::optional<PatientCard> card;
};

// The checks before a save, in this order: doctor, patient number, date, time, length (and
// the end of the day), slot type, then the health number of an Ontario patient.
CheckedDetails checkDetails(Database& db, const DetailsInput& input);

// The registered patient beside the patient number: "Last, First", home phone, birth date.
struct PatientShown {
    QString line;
    QString hPhone;
    QDate dob;
};
// None when the text is not the number of a registered patient.
std::optional<PatientShown> shownPatient(Database& db, const QString& patientId);

// A registered patient's "Last, First" and home phone as the name and phone shown in the
// book; nothing changes when the number is not a registered patient's.
void fillFromPatient(Database& db, DetailsInput& input);

// Choosing a slot type puts its ID, default length and codes in the details, over any
// length typed before.
void chooseSlotType(DetailsInput& input, const SlotType& type);

// Where the card check of an Ontario patient plugs in: with polling on, `request` is asked
// for the patient's number and version code once the appointment is saved.
struct CardCheck {
    bool pollingOn = false;
    std::function<void(const QString& healthNum, const QString& versionCode)> request;
};

// The status box's letters: the letter at position n of " OCWSNB" picks status n ("O" for
// bOoked, B being Billed); the later statuses have no letter.
inline constexpr char kStatusLetters[] = " OCWSNB";
std::optional<int> statusForLetter(QChar letter);
// The details' own names, 0 to 9 ("Rescheduled", "Requistion"); none above 9.
QString detailsStatusName(int status);
QStringList detailsStatusNames();

}  // namespace brimsett::appointments
