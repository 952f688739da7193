#pragma once

#include "claims/ClaimEntry.h"
#include "cli/CliCommand.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {

class CliSession;

// What `claim add` and `appt bill` share: a claim's items as typed at the desk, its header
// from the command's options, and the desk's own save.
namespace cli {

// One item as typed: the code as the desk types it (completed and priced when the claim is
// made), the rest of its row, and a fee that replaces the schedule's when given.
struct TypedItem {
    QString code;
    ItemEntry row;
    QString fee;
};

// "CODE:DIAG:NUMSERV:YYYY/MM/DD[:FEE]" each; false with the problem for the usage error.
bool readItems(const QStringList& texts, QList<TypedItem>& items, QString& problem);

// The claim header's options besides the doctor and the patient: --program, --third-party,
// --sli, --refdoc, --facility, --admit, --reflab, --regnum, --version.
QList<CliOption> claimHeaderOptions();

// Saves a claim for the patient with the doctor through the desk's save (its questions,
// checks and the visits it marks billed) and prints "Claim N Account A"; opens the database
// when the command has not. 0 when saved; otherwise the status, the reason told.
int saveClaim(CliSession& session, const CliArgs& options, qint64 patientId,
              const QString& doctorId, const QList<TypedItem>& items);

}  // namespace cli

}  // namespace brimsett
