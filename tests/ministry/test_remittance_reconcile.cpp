#include "BatchOffice.h"
#include "foundation/DbError.h"
#include "ministry/Remittance.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::remittance;

namespace {

const QDate kDay(2012, 2, 21);
const QString kRef = "PJ272278.001 20121015";

QString rec(const QString& text) {
    return text.leftJustified(79, ' ');
}
const QString kHr1 = rec(QString("HR1V030BAAA27227800H720121015VLAAR DR HJ").leftJustified(59) +
                         "000008230 99999999");
QString hr4(const QString& account, const QString& claim = "J2093000060") {
    return rec("HR4" + claim + "1272278" + "00" + account.leftJustified(8) + "SMITH");
}
QString hr5(const QString& code, int submitted, int paid, const QString& expl = {},
            const QString& claim = "J2093000060") {
    const auto six = [](int cents) {
        return QString::number(std::abs(cents)).rightJustified(6, '0');
    };
    return rec("HR5" + claim + "1" + "20120221" + "01" + code + " " + six(submitted) + six(paid) +
               (paid < 0 ? "-" : " ") + expl);
}

struct RemitOffice : test::BatchOffice {
    Remittance remittance;

    RemitOffice() { addDoctor("D1", "0000", "272278", "00"); }

    // Items given as "claimId code feeCents status [account]", all on kDay, numbered per
    // claim; the account is "00000042" unless given.
    void claims(const QStringList& items, const QString& account = "00000042") {
        QMap<qint64, QList<QStringList>> byClaim;
        for (const QString& item : items) {
            const QStringList f = item.split(' ');
            byClaim[f.at(0).toLongLong()] << f;
        }
        for (auto it = byClaim.cbegin(); it != byClaim.cend(); ++it) {
            QList<std::tuple<QString, std::optional<Money>, QDate>> rows;
            for (const QStringList& f : it.value()) {
                rows.append({f.at(1), Money::fromCents(f.at(2).toInt()), kDay});
            }
            const QStringList& first = it.value().first();
            claim(it.key(), first.value(4, account), "D1", rows, "HCP - P", [&](ClaimRecord& c) {
                for (int n = 0; n < c.items.size(); ++n) {
                    c.items[n].status = it.value().at(n).at(3).toInt();
                }
            });
        }
    }
    ReconcileCounts reconcile(const QStringList& body, const ReconcileOptions& options = {}) {
        remittance = read(QStringList{kHr1} + body);
        return remittance::reconcile(*db, log, remittance, kRef, options);
    }
    QStringList rows(const QString& select) { return test::rowsOf(db->exec(select)); }
    QStringList tables() {
        return rows("Select * From claims Order By ClaimID") +
               rows("Select * From items Order By ClaimID, ItemID");
    }
};

}  // namespace

class TestRemittanceReconcile : public QObject {
    Q_OBJECT

private slots:
    // One item of $33.70; the line's payment and code decide what is written.
    void payment_data() {
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("paid");
        QTest::addColumn<QString>("expl");
        QTest::addColumn<bool>("i2ToFull");
        QTest::addColumn<QString>("written");  // FeeSubm|FeePaid|Status|Errors in cents
        QTest::addColumn<int>("outcome");
        const int paid = int(ItemOutcome::Paid);
        const int rejected = int(ItemOutcome::Rejected);
        test::row("in full", 0, 3370, "", false, "3370|3370|2|<null>", paid);
        test::row("above 95%", 0, 3202, "", false, "3202|3202|2|<null>", paid);
        test::row("at 95% (3201.5 cut)", 0, 3201, "", false, "3370|3201|1|<null>", rejected);
        test::row("short with 55", 0, 2000, "55", false, "3370|2000|2|55", paid);
        test::row("short with 66", 0, 2000, "66", false, "3370|2000|2|66", paid);
        test::row("short with another code", 0, 3000, "30", false, "3370|3000|1|30", rejected);
        test::row("nothing paid", 0, 0, "", false, "3370|0|1|<null>", rejected);
        test::row("I2 lowers the fee", 0, 0, "I2", false, "0|0|2|I2", paid);
        test::row("I2 to full with option 16", 0, 0, "I2", true, "3370|3370|2|I2", paid);
        test::row("negative, paid item", 2, -1000, "", false, "3370|-1000|1|<null>", rejected);
        test::row("closed item found again", 3, 3370, "", false, "3370|3370|2|<null>", paid);
    }
    void payment() {
        QFETCH(int, status);
        QFETCH(int, paid);
        QFETCH(QString, expl);
        QFETCH(bool, i2ToFull);
        QFETCH(QString, written);
        QFETCH(int, outcome);
        RemitOffice o;
        o.claims({QString("10000000 A003A 3370 %1").arg(status)});
        const ReconcileCounts counts = o.reconcile(
            {hr4("00000042"), hr5("A003A", 3370, paid, expl)}, {.i2ToFullSubmitted = i2ToFull});
        QCOMPARE(o.rows("Select FeeSubm/100, FeePaid/100, Status, Errors From items"),
                 QStringList{written});
        QCOMPARE(int(o.remittance.claims.first().items.first().outcome), outcome);
        QCOMPARE(counts.paid + counts.rejected, 1);
        QCOMPARE(counts.paid, outcome == int(ItemOutcome::Paid) ? 1 : 0);
    }

    // The line: A001A, $77.20 billed and paid, under `account`.
    void cascade_data() {
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("account");
        QTest::addColumn<QString>("answered");  // ClaimID|ItemID, empty when unmatched
        const QString a42 = "00000042";
        test::row("exact before code alone",
                  QStringList{"10000000 A001A 5000 0", "10000000 A001A 7720 0"}, a42, "10000000|2");
        test::row("code before fee", QStringList{"10000000 G010A 7720 0", "10000000 A001A 9999 0"},
                  a42, "10000000|2");
        test::row("fee when the code differs", QStringList{"10000000 G010A 7720 0"}, a42,
                  "10000000|1");
        test::row("second claim of the account",
                  QStringList{"10000000 G010A 100 0", "10000001 A001A 7720 0"}, a42, "10000001|1");
        test::row("pending part before a paid claim",
                  QStringList{"10000000 A001A 7720 2", "70000000 A001A 7720 0"}, a42, "70000000|1");
        test::row("paid item by the last query", QStringList{"10000000 A001A 7720 2"}, a42,
                  "10000000|1");
        test::row("paid item of another fee", QStringList{"10000000 A001A 5000 2"}, a42, "");
        test::row("one line pays one item",
                  QStringList{"10000000 A001A 7720 0", "10000000 A001A 7720 0"}, a42, "10000000|1");
        test::row("stored without zeros", QStringList{"10000000 A001A 7720 0 42"}, a42,
                  "10000000|1");
        test::row("sent without zeros", QStringList{"10000000 A001A 7720 0"}, "42", "10000000|1");
        test::row("letters", QStringList{"10000000 A001A 7720 0 EDT2G6"}, " EDT2G6 ", "10000000|1");
        test::row("another account", QStringList{"10000000 A001A 7720 0 00000043"}, a42, "");
    }
    void cascade() {
        QFETCH(QStringList, items);
        QFETCH(QString, account);
        QFETCH(QString, answered);
        RemitOffice o;
        o.claims(items);
        const ReconcileCounts counts = o.reconcile({hr4(account), hr5("A001A", 7720, 7720)});
        const QStringList expected = answered.isEmpty() ? QStringList() : QStringList{answered};
        QCOMPARE(o.rows("Select ClaimID, ItemID From items Where FeePaid Is Not Null"), expected);
        QCOMPARE(o.rows("Select ClaimID From claims Where RA Is Not Null"),
                 answered.isEmpty() ? QStringList() : QStringList{answered.section('|', 0, 0)});
        QCOMPARE(counts.unmatched, answered.isEmpty() ? 1 : 0);
    }

    void splitPartners_data() {
        QTest::addColumn<bool>("autoSplit");
        QTest::addColumn<QStringList>("others");  // ClaimID|ItemID|Status|Errors
        test::row("AutoSplit on", true,
                  QStringList{"70000000|1|1|30", "70000000|2|0|<null>", "10000001|1|0|<null>"});
        test::row("AutoSplit off", false,
                  QStringList{"70000000|1|0|<null>", "70000000|2|0|<null>", "10000001|1|0|<null>"});
    }
    void splitPartners() {
        QFETCH(bool, autoSplit);
        QFETCH(QStringList, others);
        RemitOffice o;
        o.claims({"10000000 A001A 7720 0", "70000000 A001B 2000 0", "70000000 A001B 2000 0"});
        o.claims({"10000001 A001C 2000 0"}, "00000043");  // another patient, same day
        o.db->exec("Update items Set ServiceDate=? Where ClaimID=70000000 And ItemID=2",
                   {kDay.addDays(1)});
        o.reconcile({hr4("00000042"), hr5("A001A", 7720, 3000, "30")}, {.autoSplit = autoSplit});
        QCOMPARE(o.rows("Select ClaimID, ItemID, Status, Errors From items Where ClaimID<>10000000 "
                        "Order By ClaimID Desc, ItemID"),
                 others);
    }

    void readingTwiceChangesNothing() {
        RemitOffice o;
        o.claims({"10000000 A001A 7720 0", "10000000 A001A 7720 0", "10000000 G010A 3370 0",
                  "70000000 A001B 2000 0"});
        // An entry that only contains the reference is another file's; ten of them make a
        // history that this file's reference takes past the column's declared 250 characters.
        const QString earlier = ("X" + kRef + "!").repeated(10);
        o.db->exec("Update claims Set RA=? Where ClaimID=10000000", {earlier});
        o.log.setOn(true);
        // Two like services, both short-paid: each line answers one of them.
        const QStringList file{hr4("00000042"),
                               hr5("A001A", 7720, 3000, "30"),
                               hr5("A001A", 7720, 3000, "30"),
                               hr5("G010A", 3370, 3202),
                               hr4("00000099", "J2093000061"),
                               hr5("A001A", 7720, 7720, {}, "J2093000061")};
        const ReconcileOptions options{.autoSplit = true};
        QCOMPARE(o.reconcile(file, options), (ReconcileCounts{1, 2, 1, 0}));
        QCOMPARE(o.rows("Select RA, MOHClaim From claims Where ClaimID=10000000"),
                 QStringList{earlier + kRef + "!|J2093000060"});
        QCOMPARE(o.rows("Select Status, Errors From items Order By ClaimID, ItemID"),
                 (QStringList{"1|30", "1|30", "2|<null>", "1|30"}));
        const QStringList before = o.tables();
        const QString logged = test::readText(o.log.path());
        QVERIFY(logged.count("\r\n") >= 5);

        // The lowered fee no longer matches the line: the file was read before.
        QCOMPARE(o.reconcile(file, options), (ReconcileCounts{0, 2, 1, 1}));
        QCOMPARE(o.remittance.claims.first().items.at(2).outcome, ItemOutcome::AlreadyRead);
        QCOMPARE(o.tables(), before);
        QCOMPARE(test::readText(o.log.path()), logged);
    }

    void refusalLeavesNothingWritten() {
        RemitOffice o;
        o.claims({"10000000 A001A 7720 0"});
        o.claims({"10000001 A001A 7720 0"}, "00000043");
        test::refuseRows(*o.db, "Update", "items", "NEW.ClaimID=10000001", "refused");
        o.log.setOn(true);
        const QStringList before = o.tables();
        QVERIFY_THROWS_EXCEPTION(
            DbError,
            o.reconcile({hr4("00000042"), hr5("A001A", 7720, 7720), hr4("00000043", "J2093000061"),
                         hr5("A001A", 7720, 7720, {}, "J2093000061")}));
        QCOMPARE(o.tables(), before);
        QCOMPARE(o.remittance.claims.first().items.first().outcome, ItemOutcome::NotReconciled);
        QVERIFY(test::readText(o.log.path()).isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestRemittanceReconcile)
#include "test_remittance_reconcile.moc"
