#include "TestSupport.h"
#include "claims/Premiums.h"

#include <QtTest>

using namespace brimsett;

namespace {

// "CODE|fee|date" per grid row.
QList<ItemEntry> grid(const QStringList& rows) {
    QList<ItemEntry> list;
    for (const QString& row : rows) {
        const QStringList cells = row.split('|');
        list << ItemEntry{cells.value(0), {}, "1", cells.value(1), cells.value(2)};
    }
    return list;
}

const QString kDay = "2026/11/20";

}  // namespace

class TestPremiums : public QObject {
    Q_OBJECT

private slots:
    void premiumFee_data() {
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<bool>("switch26");
        QTest::addColumn<QString>("fee");  // of the last row; empty: none
        const auto on = true;
        const auto off = false;
        const QStringList two{"A007A|100.00|" + kDay, "A008A|50.00|" + kDay};
        test::row("sum of the rows above", two + QStringList{"E083A||" + kDay}, off, "45.00");
        test::row("switch 26: the nearest", two + QStringList{"E083A||" + kDay}, on, "15.00");
        test::row("E082 is none without switch 26", two + QStringList{"E082A||" + kDay}, off, "");
        test::row("E082 with switch 26", two + QStringList{"E082A||" + kDay}, on, "15.00");
        test::row("half a cent rounds up", QStringList{"A007A|33.35|", "E083A||" + kDay}, off,
                  "10.01");
        const QStringList excluded{"A007A|100.00|" + kDay, "E400A|20.00|" + kDay,
                                   "9999A|10.00|" + kDay, "E083A||" + kDay};
        test::row("E and 99 codes left out", excluded, off, "30.00");
        test::row("switch 26 skips E and 99 codes", excluded, on, "30.00");
        test::row("stops at the earlier premium",
                  QStringList{"A007A|100.00|" + kDay, "E083A|30.00|" + kDay, "A008A|50.00|" + kDay,
                              "E083A||" + kDay},
                  off, "15.00");
        test::row("another E082 does not stop E083",
                  QStringList{"A007A|100.00|" + kDay, "E082A|30.00|" + kDay, "E083A||" + kDay}, on,
                  "30.00");
        test::row("other service dates left out",
                  QStringList{"A007A|100.00|2026/11/19", "A008A|50.00|" + kDay, "A009A|10.00|",
                              "E083A||" + kDay},
                  off, "18.00");
        test::row("zero, negative and bad fees left out",
                  QStringList{"A007A|0.00|", "A008A|-5.00|", "A009A|abc|", "E083A||"}, off, "");
        test::row("nothing above", QStringList{"E083A||" + kDay}, off, "");
        test::row("not a premium", two + QStringList{"A009A|7.00|" + kDay}, off, "");
    }
    void premiumFee() {
        QFETCH(QStringList, rows);
        QFETCH(bool, switch26);
        QFETCH(QString, fee);
        const QList<ItemEntry> items = grid(rows);
        const std::optional<Money> got = premiums::feeOf(items, items.size() - 1, switch26);
        QCOMPARE(got ? got->format() : QString(), fee);
    }

    void applyAllWritesEveryPremium() {
        QList<ItemEntry> rows =
            grid({"A007A|1.000,00|", "E083A||", "A008A|20,00|", "E083A|9,99|", "E083A|x|"});
        const MoneyFormat comma{QLatin1Char(',')};
        QVERIFY(premiums::applyAll(rows, false, comma));
        QCOMPARE(rows.at(1).fee, "300,00");
        QCOMPARE(rows.at(3).fee, "6,00");
        QCOMPARE(rows.at(4).fee, "x");  // no base: left as typed
        QVERIFY(!premiums::applyAll(rows, false, comma));
    }
};

QTEST_GUILESS_MAIN(TestPremiums)
#include "test_premiums.moc"
