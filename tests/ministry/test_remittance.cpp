#include "TestSupport.h"
#include "ministry/Remittance.h"

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

// Payable: the item's 77.20, the balance forward's 10.00 and -5.00, the transaction's 2.64.
const QString kHr1 = rec("HR1V030BAAA27227800H720121015VLAAR DR HJ", {{60, "000008484 99999999"}});
const QString kHr2 = rec("HR2", {{34, "207-45 STANLEY ST"}});
const QString kHr3 = rec("HR3AYR", {{29, "ON N0B1E0"}});
const QString kHr4 = rec("HR4J2093000060127227800 EDT2G6 SMITH", {{51, "ON1284630124    HCP"}});
const QString kHr5 = rec("HR5J209300006012012022101A003A 007720007720");
const QString kHr6 = rec("HR6000001000 000000000 000000500-000000000");
const QString kHr7 = rec("HR740 2012093000000264 COMP CARE CAPITATION");
const QString kHr8 = rec("HR8   GROUP PAYMENT REPORT");

const QString kDiffers = "Total Amount Payable differs from the records read";

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
        test::row("V03", QString(kHr1).replace(59, 10, "000007720-"),
                  "HR5J209300006012012022101A003A 007720007720-I2", true, -7720, -7720);
        test::row("V02 shifted, six-digit dates",
                  rec("HR1V02  27227800H7121015VLAAR", {{55, "000007720 99999999"}}),
                  "HR5J2093000060112022101A003A 007720007720 I2", false, 7720, 7720);
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
        // Line `line` of the valid file with `text` at 1-based `pos`; the text is the value listed.
        const auto put = [](const char* name, int line, int pos, const QString& text,
                            const char* error, const char* expected, int usable) {
            QString changed = validFile().at(line);
            test::row(name, line, false, changed.replace(pos - 1, text.size(), text), error, text,
                      expected, usable);
        };
        test::row("length", 4, false, kHr5.left(78), "Incorrect record length", "78", "79", 0);
        test::row("identifier", 5, false, "X" + kHr6.mid(1), "Invalid Transaction Identifier", "XR",
                  "HR", 1);
        test::row("record type", 7, false, "HR9" + kHr8.mid(3), "Invalid Record Type", "9", "1-8",
                  1);
        put("provider", 0, 12, "27A278", "Invalid Health Care Provider Number", "6 digits", 1);
        put("payment date", 0, 22, "20121315", "Invalid Date", "YYYYMMDD", 1);
        put("total", 0, 60, "0000082X0", "Invalid Total Amount Payable", "Numeric", 1);
        put("total sign", 0, 69, "+", "Invalid Total Amount Payable Sign",
            "(Space) or - (negative sign)", 1);
        test::row("HR2 tail", 1, false, QString(kHr2).replace(78, 1, "X"), "Spaces expected",
                  QString(20, ' ') + "X", "Spaces", 1);
        put("transaction type", 3, 15, "3", "Invalid Transaction Type", "1 or 2", 1);
        test::row("orphan", 5, true, QString(kHr5).replace(3, 11, "J2093000099"),
                  "Invalid (orphaned) Claim Item Record", "J2093000099", "J2093000060", 1);
        put("service date", 4, 16, "20120230", "Invalid Service Date", "YYYYMMDD", 0);
        put("service code", 4, 26, "A0 3A", "Invalid Service Code", "Fee code and suffix A, B or C",
            0);
        put("submitted", 4, 32, "0077-0", "Invalid Amount Submitted", "Numeric", 0);
        put("paid", 4, 38, "00772O", "Invalid Amount Paid", "Numeric", 0);
        put("paid sign", 4, 44, "+", "Invalid Amount Paid Sign", "(Space) or - (negative sign)", 0);
        put("balance", 5, 14, "00000A000", "Invalid Advances", "Numeric", 1);
        put("transaction date", 6, 7, "20129930", "Invalid Transaction Date", "YYYYMMDD", 1);
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
        Remittance r = read(lines);
        // A fault that loses or adds an amount also makes the total differ: told on its own.
        r.errors.removeIf([](const received::LineError& e) { return e.error == kDiffers; });
        QCOMPARE(r.errors.size(), 1);
        QCOMPARE(r.errors.first(), (received::LineError{at + 1, error, value, expected}));
        QCOMPARE(usableItems(r), usable);
        QCOMPARE(r.lineCount, int(lines.size()));
    }

    void orphanWithoutClaimHeaderIsKeptApart() {
        const Remittance r = read({QString(kHr1).replace(59, 9, "000015440"), kHr5, kHr4, kHr5});
        QCOMPARE(r.errors.size(), 1);
        QCOMPARE(r.errors.first().error, QString("Invalid (orphaned) Claim Item Record"));
        QCOMPARE(r.claims.size(), 2);
        QCOMPARE(r.claims.at(0).line, 0);  // no header: listed under its own number
        QVERIFY(!r.claims.at(0).items.first().usable);
        QVERIFY(r.claims.at(1).items.first().usable);
    }

    // The header's amount payable ($84.84) against what the records read add up to: a file
    // cut short or damaged is told with both amounts; the ministry's whole files agree.
    void payableAgreesWithTheRecordsRead_data() {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QString>("read");  // empty: agrees; "?": no amount payable to compare
        const QStringList whole = validFile();
        test::row("whole file", whole, "");
        test::row("cut after the claims", whole.mid(0, 5), "$77.20");
        // Cut inside the item: its amount paid is gone, and so is all that followed.
        test::row("cut inside an item", QStringList{kHr1, kHr4, kHr5.left(37)}, "$0.00");
        test::row("a negative transaction counts against",
                  QStringList{QString(kHr1).replace(59, 9, "000007456"), kHr4, kHr5,
                              QString(kHr7).replace(22, 1, "-")},
                  "");
        test::row("no header", whole.mid(1), "?");
        test::row("unreadable total", QStringList{QString(kHr1).replace(59, 1, "X"), kHr4, kHr5},
                  "?");
    }
    void payableAgreesWithTheRecordsRead() {
        QFETCH(QStringList, lines);
        QFETCH(QString, read);
        const Remittance r = remittance::read(lines);
        QList<received::LineError> listed = r.errors;
        listed.removeIf([](const received::LineError& e) { return e.error != kDiffers; });
        QList<received::LineError> differs;
        QString problem;
        if (read == "?") {
            problem =
                "This file has no OHIP Amount Payable that reads: whether it is complete "
                "cannot be told.";
        } else if (!read.isEmpty()) {
            differs = {{1, kDiffers, read, "$84.84"}};
            problem = "The OHIP Amount Payable $84.84 differs from the " + read +
                      " that the payments, transactions and balance forward read add up to: the "
                      "file is incomplete or damaged.";
        }
        QCOMPARE(listed, differs);
        QCOMPARE(r.payableProblem(), problem);
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
};

QTEST_GUILESS_MAIN(TestRemittance)
#include "test_remittance.moc"
