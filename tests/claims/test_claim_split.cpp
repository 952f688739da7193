#include "OfficeFixture.h"
#include "claims/ClaimSplit.h"
#include "claims/ClaimStore.h"
#include "foundation/DbError.h"

#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

struct Office : test::OfficeFixture {
    ClaimStore store{*db, clock, log};
    ClaimSplit splitter{*db, log};

    // A pending claim of account = its number's last digits; items "itemId code".
    void claim(qint64 id, const QStringList& items, const QString& batch = kPendingBatch,
               qint64 account = 0) {
        ClaimRecord c;
        c.claimId = id;
        c.acctNum =
            QStringLiteral("%1").arg(account ? account : id % 1000, 8, 10, QLatin1Char('0'));
        c.batchId = batch;
        c.doctorId = "AB";
        c.payProg = "HCP - P";
        c.lName = "Zed";
        c.dateCreated = clock.now();
        for (const QString& text : items) {
            ItemRecord item;
            item.claimId = id;
            item.itemId = text.section(' ', 0, 0).toInt();
            item.serviceCode = text.section(' ', 1);
            item.numServ = 1;
            item.feeSubm = Money::fromCents(1000 * item.itemId);
            item.serviceDate = QDate(2026, 11, 20);
            c.items << item;
        }
        store.write(c);
    }
    QStringList itemsOf(qint64 id) {
        return test::rowsOf(
            db->exec("Select ItemID, ServiceCode From items Where ClaimID=?"
                     " Order By ItemID",
                     {id}));
    }
    QStringList everything() {
        return test::rowsOf(db->exec("Select * From claims Order By ClaimID")) +
               test::rowsOf(db->exec("Select * From items Order By ClaimID, ItemID"));
    }
    bool splitFlag(qint64 id) {
        return db->scalar("Select SplitFlag From claims Where ClaimID=?", {id}).toInt() != 0;
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
        QTest::addColumn<QStringList>("kept");   // ItemIDs left on the claim
        QTest::addColumn<QStringList>("parts");  // "part: ItemIDs"
        const qint64 id = 10000001;
        const L abc{"1 A007A", "2 A007B", "3 A007C", "4 E083A", "5 A008b"};
        test::row("A, B and C", id, kPendingBatch, abc, L{"1", "4"},
                  L{"70000001: 2|5", "80000001: 3"});
        test::row("B and C: B stays", id, kPendingBatch, L{"1 A007C", "2 A007B", "3 NOTE"},
                  L{"2", "3"}, L{"80000001: 1"});
        test::row("one suffix", id, kPendingBatch, L{"1 A007B", "2 A008B", "3 NOTE"}, L{}, L{});
        test::row("submitted", id, "J20261122001", abc, L{}, L{});
        test::row("a part itself", qint64(70000004), kPendingBatch, abc, L{}, L{});
    }
    void split() {
        QFETCH(qint64, claimId);
        QFETCH(QString, batch);
        QFETCH(QStringList, items);
        QFETCH(QStringList, kept);
        QFETCH(QStringList, parts);
        Office o;
        o.claim(claimId, items, batch);
        const QStringList before = o.everything();
        const QList<qint64> made = o.splitter.split(claimId);
        if (parts.isEmpty()) {
            QVERIFY(made.isEmpty());
            QCOMPARE(o.everything(), before);
            return;
        }
        QStringList got;
        for (const qint64 part : made) {
            const std::optional<ClaimRecord> c = o.store.load(part);
            QVERIFY(c && c->splitFlag && c->isPending());
            QCOMPARE(c->acctNum, "00000001");
            QStringList ids;
            for (const ItemRecord& item : c->items) {
                ids << QString::number(item.itemId);
            }
            got << QStringLiteral("%1: %2").arg(part).arg(ids.join('|'));
        }
        QCOMPARE(got, parts);
        QStringList left;
        for (const QString& row : o.itemsOf(claimId)) {
            left << row.section('|', 0, 0);
        }
        QCOMPARE(left, kept);
        QVERIFY(o.splitFlag(claimId));
    }

    void splitRefusesATakenPartNumber() {
        Office o;
        o.claim(10000001, {"1 A007A", "2 A007B"});
        o.claim(70000001, {"1 A009B"}, "J20261122001");  // an earlier part, already sent
        const QStringList before = o.everything();
        try {
            o.splitter.split(10000001);
            QFAIL("split over a taken number");
        } catch (const DbError& e) {
            QCOMPARE(e.message(),
                     "splitting claim 10000001: claim 70000001 already exists;"
                     " reverse the split first");
        }
        QCOMPARE(o.everything(), before);
    }

    void reverse_data() {
        QTest::addColumn<QString>("change");  // to claim 10000001 between split and reverse
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QStringList>("items");  // of claim 10000001 afterwards
        QTest::addColumn<int>("reversed");
        QTest::addColumn<QStringList>("leftAlone");
        const L original{"1|A007A", "2|A007B", "3|A007C", "4|E083A"};
        test::row("back to the original rows", "", true, original, 3, L{});
        test::row("no writes nothing", "", false, L{"1|A007A", "4|E083A"}, 0, L{});
        test::row("edited: moved after the last", "edit", true,
                  L{"1|A001A", "2|A002A", "3|A007B", "4|A007C"}, 3, L{});
        test::row("edited without collision", "edit one", true, L{"1|A001A", "2|A007B", "3|A007C"},
                  3, L{});
        test::row("claim submitted", "submit", true, L{"1|A007A", "4|E083A"}, 1,
                  L{"70000001", "80000001"});
        test::row("claim gone", "delete", true, L{}, 1, L{"70000001", "80000001"});
        // 80000001 is also 20000001 + 60000000, but that claim is another account's.
        test::row("claim gone, another at the other offset", "delete, 20000001", true, L{}, 1,
                  L{"70000001", "80000001"});
    }
    void reverse() {
        QFETCH(QString, change);
        QFETCH(bool, yes);
        QFETCH(QStringList, items);
        QFETCH(int, reversed);
        QFETCH(QStringList, leftAlone);
        Office o;
        o.claim(10000001, {"1 A007A", "2 A007B", "3 A007C", "4 E083A"});
        o.claim(10000002, {"1 A008A", "2 A008C"});
        const QStringList original = o.everything();
        QCOMPARE(o.splitter.split(10000001).size(), 2);
        QCOMPARE(o.splitter.split(10000002).size(), 1);
        if (change.startsWith("edit")) {
            ClaimRecord edited = *o.store.load(10000001);
            edited.items.resize(change == "edit" ? 2 : 1);
            edited.items[0].serviceCode = "A001A";
            edited.items.back().serviceCode = change == "edit" ? "A002A" : "A001A";
            o.store.replace(edited);
        } else if (change == "submit") {
            o.db->exec("Update claims Set BatchID='J20261122001' Where ClaimID=10000001");
        } else if (change.startsWith("delete")) {
            o.store.remove(10000001);
        }
        if (change.endsWith("20000001")) {
            o.claim(20000001, {"1 A009A"}, kPendingBatch, 999);
        }
        const QStringList split = o.everything();
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
        QVERIFY(result);
        QCOMPARE(result->partsReversed, reversed);
        QStringList alone;
        for (const qint64 id : result->leftAlone) {
            alone << QString::number(id);
        }
        QCOMPARE(alone, leftAlone);
        QCOMPARE(test::rowsOf(o.db->exec("Select ClaimID From claims Where ClaimID >= 70000000")),
                 leftAlone);
        if (change.isEmpty()) {
            QCOMPARE(o.everything(), original);
        }
        QCOMPARE(o.itemsOf(10000002), L({"1|A008A", "2|A008C"}));
        QCOMPARE(o.itemsOf(20000001).size(), change.endsWith("20000001") ? 1 : 0);
        QVERIFY(!o.splitFlag(10000002));
        // The log replays in order: the items move before their part is deleted.
        const QString logged = test::readText(o.log.path());
        const auto at = [&](const char* text) { return logged.indexOf(QLatin1String(text)); };
        QVERIFY(at("Update items Set ClaimID=10000002 Where ClaimID=80000002") >= 0);
        QVERIFY(at("Update items Set ClaimID=10000002 Where ClaimID=80000002") <
                at("Delete From claims Where ClaimID=80000002"));
    }
};

QTEST_GUILESS_MAIN(TestClaimSplit)
#include "test_claim_split.moc"
