#pragma once

#include "claims/ClaimRecord.h"
#include "foundation/Money.h"
#include "ministry/BatchRegister.h"
#include "reports/Report.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace brimsett {

// The prints of the "Submit Claims" screen, built from what the batch register holds.
// Amounts are in the currency form; dates "YYYY/MM/DD".
namespace batchreports {

// "Submission Summary" of one claim file: "Date: " (the day printed) and "File Name: ", then
// one line per batch of the file ("Doctor", "Batch ID", "No. of Claims", "No. of Records",
// "Total") and a total line.
reports::Report submissionSummary(const QString& fileName, const std::vector<BatchRow>& batches,
                                  const QDate& printed, const MoneyFormat& money);
reports::Report submissionSummary(BatchRegister& batches, const QString& fileName,
                                  const QDate& printed, const MoneyFormat& money);

// "Claims submitted in file " name: the claims of one batch with their items, by claim and
// item, as the file carries them: "Direct" and "Third Party" claims that were swept into the
// batch but never written, and items without a service code, are left out, so the total is
// the batch's. The patient's name reads "Last, First" with switch 3, else "First Last".
reports::Report claimsSubmitted(const BatchRow& batch, const std::vector<ClaimRecord>& claims,
                                const QDate& printed, const MoneyFormat& money, bool lastNameFirst);
// None when the batch is no longer recorded.
std::optional<reports::Report> claimsSubmitted(BatchRegister& batches, const QString& batchId,
                                               const QDate& printed, const MoneyFormat& money,
                                               bool lastNameFirst);

}  // namespace batchreports
}  // namespace brimsett
