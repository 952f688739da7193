#include "PatientTestOffice.h"

#include <QtTest>

#include <mutex>
#include <thread>

using namespace brimsett;

namespace {

QStringList texts(const RecordingPrompter& prompter) {
    QStringList all;
    for (const auto& m : prompter.messages()) {
        all << m.title + ": " + m.text();
    }
    return all;
}

// A patient whose number no check looks at: switch 1 spares Alberta, and an empty number is
// neither a duplicate nor compared with the table.
PatientEntry unnumbered(const QString& lName) {
    PatientEntry e;
    e.lName = lName;
    e.province = QStringLiteral("AB");
    return e;
}

}  // namespace

class TestPatientRegister : public QObject {
    Q_OBJECT

private slots:
    void newPatientIds_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("nextIdUnder");
        QTest::addColumn<int>("answer");
        QTest::addColumn<qint64>("savedId");  // 0: refused
        QTest::addColumn<QStringList>("messages");
        const QString question =
            "Patient ID: You entered a Patient ID for this patient.\n"
            "Click Yes to use this number (%1)\n"
            "or click No to let the program find the next available ID number.";
        // Stored ids: 5, 99 and 150.
        test::row("none typed: next", "", 0, int(Answer::No), qint64(151), QStringList{});
        test::row("none typed, below the limit", "", 120, int(Answer::No), qint64(100),
                  QStringList{});
        test::row("none typed, range full", "", 100, int(Answer::No), qint64(0),
                  QStringList{"Patient ID: No free Patient ID is left below 100.\n"
                              "Type a Patient ID for this patient, or raise the limit."});
        test::row("not a number", "12a", 0, int(Answer::Yes), qint64(0),
                  QStringList{"Patients: Invalid number."});
        test::row("taken", " 99 ", 0, int(Answer::Yes), qint64(0),
                  QStringList{"Patient ID: You entered a Patient ID which is already reserved."});
        test::row("free, Yes", "42", 0, int(Answer::Yes), qint64(42),
                  QStringList{question.arg(42)});
        test::row("free, No", "42", 0, int(Answer::No), qint64(151), QStringList{question.arg(42)});
    }
    void newPatientIds() {
        QFETCH(QString, typed);
        QFETCH(int, nextIdUnder);
        QFETCH(int, answer);
        QFETCH(qint64, savedId);
        QFETCH(QStringList, messages);
        test::PatientTestOffice o;
        o.settings.option[1] = true;
        o.settings.nextIDUnder = nextIdUnder;
        for (const qint64 id : {5, 99, 150}) {
            o.addPatient(id, QString(), "AB");
        }
        o.prompter.script({Answer(answer)});
        PatientEntry e = unnumbered("New");
        e.patientId = typed;
        const auto result = o.patients().saveNew(e);
        QCOMPARE(texts(o.prompter), messages);
        QCOMPARE(result.outcome,
                 savedId ? PatientRegister::Outcome::Saved : PatientRegister::Outcome::Refused);
        QCOMPARE(result.savedId, savedId);
        QCOMPARE(o.db->scalar("Select Count(*) From patients Where LName='New'").toInt(),
                 savedId ? 1 : 0);
        if (savedId) {
            QCOMPARE(o.db->scalar("Select LName From patients Where PatientID=?", {savedId}),
                     QVariant("New"));
        }
    }

    void newPatientIsWrittenThenLogged() {
        test::PatientTestOffice o;
        o.log.setOn(true);
        PatientEntry e = test::validPatient();
        e.fName = "Mary-Kate";
        e.lName = "O'Brien";
        e.sex = "f";
        e.dob = "19800517";
        const auto result = o.patients().saveNew(e);
        QCOMPARE(result.outcome, PatientRegister::Outcome::Saved);
        QCOMPARE(test::rowsOf(o.db->exec(
                     "Select PatientID, LName, Sex, DOB, ExpYear, Flag, BatchID From patients")),
                 QStringList{"1|O'Brien|F|1980-05-17|2030-01-31|0|<null>"});
        const QString logged = test::readText(o.log.path());
        QVERIFY2(logged.startsWith("Insert Into patients (PatientID,HealthNum,"),
                 qPrintable(logged));
        QVERIFY(logged.contains("'O''Brien'"));
        QVERIFY(logged.endsWith(")\r\n"));
    }

    void editKeepsTheCardAnswerAndUnchangedWritesNothing() {
        test::PatientTestOffice o;
        o.log.setOn(true);
        o.addPatient(3, "1234567897", "ON", "Ann", "Lee");
        o.db->exec(
            "Update patients Set BatchID='B1', HNCheckDate='2026-11-20 08:00:00',"
            " Response='50', Status=1, HL7PatID='H9' Where PatientID=3");
        auto reg = o.patients();
        PatientEntry e = *reg.load(3);
        QCOMPARE(e.hnCheckDate, QStringLiteral("2026/11/20"));
        QCOMPARE(reg.saveChanges(3, e).outcome, PatientRegister::Outcome::Unchanged);
        QCOMPARE(texts(o.prompter), QStringList{"Patients: This patient is already saved,\n"
                                                "and you made no changes to it."});
        QVERIFY(test::readText(o.log.path()).isEmpty());
        e.fName = "Anne";
        e.batchId.clear();
        e.response.clear();
        QCOMPARE(reg.saveChanges(3, e).outcome, PatientRegister::Outcome::Saved);
        QCOMPARE(test::rowsOf(o.db->exec("Select FName, BatchID, HNCheckDate, Response, Status,"
                                         " HL7PatID From patients")),
                 QStringList{"Anne|B1|2026-11-20 08:00:00|50|1|H9"});
        const QString logged = test::readText(o.log.path());
        QVERIFY(logged.startsWith("Update patients Set HealthNum='1234567897',"));
        QVERIFY(logged.endsWith(" Where PatientID=3\r\n"));
        QVERIFY(!logged.contains("BatchID"));
    }

    void deleteAccount_data() {
        QTest::addColumn<int>("answer");
        QTest::addColumn<QStringList>("claimsLeft");
        QTest::addColumn<QStringList>("itemsLeft");
        test::row("Yes", int(Answer::Yes), QStringList{"12"}, QStringList{"12|1", "13|1"});
        test::row("No", int(Answer::No), QStringList{"10", "11", "12"},
                  QStringList{"10|1", "10|2", "11|1", "12|1", "13|1"});
    }
    void deleteAccount() {
        QFETCH(int, answer);
        QFETCH(QStringList, claimsLeft);
        QFETCH(QStringList, itemsLeft);
        test::PatientTestOffice o;
        o.log.setOn(true);
        o.addPatient(1, "1234567897", "ON", "John", "Smith");
        o.addPatient(2, "9876543217", "ON");
        for (const auto& [claim, patient] : QList<std::pair<int, int>>{{10, 1}, {11, 1}, {12, 2}}) {
            o.db->exec(
                "Insert Into claims (ClaimID, BatchID, AcctNum, PayProg, PatientID)"
                " Values(?, '000000000000', ?, 'HCP - P', ?)",
                {claim, QString::number(claim), patient});
        }
        // Item 13 belongs to no claim at all; it is not this patient's to delete.
        for (const auto& [claim, item] :
             QList<std::pair<int, int>>{{10, 1}, {10, 2}, {11, 1}, {12, 1}, {13, 1}}) {
            o.db->exec("Insert Into items (ClaimID, ItemID) Values(?,?)", {claim, item});
        }
        o.prompter.script({Answer(answer)});
        QCOMPARE(o.patients().deleteAccount(1), Answer(answer) == Answer::Yes);

        const auto& question = o.prompter.last();
        QCOMPARE(question.title, QStringLiteral("Delete Account"));
        QCOMPARE(question.defaultAnswer, Answer::No);
        QCOMPARE(question.lines,
                 QStringList({"This will permanently delete account 1 (John Smith)",
                              "and its 2 claim(s) with 3 item(s).", "", "Are you sure?"}));
        QCOMPARE(test::rowsOf(o.db->exec("Select ClaimID From claims Order By ClaimID")),
                 claimsLeft);
        QCOMPARE(test::rowsOf(o.db->exec("Select ClaimID, ItemID From items Order By 1, 2")),
                 itemsLeft);
        const bool deleted = Answer(answer) == Answer::Yes;
        QCOMPARE(o.patients().exists(1), !deleted);
        QVERIFY(o.patients().exists(2));
        QCOMPARE(test::readText(o.log.path()),
                 deleted ? QStringLiteral("Delete From items Where ClaimID In (Select ClaimID From "
                                          "claims Where PatientID=1)\r\n"
                                          "Delete From claims Where PatientID=1\r\n"
                                          "Delete From patients Where PatientID=1\r\n")
                         : QString());
    }

    void twoComputersSavingAtOnceGetDistinctIds() {
        test::PatientTestOffice o;
        const QString file = o.db->location();
        constexpr int kEach = 25;
        QStringList failures;
        std::mutex failuresLock;
        const auto computer = [&](const QString& name, QList<qint64>* ids) {
            try {
                auto db = test::openAgain(file);
                AppSettings settings;
                settings.option[1] = true;
                RecordingPrompter prompter;
                FixedClock clock(o.clock.now());
                const SqlLog log(OfficePaths(o.office.folder()), false);
                PatientRegister reg(*db, settings, prompter, clock, log);
                for (int i = 0; i < kEach; ++i) {
                    ids->append(reg.saveNew(unnumbered(name)).savedId);
                }
            } catch (const DbError& e) {
                const std::lock_guard<std::mutex> hold(failuresLock);
                failures << e.message();
            }
        };
        QList<qint64> first;
        QList<qint64> second;
        std::thread a(computer, QStringLiteral("A"), &first);
        std::thread b(computer, QStringLiteral("B"), &second);
        a.join();
        b.join();
        QCOMPARE(failures, QStringList{});
        QList<qint64> all = first + second;
        std::sort(all.begin(), all.end());
        QList<qint64> everyIdOnce;
        for (qint64 id = 1; id <= 2 * kEach; ++id) {
            everyIdOnce << id;
        }
        QCOMPARE(all, everyIdOnce);
    }

    // Another computer registers the same card while this one waits for an answer: the save
    // finds it under the write lock and refuses.
    void sameCardSavedElsewhereMeanwhile() {
        struct MeanwhileElsewhere : RecordingPrompter {
            test::PatientTestOffice* office = nullptr;
            Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
                       Answer defaultAnswer) override {
                office->addPatient(50, QStringLiteral("1234567897"), QStringLiteral("ON"),
                                   QStringLiteral("Other"), QStringLiteral("Desk"));
                RecordingPrompter::ask(title, lines, icon, buttons, defaultAnswer);
                return Answer::Yes;
            }
        };
        test::PatientTestOffice o;
        MeanwhileElsewhere prompter;
        prompter.office = &o;
        PatientRegister reg(*o.db, o.settings, prompter, o.clock, o.log);
        PatientEntry e = test::validPatient();
        e.patientId = QStringLiteral("7");
        QCOMPARE(reg.saveNew(e).outcome, PatientRegister::Outcome::Refused);
        QCOMPARE(prompter.last().title, QStringLiteral("Errors"));
        QCOMPARE(prompter.last().lines.mid(2),
                 (QStringList{"There is already an existing patient (Other Desk)",
                              "with health card number '1234567897'."}));
        QVERIFY(!reg.exists(7));
    }
};

QTEST_GUILESS_MAIN(TestPatientRegister)
#include "test_patient_register.moc"
