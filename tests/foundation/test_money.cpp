#include "foundation/DateText.h"
#include "foundation/Money.h"

#include <QtTest>

using namespace brimsett;

class TestMoney : public QObject {
    Q_OBJECT

private slots:
    void parsesTypedAmounts_data();
    void parsesTypedAmounts();
    void formatsWithTheStartUpSeparator_data();
    void formatsWithTheStartUpSeparator();
    void scalingRoundsHalfAwayFromZero_data();
    void scalingRoundsHalfAwayFromZero();
    void dateTextsAreStrict_data();
    void dateTextsAreStrict();
};

void TestMoney::parsesTypedAmounts_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<qlonglong>("units");
    QTest::newRow("plain") << "35.75"
                           << "." << true << 357500LL;
    QTest::newRow("four decimals") << "0.0001"
                                   << "." << true << 1LL;
    QTest::newRow("five decimals refused") << "0.00001"
                                           << "." << false << 0LL;
    QTest::newRow("grouped") << "1,234.5"
                             << "." << true << 12345000LL;
    QTest::newRow("bad grouping") << "12,34.5"
                                  << "." << false << 0LL;
    QTest::newRow("currency sign") << "$1,000.00"
                                   << "." << true << 10000000LL;
    QTest::newRow("negative") << "-12.50"
                              << "." << true << -125000LL;
    QTest::newRow("parentheses negative") << "($12.50)"
                                          << "." << true << -125000LL;
    QTest::newRow("decimal comma") << "1.234,56"
                                   << "," << true << 12345600LL;
    QTest::newRow("point under comma locale") << "12.50"
                                              << "," << false << 0LL;
    QTest::newRow("whole") << "40"
                           << "." << true << 400000LL;
    QTest::newRow("leading point") << ".5"
                                   << "." << true << 5000LL;
    QTest::newRow("letters") << "12a"
                             << "." << false << 0LL;
    QTest::newRow("empty") << ""
                           << "." << false << 0LL;
    QTest::newRow("only sign") << "-"
                               << "." << false << 0LL;
    QTest::newRow("arabic digits refused") << QString::fromUtf8("١٢") << "." << false << 0LL;
    QTest::newRow("overflow refused") << "99999999999999999999"
                                      << "." << false << 0LL;
}

void TestMoney::parsesTypedAmounts() {
    QFETCH(QString, typed);
    QFETCH(QString, decimal);
    QFETCH(bool, valid);
    QFETCH(qlonglong, units);
    MoneyFormat format;
    format.decimal = decimal.at(0);
    const auto money = Money::parse(typed, format);
    QCOMPARE(money.has_value(), valid);
    if (valid) {
        QCOMPARE(static_cast<qlonglong>(money->units()), units);
    }
}

void TestMoney::formatsWithTheStartUpSeparator_data() {
    QTest::addColumn<qlonglong>("units");
    QTest::addColumn<QString>("decimal");
    QTest::addColumn<QString>("grouped");
    QTest::addColumn<QString>("plain");
    QTest::addColumn<QString>("currency");
    QTest::newRow("small") << 357500LL << "."
                           << "35.75"
                           << "35.75"
                           << "$35.75";
    QTest::newRow("thousands") << 12345678900LL << "."
                               << "1,234,567.89"
                               << "1234567.89"
                               << "$1,234,567.89";
    QTest::newRow("comma") << 12345678900LL << ","
                           << "1.234.567,89"
                           << "1234567,89"
                           << "$1.234.567,89";
    QTest::newRow("negative") << -125000LL << "."
                              << "-12.50"
                              << "-12.50"
                              << "-$12.50";
    QTest::newRow("rounds half up") << 50LL << "."
                                    << "0.01"
                                    << "0.01"
                                    << "$0.01";
    QTest::newRow("rounds half away below zero") << -50LL << "."
                                                 << "-0.01"
                                                 << "-0.01"
                                                 << "-$0.01";
    QTest::newRow("tiny negative is zero") << -49LL << "."
                                           << "0.00"
                                           << "0.00"
                                           << "$0.00";
    QTest::newRow("exactly thousand") << 10000000LL << "."
                                      << "1,000.00"
                                      << "1000.00"
                                      << "$1,000.00";
}

void TestMoney::formatsWithTheStartUpSeparator() {
    QFETCH(qlonglong, units);
    QFETCH(QString, decimal);
    QFETCH(QString, grouped);
    QFETCH(QString, plain);
    QFETCH(QString, currency);
    MoneyFormat format;
    format.decimal = decimal.at(0);
    const Money m = Money::fromUnits(units);
    QCOMPARE(m.format(format), grouped);
    QCOMPARE(m.plain(format), plain);
    QCOMPARE(m.currency(format), currency);
    // What is written can be read back.
    QCOMPARE(Money::parse(grouped, format)->roundedCents(), m.roundedCents());
}

void TestMoney::scalingRoundsHalfAwayFromZero_data() {
    QTest::addColumn<qlonglong>("units");
    QTest::addColumn<qlonglong>("numerator");
    QTest::addColumn<qlonglong>("denominator");
    QTest::addColumn<qlonglong>("expected");
    QTest::newRow("ten percent") << 357500LL << 10LL << 100LL << 35750LL;
    QTest::newRow("third") << 10000LL << 1LL << 3LL << 3333LL;
    QTest::newRow("half up") << 5LL << 1LL << 2LL << 3LL;
    QTest::newRow("half away negative") << -5LL << 1LL << 2LL << -3LL;
    QTest::newRow("negative denominator") << 10LL << 1LL << -2LL << -5LL;
}

void TestMoney::scalingRoundsHalfAwayFromZero() {
    QFETCH(qlonglong, units);
    QFETCH(qlonglong, numerator);
    QFETCH(qlonglong, denominator);
    QFETCH(qlonglong, expected);
    QCOMPARE(static_cast<qlonglong>(Money::fromUnits(units).scaled(numerator, denominator).units()),
             expected);
}

void TestMoney::dateTextsAreStrict_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("compact");
    QTest::addColumn<QDate>("expected");
    QTest::newRow("compact") << "20261122" << true << QDate(2026, 11, 22);
    QTest::newRow("compact with blank") << "2026112 " << true << QDate();
    QTest::newRow("compact impossible day") << "20260230" << true << QDate();
    QTest::newRow("slashed") << "2026/02/28" << false << QDate(2026, 2, 28);
    QTest::newRow("slashed short month") << "2026/2/28" << false << QDate();
    QTest::newRow("slashed leap day") << "2024/02/29" << false << QDate(2024, 2, 29);
}

void TestMoney::dateTextsAreStrict() {
    QFETCH(QString, text);
    QFETCH(bool, compact);
    QFETCH(QDate, expected);
    const QDate parsed = compact ? datetext::fromYyyymmdd(text) : datetext::fromSlashed(text);
    QCOMPARE(parsed, expected);
    if (expected.isValid()) {
        QCOMPARE(compact ? datetext::yyyymmdd(parsed) : datetext::slashed(parsed), text);
    }
}

QTEST_GUILESS_MAIN(TestMoney)
#include "test_money.moc"
