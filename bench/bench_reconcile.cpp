// Times reconciling a remittance advice of 5,000 items against an office of about a million
// claim items (400,000 claims over a year, the last 10,000 awaiting payment, some of them
// split), with split partners looked up. Prints the time and statements per item, the same
// for reading the file a second time, and the plan of every matching statement with whether
// it uses an index.
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
const QDate kFirstDay(2025, 11, 1);

struct Code {
    const char* code;
    int cents;
};
constexpr Code kCodes[] = {{"A007A", 3370}, {"E083A", 1011}, {"G010A", 354}};

QString account(int n) {
    return QStringLiteral("%1").arg(n + 1, 8, 10, QLatin1Char('0'));
}
QDate dayOf(int n) {
    return kFirstDay.addDays(n % 365);
}
int itemsOf(int n) {
    return n % 2 ? 3 : 2;
}

void fill(Database& db) {
    Transaction tx(db);
    db.exec(
        QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, "
                       "MOHOffice) Values ('D1','0000','272278','00','J')"));
    bench::Rows claims(db,
                       QStringLiteral("Insert Into claims (ClaimID, AcctNum, BatchID, "
                                      "DoctorID, PatientID, PayProg, HealthNum)"),
                       7);
    bench::Rows items(db,
                      QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, "
                                     "DiagCode, NumServ, FeeSubm, ServiceDate, FeePaid, "
                                     "Status)"),
                      9);
    const auto item = [&](qint64 claim, int id, const Code& code, const QDate& day, bool paid) {
        const qint64 units = qint64(code.cents) * 100;
        items.add({claim, id, QString::fromLatin1(code.code), QStringLiteral("401"), 1, units,
                   day.toString(Qt::ISODate), paid ? QVariant(units) : QVariant(), paid ? 2 : 0});
    };
    const auto claim = [&](qint64 id, int n) {
        claims.add({id, account(n), QStringLiteral("260101000001"), QStringLiteral("D1"),
                    1 + n % 5000, QStringLiteral("HCP - P"), QStringLiteral("1234567897")});
    };
    for (int n = 0; n < kClaims; ++n) {
        const bool awaiting = n >= kClaims - kAwaiting;
        const qint64 id = kFirstClaimId + n;
        claim(id, n);
        for (int i = 0; i < itemsOf(n); ++i) {
            item(id, i + 1, kCodes[i], dayOf(n), !awaiting);
        }
        if (awaiting && n % kSplitEvery == 0) {
            claim(kFirstSplitClaimId + n, n);
            item(kFirstSplitClaimId + n, 1, {"A007B", 1200}, dayOf(n), false);
        }
    }
    claims.flush();
    items.flush();
    tx.commit();
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
        for (int i = 0; i < itemsOf(n) && written < kRemittanceItems; ++i, ++written) {
            const int billed = kCodes[i].cents;
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
                            dayOf(n).toString(QStringLiteral("yyyyMMdd")) + QStringLiteral("01") +
                            QLatin1String(kCodes[i].code) + QLatin1Char(' ') +
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
    const qint64 built = office.fill([](Database& d) { fill(d); });
    out << "office: " << db->scalar(QStringLiteral("Select Count(*) From claims")).toInt()
        << " claims, " << db->scalar(QStringLiteral("Select Count(*) From items")).toInt()
        << " items, built in " << built << " ms on " << bench::engine(*db) << "\n";
    out.flush();

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
