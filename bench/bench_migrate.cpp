// Times the copy of a demonstration-sized office file to a PostgreSQL server: 5,000 patients,
// 50,000 claims with 75,000 items, 2,000 batches and 40,000 appointments. Give it an empty
// database: bench_migrate postgresql://user@host/dbname (or service=NAME). Prints the time,
// the rows per second and the statements the server was sent.
#include "foundation/DatabaseCopy.h"
#include "foundation/Money.h"
#include "foundation/Schema.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTextStream>

using namespace brimsett;

namespace {

// Every row made by the engine itself from a counter, so the office is built in seconds.
void fill(Database& db) {
    const QString counter = QStringLiteral(
        "With Recursive n(i) As (Select 0 Union All Select i + 1 From n Where i < "
        "%1) ");
    Transaction tx(db);
    db.exec(QStringLiteral("Insert Into patients (PatientID, HealthNum, VersionCode, FName, LName, "
                           "DOB, Sex, Address, City, Province, PostalCode, HPhone, Notes, Flag) ") +
            counter.arg(4999) +
            QStringLiteral("Select 1 + i, printf('%010d', 1000000000 + i), 'AB', 'Mary', "
                           "'Smith-' || i, date('1940-01-01', '+' || (i * 7 % 25000) || ' days'), "
                           "'F', i || ' Main St', 'Ottawa', 'ON', 'K1P 5N2', '(613) 555-0100', "
                           "'note', 0 From n"));
    db.exec(
        QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, "
                       "PatientID, HealthNum, VersionCode, FName, LName, DOB, Sex, Province, "
                       "DateCreated, AllBatches) ") +
        counter.arg(49999) +
        QStringLiteral("Select 10000000 + i, printf('2026%06d', i / 25), printf('%08d', i + 1), "
                       "'D1', 'HCP - P', 1 + i % 5000, printf('%010d', 1000000000 + i % 5000), "
                       "'AB', 'Mary', 'Smith', '1950-01-01', 'F', 'ON', "
                       "datetime('2025-01-01 09:00:00', '+' || (i % 365) || ' days'), "
                       "printf('2026%06d', i / 25) From n"));
    db.exec(QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, NumServ, "
                           "FeeSubm, ServiceDate, FeePaid, Status) ") +
            counter.arg(74999) +
            QStringLiteral("Select 10000000 + i * 2 / 3, 1 + (i * 2) % 3 / 2, 'A007A', '401', 1, "
                           "337000 + i % 100, date('2025-01-01', '+' || (i % 365) || ' days'), "
                           "337000, 1 From n"));
    db.exec(QStringLiteral("Insert Into batches (BatchID, MOHOffice, Operator, GroupNum, "
                           "ProviderNum, SpecCode, H, R, T, Records, Total, FileName, "
                           "SubmitDate) ") +
            counter.arg(1999) +
            QStringLiteral("Select printf('2026%06d', i), 'J', '', '0000', '111111', '00', 25, 0, "
                           "0, 63, 25 * 337000, 'HGAU73.' || (i % 1000), "
                           "datetime('2025-01-01 12:00:00', '+' || (i % 365) || ' days') From n"));
    db.exec(QStringLiteral("Insert Into appointments (AppID, PatientName, PatientPhone, AppDate, "
                           "AppTime, AppLength, SlotType, Notes, Status, PatientID, DoctorID, "
                           "Deleted) ") +
            counter.arg(39999) +
            QStringLiteral("Select 1 + i, 'Smith, Mary', '(613) 555-0100', "
                           "date('2025-01-01', '+' || (i / 40) || ' days'), 540 + (i % 40) * 15, "
                           "15, 1, '', 1, 1 + i % 5000, 'D1', 0 From n"));
    tx.commit();
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    if (argc < 2) {
        out << "usage: bench_migrate postgresql://user@host/EMPTY_DATABASE\n";
        return 2;
    }
    QTemporaryDir dir;
    auto file = Database::createSqlite(dir.path() + QStringLiteral("/medical.mdb"));
    schema::create(*file);
    QElapsedTimer timer;
    timer.start();
    fill(*file);
    out << "office file made in " << timer.elapsed() << " ms\n";

    auto opened = Database::openServer(QString::fromLocal8Bit(argv[1]));
    if (auto* failure = std::get_if<OpenFailure>(&opened)) {
        out << failure->lines().join(QLatin1Char(' ')) << "\n";
        return 1;
    }
    auto server = std::move(std::get<std::unique_ptr<Database>>(opened));
    qint64 beforeCommit = 0;
    timer.restart();
    const CopyReport report =
        copyDatabase(*file, *server, [&](const CopyReport&) { beforeCommit = timer.elapsed(); });
    const qint64 ms = timer.elapsed();
    for (const TableTally& t : report.tables) {
        if (t.targetRows > 0) {
            out << "  " << t.table.leftJustified(14)
                << QString::number(t.targetRows).rightJustified(7) << " rows"
                << (t.moneyColumns.isEmpty()
                        ? QString()
                        : QStringLiteral("  ") + Money::fromUnits(t.targetMoney).currency())
                << "\n";
        }
    }
    out << "copied and verified " << report.rows() << " rows of " << report.tables.size()
        << " tables in " << ms << " ms (the commit " << ms - beforeCommit << " ms; "
        << qint64(report.rows() * 1000.0 / qMax<qint64>(ms, 1)) << " rows/s); "
        << server->statementCount() << " statements to the server; "
        << (report.equal() ? "every table equal" : "NOT EQUAL") << "\n";
    return 0;
}
