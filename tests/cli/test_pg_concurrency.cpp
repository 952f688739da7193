#include "CliRun.h"

#include "foundation/Database.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <memory>

using namespace brimsett;
using brimsett::test::cli;

namespace {

// An Ontario number: nine digits and the Luhn check digit.
QString healthNumber(int nine) {
    const QString digits = QString::number(nine).rightJustified(9, QLatin1Char('0'));
    int sum = 0;
    for (int i = 0; i < 9; ++i) {
        int d = digits.at(i).digitValue();
        if (i % 2 == 0) {
            d *= 2;
            d = d > 9 ? d - 9 : d;
        }
        sum += d;
    }
    return digits + QString::number((10 - sum % 10) % 10);
}

std::unique_ptr<QProcess> start(const test::TempOffice& office, const QStringList& args) {
    auto p = std::make_unique<QProcess>();
    p->start(QStringLiteral(BRIMSETT_CLI),
             QStringList{"--home", office.folder(), "--settings", office.settingsFile()} + args);
    p->closeWriteChannel();
    return p;
}

// Finished well, with nothing on standard error beyond what `allowed` matches.
QString trouble(QProcess& p, const QString& allowed = {}) {
    if ((p.state() != QProcess::NotRunning && !p.waitForFinished(300000)) ||
        p.exitStatus() != QProcess::NormalExit) {
        return QStringLiteral("did not finish");
    }
    QString err = QString::fromUtf8(p.readAllStandardError());
    if (!allowed.isEmpty()) {
        err.remove(QRegularExpression(allowed));
    }
    if (p.exitCode() != 0 && allowed.isEmpty()) {
        return QStringLiteral("exit %1: %2").arg(p.exitCode()).arg(err);
    }
    return err.trimmed().isEmpty() ? QString() : err;
}

}  // namespace

// Several computers on one server at once: three adding patients and claims, one writing
// claim files the whole time and one reading a remittance.
class TestPgConcurrency : public QObject {
    Q_OBJECT

private slots:
    void fiveProgramsAtOnceShareNoNumberAndLoseNoRow() {
        if (test::testServer().isEmpty()) {
            QSKIP("no PostgreSQL test server (BRIMSETT_TEST_PG)");
        }
        const int kEach = qEnvironmentVariableIntValue("PGC_EACH") > 0
                              ? qEnvironmentVariableIntValue("PGC_EACH")
                              : 300;
        test::TempOffice office;
        const auto db = office.emptyDatabase();
        office.store().save(QStringLiteral("General"), QStringLiteral("dbPath"),
                            office.databaseLocation());
        QVERIFY(office.store().sync());
        const auto init = cli(office, {"init"});
        QVERIFY2(init.status == 0, qPrintable(init.err));

        const QString yesterday = QDate::currentDate().addDays(-1).toString("yyyy/MM/dd");
        db->exec(QStringLiteral(
            "Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice) "
            "Values ('AB', '0000', '123456', '00', 'J')"));
        db->exec(
            QStringLiteral("Insert Into servicecodes (ServiceCode, FeeGeneral, MaximumAge) "
                           "Values ('A007', 337000, 999)"));
        // The patients the claims are for, one a claim, so no claim repeats another's service.
        QString patients;
        for (int k = 1; k <= 3 * kEach; ++k) {
            patients +=
                QStringLiteral("%1(%2, '%3', 'AB', 'F%2', 'Claim', '1980-05-17', 'F', 'ON')")
                    .arg(k == 1 ? "" : ",")
                    .arg(k)
                    .arg(healthNumber(600000000 + k));
        }
        db->exec(QStringLiteral("Insert Into patients (PatientID, HealthNum, VersionCode, FName, "
                                "LName, DOB, Sex, Province) Values ") +
                 patients);
        // A claim of an earlier batch, which the remittance pays.
        db->exec(QStringLiteral(
            "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, HealthNum) "
            "Values (10000000, '202611010001', '00000001', 'AB', 'HCP - P', '1234567897')"));
        db->exec(
            QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, "
                           "FeeSubm, ServiceDate, Status) "
                           "Values (10000000, 1, 'A007A', 1, 337000, '2026-11-02', 0)"));
        db->exec(
            QStringLiteral("Insert Into batches (BatchID, FileName) "
                           "Values ('202611010001', 'HJ000001.001')"));
        QDir(office.folder()).mkpath("Download");
        test::writeText(
            office.file("Download/PK123456.001"),
            "HR1V030000012345600H720261115JOHN SMITH                    000003370 99999999  \r\n"
            "HR4J209300006011234560000000001SMITH         JOHN ON1234567897    HCP          \r\n"
            "HR5J209300006012026110201A007A 003370003370                                    \r\n");

        std::vector<std::unique_ptr<QProcess>> adders;
        for (int p = 0; p < 3; ++p) {
            QString script;
            for (int i = 0; i < kEach; ++i) {
                script += QStringLiteral(
                              "patient add --last Added%1-%2 --first Ann --hn %3 "
                              "--dob 1970/01/02 --sex F\n")
                              .arg(p)
                              .arg(i)
                              .arg(healthNumber(500000000 + p * 1000 + i));
                script += QStringLiteral("claim add --doctor AB --patient %1 A007A:401:1:%2\n")
                              .arg(p * kEach + i + 1)
                              .arg(yesterday);
            }
            const QString file = office.file(QStringLiteral("script%1.txt").arg(p));
            test::writeText(file, script.toUtf8());
            adders.push_back(start(office, {"--yes", "script", file}));
        }
        auto receiving = start(office, {"receive", "PK123456.001"});
        int preparations = 0;
        const QString nothingToDo = QStringLiteral("Submit Claims:\\s*No claims to submit\\.\\s*");
        // Claim files are written the whole time the others add.
        for (auto& adder : adders) {
            while (adder->state() != QProcess::NotRunning && !adder->waitForFinished(50)) {
                auto preparing = start(office, {"prepare", "AB"});
                QCOMPARE(trouble(*preparing, nothingToDo), QString());
                ++preparations;
            }
        }
        for (auto& adder : adders) {
            QCOMPARE(trouble(*adder), QString());
        }
        QCOMPARE(trouble(*receiving), QString());
        QCOMPARE(trouble(*start(office, {"prepare", "AB"}), nothingToDo), QString());
        qInfo("%d preparations ran beside the three", preparations);

        const auto count = [&](const char* statement) {
            return db->scalar(QString::fromLatin1(statement)).toLongLong();
        };
        QCOMPARE(count("Select Count(*) From patients Where LName Like 'Added%'"), 3 * kEach);
        QCOMPARE(count("Select Count(Distinct HealthNum) From patients"), 6 * kEach);
        QCOMPARE(count("Select Count(*) From claims"), 3 * kEach + 1);
        QCOMPARE(count("Select Count(Distinct AcctNum) From claims"), 3 * kEach + 1);
        QCOMPARE(count("Select Count(*) From items"), 3 * kEach + 1);
        QCOMPARE(count("Select Count(*) From claims Where BatchID = '000000000000' Or BatchID Not "
                       "In (Select BatchID From batches)"),
                 0);
        // Every claim is carried by exactly one claim file, and no two batches share a file.
        int carried = 0;
        const QStringList files =
            QDir(office.folder()).entryList({QStringLiteral("H?[0-9]*.[0-9][0-9][0-9]")});
        for (const QString& file : files) {
            carried += test::readText(office.file(file)).count(QStringLiteral("\nHEH"));
        }
        QCOMPARE(carried, 3 * kEach);
        QCOMPARE(count("Select Count(Distinct FileName) From batches") - 1, files.size());
        QCOMPARE(count("Select Status From items Where ClaimID = 10000000"), 2);
    }
};

QTEST_GUILESS_MAIN(TestPgConcurrency)
#include "test_pg_concurrency.moc"
