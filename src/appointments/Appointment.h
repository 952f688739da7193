#pragma once

#include <QDate>
#include <QString>

#include <optional>

class QSqlRecord;

namespace brimsett::appointments {

// One row of the book, with what the details show beside it: the slot type's name and
// colour and the registered patient's name, home phone and birth date.
struct Appointment {
    qint64 appId = 0;  // 0 until it is first saved
    std::optional<qint64> menuPosition;
    QString patientName;
    QString patientPhone;
    QDate appDate;
    int appTime = 0;    // minutes since midnight
    int appLength = 0;  // minutes
    int slotType = 0;
    QString notes;
    int status = 0;
    QString serviceCode;
    QString diagCode;
    std::optional<qint64> patientId;  // none for a caller not registered yet
    QString doctorId;
    bool deleted = false;

    // Shown, never written.
    QString slotName;
    int slotColor = 0;    // 0xRRGGBB, as SlotType::color
    QString patientLine;  // "Last, First"; empty without a registered patient
    QString patientHPhone;
    QDate patientDob;

    int endTime() const { return appTime + appLength; }
    // The registered patient's "Last, First", else the name the caller gave.
    QString whoText() const { return patientLine.isEmpty() ? patientName : patientLine; }

    // A row of the store's reading query (the appointment's columns, "SlotName", "LName",
    // "FName", "HPhone", "DOB"); the colour is not in it.
    static Appointment fromRecord(const QSqlRecord& record);
};

}  // namespace brimsett::appointments
