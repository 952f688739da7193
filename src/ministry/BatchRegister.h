#pragma once

#include "claims/ClaimRecord.h"
#include "foundation/Money.h"

#include <QDate>
#include <QString>

#include <optional>
#include <vector>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// One `batches` row.
struct BatchRow {
    QString batchId;
    QString mohOffice;
    QString groupNum;
    QString providerNum;
    QString specCode;
    int claims = 0;      // H
    int reciprocal = 0;  // R
    int items = 0;       // T
    int records = 0;
    Money total;
    QString fileName;
    QDate submitDate;  // null until the file was handed over

    // The batch list's columns: "GroupNum-ProviderNum-SpecCode", "H/Records", and the
    // submission date as "YYYY/MM/DD" or "Not Submitted".
    QString doctorText() const;
    QString countsText() const;
    QString submittedText() const;
};

// The batches written so far, and what the "Submit Claims" screen and the transfer do to
// them. Each change is one transaction, logged after the commit.
class BatchRegister {
public:
    BatchRegister(Database& db, Prompter& prompter, const SqlLog& log);

    // Newest first.
    std::vector<BatchRow> list();
    std::optional<BatchRow> find(const QString& batchId);
    // The batches written into one claim file, in batch order.
    std::vector<BatchRow> ofFile(const QString& fileName);
    // The claims of a batch with their items, by claim and item number.
    std::vector<ClaimRecord> claimsOf(const QString& batchId);

    // "Are you sure?" (title "Delete Batch"), then the row goes; its claims keep their batch
    // number. False when refused.
    bool deleteRecord(const QString& batchId);

    // "Reverse Submission": after the question, every item of the batch's claims is priced
    // again from the schedule for its provider, the claims go back to pending and the row is
    // removed. False when refused.
    bool reverse(const QString& batchId);

    // The date the file was first handed over; none while it was never submitted.
    std::optional<QDate> submittedOn(const QString& fileName);
    // Records the hand-over of a file on every batch of it not yet submitted; returns how
    // many batches were marked.
    int markSubmitted(const QString& fileName, const QDate& day);

private:
    Database& m_db;
    Prompter& m_prompter;
    const SqlLog& m_log;
};

}  // namespace brimsett
