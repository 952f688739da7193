#pragma once

#include "claims/ClaimEntry.h"
#include "claims/ClaimRecord.h"
#include "foundation/Money.h"

namespace brimsett {

struct PatientEntry;

// Between the claim as typed on the screen and the claim as stored.
namespace claimentry {

// The stored form of a checked claim: texts trimmed, dates read as typed dates, numbers of
// services read as numbers (1 when empty), fees by the money format (an empty fee is NULL).
// Only the filled rows become items. `BatchID` and the numbers are the writer's business.
ClaimRecord toRecord(const ClaimEntry& entry, const MoneyFormat& money = {});

// A stored claim on the screen: dates "YYYY/MM/DD", fees "#,##0.00", claimId set.
ClaimEntry fromRecord(const ClaimRecord& claim, const MoneyFormat& money = {});

// The claim with the patient's fields copied from the register: number, health number,
// version code, names, birth date, sex, province, referring doctor, facility number and
// admission date.
void copyPatient(ClaimEntry& entry, const PatientEntry& patient);

}  // namespace claimentry

}  // namespace brimsett
