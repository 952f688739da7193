#include "OfficeFixture.h"
#include "claims/ClaimStore.h"
#include "claims/PendingClaims.h"

#include <QtTest>

using namespace brimsett;

namespace {

// Five pending claims, 70000001 the split part of 10000001, 10000005 without a service date,
// and a submitted one. Money is stored in ten-thousandths.
struct Pending : test::OfficeFixture {
    Pending() {
        db->exec(
            "Insert Into claims (ClaimID, BatchID, AcctNum, DoctorID, PayProg, PatientID,"
            " LName, FName) Values (10000001, '000000000000', '00000001', 'AB', 'RMB', 1,"
            " 'Zed', 'Ann'), (10000002, '000000000000', '00000002', 'cd', 'RMB', 2, 'Adams',"
            " 'Bob'), (70000001, '000000000000', '00000001', 'AB', 'RMB', 1, 'Zed', 'Ann'),"
            " (10000003, 'J20261122001', '00000003', 'AB', 'RMB', 3, 'Old', 'Al'),"
            " (10000004, '000000000000', '00000004', 'AB', 'RMB', 4, 'Mills', 'Cy'),"
            " (10000005, '000000000000', '00000005', 'EF', 'RMB', 5, 'None', 'Nora')");
        db->exec(
            "Insert Into items (ClaimID, ItemID, FeeSubm, ServiceDate) Values"
            " (10000001, 1, 337000, '2026-11-20'), (10000001, 3, 250000, '2026-11-01'),"
            " (10000002, 1, 100000, '2026-11-10'), (70000001, 2, NULL, '2026-11-20'),"
            " (10000003, 1, 990000, '2026-11-02'), (10000004, 2, 50000, '2026-11-15'),"
            " (10000004, 1, 70000, '2026-11-05'), (10000005, 1, 10000, NULL)");
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
        QTest::addColumn<QStringList>("lines");  // "claim.item patient fee date"
        QTest::addColumn<QString>("total");
        using L = QStringList;
        const QString all = "Total Pending $81.70 6 items.";
        const L zed{"10000001.1 Ann Zed 33.70 1120", "10000001.3 Ann Zed 25.00 1101",
                    "70000001.2 Ann Zed - 1120"};
        const L mills{"10000004.1 Cy Mills 7.00 1105", "10000004.2 Cy Mills 5.00 1115"};
        const L adams{"10000002.1 Bob Adams 10.00 1110"};
        const L none{"10000005.1 Nora None 1.00 "};
        test::row("account", "", int(PendingOrder::Account), false, zed + adams + mills + none,
                  all);
        test::row("patient, last name first", "", int(PendingOrder::Patient), true,
                  L{"10000002.1 Adams, Bob 10.00 1110", "10000004.1 Mills, Cy 7.00 1105",
                    "10000004.2 Mills, Cy 5.00 1115", "10000005.1 None, Nora 1.00 ",
                    "10000001.1 Zed, Ann 33.70 1120", "10000001.3 Zed, Ann 25.00 1101",
                    "70000001.2 Zed, Ann - 1120"},
                  all);
        test::row("earliest service date", "", int(PendingOrder::ServiceDate), false,
                  none + L{zed.at(0), zed.at(1)} + mills + adams + L{zed.at(2)}, all);
        test::row("doctor", "", int(PendingOrder::Doctor), false, zed + mills + adams + none, all);
        test::row("one doctor, any case", "ab ", int(PendingOrder::Patient), false, zed + mills,
                  "Total Pending $70.70 4 items.");
        test::row("stored in another case", "CD", int(PendingOrder::Account), false, adams,
                  "Total Pending $10.00 1 items.");
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
            got << QStringLiteral("%1.%2 %3 %4 %5")
                       .arg(line.claimId)
                       .arg(line.itemId)
                       .arg(line.patient, line.fee ? line.fee->format() : "-",
                            line.serviceDate.toString("MMdd"));
        }
        QCOMPARE(got, lines);
        QCOMPARE(pending.totalLine(doctor), total);
    }

    void deleteClaim_data() {
        QTest::addColumn<qint64>("claimId");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("message");
        const char* question =
            "This will permanently delete account 00000004 (Cy Mills)\n"
            "and its 2 item(s).\n\nAre you sure?";
        test::row("yes", qint64(10000004), true, question);
        test::row("no", qint64(10000004), false, question);
        test::row("batched while asking", qint64(-10000004), true,
                  "Account 00000004 (Cy Mills) is no longer pending.\nIt was not deleted.");
        test::row("submitted", qint64(10000003), true,
                  "Account 00000003 (Al Old) is no longer pending.\nIt was not deleted.");
    }
    void deleteClaim() {
        QFETCH(qint64, claimId);
        QFETCH(bool, yes);
        QFETCH(QString, message);
        Pending o;
        o.log.setOn(true);
        // A negative number: another computer puts the claim into a batch during the question.
        struct Batching : RecordingPrompter {
            Database* db = nullptr;
            Answer ask(const QString& t, const QStringList& l, Icon i, Buttons b,
                       Answer a) override {
                if (db) {
                    db->exec("Update claims Set BatchID='J20261122002' Where ClaimID=10000004");
                }
                return RecordingPrompter::ask(t, l, i, b, a);
            }
        } prompter;
        prompter.db = claimId < 0 ? o.db.get() : nullptr;
        claimId = qAbs(claimId);
        prompter.script({yes ? Answer::Yes : Answer::No});
        const bool deleted = yes && !prompter.db && claimId == 10000004;
        QCOMPARE(PendingClaims(*o.db, o.settings).deleteClaim(claimId, prompter, o.clock, o.log),
                 deleted);
        QCOMPARE(prompter.last().title, "Delete Claim");
        QCOMPARE(prompter.last().text(), message);
        QCOMPARE(o.db->scalar("Select Count(*) From items Where ClaimID=?", {claimId}).toInt(),
                 deleted ? 0 : (claimId == 10000004 ? 2 : 1));
        QCOMPARE(ClaimStore(*o.db, o.clock, o.log).load(claimId).has_value(), !deleted);
        QCOMPARE(test::readText(o.log.path()).contains("Delete From claims Where ClaimID="),
                 deleted);
    }
};

QTEST_GUILESS_MAIN(TestPendingClaims)
#include "test_pending_claims.moc"
