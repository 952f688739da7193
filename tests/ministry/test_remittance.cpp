#include "TestSupport.h"
#include "ministry/Remittance.h"

#include <QFile>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::remittance;

namespace {

// A 79-character record: `start` from position 1, then each text at its 1-based position.
QString rec(const QString& start, const QList<std::pair<int, QString>>& at = {}) {
    QString line = start.leftJustified(79, ' ');
    for (const auto& [pos, text] : at) {
        line.replace(pos - 1, text.size(), text);
    }
    return line;
}

const QString kHr1 = rec("HR1V030BAAA27227800H720121015VLAAR DR HJ", {{60, "000008230 99999999"}});
const QString kHr2 = rec("HR2", {{34, "207-45 STANLEY ST"}});
const QString kHr3 = rec("HR3AYR", {{29, "ON N0B1E0"}});
const QString kHr4 = rec("HR4J2093000060127227800 EDT2G6 SMITH", {{51, "ON1284630124    HCP"}});
const QString kHr5 = rec("HR5J209300006012012022101A003A 007720007720");
const QString kHr6 = rec("HR6000001000 000000000 000000500-000000000");
const QString kHr7 = rec("HR740 2012093000000264 COMP CARE CAPITATION");
const QString kHr8 = rec("HR8   GROUP PAYMENT REPORT");

QStringList validFile() {
    return {kHr1, kHr2, kHr3, kHr4, kHr5, kHr6, kHr7, kHr8};
}

int usableItems(const Remittance& r) {
    int n = 0;
    for (const Claim& c : r.claims) {
        for (const Item& i : c.items) {
            n += i.usable ? 1 : 0;
        }
    }
    return n;
}

QStringList sampleLines(const QString& name) {
    QFile f(test::samplesFolder() + QLatin1Char('/') + name);
    return f.open(QIODevice::ReadOnly) ? received::splitLines(f.readAll()) : QStringList();
}

}  // namespace

class TestRemittance : public QObject {
    Q_OBJECT

private slots:
    void readsAValidFile() {
        const Remittance r = read(validFile());
        QVERIFY(r.errors.isEmpty());
        QCOMPARE(r.header.group, QString("BAAA"));
        QCOMPARE(r.address.line1, QString("207-45 STANLEY ST"));
        QCOMPARE(r.claims.first().acctNum, QString("EDT2G6"));
        QCOMPARE(r.claims.first().healthNum, QString("1284630124"));
        QCOMPARE(r.balances.first().reductions, Money::fromCents(-500));
        QCOMPARE(r.transactions.first().date, QDate(2012, 9, 30));
        QCOMPARE(r.transactions.first().amount, Money::fromCents(264));
        QCOMPARE(r.messages, QStringList{"   GROUP PAYMENT REPORT"});
        QCOMPARE(r.reference("PJ272278.001"), QString("PJ272278.001 20121015"));
        QCOMPARE(transactionName("70"), QString("Attachments"));
        QCOMPARE(transactionName("99"), QString("Unknown (99)"));
    }

    void layouts_data() {
        QTest::addColumn<QString>("header");
        QTest::addColumn<QString>("item");
        QTest::addColumn<bool>("v03");
        QTest::addColumn<int>("total");
        QTest::addColumn<int>("paid");
        test::row("V03", kHr1, "HR5J209300006012012022101A003A 007720007720-I2", true, 8230, -7720);
        test::row("V02 shifted, six-digit dates",
                  rec("HR1V02  27227800H7121015VLAAR", {{55, "000008230-99999999"}}),
                  "HR5J2093000060112022101A003A 007720007720 I2", false, -8230, 7720);
    }
    void layouts() {
        QFETCH(QString, header);
        QFETCH(QString, item);
        QFETCH(bool, v03);
        QFETCH(int, total);
        QFETCH(int, paid);
        const Remittance r = read({header, kHr4, rec(item)});
        QVERIFY(r.errors.isEmpty());
        QCOMPARE(r.header.v03, v03);
        QCOMPARE(r.header.provider, QString("272278"));
        QCOMPARE(r.header.paymentDate, QDate(2012, 10, 15));
        QCOMPARE(r.header.totalPayable, Money::fromCents(total));
        QVERIFY(r.header.directDeposit());
        const Item& i = r.claims.first().items.first();
        QCOMPARE(i.serviceDate, QDate(2012, 2, 21));
        QCOMPARE(i.serviceCode, QString("A003A"));
        QCOMPARE(i.submitted, Money::fromCents(7720));
        QCOMPARE(i.paid, Money::fromCents(paid));
        QCOMPARE(i.explCode, QString("I2"));
        QVERIFY(i.usable);
    }

    // One fault each: the valid file with line `at` (0-based) replaced, or a line inserted.
    void faults_data() {
        QTest::addColumn<int>("at");
        QTest::addColumn<bool>("insert");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("value");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("usable");
        const QString hr5 = kHr5;
        test::row("length", 4, false, hr5.left(78), "Incorrect record length", "78", "79", 0);
        test::row("identifier", 5, false, "X" + kHr6.mid(1), "Invalid Transaction Identifier", "XR",
                  "HR", 1);
        test::row("record type", 7, false, "HR9" + kHr8.mid(3), "Invalid Record Type", "9", "1-8",
                  1);
        test::row("provider", 0, false, QString(kHr1).replace(11, 6, "27A278"),
                  "Invalid Health Care Provider Number", "27A278", "6 digits", 1);
        test::row("payment date", 0, false, QString(kHr1).replace(21, 8, "20121315"),
                  "Invalid Date", "20121315", "YYYYMMDD", 1);
        test::row("total", 0, false, QString(kHr1).replace(59, 9, "0000082X0"),
                  "Invalid Total Amount Payable", "0000082X0", "Numeric", 1);
        test::row("total sign", 0, false, QString(kHr1).replace(68, 1, "+"),
                  "Invalid Total Amount Payable Sign", "+", "(Space) or - (negative sign)", 1);
        test::row("HR2 tail", 1, false, QString(kHr2).replace(78, 1, "X"), "Spaces expected",
                  QString(20, ' ') + "X", "Spaces", 1);
        test::row("transaction type", 3, false, QString(kHr4).replace(14, 1, "3"),
                  "Invalid Transaction Type", "3", "1 or 2", 1);
        test::row("orphan", 5, true, QString(hr5).replace(3, 11, "J2093000099"),
                  "Invalid (orphaned) Claim Item Record", "J2093000099", "J2093000060", 1);
        test::row("service date", 4, false, QString(hr5).replace(15, 8, "20120230"),
                  "Invalid Service Date", "20120230", "YYYYMMDD", 0);
        test::row("service code", 4, false, QString(hr5).replace(25, 5, "A0 3A"),
                  "Invalid Service Code", "A0 3A", "Fee code and suffix A, B or C", 0);
        test::row("submitted", 4, false, QString(hr5).replace(31, 6, "0077-0"),
                  "Invalid Amount Submitted", "0077-0", "Numeric", 0);
        test::row("paid", 4, false, QString(hr5).replace(37, 6, "00772O"), "Invalid Amount Paid",
                  "00772O", "Numeric", 0);
        test::row("paid sign", 4, false, QString(hr5).replace(43, 1, "+"),
                  "Invalid Amount Paid Sign", "+", "(Space) or - (negative sign)", 0);
        test::row("balance", 5, false, QString(kHr6).replace(13, 9, "00000A000"),
                  "Invalid Advances", "00000A000", "Numeric", 1);
        test::row("transaction date", 6, false, QString(kHr7).replace(6, 8, "20129930"),
                  "Invalid Transaction Date", "20129930", "YYYYMMDD", 1);
        test::row("second header", 6, true, kHr1, "Unexpected file header", "HR1", "HR2 to HR8", 1);
        test::row("out of order", 6, true, kHr5, "Record out of order", "HR5", "HR6 or later", 1);
        test::row("no header", 0, false, kHr2, "Missing file header", "HR2", "HR1", 0);
    }
    void faults() {
        QFETCH(int, at);
        QFETCH(bool, insert);
        QFETCH(QString, text);
        QFETCH(QString, error);
        QFETCH(QString, value);
        QFETCH(QString, expected);
        QFETCH(int, usable);
        QStringList lines = validFile();
        if (insert) {
            lines.insert(at, text);
        } else {
            lines[at] = text;
        }
        const Remittance r = read(lines);
        QCOMPARE(r.errors.size(), 1);
        QCOMPARE(r.errors.first(), (received::LineError{at + 1, error, value, expected}));
        QCOMPARE(usableItems(r), usable);
        QCOMPARE(r.lineCount, int(lines.size()));
    }

    void orphanWithoutClaimHeaderIsKeptApart() {
        const Remittance r = read({kHr1, kHr5, kHr4, kHr5});
        QCOMPARE(r.errors.size(), 1);
        QCOMPARE(r.errors.first().error, QString("Invalid (orphaned) Claim Item Record"));
        QCOMPARE(r.claims.size(), 2);
        QCOMPARE(r.claims.at(0).line, 0);  // no header: listed under its own number
        QVERIFY(!r.claims.at(0).items.first().usable);
        QVERIFY(r.claims.at(1).items.first().usable);
    }

    void lineEnds_data() {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("errors");
        QTest::addColumn<int>("usable");
        const QByteArray body = validFile().join("\r\n").toLatin1();
        QTest::newRow("CR LF") << body + "\r\n" << 0 << 1;
        QTest::newRow("LF") << validFile().join("\n").toLatin1() + "\n" << 0 << 1;
        QTest::newRow("Ctrl-Z") << body + "\r\n\x1a" << 0 << 1;
        // Cut after the amount submitted: the length and the missing amount paid.
        QTest::newRow("truncated")
            << QStringList{kHr1, kHr4, kHr5.left(37)}.join("\r\n").toLatin1() << 2 << 0;
    }
    void lineEnds() {
        QFETCH(QByteArray, bytes);
        QFETCH(int, errors);
        QFETCH(int, usable);
        const Remittance r = read(received::splitLines(bytes));
        QCOMPARE(r.errors.size(), errors);
        QCOMPARE(usableItems(r), usable);
        QCOMPARE(r.claims.size(), 1);
    }

    void progressEveryFiftyLinesAndAtTheEnd() {
        QStringList lines{kHr1};
        for (int n = 1; n < 120; ++n) {
            lines << kHr8;
        }
        QList<int> told;
        read(lines, [&](int done, int total) {
            QCOMPARE(total, 120);
            told << done;
        });
        QCOMPARE(told, (QList<int>{50, 100, 120}));
    }

    void ministrySamples() {
        if (test::samplesFolder().isEmpty()) {
            QSKIP("the ministry's sample files are not beside the project");
        }
        const Remittance ra = read(sampleLines("moh_sample_ra_extract.txt"));
        QVERIFY(ra.errors.isEmpty());
        QVERIFY(ra.header.directDeposit());
        QCOMPARE(ra.claims.size(), 2);
        QCOMPARE(usableItems(ra), 4);
        Money paid;
        for (const Claim& c : ra.claims) {
            for (const Item& i : c.items) {
                paid += *i.paid;
            }
        }
        QCOMPARE(paid, *ra.header.totalPayable);

        const Remittance group = read(sampleLines("moh_sample_ra_group_payment_messages.txt"));
        QVERIFY(group.errors.isEmpty());
        QVERIFY(group.claims.isEmpty());
        QCOMPARE(group.transactions.size(), 4);
        QCOMPARE(group.messages.size(), 2024);
    }
};

QTEST_GUILESS_MAIN(TestRemittance)
#include "test_remittance.moc"
