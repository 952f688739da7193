#pragma once

#include <QDate>
#include <QString>

namespace brimsett {

class Database;

namespace batchnumbers {

// "H", the month's letter ("A" for January to "L" for December), the billing number's stem,
// ".", and the counter's last three digits: provider 123456 in March with counter 7 gives
// "HC123456.007"; counter 1000 gives the extension "000" again.
QString claimFileName(const QDate& today, const QString& stem, int counter);

// The next batch number: today's "YYYYMMDD" and a four-digit sequence one past the newest
// batch's (9999 is followed by 0001), skipping numbers already taken. Inside the caller's
// transaction, so two preparations never share a number.
QString nextBatchId(Database& db, const QDate& today);

}  // namespace batchnumbers
}  // namespace brimsett
