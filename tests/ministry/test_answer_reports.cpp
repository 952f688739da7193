#include "BatchOffice.h"

#include "ministry/AnswerReports.h"
#include "ministry/BatchEdit.h"
#include "ministry/ErrorReport.h"
#include "ministry/PaymentRule.h"
#include "ministry/Remittance.h"
#include "reports/ReportPrinter.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::answerreports;
using L = QStringList;

namespace {

const QDate kPrinted(2026, 11, 22);

remittance::Item item(const QString& code, int submitted, int paid, const QString& expl = {},
                      remittance::ItemOutcome outcome = remittance::ItemOutcome::NotReconciled) {
    remittance::Item i;
    i.serviceDate = QDate(2026, 10, 1);
    i.numServ = 1;
    i.serviceCode = code;
    i.submitted = Money::fromCents(submitted);
    i.paid = Money::fromCents(paid);
    i.explCode = expl;
    i.outcome = outcome;
    return i;
}

remittance::Claim claim(const QString& provider, const QString& acct,
                        const QList<remittance::Item>& items) {
    remittance::Claim c;
    c.mohClaim = "J20930000" + acct.right(2);
    c.provider = provider;
    c.specialty = "00";
    c.acctNum = acct;
    c.lastName = "SMITH";
    c.firstName = "MARY";
    c.healthNum = "1284630124";
    c.items = items;
    return c;
}

remittance::Remittance remittanceOf(const QString& cheque, const QList<remittance::Claim>& claims) {
    remittance::Remittance r;
    r.header.group = "BAAA";
    r.header.provider = "272278";
    r.header.specialty = "00";
    r.header.paymentDate = QDate(2012, 10, 15);
    r.header.totalPayable = Money::fromCents(8230);
    r.header.chequeNumber = cheque;
    r.claims = claims;
    return r;
}

const reports::ReportTable& tableOf(const reports::Report& report, const QString& caption) {
    static const reports::ReportTable none;
    for (const reports::Report::Block& block : report.blocks()) {
        const auto* t = std::get_if<reports::ReportTable>(&block);
        if (t && t->columns.value(0).caption == caption) {
            return *t;
        }
    }
    return none;
}

QStringList joined(const QList<QStringList>& rows) {
    QStringList lines;
    for (const QStringList& r : rows) {
        lines << r.join('|');
    }
    return lines;
}

// The "HR8" lines of the ministry's group sample, without their record type.
QStringList sampleMessages() {
    QStringList messages;
    const QString text =
        test::readText(test::samplesFolder() + "/moh_sample_ra_group_payment_messages.txt");
    for (const QString& line : text.split("\r\n")) {
        if (line.startsWith("HR8")) {
            messages << line.mid(3, 70).remove(QRegularExpression(" +$"));
        }
    }
    return messages;
}

void saveShot(const reports::ReportPrinter& printer, int page, const QString& name) {
    const QString shots = qEnvironmentVariable("BRIMSETT_SHOTS");
    if (!shots.isEmpty()) {
        printer.pageImage(page, 96).save(shots + '/' + name);
    }
}

}  // namespace

class TestAnswerReports : public QObject {
    Q_OBJECT

private slots:
    void settlingRule_data() {
        QTest::addColumn<int>("submitted");
        QTest::addColumn<int>("paid");
        QTest::addColumn<QString>("expl");
        QTest::addColumn<bool>("i2Full");
        QTest::addColumn<int>("status");
        QTest::addColumn<int>("submittedAfter");
        QTest::addColumn<int>("paidAfter");
        test::row("short, no code", 7720, 5000, "", false, 1, 7720, 5000);
        test::row("short with 55", 7720, 5000, "55", false, 2, 7720, 5000);
        test::row("at 95% whole cents", 7720, 7334, "", false, 1, 7720, 7334);
        test::row("above 95%", 7720, 7335, "", false, 2, 7335, 7335);
        test::row("I2 lowers submitted", 207, 0, "I2", false, 2, 0, 0);
        test::row("I2 raises paid", 207, 0, "I2", true, 2, 207, 207);
    }
    void settlingRule() {
        QFETCH(int, submitted);
        QFETCH(int, paid);
        QFETCH(QString, expl);
        QFETCH(bool, i2Full);
        QFETCH(int, submittedAfter);
        QFETCH(int, paidAfter);
        const auto s =
            paymentrule::settle(Money::fromCents(submitted), Money::fromCents(paid), expl, i2Full);
        QTEST(int(s.status), "status");
        QCOMPARE(s.submitted, Money::fromCents(submittedAfter));
        QCOMPARE(s.paid, Money::fromCents(paidAfter));
        QCOMPARE(s.submittedLowered, submittedAfter != submitted);
    }

    void remittanceHeading_data() {
        QTest::addColumn<QString>("doctorGroup");
        QTest::addColumn<QString>("cheque");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("chequeText");
        const char* known =
            "Remittance Advice for Doe (272278)  File: PJ272278.001  Printed: 2026/11/22";
        test::row("group's doctor, deposit", "BAAA", "99999999", known, "(Direct Bank Deposit)");
        test::row("doctor by provider alone", "0000", "12345678", known, "12345678");
        test::row("no doctor", "", "91000000",
                  "Remittance Advice for 272278 (Provider not in Brimsett)  File: "
                  "PJ272278.001  Printed: 2026/11/22",
                  "(Direct Bank Deposit)");
    }
    void remittanceHeading() {
        QFETCH(QString, doctorGroup);
        QFETCH(QString, cheque);
        test::BatchOffice o;
        if (!doctorGroup.isEmpty()) {
            o.addDoctor("AB", doctorGroup, "272278", "00");
        }
        remittance::Remittance r = remittanceOf(cheque, {});
        r.address.line1 = "207-45 STANLEY ST";
        r.address.line2 = "AYR             ON N0B1E0";
        const auto report = remittanceReport(*o.db, r, "PJ272278.001", kPrinted, {});
        QTEST(report.title(), "title");
        QVERIFY(report.landscape());
        QCOMPARE(report.headings().mid(1, 2),
                 L({"Billing Agent: (n/a)", "Address: 207-45 STANLEY ST, AYR ON N0B1E0"}));
        QFETCH(QString, chequeText);
        QVERIFY(report.headings().last().endsWith("Cheque Number: " + chequeText));
    }

    void remittanceItemsByProviderWithTotals() {
        test::BatchOffice o;
        o.addDoctor("AB", "BAAA", "272278", "00");
        using O = remittance::ItemOutcome;
        // The file interleaves the providers; the report keeps each provider's claims together.
        const auto r = remittanceOf(
            "12345678",
            {claim("272278", "EDT2G6", {item("A003A", 7720, 7720, "", O::Paid)}),
             claim("123456", "",
                   {item("G010A", 207, 0, "I2", O::Unmatched),
                    item("G489A", 354, 300, "", O::Rejected)}),
             claim("272278", "EDT2G8",
                   {item("G700A", 510, 510, "", O::AlreadyRead), item("A007A", 3370, -3370)})});
        const auto report = remittanceReport(*o.db, r, "PJ272278.001", kPrinted, {});
        const auto& items = tableOf(report, "Claim Number");
        QCOMPARE(
            joined(items.rows),
            L({"J20930000G6|EDT2G6|SMITH, MARY|1284630124|2026/10/01|A003A|1|$77.20|$77.20||Paid",
               "J20930000G8|EDT2G8|SMITH, MARY|1284630124|2026/10/01|G700A|1|$5.10|$5.10||"
               "Read before",
               "||||2026/10/01|A007A|1|$33.70|-$33.70||", "Provider total||Doe|||||$116.00|$48.60",
               "J20930000|(none)|SMITH, MARY|1284630124|2026/10/01|G010A|1|$2.07|$0.00|I2|"
               "Not found",
               "||||2026/10/01|G489A|1|$3.54|$3.00||Rejected",
               "Provider total||123456 (Provider not in Brimsett)|||||$5.61|$3.00"}));
        QCOMPARE(items.boldRows, QList<int>({3, 6}));
        // Accepted: paid in full and "I2"; rejected: short without a code, and the reversal.
        const auto& grand = tableOf(report, "Grand Totals");
        QCOMPARE(joined(grand.rows),
                 L({"Accepted Claims|3|$84.37|$82.30", "Rejected Claims|2|$37.24|-$30.70"}));
        QCOMPARE(joined(grand.totals), L({"Total Claims|5|$121.61|$51.60"}));
        const reports::ReportPrinter printer(report, reports::ReportStyle{});
        QCOMPARE(printer.pageTotals().size(), 1);
        QCOMPARE(printer.pageTotals().at(0).sums,
                 QList<Money>({Money::fromCents(12161), Money::fromCents(5160)}));
    }

    void longRemittanceTotalsAgree() {
        test::BatchOffice o;
        QList<remittance::Claim> claims;
        Money billed, paid;
        for (int i = 0; i < 150; ++i) {
            const int fee = 1000 + i * 37;
            claims << claim(i % 3 ? "272278" : "123456", QString::number(10000000 + i),
                            {item("A007A", fee, fee - (i % 4) * 300)});
            billed += Money::fromCents(fee);
            paid += Money::fromCents(fee - (i % 4) * 300);
        }
        const auto report =
            remittanceReport(*o.db, remittanceOf("99999999", claims), "PJ272278.001", kPrinted, {});
        const reports::ReportPrinter printer(report, reports::ReportStyle{});
        const QList<reports::PageTotal> pages = printer.pageTotals();
        QVERIFY2(pages.size() >= 3, qPrintable(QString::number(pages.size())));
        Money pageBilled, pagePaid;
        for (const reports::PageTotal& page : pages) {
            pageBilled += page.sums.at(0);
            pagePaid += page.sums.at(1);
        }
        QCOMPARE(QList<Money>({pageBilled, pagePaid}), QList<Money>({billed, paid}));
        const auto& items = tableOf(report, "Claim Number");
        Money providers;
        for (int row : items.boldRows) {
            providers += *Money::parse(items.rows.at(row).at(7));
        }
        QCOMPARE(providers, billed);
        QCOMPARE(tableOf(report, "Grand Totals").totals.at(0),
                 L({"Total Claims", "150", billed.currency(), paid.currency()}));
        saveShot(printer, 0, "remittance-page1.png");
        saveShot(printer, printer.pageCount() - 1, "remittance-last.png");
    }

    void remittanceAccountsAndMessages() {
        test::BatchOffice o;
        auto r = remittanceOf("99999999", {});
        r.balances.resize(1);
        r.balances[0].claimsAdjustment = Money();
        r.balances[0].advances = Money::fromCents(-12000);
        r.balances[0].reductions = Money::fromCents(500);
        r.transactions.resize(2);
        r.transactions[0].code = "10";
        r.transactions[0].indicator = "R";
        r.transactions[0].amount = Money::fromCents(26400);
        r.transactions[1].code = "40";
        r.transactions[1].dateText = "20120930";
        r.transactions[1].date = QDate(2012, 9, 30);
        r.transactions[1].amount = Money::fromCents(-800);
        r.transactions[1].message = "ACCESS BONUS PAYMENT";
        r.messages << "**********"
                   << "CATEGORY  TYPE OF       BILLING"
                   << ""
                   << "          CLAIM          NUMBER";
        const auto report = remittanceReport(*o.db, r, "PJ272278.001", kPrinted, {});
        QCOMPARE(joined(tableOf(report, "Amount Brought Forward").rows),
                 L({"Advances|-$120.00", "Reductions|$5.00"}));
        QCOMPARE(joined(tableOf(report, "Type").rows),
                 L({"Advance (R)|(n/a)|$264.00|(no description)",
                    "Advance Repayment|2012/09/30|-$8.00|ACCESS BONUS PAYMENT"}));
        QVERIFY(tableOf(report, "Claim Number").columns.isEmpty());
        const auto* messages = std::get_if<reports::Report::Paragraph>(&report.blocks().last());
        QVERIFY(messages && messages->fixedPitch);
        QCOMPARE(messages->text.split('\n'), r.messages);
    }

    void groupSampleMessagesPrintAligned() {
        if (test::samplesFolder().isEmpty()) {
            QSKIP("the ministry's sample files are not beside the project");
        }
        const QStringList messages = sampleMessages();
        QCOMPARE(messages.size(), 2024);
        test::BatchOffice o;
        auto r = remittanceOf("99999999", {});
        r.messages = messages.mid(0, 60);
        const reports::ReportPrinter sixty(remittanceReport(*o.db, r, "P1.001", kPrinted, {}),
                                           reports::ReportStyle{});
        saveShot(sixty, 1, "remittance-messages.png");
        r.messages = messages;
        const int pages = reports::ReportPrinter(remittanceReport(*o.db, r, "P1.001", kPrinted, {}),
                                                 reports::ReportStyle{})
                              .pageCount();
        QVERIFY2(pages > 2024 / 40 && pages < 2024 / 20, qPrintable(QString::number(pages)));
    }

    void errorReportGridAndPrintout() {
        using namespace errorreport;
        ErrorReport e;
        e.providers.resize(2);
        e.providers[0].provider = "170332";
        e.providers[0].doctorName = "Doe";
        e.providers[1].provider = "123456";
        Claim found;
        found.healthNum = "1003100755";
        found.birthDate = QDate(2000, 2, 10);
        found.acctNum = "EDT2P1";
        found.payProg = "HCP";
        found.refDoc = "012345";
        found.facilityNum = "1234";
        found.errors = "VH5";
        found.patientName = "Smith, Mary";
        found.items.resize(2);
        Item& a003 = found.items[0];
        a003.serviceCode = "A003A";
        a003.fee = Money::fromCents(5410);
        a003.serviceDate = QDate(2002, 8, 7);
        a003.diagCode = "780";
        a003.outcome = ItemOutcome::MarkedRejected;
        // An item the ministry sent with its error codes alone.
        found.items[1].errors = "VJ5,V40,V42,V41";
        found.items[1].outcome = ItemOutcome::Unknown;
        Claim reciprocal;
        reciprocal.reciprocal = true;
        reciprocal.acctNum = "X1";
        reciprocal.payProg = "RMB";
        reciprocal.regNum = "9845842346";
        reciprocal.lastName = "JONES";
        reciprocal.firstName = "TOM";
        reciprocal.items = {a003};
        reciprocal.items[0].errors = "VJ7";
        reciprocal.items[0].outcome = ItemOutcome::Unknown;
        e.providers[0].claims = {found};
        e.providers[1].claims = {reciprocal};
        e.messages = {{0, "VJ7", "SERVICE DATE AFTER RECEIVED DATE"}};

        QCOMPARE(errorGridColumns().size(), 17);
        QCOMPARE(joined(errorGridRows(e, {})),
                 L({"Doe|EDT2P1|1003100755|Smith, Mary|HCP||||||VH5|012345|1234||||",
                    "Doe|EDT2P1||||A003A|780|2002/08/07|$54.10||||||||",
                    "Doe|EDT2P1|||||||||VJ5,V40,V42,V41||||||Unknown item - Serv.Code:  "
                    "Diag.Code:  Serv.Date: ",
                    "123456|X1|9845842346|JONES, TOM|RMB||||||||||||",
                    "123456|X1||||A003A|780|2002/08/07|$54.10||VJ7||||||Unknown item - "
                    "Serv.Code: A003A Diag.Code: 780 Serv.Date: 2002/08/07"}));

        const auto printout = errorReportPrintout(e, "EK170332.001", kPrinted, {});
        QCOMPARE(printout.title(),
                 QString("EDT Error Report - File Name: EK170332.001 - Print Date: 2026/11/22"));
        QStringList paragraphs;
        for (const auto& block : printout.blocks()) {
            if (const auto* p = std::get_if<reports::Report::Paragraph>(&block)) {
                paragraphs << p->text;
            }
        }
        QCOMPARE(paragraphs,
                 L({"*** Claims for: Doe ***",
                    "*** Claims for: 123456 (Provider not in Brimsett) ***", "Total Items: 3"}));
        const auto tables = printout.tables();
        QCOMPARE(tables.size(), 3);
        QCOMPARE(joined(tables.at(0).rows),
                 L({"EDT2P1\n1003100755|Smith, Mary\n2000/02/10|HCP||012345\n1234||VH5",
                    "|||A003A\n780||2002/08/07\n$54.10|", "||||||VJ5,V40,V42,V41\nUnknown item"}));
        QCOMPARE(joined(tables.at(2).rows), L({"VJ7 - SERVICE DATE AFTER RECEIVED DATE"}));
        const reports::ReportPrinter printer(printout, reports::ReportStyle{});
        saveShot(printer, 0, "error-report.png");
    }

    void batchEditPrintoutNumbersItsRecords() {
        batchedit::Report b;
        b.rows.resize(2);
        b.rows[0].batchNumber = "00001";
        b.rows[1].batchNumber = "00002";
        b.rows[1].message = "(Rejected) INVALID PROVIDER";
        const auto printout = batchEditPrintout(b, "BE170332.001", kPrinted);
        QCOMPARE(printout.title(),
                 QString("Batch Edit Report (File: BE170332.001) - Print Date: 2026/11/22"));
        const auto tables = printout.tables();
        QCOMPARE(tables.size(), 2);
        QCOMPARE(tables.at(1).columns.at(0).caption, QString("Record 2 out of 2"));
        QCOMPARE(tables.at(1).rows.size(), batchedit::columns().size());
        QCOMPARE(tables.at(1).rows.first(), L({"Batch Number", "00002"}));
        QCOMPARE(tables.at(1).rows.last(), L({"Edit Message", "(Rejected) INVALID PROVIDER"}));
        const reports::ReportPrinter printer(printout, reports::ReportStyle{});
        QCOMPARE(printer.pageCount(), 2);  // a page per record
        saveShot(printer, 1, "batch-edit.png");
    }
};

QTEST_MAIN(TestAnswerReports)
#include "test_answer_reports.moc"
