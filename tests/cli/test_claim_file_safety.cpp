#include "CliRun.h"

#include "foundation/Database.h"

#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <map>
#include <memory>

using namespace brimsett;
using brimsett::test::cli;

namespace {

// brimsett-cli on the office, started and left to run.
std::unique_ptr<QProcess> start(const test::TempOffice& office, const QStringList& args,
                                const QString& killAt = {}) {
    auto p = std::make_unique<QProcess>();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("BRIMSETT_KILL_AT"), killAt);
    p->setProcessEnvironment(env);
    p->start(QStringLiteral(BRIMSETT_CLI),
             QStringList{"--home", office.folder(), "--settings", office.settingsFile()} + args);
    p->closeWriteChannel();
    return p;
}

// Done, or told there was nothing to do.
bool succeeded(QProcess& p) {
    return p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit &&
           (p.exitCode() == 0 || p.readAllStandardError().contains("No claims to submit."));
}

// An office whose claims are put straight into the database behind the program's back.
struct Office {
    test::TempOffice temp;
    std::unique_ptr<Database> db;
    std::map<QString, QByteArray> seen;  // every claim file so far: it may move, never change

    Office() {
        if (cli(temp, {"init"}).status != 0) {
            qFatal("init failed");
        }
        db = std::move(std::get<std::unique_ptr<Database>>(
            Database::openSqlite(temp.file(QStringLiteral("medical.mdb")))));
        db->exec(
            QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, "
                           "MOHOffice) Values ('AB', '0000', '123456', '00', 'J'), "
                           "('CD', '0000', '654321', '00', 'J')"));
    }

    void addClaims(const QString& doctor, int count) {
        for (int i = 0; i < count; ++i) {
            const qint64 id = number("Select Coalesce(Max(ClaimID), 9999999) + 1 From claims");
            db->exec(QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, "
                                    "PayProg, HealthNum) Values (?, '000000000000', ?, ?, "
                                    "'HCP - P', '1234567897')"),
                     {id, QString::number(id - 9990000).rightJustified(8, '0'), doctor});
            db->exec(QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, "
                                    "FeeSubm, ServiceDate) Values (?, 1, 'A007A', 1, 337000, "
                                    "'2026-11-20')"),
                     {id});
        }
    }

    qint64 number(const char* statement) {
        return db->scalar(QString::fromLatin1(statement)).toLongLong();
    }
    QStringList column(const QString& statement, const QVariantList& values = {}) {
        QStringList rows = test::rowsOf(db->exec(statement, values));
        rows.sort();
        return rows;
    }
    QStringList claimFilesInFolder() const {
        return QDir(temp.folder())
            .entryList(QDir::Files)
            .filter(QRegularExpression(QStringLiteral("^H[A-L][0-9]+\\.[0-9]{3}$")));
    }

    // What is wrong with the office; empty when it holds together. Settled, a claim file of
    // no batch (a killed run's, for the next preparation to set aside) is wrong too.
    QStringList problems(bool settled) {
        temp.store().sync();  // the program's records, not what this process read before
        QStringList found;
        if (number("Select Count(*) From claims Where BatchID='111111111111' Or (BatchID<>"
                   "'000000000000' And BatchID Not In (Select BatchID From batches))") > 0) {
            found << QStringLiteral("claims held back or in a batch that does not exist");
        }
        const QStringList recorded = column("Select Distinct FileName From batches");
        for (const QString& file : recorded) {
            QStringList carried;
            static const QRegularExpression header(QStringLiteral("^HEH.{20}(.{8})"),
                                                   QRegularExpression::MultilineOption);
            for (auto it = header.globalMatch(test::readText(temp.file(file))); it.hasNext();) {
                carried << it.next().captured(1);
            }
            carried.sort();
            const QStringList batched = column(
                "Select AcctNum From claims Where BatchID In "
                "(Select BatchID From batches Where FileName=?)",
                {file});
            if (carried.isEmpty() || carried != batched) {
                found << file + " carries " + carried.join(',') + " for " + batched.join(',');
            }
            if (temp.store().get(QStringLiteral("Batch"), file) != QLatin1String("1")) {
                found << file + QStringLiteral(" has no creation record");
            }
        }
        for (const auto& [file, bytes] : seen) {
            const QString path = QFileInfo::exists(temp.file(file)) ? temp.file(file)
                                                                    : temp.file("SetAside/" + file);
            if (test::readText(path).toUtf8() != bytes) {
                found << file + QStringLiteral(" was lost or written over");
            }
        }
        for (const QString& file : claimFilesInFolder()) {
            if (settled && !recorded.contains(file)) {
                found << file + QStringLiteral(" is of no batch");
            }
            seen.emplace(file, test::readText(temp.file(file)).toUtf8());
        }
        return found;
    }
};

}  // namespace

class TestClaimFileSafety : public QObject {
    Q_OBJECT

private slots:
    // Killed at each of its own steps and before every statement it runs, a preparation leaves
    // the office whole, and the next one finishes the work: every claim in exactly one recorded
    // file, no file lost or written over, an unrecorded file set aside.
    void killedAnywhereThePreparationLosesNothing() {
        Office office;
        QStringList points = {"counter-taken", "batch-recorded", "claimfile-placed", "committed"};
        for (int statement = 1; statement < 400; ++statement) {
            points << QStringLiteral("statement:%1").arg(statement);
        }
        int statementsKilled = 0;
        for (const QString& point : points) {
            office.addClaims(QStringLiteral("AB"), 2);
            auto run = start(office.temp, {"prepare", "AB"}, point);
            const bool died = !succeeded(*run);
            QCOMPARE(office.problems(false), QStringList());
            QVERIFY(succeeded(*start(office.temp, {"prepare", "AB"})));
            QCOMPARE(office.problems(true), QStringList());
            QCOMPARE(office.number("Select Count(*) From claims Where BatchID='000000000000'"), 0);
            if (!point.startsWith(QStringLiteral("statement:"))) {
                QVERIFY2(died, qPrintable(point + " was never reached"));
            } else if (died) {
                ++statementsKilled;
            } else {
                break;  // past the last statement
            }
        }
        QVERIFY2(statementsKilled > 10, qPrintable(QString::number(statementsKilled)));
        QVERIFY(QDir(office.temp.file("SetAside")).exists());
    }

    // Programs preparing at once, one of which read its counter long ago (here: set back to
    // 0 before every round), never share a name and never lose a file; a claim saved meanwhile
    // waits its turn instead of failing on the lock, and goes into a later file.
    void racingPreparationsNeverShareAFile() {
        Office office;
        office.db->exec(QStringLiteral(
            "Insert Into patients (PatientID, HealthNum, VersionCode, FName, LName, DOB, Sex, "
            "Province) Values (1, '1234567897', 'AB', 'Mary', 'Smith', '1980-05-17', 'F', 'ON')"));
        office.db->exec(
            QStringLiteral("Insert Into servicecodes (ServiceCode, FeeGeneral, "
                           "MaximumAge) Values ('A007', 337000, 999)"));
        for (int round = 0; round < 6; ++round) {
            office.addClaims(QStringLiteral("AB"), 3);
            office.addClaims(QStringLiteral("CD"), 3);
            office.temp.store().saveNumber("General", "DiskIDCounter", 0);
            office.temp.store().sync();
            const QString day = QDate::currentDate().addDays(-1 - round).toString("yyyy/MM/dd");
            std::unique_ptr<QProcess> runs[] = {
                start(office.temp, {"prepare", "AB"}), start(office.temp, {"prepare", "CD"}),
                start(office.temp, {"--yes", "claim", "add", "--doctor", "AB", "--patient", "1",
                                    "A007A:401:1:" + day}),
                start(office.temp, {"prepare", "AB"})};
            for (auto& run : runs) {
                QVERIFY2(succeeded(*run), run->readAllStandardError().constData());
            }
            QCOMPARE(office.problems(true), QStringList());
        }
        QVERIFY(succeeded(*start(office.temp, {"prepare", "AB"})));  // the claim saved last
        QCOMPARE(office.problems(true), QStringList());
        QCOMPARE(office.number("Select Count(*) From claims Where BatchID='000000000000'"), 0);
        QCOMPARE(office.claimFilesInFolder().size(),
                 office.number("Select Count(Distinct FileName) From batches"));
    }
};

QTEST_GUILESS_MAIN(TestClaimFileSafety)
#include "test_claim_file_safety.moc"
