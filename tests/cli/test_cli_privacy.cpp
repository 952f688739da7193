#include "CliRun.h"

#include "foundation/Database.h"

#include <QDir>
#include <QProcess>

#include <sys/stat.h>

using namespace brimsett;

namespace {

int modeOf(const QString& path) {
    struct stat info {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? int(info.st_mode & 07777) : -1;
}

}  // namespace

// Every file of an office holds patient data: whatever umask the user has, what the program
// makes is the user's alone, and an office made before is made private at the next start.
class TestCliPrivacy : public QObject {
    Q_OBJECT

private slots:
    void officeFilesAreOwnerOnlyWhateverTheUmask() {
        const mode_t before = ::umask(022);
        QTemporaryDir root;
        const QString home = root.path() + QStringLiteral("/office/");
        const QString settings = root.path() + QStringLiteral("/config/Zandor.ini");
        const auto run = [&](const QStringList& args) {
            QProcess p;
            p.setProgram(QStringLiteral(BRIMSETT_CLI));
            p.setArguments(QStringList{"--home", home, "--settings", settings} + args);
            p.start();
            p.closeWriteChannel();
            p.waitForFinished(60000);
            return p.exitCode() == 0 ? QString::fromUtf8(p.readAllStandardOutput())
                                     : QStringLiteral("failed: ") + p.readAllStandardError();
        };
        QVERIFY(!run({"init"}).startsWith("failed"));
        for (const char* statement :
             {"Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice, LName) "
              "Values ('AB', '0000', '123456', '00', 'J', 'Doe')",
              "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, HealthNum) "
              "Values (10000000, '000000000000', '00000001', 'AB', 'HCP - P', '1234567897')",
              "Insert Into items (ClaimID, ItemID, ServiceCode, NumServ, FeeSubm, ServiceDate) "
              "Values (10000000, 1, 'A007A', 1, 337000, '2026-11-20')"}) {
            QVERIFY(!run({"sql", statement}).startsWith("failed"));
        }
        const QString claimFile = run({"prepare", "AB"}).section(QLatin1Char('\n'), 0, 0);
        QVERIFY2(claimFile.startsWith(QStringLiteral("H")), qPrintable(claimFile));
        const QString backup = run({"backup"}).trimmed();
        QVERIFY2(!backup.startsWith("failed"), qPrintable(backup));
        QVERIFY(!run({"settings", "set", "General", "Test", "1"}).startsWith("failed"));

        // A connection kept open so that the journal files are there to be looked at.
        auto db = std::move(std::get<std::unique_ptr<Database>>(
            Database::openSqlite(home + QStringLiteral("medical.mdb"))));
        db->exec(QStringLiteral("Update doctors Set LName='Roe'"));

        const QStringList folders = {home, root.path() + QStringLiteral("/config")};
        QStringList files = {
            home + "medical.mdb",       home + "medical.mdb-wal",
            home + "medical.mdb-shm",   settings,
            home + claimFile.trimmed(), QFileInfo(backup).isAbsolute() ? backup : home + backup};
        for (const QString& folder : folders) {
            QCOMPARE(QString::number(modeOf(folder), 8), QStringLiteral("700"));
        }
        for (const QString& file : files) {
            QVERIFY2(modeOf(file) == 0600,
                     qPrintable(file + " " + QString::number(modeOf(file), 8)));
        }

        // An office from before: opened to all, closed again at the next start.
        db.reset();
        ::chmod(QFile::encodeName(home).constData(), 0755);
        ::chmod(QFile::encodeName(home + "medical.mdb").constData(), 0644);
        QVERIFY(!run({"init"}).startsWith("failed"));
        QCOMPARE(modeOf(home), 0700);
        QCOMPARE(modeOf(home + "medical.mdb"), 0600);
        ::umask(before);
    }
};

QTEST_GUILESS_MAIN(TestCliPrivacy)
#include "test_cli_privacy.moc"
