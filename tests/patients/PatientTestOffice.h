#pragma once

#include "TestSupport.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"
#include "patients/PatientEntry.h"
#include "patients/PatientRegister.h"

namespace brimsett::test {

// An office with a full database, default settings, a scripted prompter and a clock pinned
// to 2026/11/22, for the patient register's tests.
struct PatientTestOffice {
    TempOffice office;
    std::unique_ptr<Database> db = office.emptyDatabase();
    AppSettings settings;
    RecordingPrompter prompter;
    FixedClock clock{QDateTime(QDate(2026, 11, 22), QTime(10, 0))};
    SqlLog log{OfficePaths(office.folder()), false};

    PatientTestOffice() { schema::create(*db); }

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
