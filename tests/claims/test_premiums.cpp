#include "TestSupport.h"
#include "claims/Premiums.h"

#include <QtTest>

using namespace brimsett;

namespace {

// "CODE fee day;..." with "-" for an empty fee and a day of November 2026 ("-": no date).
QList<ItemEntry> grid(const QString& rows) {
    QList<ItemEntry> list;
    for (const QString& row : rows.split(';')) {
        const QStringList c = row.split(' ');
        const auto cell = [&](int i) { return c.at(i) == "-" ? QString() : c.at(i); };
        list << ItemEntry{c.at(0), {}, "1", cell(1), c.at(2) == "-" ? "" : "2026/11/" + c.at(2)};
    }
    return list;
}

}  // namespace

class TestPremiums : public QObject {
    Q_OBJECT

private slots:
    void premiumFee_data() {
        QTest::addColumn<QString>("rows");
        QTest::addColumn<bool>("switch26");
        QTest::addColumn<QString>("fee");  // of the last row; empty: none
        const char* two = "A007A 100.00 20;A008A 50.00 20;";
        test::row("sum of the rows above", QString(two) + "E083A - 20", false, "45.00");
        test::row("switch 26: the nearest", QString(two) + "E083A - 20", true, "15.00");
        test::row("E082 only with switch 26", QString(two) + "E082A - 20", false, "");
        test::row("E082 with switch 26", QString(two) + "e082a - 20", true, "15.00");
        test::row("half a cent rounds up", "A007A 33.35 -;E083A - 20", false, "10.01");
        test::row("E and 99 codes left out",
                  "A007A 100.00 20;E400A 20.00 20;9999A 10.00 20;E083A - 20", false, "30.00");
        test::row("switch 26 skips them too",
                  "A007A 100.00 20;E400A 20.00 20;9999A 10.00 20;E083A - 20", true, "30.00");
        test::row("stops at the earlier premium",
                  "A007A 100.00 20;E083A 30.00 20;A008A 50.00 20;E083A - 20", false, "15.00");
        test::row("other days left out, no date matches",
                  "A007A 100.00 19;A008A 50.00 20;A009A 10.00 -;E083A - 20", false, "18.00");
        test::row("zero, negative, bad fees: none",
                  "A007A 0.00 -;A008A -5.00 -;A009A abc -;E083A - -", false, "");
        test::row("not a premium", QString(two) + "A009A 7.00 20", false, "");
    }
    void premiumFee() {
        QFETCH(QString, rows);
        QFETCH(bool, switch26);
        QFETCH(QString, fee);
        const QList<ItemEntry> items = grid(rows);
        const std::optional<Money> got = premiums::feeOf(items, items.size() - 1, switch26);
        QCOMPARE(got ? got->format() : QString(), fee);
    }

    void applyAllInTheOfficeFormat() {
        QList<ItemEntry> rows =
            grid("A007A 1.000,00 -;E083A - -;A008A 20,00 -;E083A 9,99 -;E083A x -");
        const MoneyFormat comma{QLatin1Char(',')};
        QVERIFY(premiums::applyAll(rows, false, comma));
        QCOMPARE(rows.at(1).fee + ' ' + rows.at(3).fee + ' ' + rows.at(4).fee, "300,00 6,00 x");
        QVERIFY(!premiums::applyAll(rows, false, comma));
    }
};

QTEST_GUILESS_MAIN(TestPremiums)
#include "test_premiums.moc"
