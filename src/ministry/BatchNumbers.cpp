#include "ministry/BatchNumbers.h"

#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "ministry/FixedWidth.h"

namespace brimsett::batchnumbers {

QString claimFileName(const QDate& today, const QString& stem, int counter) {
    const QChar month(64 + today.month());
    return QStringLiteral("H") + month + stem + QLatin1Char('.') +
           fixedwidth::zeroFilled(counter % 1000, 3);
}

QString nextBatchId(Database& db, const QDate& today) {
    // The newest batch is the one with the highest number: numbers begin with the date, and
    // within a day the sequence only grows until it wraps, when taken numbers are skipped
    // anyway. Insertion order is not something every engine keeps.
    const QString last = db.scalar(QStringLiteral("Select Max(BatchID) From batches"), {},
                                   QStringLiteral("reading batch numbers"))
                             .toString();
    int sequence = last.right(4).toInt();  // not a number: start again at 1
    const QString day = datetext::yyyymmdd(today);
    for (int tries = 0; tries < 10000; ++tries) {
        sequence = sequence + 1 >= 10000 ? 1 : sequence + 1;
        const QString candidate = day + fixedwidth::zeroFilled(sequence, 4);
        const QVariant taken =
            db.scalar(QStringLiteral("Select Count(*) From batches Where BatchID=?"), {candidate},
                      QStringLiteral("reading batch numbers"));
        if (taken.toInt() == 0) {
            return candidate;
        }
    }
    throw DbError(QStringLiteral("numbering a batch"), {},
                  QStringLiteral("every batch number of ") + datetext::slashed(today) +
                      QStringLiteral(" is taken"));
}

}  // namespace brimsett::batchnumbers
