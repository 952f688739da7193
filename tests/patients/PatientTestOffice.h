#pragma once

#include "OfficeFixture.h"
#include "patients/PatientEntry.h"
#include "patients/PatientRegister.h"

namespace brimsett::test {

// The office of the patient register's tests.
struct PatientTestOffice : OfficeFixture {
    PatientRegister patients() { return PatientRegister(*db, settings, prompter, clock, log); }

    void addPatient(qint64 id, const QString& healthNum, const QString& province,
                    const QString& fName = QStringLiteral("Jane"),
                    const QString& lName = QStringLiteral("Doe")) {
        db->exec(
            QStringLiteral("Insert Into patients (PatientID, HealthNum, Province, FName, LName)"
                           " Values(?,?,?,?,?)"),
            {id, healthNum, province, fName, lName});
    }
};

// A patient that passes every check on 2026/11/22.
inline PatientEntry validPatient() {
    PatientEntry e;
    e.healthNum = QStringLiteral("1234567897");
    e.versionCode = QStringLiteral("AB");
    e.expYear = QStringLiteral("2030/01/31");
    e.fName = QStringLiteral("Mary");
    e.lName = QStringLiteral("Smith");
    e.dob = QStringLiteral("1980/05/17");
    e.sex = QStringLiteral("F");
    e.province = QStringLiteral("ON");
    e.refDoc = QStringLiteral("123456");
    e.famDoc = QStringLiteral("654321");
    e.facilityNum = QStringLiteral("1A2B");
    e.admitDate = QStringLiteral("2026/11/01");
    return e;
}

}  // namespace brimsett::test
