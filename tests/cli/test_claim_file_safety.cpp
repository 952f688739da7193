#include "CliRun.h"

#include "foundation/Database.h"

#include <QCryptographicHash>
#include <QDir>
#include <QProcess>
#include <QRegularExpression>

#include <algorithm>
#include <map>
#include <memory>

using namespace brimsett;
using brimsett::test::cli;

namespace {

const QString kPending = QStringLiteral("000000000000");

// An office whose claims are added behind the program's back, straight into the database,
// so that the only writer under test is `brimsett-cli prepare`.
struct Office {
    test::TempOffice temp;
    std::unique_ptr<Database> db;
    qint64 nextClaim = 10000000;
    // Every claim file seen so far and its content: a file may be set aside, never changed.
    std::map<QString, QByteArray> seen;

    Office() {
        const test::CliResult init = cli(temp, {QStringLiteral("init")});
        if (init.status != 0) {
            qFatal("init failed: %s", qPrintable(init.err));
        }
        db = std::move(std::get<std::unique_ptr<Database>>(
            Database::openSqlite(temp.file(QStringLiteral("medical.mdb")))));
        addDoctor(QStringLiteral("AB"), QStringLiteral("123456"));
        addDoctor(QStringLiteral("CD"), QStringLiteral("654321"));
    }

    void addDoctor(const QString& id, const QString& provider) {
        db->exec(QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, "
                                "MOHOffice, LName) Values (?, '0000', ?, '00', 'J', 'Doe')"),
                 {id, provider});
    }

    void addClaims(const QString& doctor, int count) {
        // After any claim the program saved itself.
        nextClaim = std::max(
            nextClaim,
            db->scalar(QStringLiteral("Select Max(ClaimID) From claims")).toLongLong() + 1);
        for (int i = 0; i < count; ++i) {
            const qint64 id = nextClaim++;
            db->exec(QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, "
                                    "PayProg, HealthNum, VersionCode, DateCreated) "
                                    "Values (?, ?, ?, ?, 'HCP - P', '1234567897', 'AB', "
                                    "'2026-11-20 09:00:00')"),
                     {id, kPending, QString::number(id - 9990000).rightJustified(8, '0'), doctor});
            db->exec(QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, "
                                    "NumServ, FeeSubm, ServiceDate, Status) "
                                    "Values (?, 1, 'A007A', '401', 1, 337000, '2026-11-20', 0)"),
                     {id});
        }
    }

    QStringList column(const QString& statement, const QVariantList& values = {}) {
        QStringList rows;
        QSqlQuery q = db->exec(statement, values);
        while (q.next()) {
            rows << q.value(0).toString();
        }
        return rows;
    }

    QStringList claimFilesInFolder() const {
        static const QRegularExpression name(QStringLiteral("^H[A-L][0-9]+\\.[0-9]{3}$"));
        return QDir(temp.folder()).entryList(QDir::Files).filter(name);
    }

    // What is wrong with the office; empty when it holds together. With settled, a file of
    // no batch (left by a killed run for the next preparation to set aside) is wrong too.
    QStringList problems(bool settled) {
        temp.store().sync();  // the program's records, not what this process read before
        QStringList found;
        if (const int held = column("Select Count(*) From claims Where BatchID='111111111111'")
                                 .front()
                                 .toInt()) {
            found << QStringLiteral("%1 claims held back").arg(held);
        }
        const QStringList recorded = column("Select Distinct FileName From batches");
        for (const QString& file : recorded) {
            QStringList inFile;
            static const QRegularExpression header(QStringLiteral("^HEH.{20}(.{8})"),
                                                   QRegularExpression::MultilineOption);
            auto it = header.globalMatch(test::readText(temp.file(file)));
            while (it.hasNext()) {
                inFile << it.next().captured(1);
            }
            QStringList inBatches = column(
                "Select AcctNum From claims Where BatchID In "
                "(Select BatchID From batches Where FileName=?)",
                {file});
            inFile.sort();
            inBatches.sort();
            if (inFile.isEmpty() || inFile != inBatches) {
                found << file + QStringLiteral(" carries ") + inFile.join(',') +
                             QStringLiteral(" but its batches hold ") + inBatches.join(',');
            }
            if (temp.store().get(QStringLiteral("Batch"), file) != QLatin1String("1")) {
                found << file + QStringLiteral(" has no creation record");
            }
        }
        if (const int lost = column("Select Count(*) From claims Where BatchID<>? And BatchID Not "
                                    "In (Select BatchID From batches)",
                                    {kPending})
                                 .front()
                                 .toInt()) {
            found << QStringLiteral("%1 claims in a batch that does not exist").arg(lost);
        }
        for (const QString& file : claimFilesInFolder()) {
            if (settled && !recorded.contains(file)) {
                found << file + QStringLiteral(" is of no batch");
            }
        }
        for (const auto& [file, bytes] : seen) {
            const QString here = temp.file(file);
            const QString aside = temp.file(QStringLiteral("SetAside/") + file);
            const QString path = QFileInfo::exists(here) ? here : aside;
            QFile f(path);
            if (!f.open(QIODevice::ReadOnly)) {
                found << file + QStringLiteral(" was lost");
            } else if (f.readAll() != bytes) {
                found << file + QStringLiteral(" was written over");
            }
        }
        for (const QString& file : claimFilesInFolder()) {
            QFile f(temp.file(file));
            if (f.open(QIODevice::ReadOnly)) {
                seen.emplace(file, f.readAll());
            }
        }
        return found;
    }

    int pending() {
        return column("Select Count(*) From claims Where BatchID=?", {kPending}).front().toInt();
    }
};

// brimsett-cli, started and left to run.
std::unique_ptr<QProcess> startCli(const test::TempOffice& office, const QStringList& args,
                                   const QString& killAt = {}) {
    auto p = std::make_unique<QProcess>();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    if (!killAt.isEmpty()) {
        env.insert(QStringLiteral("BRIMSETT_KILL_AT"), killAt);
    }
    p->setProcessEnvironment(env);
    p->setProgram(QStringLiteral(BRIMSETT_CLI));
    p->setArguments(QStringList{"--home", office.folder(), "--settings", office.settingsFile()} +
                    args);
    p->start();
    p->closeWriteChannel();
    return p;
}

std::unique_ptr<QProcess> startPrepare(const test::TempOffice& office, const QString& doctor,
                                       const QString& killAt = {}) {
    return startCli(office, {QStringLiteral("prepare"), doctor}, killAt);
}

bool finished(QProcess& p) {
    return p.waitForFinished(60000);
}

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
        int killed = 0;
        for (const QString& point : points) {
            office.addClaims(QStringLiteral("AB"), 2);
            auto run = startPrepare(office.temp, QStringLiteral("AB"), point);
            QVERIFY(finished(*run));
            const bool died = run->exitStatus() == QProcess::CrashExit;
            const QStringList afterKill = office.problems(false);
            QVERIFY2(afterKill.isEmpty(), qPrintable(point + ": " + afterKill.join("; ")));

            const test::CliResult next = cli(office.temp, {"prepare", "AB"});
            QVERIFY2(next.status == 0 || next.err.contains("No claims to submit."),
                     qPrintable(point + ": " + next.err));
            const QStringList settled = office.problems(true);
            QVERIFY2(settled.isEmpty(), qPrintable(point + ": " + settled.join("; ")));
            QCOMPARE(office.pending(), 0);
            if (!died) {
                // Past the last statement: the kill points after it were all reached.
                QVERIFY(point.startsWith(QStringLiteral("statement:")));
                break;
            }
            ++killed;
        }
        QVERIFY2(killed > 20, qPrintable(QString::number(killed)));
        // An unrecorded file may not be sent even under its old name.
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
            QStringLiteral("Insert Into servicecodes (ServiceCode, FeeGeneral, MaximumAge) "
                           "Values ('A007', 337000, 999)"));
        for (int round = 0; round < 6; ++round) {
            office.addClaims(QStringLiteral("AB"), 3);
            office.addClaims(QStringLiteral("CD"), 3);
            office.temp.store().saveNumber("General", "DiskIDCounter", 0);
            office.temp.store().sync();
            auto first = startPrepare(office.temp, QStringLiteral("AB"));
            auto second = startPrepare(office.temp, QStringLiteral("CD"));
            const QString day =
                QDate::currentDate().addDays(-1 - round).toString(QStringLiteral("yyyy/MM/dd"));
            auto saving = startCli(office.temp, {"--yes", "claim", "add", "--doctor", "AB",
                                                 "--patient", "1", "A007A:401:1:" + day});
            auto third = startPrepare(office.temp, QStringLiteral("AB"));
            for (QProcess* p : {first.get(), second.get(), saving.get(), third.get()}) {
                QVERIFY(finished(*p));
                const QString err = QString::fromUtf8(p->readAllStandardError());
                QVERIFY2(p->exitCode() == 0 || err.contains("No claims to submit."),
                         qPrintable(err));
            }
            const QStringList problems = office.problems(true);
            QVERIFY2(problems.isEmpty(), qPrintable(problems.join("; ")));
        }
        // The claim saved last, unless the round's last preparation took it already.
        const test::CliResult last = cli(office.temp, {"prepare", "AB"});
        QVERIFY2(last.status == 0 || last.err.contains("No claims to submit."),
                 qPrintable(last.err));
        QCOMPARE(office.problems(true), QStringList());
        QCOMPARE(office.pending(), 0);
        QCOMPARE(office.claimFilesInFolder().size(),
                 office.column("Select Count(Distinct FileName) From batches").front().toInt());
    }
};

QTEST_GUILESS_MAIN(TestClaimFileSafety)
#include "test_claim_file_safety.moc"
