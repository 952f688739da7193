// Times reconciling a remittance advice of 5,000 items against an office of about a million
// claim items (400,000 claims over a year, the last 10,000 awaiting payment, some of them
// split), with split partners looked up. Prints the time and statements per item, the same
// for reading the file a second time, and the plan of every matching statement with whether
// it uses an index.
#include "BenchClaims.h"
#include "BenchOffice.h"
#include "claims/ClaimRecord.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"
#include "ministry/Remittance.h"
#include "ministry/RemittanceQueries.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTextStream>

using namespace brimsett;

namespace {

constexpr int kClaims = 400000;
constexpr int kAwaiting = 10000;  // the newest claims, not yet answered
constexpr int kSplitEvery = 25;   // one awaiting claim in 25 has a part split off
constexpr int kRemittanceItems = 5000;

const bench::ClaimOffice kOffice({.claims = kClaims,
                                  .firstDay = QDate(2025, 11, 1),
                                  .days = 365,
                                  .awaiting = kAwaiting,
                                  .splitEvery = kSplitEvery});

QString account(int n) {
    return bench::ClaimOffice::account(n);
}

QString record(const QString& text) {
    return text.leftJustified(79, QLatin1Char(' '));
}

// The awaiting claims in order, paid in full mostly, some a little short (forgiven), some
// "I2", some refused; every fiftieth claim header carries an account the office never used.
QStringList remittanceLines() {
    QStringList lines{
        record(QStringLiteral("HR1V030BAAA27227800H720261115BENCH").leftJustified(59) +
               QStringLiteral("000000000 99999999"))};
    int written = 0;
    for (int n = kClaims - kAwaiting; written < kRemittanceItems; ++n) {
        const QString mohClaim = QStringLiteral("J%1").arg(n, 10, 10, QLatin1Char('0'));
        const QString acct = n % 50 == 0 ? QStringLiteral("X%1").arg(n) : account(n);
        lines << record(QStringLiteral("HR4") + mohClaim + QStringLiteral("1272278") +
                        QStringLiteral("00") + acct.leftJustified(8) + QStringLiteral("SMITH"));
        for (int i = 0; i < kOffice.itemsOf(n) && written < kRemittanceItems; ++i, ++written) {
            const int billed = kOffice.codeOf(n, i).cents;
            int paid = billed;
            QString expl;
            if (written % 7 == 0) {
                paid = billed * 97 / 100;
            } else if (written % 11 == 0) {
                paid = 0;
                expl = QStringLiteral("I2");
            } else if (written % 13 == 0) {
                paid = 0;
                expl = QStringLiteral("30");
            }
            lines << record(QStringLiteral("HR5") + mohClaim + QLatin1Char('1') +
                            kOffice.dayOf(n).toString(QStringLiteral("yyyyMMdd")) +
                            QStringLiteral("01") + QLatin1String(kOffice.codeOf(n, i).code) +
                            QLatin1Char(' ') +
                            QString::number(billed).rightJustified(6, QLatin1Char('0')) +
                            QString::number(paid).rightJustified(6, QLatin1Char('0')) +
                            QLatin1Char(' ') + expl);
        }
    }
    return lines;
}

void timeReading(Database& db, const SqlLog& log, const QStringList& lines, const char* what,
                 QTextStream& out) {
    remittance::Remittance r = remittance::read(lines);
    remittance::ReconcileOptions options;
    options.autoSplit = true;
    const qint64 before = db.statementCount();
    QElapsedTimer timer;
    timer.start();
    const remittance::ReconcileCounts c =
        remittance::reconcile(db, log, r, r.reference(QStringLiteral("PB272278.001")), options);
    const double ms = timer.nsecsElapsed() / 1e6;
    const qint64 statements = db.statementCount() - before;
    out << what << ": " << QString::number(ms, 'f', 0) << " ms, " << statements << " statements, "
        << QString::number(double(statements) / kRemittanceItems, 'f', 2) << " per item (" << c.paid
        << " paid, " << c.rejected << " rejected, " << c.unmatched << " unmatched, "
        << c.alreadyRead << " read before)\n";
    bench::step(out, QString::fromLatin1(what), ms, double(statements) / kRemittanceItems,
                QStringLiteral("item"));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    const QString folder = office.folder();
    Database* db = office.db.get();
    const qint64 built = office.fill([](Database& d) { kOffice.fill(d); });
    bench::ClaimOffice::tell(out, *db, built);

    const SqlLog log{OfficePaths(folder), true};
    const QStringList lines = remittanceLines();
    timeReading(*db, log, lines, "first reading", out);
    timeReading(*db, log, lines, "second reading", out);

    // A claim awaiting payment with its split part.
    const int n = kClaims - kAwaiting;
    const QVariantList both{kFirstClaimId + n, kFirstSplitClaimId + n};
    const auto explain = [&](const char* name, const remittance::query::Statement& s) {
        return bench::explain(*db, QString::fromLatin1(name), s.sql, out);
    };
    bool all = explain("claims of an account", remittance::query::claimsOfAccount(account(n)));
    all = explain("items of the account's claims", remittance::query::itemsOfClaims(both)) && all;
    return all ? 0 : 1;
}
