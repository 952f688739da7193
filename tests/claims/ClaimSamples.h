#pragma once

#include "claims/ClaimEntry.h"

namespace brimsett::test {

// A claim that passes every check on 2026/11/22 in an office that has patient 1 (health
// number 1234567897, card valid), provider JS and the code A007: one A007A item two days ago.
inline ClaimEntry ontarioClaim() {
    ClaimEntry c;
    c.doctorId = "JS";
    c.patientId = "1";
    c.healthNum = "1234567897";
    c.versionCode = "AB";
    c.fName = "Mary";
    c.lName = "Smith";
    c.dob = "1980/05/17";
    c.sex = "F";
    c.province = "ON";
    c.payProg = "HCP - P";
    c.rows = {{"A007A", "401", "1", "33.70", "2026/11/20"}};
    return c;
}

}  // namespace brimsett::test
