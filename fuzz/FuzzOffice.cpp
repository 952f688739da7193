#include "FuzzOffice.h"

#include "foundation/OfficePaths.h"
#include "foundation/Schema.h"
#include "foundation/SqlLog.h"
#include "ministry/ReceivedFile.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cstdlib>
#include <memory>

namespace brimsett::fuzz {

namespace {

struct Office {
    Office() {
        schema::create(*db);
        // Two claims share an account number, as the parts of a split claim do.
        const char* statements[] = {
            "Insert Into claims (ClaimID, BatchID, AcctNum, PayProg, HealthNum) Values "
            "(10000001, '201210150001', 'EDT2G6', 'HCP', '1284630124'),"
            "(10000002, '201210150001', 'EDT2G8', 'HCP', '2799423922'),"
            "(70000002, '201210150001', 'EDT2G8', 'HCP', '2799423922'),"
            "(10000003, '201210150001', '00000042', 'HCP', '9876543225')",
            "Insert Into items (ClaimID, ItemID, ServiceCode, ServiceDate, FeeSubm, Status,"
            " DiagCode) Values "
            "(10000001, 1, 'A003A', '2012-02-21', 772000, 0, '780'),"
            "(10000002, 1, 'G010A', '2012-02-12', 20700, 0, NULL),"
            "(10000002, 2, 'G489A', '2012-02-12', 35400, 2, NULL),"
            "(70000002, 1, 'G700B', '2012-02-12', 51000, 0, NULL),"
            "(10000003, 1, 'A007A', '2026-11-02', 337000, 1, '799')",
            "Insert Into Doctors (DoctorID, GroupNum, ProviderNum, SpecCode, LName, FName) Values "
            "('1', 'BAAA', '272278', '00', 'Vlaar', 'Hj')",
        };
        for (const char* statement : statements) {
            db->exec(QString::fromLatin1(statement));
        }
    }
    QTemporaryDir folder;
    std::unique_ptr<Database> db = Database::createSqlite(folder.filePath(QStringLiteral("f.db")));
    SqlLog log{OfficePaths(folder.path()), false};
};

Office& theOffice() {
    // The SQL driver plugins are found through the application object.
    static int argc = 1;
    static char name[] = "fuzz";
    static char* argv[] = {name, nullptr};
    static QCoreApplication app(argc, argv);
    static Office office;
    return office;
}

}  // namespace

Database& office() {
    return *theOffice().db;
}

const SqlLog& sqlLog() {
    return theOffice().log;
}

QStringList linesOf(const std::uint8_t* data, std::size_t size) {
    return received::splitLines(
        QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
}

void checkStatuses() {
    // Readers write 1 (rejected) and 2 (paid) only; anything else is a fault worth a crash.
    const QVariant odd = office().scalar(
        QStringLiteral("Select Count(*) From items Where Status Not In (0, 1, 2, 3)"));
    if (odd.toInt() != 0) {
        std::abort();
    }
}

}  // namespace brimsett::fuzz
