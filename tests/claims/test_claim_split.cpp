#include "OfficeFixture.h"
#include "claims/ClaimSplit.h"
#include "claims/ClaimStore.h"

#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

struct Office : test::OfficeFixture {
    ClaimStore store{*db, clock, log};
    ClaimSplit splitter{*db, log};

    // Items "itemId code"; the account is the claim number's last digits unless given.
    void claim(qint64 id, const L& items, const QString& batch = kPendingBatch, int acct = 0) {
        db->exec(
            "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, SplitFlag,"
            " LName, DOB) Values (?, ?, ?, 'AB', 'HCP - P', 0, 'Zed', '1980-05-17')",
            {id, batch, QStringLiteral("%1").arg(acct ? acct : id % 1000, 8, 10, QChar('0'))});
        for (const QString& item : items) {
            db->exec(
                "Insert Into items (ClaimID, ItemID, ServiceCode, FeeSubm, Status)"
                " Values (?, ?, ?, ?, 0)",
                {id, item.section(' ', 0, 0).toInt(), item.section(' ', 1), id % 7 * 1000});
        }
    }
    L itemsOf(qint64 id) {
        return test::rowsOf(db->exec(
            "Select ItemID, ServiceCode From items Where ClaimID=? Order By ItemID", {id}));
    }
    L everything() {
        return test::rowsOf(db->exec("Select * From claims Order By ClaimID")) +
               test::rowsOf(db->exec("Select * From items Order By ClaimID, ItemID"));
    }
    int splitFlag(qint64 id) {
        return db->scalar("Select SplitFlag From claims Where ClaimID=?", {id}).toInt();
    }
};

}  // namespace

class TestClaimSplit : public QObject {
    Q_OBJECT

private slots:
    void split_data() {
        QTest::addColumn<qint64>("claimId");
        QTest::addColumn<QString>("batch");
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QStringList>("rows");  // "claim|ItemIDs" of the claim and its parts
        const qint64 id = 10000001;
        const L abc{"1 A007A", "2 A007B", "3 A007C", "4 E083A", "5 A008b"};
        test::row("A, B and C", id, kPendingBatch, abc,
                  L{"10000001|1 4", "70000001|2 5", "80000001|3"});
        test::row("B and C: B stays", id, kPendingBatch, L{"1 A007C", "2 A007B", "3 NOTE"},
                  L{"10000001|2 3", "80000001|1"});
        test::row("one suffix", id, kPendingBatch, L{"1 A007B", "2 A008B", "3 NOTE"}, L{});
        test::row("submitted", id, "J20261122001", abc, L{});
        test::row("a part itself", qint64(70000004), kPendingBatch, abc, L{});
    }
    void split() {
        QFETCH(qint64, claimId);
        QFETCH(QString, batch);
        QFETCH(QStringList, items);
        QFETCH(QStringList, rows);
        Office o;
        o.claim(claimId, items, batch);
        const L before = o.everything();
        QCOMPARE(o.splitter.split(claimId).size(), qMax(0, rows.size() - 1));
        // Every part: a copy of the claim's header, flagged, still pending.
        L parts;
        QString part;
        QSqlQuery q = o.db->exec(
            "Select C.ClaimID, ItemID From claims C Join items I On I.ClaimID=C.ClaimID"
            " Where SplitFlag=1 And AcctNum='00000001' And BatchID=? And DOB='1980-05-17'"
            " Order By C.ClaimID, ItemID",
            {kPendingBatch});
        while (q.next()) {
            if (q.value(0).toString() != part) {
                part = q.value(0).toString();
                parts << part + "|" + q.value(1).toString();
            } else {
                parts.last() += " " + q.value(1).toString();
            }
        }
        QCOMPARE(parts, rows);
        if (rows.isEmpty()) {
            QCOMPARE(o.everything(), before);
        }
    }

    void reverse_data() {
        QTest::addColumn<QString>("change");  // to claim 10000001 between split and reverse
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QStringList>("items");  // of claim 10000001 afterwards
        QTest::addColumn<QStringList>("leftAlone");
        const L split{"1|A007A", "4|E083A"};
        const L parts{"70000001", "80000001"};
        test::row("back to the original rows", "", true,
                  L{"1|A007A", "2|A007B", "3|A007C", "4|E083A"}, L{});
        test::row("no writes nothing", "", false, split, L{});
        test::row("edited: moved after the last", "edit", true,
                  L{"1|A001A", "2|A002A", "3|A007B", "4|A007C"}, L{});
        test::row("claim submitted", "submit", true, split, parts);
        test::row("claim gone", "delete", true, L{}, parts);
        // 80000001 is also 20000001 + 60000000, but that claim is another account's.
        test::row("gone, another at the other offset", "delete 20000001", true, L{}, parts);
    }
    void reverse() {
        QFETCH(QString, change);
        QFETCH(bool, yes);
        QFETCH(QStringList, items);
        QFETCH(QStringList, leftAlone);
        Office o;
        o.claim(10000001, {"1 A007A", "2 A007B", "3 A007C", "4 E083A"});
        o.claim(10000002, {"1 A008A", "2 A008C"});
        const L original = o.everything();
        QCOMPARE(o.splitter.split(10000001).size() + o.splitter.split(10000002).size(), 3);
        if (change == "edit") {  // the store numbers an edited claim's items 1 upward
            ClaimRecord edited = *o.store.load(10000001);
            edited.items.resize(2);
            edited.items[0].serviceCode = "A001A";
            edited.items[1].serviceCode = "A002A";
            o.store.replace(edited);
        } else if (change == "submit") {
            o.db->exec("Update claims Set BatchID='J20261122001' Where ClaimID=10000001");
        } else if (change.startsWith("delete")) {
            o.store.remove(10000001);
            if (change.endsWith("20000001")) {
                o.claim(20000001, {"1 A009A"}, kPendingBatch, 999);
            }
        }
        const L split = o.everything();
        o.log.setOn(true);
        o.prompter.script({yes ? Answer::Yes : Answer::No});

        const std::optional<ClaimSplit::Reversal> result = o.splitter.reverseAll(o.prompter);
        QCOMPARE(o.prompter.last().title, "Reverse Split");
        QCOMPARE(o.prompter.last().text(),
                 "This will reverse (undo) all split claims within "
                 "Pending Claims. Are you sure you want to continue?");
        QCOMPARE(o.itemsOf(10000001), items);
        if (!yes) {
            QVERIFY(!result);
            QCOMPARE(o.everything(), split);
            QVERIFY(!QFile::exists(o.log.path()));
            return;
        }
        QCOMPARE(result->partsReversed, 3 - leftAlone.size());
        L alone;
        for (const qint64 id : result->leftAlone) {
            alone << QString::number(id);
        }
        QCOMPARE(alone, leftAlone);
        QCOMPARE(test::rowsOf(o.db->exec("Select ClaimID From claims Where ClaimID >= 70000000")),
                 leftAlone);
        QCOMPARE(o.splitFlag(10000001), change == "submit" ? 1 : 0);
        QCOMPARE(o.itemsOf(20000001).size(), change.endsWith("20000001") ? 1 : 0);
        if (change.isEmpty()) {
            QCOMPARE(o.everything(), original);
        }
        // The log replays in order: the items move before their part is deleted.
        const QString logged = test::readText(o.log.path());
        const qsizetype moved =
            logged.indexOf("Update items Set ClaimID=10000002 Where ClaimID=80000002");
        QVERIFY(moved >= 0 && moved < logged.indexOf("Delete From claims Where ClaimID=80000002"));
    }
};

QTEST_GUILESS_MAIN(TestClaimSplit)
#include "test_claim_split.moc"
