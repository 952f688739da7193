#include "OfficeFixture.h"
#include "foundation/DateText.h"
#include "hcv/CardExchange.h"
#include "patients/PatientEntry.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::hcv;

namespace {

const QString kNumber = QStringLiteral("1234567897");
const QString kRecord =
    QStringLiteral("RPVR0300 %1AB********FACILTYPROVIDER0MAILBOX1        ####################");
const QDateTime kArrived(QDate(2026, 11, 20), QTime(8, 15, 0));

QString answer(const QString& tail, const QString& installation = QStringLiteral("HX01"),
               const QString& number = kNumber) {
    return installation + QLatin1Char('|') + kRecord.arg(number) + QLatin1Char('|') + tail;
}

// An office whose card-check settings are in its own settings file, and an exchange on it
// that counts what it asks of the main screen.
struct CardOffice : test::OfficeFixture {
    int waitsStarted = 0;
    int waitsStopped = 0;
    QStringList stored;
    CardExchange exchange{*db,
                          office.store(),
                          clock,
                          prompter,
                          log,
                          office.folder(),
                          {[this] { ++waitsStarted; }, [this] { ++waitsStopped; },
                           [this](const QString& number) { stored << number; }}};

    CardOffice() {
        office.store().save("General", "HX", "HX01");
        office.store().save("General", "FX", "FAC");
        office.store().save("General", "PX", "PROV");
        office.store().save("General", "MX", "MAIL");
        exchange.setPollingOn(true);
    }
    void patient(qint64 id, const QString& number, const QVariant& checked = {}) {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, FName, LName, Sex,"
            " DOB, HNCheckDate) Values (?, ?, 'XY', 'Ann', 'Old', 'F', ?, ?)",
            {id, number, QDate(1970, 2, 3), checked});
    }
    QString in(const QString& name = {}) const { return office.folder() + "HCVIN/" + name; }
    QString archived(const QString& name = {}) const { return in("Archive/" + name); }
    void arrive(const QString& name, const QString& line, const QDateTime& at = kArrived) {
        QDir().mkpath(in());
        test::writeText(in(name), line.toLatin1() + "\r\n");
        QFile file(in(name));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(at, QFileDevice::FileModificationTime));
    }
    // Response|Status|HNCheckDate|FName|LName|Sex|DOB of the patient; empty without one.
    QString row(qint64 id) {
        const QStringList rows = test::rowsOf(
            db->exec("Select Response, Status, HNCheckDate, FName, LName, Sex From patients"
                     " Where PatientID=?",
                     {id}));
        if (rows.isEmpty()) {
            return {};
        }
        return rows.first() + '|' +
               dateTextOf(db->scalar("Select DOB From patients Where PatientID=?", {id}));
    }
    QStringList told() const {
        QStringList texts;
        for (const auto& m : prompter.messages()) {
            texts << m.title + ": " + m.lines.join('/');
        }
        return texts;
    }
};

}  // namespace

class TestCardExchange : public QObject {
    Q_OBJECT

private slots:
    void requestIsWrittenWholeOncePerDay_data() {
        QTest::addColumn<QString>("ho");
        QTest::addColumn<bool>("patientExists");
        QTest::addColumn<QVariant>("checked");
        QTest::addColumn<bool>("force");
        QTest::addColumn<QString>("file");  // in the office folder; "" answered today, "!" failed
        const QDateTime now(QDate(2026, 11, 22), QTime(10, 0));
        const QVariant today(now.addSecs(-2 * 3600)), yesterday(now.addSecs(-10 * 3600 - 60));
        test::row("default folder", "", true, QVariant(), false, "HCVOUT/20261122100000.txt");
        test::row("folder as written, no patient", "out/", false, QVariant(), false,
                  "out/20261122100000.txt");
        test::row("no separator glues the name", "out", true, yesterday, false,
                  "out20261122100000.txt");
        test::row("answered earlier today", "", true, today, false, "");
        test::row("answered today, forced", "", true, today, true, "HCVOUT/20261122100000.txt");
        test::row("a file stands where the folder would", "blocker/sub/", true, QVariant(), false,
                  "!");
    }
    void requestIsWrittenWholeOncePerDay() {
        QFETCH(QString, ho);
        QFETCH(bool, patientExists);
        QFETCH(QVariant, checked);
        QFETCH(bool, force);
        QFETCH(QString, file);
        CardOffice f;
        f.office.store().save("General", "HO", ho);
        test::writeText(f.office.file("blocker"), "not a folder");
        if (patientExists) {
            f.patient(1, kNumber, checked);
        }
        const auto result = f.exchange.RequestCardCheck(kNumber, "AB", force);
        QCOMPARE(result.patientFound, patientExists);
        const bool written = file.size() > 1;
        QCOMPARE(result.outcome, written          ? CardExchange::Outcome::Written
                                 : file.isEmpty() ? CardExchange::Outcome::AnsweredToday
                                                  : CardExchange::Outcome::Failed);
        QCOMPARE(f.exchange.awaitingAnswer(), written);
        QCOMPARE(f.waitsStarted, written && patientExists ? 1 : 0);
        QCOMPARE(f.told(), file == "!"
                               ? QStringList{"Error: The folder " + f.office.file("blocker/sub") +
                                             " could not be created./The card was not "
                                             "sent for checking."}
                               : QStringList{});
        if (!written) {
            return;
        }
        QCOMPARE(result.path, f.office.file(file));
        QCOMPARE(test::readText(result.path),
                 QString("HX01|RPVR0300 1234567897AB********FAC    PROV      MAIL            "
                         "####################\r\n"));
        QCOMPARE(QFile(result.path).permissions() &
                     ~(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser),
                 QFile::Permissions());
        // A second request in the same second keeps the first one waiting.
        const auto second = f.exchange.RequestCardCheck("2345678901", "", false);
        QCOMPARE(second.path, QString(result.path).replace("100000.txt", "100001.txt"));
        QVERIFY(test::readText(result.path).contains(kNumber));
    }

    void pollTakesThisInstallationsAnswers_data() {
        QTest::addColumn<QStringList>("files");  // named 1.txt, 2.txt, ...
        QTest::addColumn<bool>("patientExists");
        QTest::addColumn<QStringList>("leftIn");
        QTest::addColumn<QStringList>("archived");
        QTest::addColumn<QStringList>("told");
        QTest::addColumn<QString>("stored");
        const QString details = answer("50|OK|AB|SMITH  |JOHN |M|19800105|");
        const QString toldDetails =
            "TW HCV: HN: 1234567897 VC: AB/Name: SMITH, JOHN/DOB: 1980/01/05 Sex: M/"
            "Response Code: 50/Response Message: Card passed validation";
        const QString unchanged = "|Ann|Old|F|1970/02/03";
        QTest::newRow("details stored")
            << QStringList{details} << true << QStringList{} << QStringList{}
            << QStringList{toldDetails} << "50|1|2026-11-20 08:15:00|JOHN|SMITH|M|1980/01/05";
        QTest::newRow("quoted identifier, code only")
            << QStringList{'"' + answer("9C|NO|")} << true << QStringList{} << QStringList{}
            << QStringList{"TW HCV: HN: 1234567897 VC: /Name: , /DOB:  Sex: /Response Code: 9C/"
                           "Response Message: Health care provider/facility not authorized for "
                           "HCV"}
            << "9C|2|2026-11-20 08:15:00" + unchanged;
        QTest::newRow("garbled details keep the names")
            << QStringList{answer("95|OK|AB|")} << true << QStringList{} << QStringList{}
            << QStringList{"TW HCV: HN: 1234567897 VC: AB/Name: , /DOB:  Sex: /Response Code: 95/"
                           "Response Message: "}
            << "95|5|2026-11-20 08:15:00" + unchanged;
        QTest::newRow("no patient: archived")
            << QStringList{details} << false << QStringList{} << QStringList{"1.txt"}
            << QStringList{toldDetails} << "";
        QTest::newRow("others' and unreadable answers stay, the next is taken")
            << QStringList{answer("50|OK|", "HX02"), "garbage", "", details} << true
            << QStringList{"1.txt", "2.txt", "3.txt"} << QStringList{} << QStringList{toldDetails}
            << "50|1|2026-11-20 08:15:00|JOHN|SMITH|M|1980/01/05";
    }
    void pollTakesThisInstallationsAnswers() {
        QFETCH(QStringList, files);
        QFETCH(bool, patientExists);
        QFETCH(QStringList, leftIn);
        QFETCH(QStringList, archived);
        QFETCH(QStringList, told);
        QFETCH(QString, stored);
        CardOffice f;
        if (patientExists) {
            f.patient(1, kNumber);
        }
        for (int i = 0; i < files.size(); ++i) {
            f.arrive(QString::number(i + 1) + ".txt", files[i]);
        }
        f.exchange.setPollingOn(false);
        QVERIFY(f.exchange.PollCardResponses().isEmpty());
        QCOMPARE(QDir(f.in()).entryList(QDir::Files).size(), files.size());

        f.exchange.setPollingOn(true);
        QCOMPARE(f.exchange.PollCardResponses().size(), told.size());
        QCOMPARE(f.told(), told);
        QCOMPARE(f.row(1), stored);
        // Whatever stays is left alone by the next poll too.
        for (int poll = 0; poll < 2; ++poll) {
            QCOMPARE(QDir(f.in()).entryList(QDir::Files), leftIn);
            QCOMPARE(QDir(f.archived()).entryList(QDir::Files), archived);
            QCOMPARE(f.stored, QStringList(stored.isEmpty() ? 0 : 1, kNumber));
            if (poll == 0) {
                QVERIFY(f.exchange.PollCardResponses().isEmpty());
            }
        }
        QCOMPARE(f.prompter.messages().size(), told.size());
    }

    void archivedAnswerIsTakenOnceItsPatientExists() {
        CardOffice f;
        f.arrive("1.txt", answer("51|OK|AB|SMITH|JOHN|M|19800105|"));
        QCOMPARE(f.exchange.PollCardResponses().value(0).what, PolledAnswer::What::Archived);
        // A newer answer of the same name replaces the archived one.
        const QDateTime later(QDate(2026, 11, 21), QTime(7, 30, 5));
        f.arrive("1.txt", answer("53|OK|AB|SMITH|JOHN|M|19800105|"), later);
        QCOMPARE(f.exchange.PollCardResponses().size(), 1);
        QVERIFY(test::readText(f.archived("1.txt")).contains("|53|"));
        QVERIFY(QDir(f.in()).entryList(QDir::Files).isEmpty());

        f.patient(7, kNumber);
        f.prompter.clear();
        const QList<PolledAnswer> taken = f.exchange.PollCardResponses();
        QCOMPARE(taken.size(), 1);
        QCOMPARE(taken[0].what, PolledAnswer::What::AppliedFromArchive);
        QCOMPARE(f.row(7), QString("53|1|2026-11-21 07:30:05|JOHN|SMITH|M|1980/01/05"));
        // The message shows the patient's row: its own version code, the stored names.
        QCOMPARE(f.told(), QStringList{"TW HCV: HN: 1234567897 VC: XY/Name: SMITH, JOHN/"
                                       "DOB: 1980/01/05 Sex: M/Response Code: 53/"
                                       "Response Message: Card passed validation; Card is "
                                       "expired"});
        QVERIFY(QDir(f.archived()).entryList(QDir::Files).isEmpty());
        QCOMPARE(f.stored, QStringList{kNumber});
    }

    // A refused store keeps its file and is told once, however often the poll comes back.
    void refusedStoreKeepsTheFile() {
        CardOffice f;
        f.patient(1, kNumber);
        f.patient(2, "2345678901");
        test::refuseRows(*f.db, "Update", "patients", "NEW.PatientID = 1", "disk full");
        f.arrive("1.txt", answer("50|OK|"));
        f.arrive("2.txt", answer("50|OK|", "HX01", "2345678901"));
        const QList<PolledAnswer> taken = f.exchange.PollCardResponses();
        QCOMPARE(taken.size(), 1);
        QCOMPARE(taken[0].fileName, QString("2.txt"));
        QCOMPARE(f.prompter.messages().first().title, QString("Error"));
        QVERIFY2(f.prompter.messages().first().text().contains("disk full"),
                 qPrintable(f.prompter.messages().first().text()));
        QCOMPARE(QDir(f.in()).entryList(QDir::Files), QStringList{"1.txt"});
        QCOMPARE(f.row(1), QString("<null>|<null>|<null>|Ann|Old|F|1970/02/03"));
        QCOMPARE(f.stored, QStringList{"2345678901"});
        // The next tick keeps the file and says nothing new.
        const qsizetype told = f.prompter.messages().size();
        QVERIFY(f.exchange.PollCardResponses().isEmpty());
        QCOMPARE(f.prompter.messages().size(), told);
        QCOMPARE(QDir(f.in()).entryList(QDir::Files), QStringList{"1.txt"});
    }

    void waitEndsWithAnAnswerOrItsTimeOut_data() {
        QTest::addColumn<bool>("patientExists");
        QTest::addColumn<QString>("arrives");
        QTest::addColumn<bool>("awaiting");  // after the poll
        test::row("answered", true, answer("50|OK|"), false);
        test::row("another installation's answer", true, answer("50|OK|", "HX02"), true);
        test::row("answer for no patient", false, answer("50|OK|"), true);
        test::row("nothing came", true, "", true);
    }
    void waitEndsWithAnAnswerOrItsTimeOut() {
        QFETCH(bool, patientExists);
        QFETCH(QString, arrives);
        QFETCH(bool, awaiting);
        CardOffice f;
        if (patientExists) {
            f.patient(1, kNumber);
        }
        f.exchange.RequestCardCheck(kNumber, "AB", false);
        QCOMPARE(f.waitsStarted, patientExists ? 1 : 0);
        if (!arrives.isEmpty()) {
            f.arrive("1.txt", arrives);
        }
        f.exchange.PollCardResponses();
        QCOMPARE(f.exchange.awaitingAnswer(), awaiting);
        QCOMPARE(f.waitsStopped, awaiting ? 0 : 1);
        f.prompter.clear();
        f.exchange.waitExpired();
        QVERIFY(!f.exchange.awaitingAnswer());
        QCOMPARE(f.told(), awaiting ? QStringList{"Brimsett: An Error occured with your HCV "
                                                  "service. Please call technical support."}
                                    : QStringList{});
        if (awaiting) {
            QCOMPARE(f.prompter.last().icon, Icon::Critical);
        }
    }
};

QTEST_GUILESS_MAIN(TestCardExchange)
#include "test_card_exchange.moc"
