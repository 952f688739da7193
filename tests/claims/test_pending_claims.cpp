#include "OfficeFixture.h"
#include "claims/ClaimStore.h"
#include "claims/PendingClaims.h"

#include <QtTest>

using namespace brimsett;

namespace {

struct Pending : test::OfficeFixture {
    ClaimStore store{*db, clock, log};

    // items: "itemId code cents date" (cents "-" for no fee)
    void claim(qint64 id, const char* acct, const char* doctor, const QString& batch,
               const char* lName, const char* fName, const QStringList& items) {
        ClaimRecord c;
        c.claimId = id;
        c.acctNum = acct;
        c.doctorId = doctor;
        c.batchId = batch;
        c.payProg = "HCP - P";
        c.patientId = id % 100;
        c.lName = lName;
        c.fName = fName;
        for (const QString& text : items) {
            const QStringList f = text.split(' ');
            ItemRecord item;
            item.claimId = id;
            item.itemId = f.at(0).toInt();
            item.serviceCode = f.at(1);
            item.diagCode = "799";
            item.numServ = 1;
            if (f.at(2) != "-") {
                item.feeSubm = Money::fromCents(f.at(2).toLongLong());
            }
            item.serviceDate = QDate::fromString(f.at(3), Qt::ISODate);
            c.items << item;
        }
        store.write(c);
    }

    Pending() {
        claim(10000001, "00000001", "AB", kPendingBatch, "Zed", "Ann",
              {"1 A007A 3370 2026-11-20", "3 A008A 2500 2026-11-01"});
        claim(10000002, "00000002", "cd", kPendingBatch, "Adams", "Bob",
              {"1 A007A 1000 2026-11-10"});
        claim(70000001, "00000001", "AB", kPendingBatch, "Zed", "Ann", {"2 A007B - 2026-11-20"});
        claim(10000003, "00000003", "AB", "J20261122001", "Old", "Al", {"1 A007A 9900 2026-11-02"});
        claim(10000004, "00000004", "AB", kPendingBatch, "Mills", "Cy",
              {"2 G590A 500 2026-11-15", "1 A001A 700 2026-11-05"});
    }
};

}  // namespace

class TestPendingClaims : public QObject {
    Q_OBJECT

private slots:
    void linesAndTotal_data() {
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<int>("order");
        QTest::addColumn<bool>("lastNameFirst");
        QTest::addColumn<QStringList>("lines");  // "claim.item patient"
        QTest::addColumn<QString>("total");
        using L = QStringList;
        const QString all = "Total Pending $80.70 5 items.";
        const L zed{"10000001.1 Ann Zed", "10000001.3 Ann Zed", "70000001.2 Ann Zed"};
        const L mills{"10000004.1 Cy Mills", "10000004.2 Cy Mills"};
        const L adams{"10000002.1 Bob Adams"};
        test::row("account", "", int(PendingOrder::Account), false, zed + adams + mills, all);
        test::row("patient", "", int(PendingOrder::Patient), false, zed + adams + mills, all);
        test::row("patient, last name first", "", int(PendingOrder::Patient), true,
                  L{"10000002.1 Adams, Bob", "10000004.1 Mills, Cy", "10000004.2 Mills, Cy",
                    "10000001.1 Zed, Ann", "10000001.3 Zed, Ann", "70000001.2 Zed, Ann"},
                  all);
        test::row("earliest service date", "", int(PendingOrder::ServiceDate), false,
                  L{zed.at(0), zed.at(1)} + mills + adams + L{zed.at(2)}, all);
        test::row("doctor", "", int(PendingOrder::Doctor), false, zed + mills + adams, all);
        test::row("one doctor, any case", "ab ", int(PendingOrder::Account), false, zed + mills,
                  "Total Pending $70.70 4 items.");
        test::row("stored in another case", "CD", int(PendingOrder::Account), false, adams,
                  "Total Pending $10.00 1 items.");
        test::row("nobody's", "ZZ", int(PendingOrder::Account), false, L{},
                  "Total Pending $0.00 0 items.");
    }
    void linesAndTotal() {
        QFETCH(QString, doctor);
        QFETCH(int, order);
        QFETCH(bool, lastNameFirst);
        QFETCH(QStringList, lines);
        QFETCH(QString, total);
        Pending o;
        o.settings.option[8] = lastNameFirst;
        PendingClaims pending(*o.db, o.settings);
        QStringList got;
        for (const PendingLine& line : pending.lines(doctor, PendingOrder(order))) {
            got << QStringLiteral("%1.%2 %3").arg(line.claimId).arg(line.itemId).arg(line.patient);
        }
        QCOMPARE(got, lines);
        QCOMPARE(pending.totalLine(doctor), total);
    }

    void lineCarriesTheItem() {
        Pending o;
        const PendingLine line = PendingClaims(*o.db, o.settings).lines("", {}).at(2);
        QCOMPARE(QStringList({line.doc, line.account, QString::number(line.patientId),
                              line.chargeTo, line.service, line.diag, QString::number(line.numServ),
                              line.serviceDate.toString()}),
                 QStringList({"AB", "00000001", "1", "HCP - P", "A007B", "799", "1",
                              QDate(2026, 11, 20).toString()}));
        QVERIFY(!line.fee);
    }

    void deleteClaim_data() {
        QTest::addColumn<qint64>("claimId");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<bool>("deleted");
        QTest::addColumn<QString>("told");  // a message instead of the question
        test::row("yes", qint64(10000004), true, true, "");
        test::row("no", qint64(10000004), false, false, "");
        test::row("submitted meanwhile", qint64(10000003), true, false,
                  "Account 00000003 (Al Old) is no longer pending.\nIt was not deleted.");
        test::row("gone", qint64(10000009), true, false, "This claim is no longer in Brimsett.");
    }
    void deleteClaim() {
        QFETCH(qint64, claimId);
        QFETCH(bool, yes);
        QFETCH(bool, deleted);
        QFETCH(QString, told);
        Pending o;
        o.log.setOn(true);
        o.prompter.script({yes ? Answer::Yes : Answer::No});
        const QString count = "Select Count(*) From items Where ClaimID=?";
        const int before = o.db->scalar(count, {claimId}).toInt();
        QCOMPARE(PendingClaims(*o.db, o.settings).deleteClaim(claimId, o.prompter, o.clock, o.log),
                 deleted);
        QCOMPARE(o.prompter.messages().size(), 1);
        const auto& message = o.prompter.last();
        QCOMPARE(message.title, "Delete Claim");
        if (told.isEmpty()) {
            QCOMPARE(message.text(),
                     "This will permanently delete account 00000004 (Cy Mills)\n"
                     "and its 2 item(s).\n\nAre you sure?");
        } else {
            QCOMPARE(message.text(), told);
        }
        QCOMPARE(o.db->scalar(count, {claimId}).toInt(), deleted ? 0 : before);
        QCOMPARE(o.store.load(claimId).has_value(), !deleted && before > 0);
        QCOMPARE(test::readText(o.log.path()).contains("Delete From claims Where ClaimID=10000004"),
                 deleted);
    }

    void deleteClaimBatchedWhileAsking() {
        Pending o;
        // Another computer prepares a batch while the question is open.
        struct Batching : RecordingPrompter {
            Database* db = nullptr;
            Answer ask(const QString& t, const QStringList& l, Icon i, Buttons b, Answer) override {
                db->exec("Update claims Set BatchID='J20261122002' Where ClaimID=10000004");
                return RecordingPrompter::ask(t, l, i, b, Answer::Yes);
            }
        } prompter;
        prompter.db = o.db.get();
        QVERIFY(!PendingClaims(*o.db, o.settings).deleteClaim(10000004, prompter, o.clock, o.log));
        QCOMPARE(prompter.last().text(),
                 "Account 00000004 (Cy Mills) is no longer pending.\nIt was not deleted.");
        QCOMPARE(o.store.load(10000004)->items.size(), 2);
    }
};

QTEST_GUILESS_MAIN(TestPendingClaims)
#include "test_pending_claims.moc"
