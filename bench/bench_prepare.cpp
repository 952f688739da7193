// Times the preparation of a claim file for a group's month: 10,000 pending claims with
// about 15,000 items, of which one in twenty is held back by the cut-off, in two batches (two
// specialties of one provider number, one of them at two locations). Prints the time and the
// statements run per claim.
#include "BenchOffice.h"
#include "claims/ClaimStore.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"
#include "foundation/RecordingPrompter.h"
#include "foundation/Schema.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "ministry/BatchPreparation.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTextStream>

using namespace brimsett;

namespace {

constexpr int kClaims = 10000;

void fill(Database& db, const Clock& clock, const SqlLog& log) {
    for (const char* doctor :
         {"('D1','GR01','111111','00','1234','J')", "('D2','GR01','111111','00','5678','J')",
          "('D3','GR01','111111','18','1234','J')"}) {
        db.exec(QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, "
                               "LocationCode, MOHOffice) Values ") +
                QLatin1String(doctor));
    }
    ClaimStore store(db, clock, log);
    const QStringList doctors{"D1", "D2", "D3"};
    const QStringList programs{"HCP - P", "HCP - P", "HCP - P", "WCB", "RMB"};
    Transaction tx(db);
    for (int n = 0; n < kClaims; ++n) {
        ClaimRecord c;
        c.claimId = kFirstClaimId + n;
        c.batchId = kPendingBatch;
        c.acctNum = QStringLiteral("%1").arg(n + 1, 8, 10, QLatin1Char('0'));
        c.doctorId = doctors.at(n % 3);
        c.payProg = programs.at(n % programs.size());
        c.patientId = 1 + n % 3000;
        c.healthNum = QStringLiteral("12345678%1").arg(n % 100, 2, 10, QLatin1Char('0'));
        c.versionCode = QStringLiteral("AB");
        c.fName = QStringLiteral("Mary");
        c.lName = QStringLiteral("Smith-Jones");
        c.dob = QDate(1950 + n % 60, 1 + n % 12, 1 + n % 28);
        c.sex = n % 2 ? QStringLiteral("F") : QStringLiteral("M");
        c.province = QStringLiteral("ON");
        c.dateCreated = clock.now().addDays(-(n % 30));
        const QDate served = clock.today().addDays(n % 20 == 0 ? 5 : -(n % 30));
        for (int i = 0; i < (n % 2 ? 2 : 1); ++i) {
            ItemRecord item;
            item.claimId = c.claimId;
            item.itemId = i + 1;
            item.serviceCode = i ? QStringLiteral("E083A") : QStringLiteral("A007A");
            item.diagCode = QStringLiteral("401");
            item.numServ = 1;
            item.feeSubm = Money::fromCents(i ? 1011 : 3370);
            item.serviceDate = served;
            c.items.append(item);
        }
        QStringList ignored;
        store.write(c, ignored);
    }
    tx.commit();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    bench::Office office;
    const QString folder = office.folder();
    Database* db = office.db.get();
    FixedClock clock(QDateTime(QDate(2026, 11, 22), QTime(10, 0)));
    const SqlLog log{OfficePaths(folder), false};
    fill(*db, clock, log);

    SettingsStore store(folder + QStringLiteral("settings.ini"));
    AppSettings settings;
    RecordingPrompter prompter;
    BatchPreparation preparation(*db, store, settings, clock, prompter, log, folder);
    PrepareRequest request;
    request.doctorId = QStringLiteral("D1");
    request.cutOff = QStringLiteral("2026/11/22");

    const qint64 before = db->statementCount();
    QElapsedTimer timer;
    timer.start();
    const std::optional<PreparedFile> file = preparation.prepare(request);
    const double ms = timer.nsecsElapsed() / 1e6;
    const qint64 statements = db->statementCount() - before;
    if (!file) {
        out << "no file was prepared\n";
        return 1;
    }
    int claims = 0;
    int items = 0;
    for (const PreparedBatch& b : file->batches) {
        claims += b.claims;
        items += b.items;
    }
    out << "claim file " << file->fileName << ": " << file->batches.size() << " batches, " << claims
        << " claims, " << items << " items, " << QFileInfo(file->path).size() / 1024 << " KiB\n";
    out << "prepared in " << QString::number(ms, 'f', 0) << " ms; " << statements << " statements, "
        << QString::number(double(statements) / kClaims, 'f', 4) << " per pending claim on "
        << bench::engine(*db) << "\n";
    bench::step(out, QStringLiteral("claim file of 10,000 pending claims"), ms,
                double(statements) / kClaims, QStringLiteral("claim"));
    return 0;
}
