// Preparing claim files: who and what goes in, refusals, and nothing half done on failure.
#include "BatchOffice.h"
#include "ministry/BatchRegister.h"

#include <QFile>
#include <QtTest>

using namespace brimsett;

namespace {

const QDate kDay20(2026, 11, 20);

QStringList texts(const QList<RecordingPrompter::Message>& messages) {
    QStringList out;
    for (const auto& m : messages) {
        out << m.title + ": " + m.text();
    }
    return out;
}

}  // namespace

class TestBatchPreparation : public QObject {
    Q_OBJECT

private slots:
    void refusals_data();
    void refusals();
    void batchesOfABillingNumber_data();
    void batchesOfABillingNumber();
    void holdingBackByDate_data();
    void holdingBackByDate();
    void failureLeavesNothing();
    void everyEarlierBatchIsKept();
    void reverseRepricesAndReturnsToPending();
    void deleteRecordAndSubmission();
};

void TestBatchPreparation::refusals_data() {
    QTest::addColumn<QString>("doctor");
    QTest::addColumn<QString>("cutOff");
    QTest::addColumn<QString>("message");
    test::row("no doctor", "", "", "Error: Please select a doctor.");
    test::row("cut-off not a date", "AB", "2026/13/01", "Error: '2026/13/01' is not a valid date.");
    test::row("doctor not found", "ZZ", "",
              "Error: Doctor Not Found.\nPlease check that the Doctor ID is correct.");
    test::row("nothing pending before the cut-off", "AB", "2026/11/01",
              "Submit Claims: No claims to submit.");
}

void TestBatchPreparation::refusals() {
    QFETCH(QString, doctor);
    QFETCH(QString, cutOff);
    QFETCH(QString, message);
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), kDay20}});
    o.office.store().saveNumber("General", "DiskIDCounter", 41);

    QVERIFY(!o.prepare(test::requestFor(doctor, cutOff)));
    QCOMPARE(texts(o.prompter.messages()), QStringList{message});
    // No file, no batch, the counter as it was, the claim still pending.
    QCOMPARE(QDir(o.office.folder()).entryList({"H*"}, QDir::Files), QStringList{});
    QCOMPARE(o.count("Select Count(*) From batches"), 0);
    QCOMPARE(o.office.store().readNumber("General", "DiskIDCounter"), 41);
    QCOMPARE(o.batchOf(10000001), kPendingBatch);
}

void TestBatchPreparation::batchesOfABillingNumber_data() {
    QTest::addColumn<bool>("oneProfile");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QStringList>("batches");  // specialty:claims
    QTest::addColumn<QStringList>("pending");  // claims left pending
    QTest::newRow("whole billing number")
        << false << "HKGR01.001" << QStringList{"00:2", "18:1"} << QStringList{"10000004"};
    QTest::newRow("one profile") << true << "HK111111.001" << QStringList{"00:1"}
                                 << QStringList{"10000002", "10000003", "10000004"};
}

void TestBatchPreparation::batchesOfABillingNumber() {
    QFETCH(bool, oneProfile);
    QFETCH(QString, fileName);
    QFETCH(QStringList, batches);
    QFETCH(QStringList, pending);
    test::BatchOffice o;
    // A group of two provider numbers: the file is named for the group. Provider 111111
    // bills under two specialties (one at two locations); provider 222222 is not in it.
    o.addDoctor("AB", "GR01", "111111", "00", "1234");
    o.addDoctor("AC", "GR01", "111111", "00", "5678");
    o.addDoctor("AD", "GR01", "111111", "18");
    o.addDoctor("AE", "GR01", "222222", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), kDay20}});
    o.claim(10000002, "00000002", "AC", {{"A007A", Money::fromCents(3370), kDay20}});
    o.claim(10000003, "00000003", "AD", {{"A007A", Money::fromCents(3370), kDay20}});
    o.claim(10000004, "00000004", "AE", {{"A007A", Money::fromCents(3370), kDay20}});

    PrepareRequest request = test::requestFor("AB");
    request.oneProfile = oneProfile;
    const auto file = o.prepare(request);
    QVERIFY(file);
    QCOMPARE(file->fileName, fileName);
    QStringList made;
    for (const PreparedBatch& b : file->batches) {
        made << b.specCode + ":" + QString::number(b.claims);
    }
    QCOMPARE(made, batches);
    // Every batch of the file starts with its own header and ends with its trailer.
    const QString text = test::readText(file->path);
    QCOMPARE(text.count("HEB"), batches.size());
    QCOMPARE(text.count("HEE"), batches.size());
    QCOMPARE(test::rowsOf(o.db->exec("Select ClaimID From claims Where BatchID=? Order By ClaimID",
                                     {kPendingBatch})),
             pending);
}

void TestBatchPreparation::holdingBackByDate_data() {
    QTest::addColumn<bool>("advanced");
    QTest::addColumn<bool>("byCreated");
    QTest::addColumn<QString>("cutOff");
    QTest::addColumn<QString>("start");
    QTest::addColumn<QStringList>("sent");
    // Claim 1: served 11/10, created 11/21. Claim 2: served 11/20 and 11/05, created 11/21.
    // Claim 3: served 11/20, created 11/22 10:00.
    test::row("no cut-off sends all", false, false, "", "", QStringList{"1", "2", "3"});
    test::row("by latest service", false, false, "2026/11/15", "", QStringList{"1"});
    test::row("by creation", false, true, "20261121", "", QStringList{"1", "2"});
    test::row("start ignored without switch 18", false, false, "", "2026/11/15",
              QStringList{"1", "2", "3"});
    test::row("start with switch 18", true, false, "", "2026/11/15", QStringList{"2", "3"});
    test::row("window with switch 18", true, true, "2026-11-21", "2026/11/21",
              QStringList{"1", "2"});
}

void TestBatchPreparation::holdingBackByDate() {
    QFETCH(bool, advanced);
    QFETCH(bool, byCreated);
    QFETCH(QString, cutOff);
    QFETCH(QString, start);
    QFETCH(QStringList, sent);
    test::BatchOffice o;
    o.settings.option[18] = advanced;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(100), QDate(2026, 11, 10)}});
    o.claim(10000002, "00000002", "AB",
            {{"A007A", Money::fromCents(100), kDay20},
             {"A001A", Money::fromCents(100), QDate(2026, 11, 5)}});
    o.claim(10000003, "00000003", "AB", {{"A007A", Money::fromCents(100), kDay20}}, "HCP - P",
            [&](ClaimRecord& c) { c.dateCreated = o.clock.now(); });

    PrepareRequest request = test::requestFor("AB", cutOff);
    request.start = start;
    request.dateBy =
        byCreated ? PrepareRequest::DateBy::Created : PrepareRequest::DateBy::LatestService;
    QVERIFY(o.prepare(request));
    QStringList actual;
    for (int n = 1; n <= 3; ++n) {
        if (o.batchOf(10000000 + n) != kPendingBatch) {
            actual << QString::number(n);
        }
    }
    QCOMPARE(actual, sent);
    QCOMPARE(o.count("Select Count(*) From claims Where BatchID='111111111111'"), 0);
}

void TestBatchPreparation::failureLeavesNothing() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), kDay20}});
    o.claim(10000002, "00000002", "AB", {{"A007A", Money::fromCents(3370), QDate(2026, 12, 1)}});
    // The engine refuses the batch row after the claims were held back and the file written,
    // while the table "trouble" holds a row.
    o.db->exec(o.db->dialect().ddl("Create Table trouble (Kind Text(10))"));
    o.db->exec("Insert Into trouble Values ('disk')");
    test::refuseRows(*o.db, "Insert", "batches", "Exists (Select 1 From trouble)", "disk full");

    QVERIFY_THROWS_EXCEPTION(DbError, o.prepare(test::requestFor("AB", "2026/11/22")));
    QCOMPARE(o.batchOf(10000001), kPendingBatch);
    QCOMPARE(o.batchOf(10000002), kPendingBatch);
    QCOMPARE(o.count("Select Count(*) From batches"), 0);
    QCOMPARE(QDir(o.office.folder()).entryList({"H*"}, QDir::Files), QStringList{});
    QCOMPARE(o.office.store().readNumber("General", "DiskIDCounter"), 0);
    QVERIFY(!o.office.store().contains("Batch", "HK123456.001"));

    // Once the trouble is gone the same file name is used.
    o.db->exec("Delete From trouble");
    const auto file = o.prepare(test::requestFor("AB", "2026/11/22"));
    QVERIFY(file);
    QCOMPARE(file->fileName, QStringLiteral("HK123456.001"));
}

void TestBatchPreparation::everyEarlierBatchIsKept() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    // Nineteen earlier batches: the next one takes the list past its declared 250 characters.
    QString earlier;
    for (int n = 1; n <= 19; ++n) {
        earlier += QString("20261001%1!").arg(n, 4, 10, QChar('0'));
    }
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), kDay20}}, "HCP - P",
            [&](ClaimRecord& c) { c.allBatches = earlier; });
    const auto file = o.prepare(test::requestFor("AB"));
    QVERIFY(file);
    QCOMPARE(o.db->scalar("Select AllBatches From claims Where ClaimID=10000001").toString(),
             earlier + file->batches.front().batchId + "!");
}

void TestBatchPreparation::reverseRepricesAndReturnsToPending() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.addDoctor("SP", "0000", "123456", "00", {}, "18");  // bills as a specialist
    o.db->exec(
        "Insert Into servicecodes (ServiceCode, FeeGeneral, FeeSpecialist, FeeAssistant, "
        "UnitsAssistant) Values ('A007', 337000, 500000, 120000, 6)");
    o.claim(10000001, "00000001", "AB",
            {{"A007A", Money::fromCents(100), kDay20},
             {"A007B", Money::fromCents(100), kDay20},
             {"X999A", Money::fromCents(4400), kDay20}},
            "HCP - P", [](ClaimRecord& c) { c.items[0].numServ = 2; });
    o.claim(10000002, "00000002", "SP", {{"A007A", Money::fromCents(100), kDay20}});
    const auto file = o.prepare(test::requestFor("AB"));
    QVERIFY(file);
    const QString batch = file->batches.front().batchId;
    BatchRegister batches(*o.db, o.prompter, o.log);

    o.prompter.script({Answer::No});
    QVERIFY(!batches.reverse(batch));
    QCOMPARE(o.prompter.last().text(),
             QStringLiteral("This will reverse (undo) your submission\n"
                            "by changing all claims\n"
                            "in this batch to Pending.\n\nAre you sure?"));
    QCOMPARE(o.batchOf(10000001), batch);

    o.prompter.script({Answer::Yes});
    QVERIFY(batches.reverse(batch));
    QCOMPARE(o.batchOf(10000001), kPendingBatch);
    QCOMPARE(o.batchOf(10000002), kPendingBatch);
    QVERIFY(!batches.find(batch));
    // General fee times two services, the assistant's fee, a code not in the schedule as
    // billed, and the specialist's fee for the doctor whose modifier says so.
    QCOMPARE(test::rowsOf(o.db->exec("Select FeeSubm From items Order By ClaimID, ItemID")),
             (QStringList{"674000", "120000", "440000", "500000"}));
}

void TestBatchPreparation::deleteRecordAndSubmission() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), kDay20}});
    const auto file = o.prepare(test::requestFor("AB"));
    QVERIFY(file);
    const QString batch = file->batches.front().batchId;
    BatchRegister batches(*o.db, o.prompter, o.log);

    QCOMPARE(batches.list().front().submittedText(), QStringLiteral("Not Submitted"));
    QVERIFY(!batches.submittedOn(file->fileName));
    QCOMPARE(batches.markSubmitted(file->fileName, QDate(2026, 11, 23)), 1);
    // A second hand-over keeps the first date.
    QCOMPARE(batches.markSubmitted(file->fileName, QDate(2026, 11, 24)), 0);
    QCOMPARE(*batches.submittedOn(file->fileName), QDate(2026, 11, 23));
    const BatchRow row = batches.list().front();
    QCOMPARE(row.doctorText() + " " + row.countsText() + " " + row.submittedText(),
             QStringLiteral("0000-123456-00 1/4 2026/11/23"));

    o.prompter.script({Answer::Yes});
    QVERIFY(batches.deleteRecord(batch));
    QCOMPARE(o.prompter.last().title, QStringLiteral("Delete Batch"));
    QVERIFY(batches.list().empty());
    QCOMPARE(o.batchOf(10000001), batch);  // the claims keep their batch number
}

QTEST_GUILESS_MAIN(TestBatchPreparation)
#include "test_batch_preparation.moc"
