#pragma once

#include "ministry/BatchPreparation.h"
#include "ministry/RecordWriter.h"

#include <QByteArray>
#include <QDate>
#include <QStringList>

#include <functional>

namespace brimsett {

class Database;

// One batch of a claim file: the pending claims of a set of doctors, held back by date,
// written as records, then recorded in `batches` with the claims moved into it. Runs inside
// the preparation's transaction; the statements it would have the other computers replay
// are handed back for the log.
class ClaimFileBatch {
public:
    // The claim dates compared, as "YYYYMMDD": a claim later than cutOff or (when set)
    // earlier than start waits for a later file.
    struct Dates {
        PrepareRequest::DateBy by = PrepareRequest::DateBy::LatestService;
        QString cutOff;
        QString start;
    };
    // What the batch header and the `batches` row say of the billing number.
    struct Header {
        QString mohOffice;
        QString groupNum;
        QString providerNum;
        QString specCode;
    };
    struct Written {
        PreparedBatch batch;       // counts and total; no number yet
        QByteArray bytes;          // the batch's records
        QStringList withoutItems;  // lines for "HeadersNoItems.txt"
    };

    ClaimFileBatch(Database& db, std::function<void(int)> progress);

    // Holds back the claims outside the dates and writes the rest. The held-back claims stay
    // marked until restoreHeldBack().
    Written write(const QStringList& doctors, const Dates& dates, const QDate& today,
                  const Header& header);
    // Adds the `batches` row and moves the doctors' pending claims into the batch.
    void record(const PreparedBatch& batch, const Header& header, const QString& fileName,
                const QStringList& doctors, QStringList& logLines);
    // Puts the held-back claims back to pending.
    void restoreHeldBack(const QStringList& doctors);

private:
    void holdBack(const QStringList& doctors, const Dates& dates);

    Database& m_db;
    RecordWriter m_writer;
};

}  // namespace brimsett
