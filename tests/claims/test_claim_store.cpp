#include "OfficeFixture.h"
#include "claims/ClaimStore.h"
#include "claims/PayProgram.h"
#include "foundation/DbError.h"

#include <QSqlQuery>

using namespace brimsett;

namespace {

ClaimRecord claimOf(const QString& payProg, int itemCount) {
    ClaimRecord c;
    c.doctorId = QStringLiteral("AB");
    c.payProg = payProg;
    c.patientId = 42;
    c.healthNum = QStringLiteral("1234567897");
    c.versionCode = QStringLiteral("AB");
    c.fName = QStringLiteral("Mary");
    c.lName = QStringLiteral("O'Brien");
    c.dob = QDate(1980, 5, 17);
    c.sex = QStringLiteral("F");
    c.province = QStringLiteral("ON");
    c.manualReview = true;
    for (int i = 0; i < itemCount; ++i) {
        ItemRecord item;
        item.itemId = 9;  // renumbered by the store
        item.serviceCode = QStringLiteral("A007A");
        item.diagCode = QStringLiteral("799");
        item.numServ = 1 + i;
        item.feeSubm = Money::fromUnits(337000 + i);
        item.serviceDate = QDate(2026, 11, 20);
        item.feePaid = Money::fromCents(5);  // a new claim is never paid
        item.status = 2;
        item.errors = QStringLiteral("V40");
        c.items << item;
    }
    return c;
}

}  // namespace

class TestClaimStore : public QObject {
    Q_OBJECT

private slots:
    void payProgramForms_data() {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("shortForm");
        QTest::addColumn<QString>("type");
        test::row("provider", "HCP - P", 0, "HCP-P", "H");
        test::row("patient", "HCP - S", 1, "HCP-S", "H");
        test::row("reciprocal", "RMB", 2, "RMB", "R");
        test::row("wcb", "WCB", 3, "WCB", "W");
        test::row("direct", "Direct", 4, "Direct", "D");
        test::row("third party", "Third Party", 5, "3rd.P.", "T");
        test::row("unknown text", "Insurer", 5, "3rd.P.", "T");
        test::row("none chosen", "", 5, "3rd.P.", "");
    }
    void payProgramForms() {
        QFETCH(QString, stored);
        QFETCH(int, index);
        QFETCH(QString, shortForm);
        QFETCH(QString, type);
        QCOMPARE(payprog::indexOf(stored), index);
        QCOMPARE(payprog::shortForm(payprog::indexOf(stored)), shortForm);
        const QChar letter = payprog::claimType(stored);
        QCOMPARE(letter.isNull() ? QString() : QString(letter), type);
    }

    void statusNames_data() {
        QTest::addColumn<QString>("batch");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("name");
        test::row("pending whatever the status", "000000000000", 1, "Pending");
        test::row("submitted", "J20261122001", 0, "Out./Submitted");
        test::row("rejected", "J20261122001", 1, "Rejected");
        test::row("paid", "J20261122001", 2, "Paid");
        test::row("closed", "J20261122001", 3, "Rejected Closed");
        test::row("direct, unanswered", " Direct     ", 0, "Out./Submitted");
    }
    void statusNames() {
        QFETCH(QString, batch);
        QFETCH(int, status);
        QFETCH(QString, name);
        QCOMPARE(itemStatusName(batch, status), name);
    }

    void numbersFollowTheirRanges() {
        test::OfficeFixture o;
        ClaimStore store(*o.db, o.clock, o.log);
        QCOMPARE(store.nextClaimId(), kFirstClaimId);
        QCOMPARE(store.nextAccountNumber(), QStringLiteral("00000001"));
        QCOMPARE(store.nextItemId(kFirstClaimId), 1);

        // Split parts and their accounts above 70000000 never push the ordinary numbering.
        for (const auto& [id, acct] :
             {std::pair{10000041, "00000123"}, std::pair{70000002, "70000005"}}) {
            o.db->exec(QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, PayProg)"
                                      " Values(?, '000000000000', ?, 'HCP - P')"),
                       {id, QString::fromLatin1(acct)});
        }
        QCOMPARE(store.nextClaimId(), 10000042);
        QCOMPARE(store.nextAccountNumber(), QStringLiteral("00000124"));
        QCOMPARE(store.nextItemId(10000041), 1);
    }

    void newClaimsTakeTheirBatchByProgram_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("batch");
        test::row("ministry", "HCP - P", "000000000000");
        test::row("workers", "WCB", "000000000000");
        test::row("direct", "Direct", " Direct     ");
        test::row("third party", "Third Party", " thirdparty ");
    }
    void newClaimsTakeTheirBatchByProgram() {
        QFETCH(QString, program);
        QFETCH(QString, batch);
        test::OfficeFixture o;
        ClaimStore store(*o.db, o.clock, o.log);
        const ClaimRecord written = store.insertNew(claimOf(program, 2));
        QCOMPARE(written.claimId, kFirstClaimId);

        const std::optional<ClaimRecord> loaded = store.load(written.claimId);
        QVERIFY(loaded);
        QCOMPARE(loaded->batchId, batch);
        QCOMPARE(loaded->acctNum, QStringLiteral("00000001"));
        QCOMPARE(loaded->dateCreated, o.clock.now());
        QCOMPARE(loaded->lName, QStringLiteral("O'Brien"));
        QCOMPARE(loaded->dob, QDate(1980, 5, 17));
        QVERIFY(loaded->manualReview);
        QCOMPARE(loaded->items.size(), 2);
        for (int i = 0; i < 2; ++i) {
            const ItemRecord& item = loaded->items.at(i);
            QCOMPARE(item.itemId, i + 1);
            QCOMPARE(item.status, 0);
            QVERIFY(!item.feePaid);
            QVERIFY(item.errors.isEmpty());
            QCOMPARE(item.feeSubm, Money::fromUnits(337000 + i));
            QCOMPARE(item.serviceDate, QDate(2026, 11, 20));
        }
        QCOMPARE(*loaded, written);
    }

    void anEditedClaimKeepsItsNumbersAndHistory() {
        test::OfficeFixture o;
        ClaimStore store(*o.db, o.clock, o.log);
        store.insertNew(claimOf(QStringLiteral("HCP - P"), 1));
        const ClaimRecord first = store.insertNew(claimOf(QStringLiteral("HCP - P"), 3));
        o.db->exec(QStringLiteral("Update claims Set AllBatches='J20261001001', "
                                  "InvoiceNum='77!' Where ClaimID=?"),
                   {first.claimId});

        ClaimRecord edited = claimOf(QStringLiteral("HCP - S"), 1);
        edited.claimId = first.claimId;
        edited.acctNum = QStringLiteral("99999999");  // never taken from the screen
        o.clock.advanceSeconds(60);
        store.replace(edited);

        const ClaimRecord loaded = *store.load(first.claimId);
        QCOMPARE(loaded.acctNum, QStringLiteral("00000002"));
        QCOMPARE(loaded.payProg, QStringLiteral("HCP - S"));
        QCOMPARE(loaded.allBatches, QStringLiteral("J20261001001"));
        QCOMPARE(loaded.invoiceNum, QStringLiteral("77!"));
        QCOMPARE(loaded.items.size(), 1);
        QCOMPARE(loaded.dateCreated, o.clock.now());
        QCOMPARE(o.db->scalar(QStringLiteral("Select Count(*) From claims")).toInt(), 2);
    }

    void aFailedEditLeavesTheOldClaim() {
        test::OfficeFixture o;
        ClaimStore store(*o.db, o.clock, o.log);
        const ClaimRecord first = store.insertNew(claimOf(QStringLiteral("HCP - P"), 2));
        test::refuseRows(*o.db, QStringLiteral("Insert"), QStringLiteral("items"),
                         QStringLiteral("NEW.ServiceCode='BOOMA'"), QStringLiteral("refused"));
        ClaimRecord edited = claimOf(QStringLiteral("HCP - P"), 2);
        edited.claimId = first.claimId;
        edited.items[1].serviceCode = QStringLiteral("BOOMA");
        QVERIFY_THROWS_EXCEPTION(DbError, store.replace(edited));
        QCOMPARE(*store.load(first.claimId), first);
    }

    void resubmittingClearsEveryItem() {
        test::OfficeFixture o;
        ClaimStore store(*o.db, o.clock, o.log);
        const ClaimRecord c = store.insertNew(claimOf(QStringLiteral("HCP - P"), 3));
        o.db->exec(QStringLiteral("Update claims Set BatchID='J20261001001',"
                                  " AllBatches='J20261001001' Where ClaimID=?"),
                   {c.claimId});
        o.db->exec(QStringLiteral("Update items Set Status=ItemID-1, FeePaid=100,"
                                  " Errors='EH1' Where ClaimID=?"),
                   {c.claimId});
        o.clock.set(QDateTime(QDate(2026, 12, 3), QTime(9, 0)));
        store.resubmit(c.claimId);

        const ClaimRecord loaded = *store.load(c.claimId);
        QVERIFY(loaded.isPending());
        QCOMPARE(loaded.allBatches, QStringLiteral("J20261001001"));
        QCOMPARE(loaded.dateCreated.date(), QDate(2026, 12, 3));
        for (const ItemRecord& item : loaded.items) {
            QCOMPARE(item.status, 0);
            QVERIFY(!item.feePaid);
            QVERIFY(item.errors.isEmpty());
        }
    }

    void confirmingTouchesOnlyPendingClaims() {
        test::OfficeFixture o;
        for (const auto& [id, batch] :
             {std::pair{1, "000000000000"}, std::pair{2, "J20261001001"}}) {
            o.db->exec(QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, PayProg,"
                                      " ACFlag) Values(?, ?, '1', 'HCP - P', 1)"),
                       {id, QString::fromLatin1(batch)});
        }
        ClaimStore(*o.db, o.clock, o.log).confirmAutomatic();
        QCOMPARE(test::rowsOf(o.db->exec(
                     QStringLiteral("Select ClaimID, ACFlag From claims Order By ClaimID"))),
                 QStringList({QStringLiteral("1|0"), QStringLiteral("2|1")}));
    }

    void searchConditions_data() {
        QTest::addColumn<QString>("invoices");
        QTest::addColumn<QString>("batches");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("byInvoice");
        QTest::addColumn<bool>("byBatch");
        test::row("first invoice", "10!104!", "", "10", true, false);
        test::row("later invoice", "1043!10!", "", "10", true, false);
        test::row("prefix of another", "104!1077!", "", "10", false, false);
        test::row("suffix of another", "1043!1077!", "", "77", false, false);
        test::row("wildcard typed", "1043!", "", "%", false, false);
        test::row("earlier batch", "", "J20260901001J20261001001", "J20261001001", false, true);
        test::row("own batch", "", "", "J20261122001", false, true);
        test::row("other batch", "", "J20260901001", "J20261001001", false, false);
    }
    void searchConditions() {
        QFETCH(QString, invoices);
        QFETCH(QString, batches);
        QFETCH(QString, typed);
        QFETCH(bool, byInvoice);
        QFETCH(bool, byBatch);
        test::OfficeFixture o;
        o.db->exec(QStringLiteral("Insert Into claims (ClaimID, BatchID, AcctNum, PayProg,"
                                  " InvoiceNum, AllBatches)"
                                  " Values(1, 'J20261122001', '1', 'Direct', ?, ?)"),
                   {invoices, batches});
        const auto found = [&](const claimsearch::Condition& c) {
            return o.db->scalar(QStringLiteral("Select Count(*) From claims C Where 1=1") + c.sql,
                                c.values)
                       .toInt() == 1;
        };
        QCOMPARE(found(claimsearch::invoiceCondition(typed)), byInvoice);
        QCOMPARE(found(claimsearch::batchCondition(typed)), byBatch);
    }
};

QTEST_GUILESS_MAIN(TestClaimStore)
#include "test_claim_store.moc"
