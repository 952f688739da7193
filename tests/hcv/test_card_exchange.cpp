#include "OfficeFixture.h"
#include "hcv/CardExchange.h"

#include <QDir>
#include <QFile>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::hcv;

namespace {

const QString kNumber = QStringLiteral("1234567897");
const QDateTime kArrived(QDate(2026, 11, 20), QTime(8, 15, 0));

QString answer(const QString& tail, const QString& installation = QStringLiteral("HX01"),
               const QString& number = kNumber) {
    return installation + "|RPVR0300 " + number +
           "AB********FACILTYPROVIDER0MAILBOX1        ####################|" + tail;
}

// The message shown for one answer.
QString shown(const QString& vc, const QString& name, const QString& dobSex, const QString& code,
              const QString& message) {
    return "TW HCV: HN: 1234567897 VC: " + vc + "/Name: " + name + "/DOB: " + dobSex +
           "/Response Code: " + code + "/Response Message: " + message;
}

// An exchange that counts what it asks of the main screen.
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
        for (const auto& [key, value] :
             {std::pair{"HX", "HX01"}, {"FX", "FAC"}, {"PX", "PROV"}, {"MX", "MAIL"}}) {
            office.store().save("General", key, value);
        }
        exchange.setPollingOn(true);
    }
    void patient(qint64 id, const QString& number, const QVariant& checked = {}) {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, FName, LName, Sex,"
            " DOB, HNCheckDate) Values (?, ?, 'XY', 'Ann', 'Old', 'F', ?, ?)",
            {id, number, QDate(1970, 2, 3), checked});
    }
    QStringList in(const QString& folder = "HCVIN") const {
        return QDir(office.file(folder)).entryList(QDir::Files);
    }
    void arrive(const QString& name, const QString& line, const QDateTime& at = kArrived) {
        QDir().mkpath(office.file("HCVIN"));
        test::writeText(office.file("HCVIN/" + name), line.toLatin1() + "\r\n");
        QFile file(office.file("HCVIN/" + name));
        QVERIFY(file.open(QIODevice::ReadWrite) &&
                file.setFileTime(at, QFileDevice::FileModificationTime));
    }
    QString row(qint64 id) {
        return test::rowsOf(db->exec("Select Response, Status, HNCheckDate, FName, LName, Sex,"
                                     " DOB From patients Where PatientID=?",
                                     {id}))
            .value(0);
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
        QTest::addColumn<QVariant>("checked");  // the patient's last check; "none": no patient
        QTest::addColumn<bool>("force");
        QTest::addColumn<QString>("file");  // in the office folder; "" answered today, "!" failed
        const QVariant today(QDateTime(QDate(2026, 11, 22), QTime(8, 0)));
        const QVariant yesterday(QDateTime(QDate(2026, 11, 21), QTime(23, 59)));
        test::row("folder as written, no patient", "out/", QVariant("none"), false,
                  "out/20261122100000.txt");
        test::row("no separator glues the name", "out", yesterday, false, "out20261122100000.txt");
        test::row("answered earlier today", "", today, false, "");
        test::row("answered today, forced", "", today, true, "HCVOUT/20261122100000.txt");
        test::row("a file stands where the folder would", "blocker/sub/", QVariant(), false, "!");
    }
    void requestIsWrittenWholeOncePerDay() {
        QFETCH(QString, ho);
        QFETCH(QVariant, checked);
        QFETCH(bool, force);
        QFETCH(QString, file);
        CardOffice f;
        f.office.store().save("General", "HO", ho);
        test::writeText(f.office.file("blocker"), "not a folder");
        const bool patientExists = checked != QVariant("none");
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
        QCOMPARE(QFile(result.path).permissions() & (QFile::ReadGroup | QFile::ReadOther),
                 QFile::Permissions());
        // A second request in the same second keeps the first one waiting.
        const auto second = f.exchange.RequestCardCheck("2345678901", "", false);
        QCOMPARE(second.path, QString(result.path).replace("100000.txt", "100001.txt"));
        QVERIFY(test::readText(result.path).contains(kNumber));
    }

    // The request's wait ends with this installation's answer, else its time-out tells once.
    void pollTakesThisInstallationsAnswers_data() {
        QTest::addColumn<QStringList>("files");  // named 1.txt, 2.txt, ...
        QTest::addColumn<QStringList>("leftIn");
        QTest::addColumn<QStringList>("told");
        QTest::addColumn<QString>("stored");
        test::row("quoted identifier, code only", QStringList{'"' + answer("9C|NO|")},
                  QStringList{},
                  QStringList{shown("", ", ", " Sex: ", "9C",
                                    "Health care provider/facility not authorized for HCV")},
                  "9C|2|2026-11-20 08:15:00|Ann|Old|F|1970-02-03");
        test::row("others' and unreadable answers stay, the next is taken",
                  QStringList{answer("50|OK|", "HX02"), "garbage", "",
                              answer("50|OK|AB|SMITH  |JOHN |M|19800105|")},
                  QStringList{"1.txt", "2.txt", "3.txt"},
                  QStringList{shown("AB", "SMITH, JOHN", "1980/01/05 Sex: M", "50",
                                    "Card passed validation")},
                  "50|1|2026-11-20 08:15:00|JOHN|SMITH|M|1980-01-05");
        test::row("only another installation's answer", QStringList{answer("50|OK|", "HX02")},
                  QStringList{"1.txt"},
                  QStringList{"Brimsett: An Error occured with your HCV service. Please call "
                              "technical support."},
                  "<null>|<null>|<null>|Ann|Old|F|1970-02-03");
    }
    void pollTakesThisInstallationsAnswers() {
        QFETCH(QStringList, files);
        QFETCH(QStringList, leftIn);
        QFETCH(QStringList, told);
        QFETCH(QString, stored);
        CardOffice f;
        f.patient(1, kNumber);
        f.exchange.RequestCardCheck(kNumber, "AB", false);
        for (int i = 0; i < files.size(); ++i) {
            f.arrive(QString::number(i + 1) + ".txt", files[i]);
        }
        f.exchange.setPollingOn(false);
        QVERIFY(f.exchange.PollCardResponses().isEmpty());
        QCOMPARE(f.in().size(), files.size());

        f.exchange.setPollingOn(true);
        const bool answered = !stored.startsWith("<null>");
        QCOMPARE(f.exchange.PollCardResponses().size(), answered ? 1 : 0);
        QCOMPARE(f.row(1), stored);
        QCOMPARE(f.exchange.awaitingAnswer(), !answered);
        QCOMPARE(f.waitsStopped, answered ? 1 : 0);
        f.exchange.waitExpired();
        QVERIFY(!f.exchange.awaitingAnswer());
        QCOMPARE(f.told(), told);
        QCOMPARE(f.prompter.last().icon, answered ? Icon::Information : Icon::Critical);
        // Whatever stays is left alone by the next poll too.
        QVERIFY(f.exchange.PollCardResponses().isEmpty());
        QCOMPARE(f.in(), leftIn);
        QVERIFY(f.in("HCVIN/Archive").isEmpty());
        QCOMPARE(f.stored, QStringList(answered ? 1 : 0, kNumber));
        QCOMPARE(f.prompter.messages().size(), told.size());
    }

    // An answer without its patient waits in the archive; one whose store is refused keeps its
    // file and is told once, however often the poll comes back.
    void answersWaitForTheirPatient() {
        CardOffice f;
        f.patient(2, "2345678901");
        test::refuseRows(*f.db, "Update", "patients", "NEW.PatientID = 2", "disk full");
        f.exchange.RequestCardCheck(kNumber, "AB", false);
        f.arrive("1.txt", answer("51|OK|AB|SMITH|JOHN|M|19800105|"));
        f.arrive("2.txt", answer("50|OK|", "HX01", "2345678901"));
        QCOMPARE(f.exchange.PollCardResponses().value(0).what, PolledAnswer::What::Archived);
        QVERIFY(f.exchange.awaitingAnswer());
        QVERIFY2(f.prompter.last().text().contains("disk full"),
                 qPrintable(f.prompter.last().text()));
        // A newer answer of the same name replaces the archived one.
        f.arrive("1.txt", answer("53|OK|AB|SMITH|JOHN|M|19800105|"), kArrived.addDays(1));
        QCOMPARE(f.exchange.PollCardResponses().size(), 1);
        QCOMPARE(f.prompter.messages().size(), 3);

        f.patient(7, kNumber);
        f.prompter.clear();
        QCOMPARE(f.exchange.PollCardResponses().value(0).what,
                 PolledAnswer::What::AppliedFromArchive);
        QCOMPARE(f.row(7), QString("53|1|2026-11-21 08:15:00|JOHN|SMITH|M|1980-01-05"));
        // The message shows the patient's row: its own version code, the stored names.
        QCOMPARE(f.told(), QStringList{shown("XY", "SMITH, JOHN", "1980/01/05 Sex: M", "53",
                                             "Card passed validation; Card is expired")});
        QVERIFY(f.in("HCVIN/Archive").isEmpty());
        QCOMPARE(f.in(), QStringList{"2.txt"});
        QCOMPARE(f.row(2), QString("<null>|<null>|<null>|Ann|Old|F|1970-02-03"));
        QCOMPARE(f.stored, QStringList{kNumber});
    }
};

QTEST_GUILESS_MAIN(TestCardExchange)
#include "test_card_exchange.moc"
