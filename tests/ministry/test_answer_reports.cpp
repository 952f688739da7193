#include "BatchOffice.h"

#include "ministry/AnswerReports.h"
#include "ministry/BatchEdit.h"
#include "ministry/ErrorReport.h"
#include "ministry/Remittance.h"
#include "reports/ReportPrinter.h"

#include <QtTest>

// The fixtures name only the fields a report shows; the others keep their defaults.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

using namespace brimsett;
using namespace brimsett::answerreports;
using L = QStringList;

namespace {

const QDate kPrinted(2026, 11, 22);

remittance::Item item(const QString& code, int submitted, int paid, const QString& expl = {},
                      remittance::ItemOutcome outcome = remittance::ItemOutcome::NotReconciled) {
    return {.serviceDate = QDate(2026, 10, 1),
            .numServ = 1,
            .serviceCode = code,
            .submitted = Money::fromCents(submitted),
            .paid = Money::fromCents(paid),
            .explCode = expl,
            .outcome = outcome};
}

remittance::Claim claim(const QString& provider, const QString& acct,
                        const QList<remittance::Item>& items) {
    return {.mohClaim = "J20930000" + acct.right(2),
            .provider = provider,
            .specialty = "00",
            .acctNum = acct,
            .lastName = "SMITH",
            .firstName = "MARY",
            .healthNum = "1284630124",
            .items = items};
}

remittance::Remittance remittanceOf(const QString& cheque,
                                    const QList<remittance::Claim>& claims = {}) {
    return {.header = {.group = "BAAA",
                       .provider = "272278",
                       .specialty = "00",
                       .paymentDate = QDate(2012, 10, 15),
                       .totalPayable = Money::fromCents(8230),
                       .chequeNumber = cheque},
            .claims = claims};
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
        remittance::Remittance r = remittanceOf(cheque);
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

    void remittanceAccountsAndMessages() {
        test::BatchOffice o;
        auto r = remittanceOf("99999999");
        r.balances = {{.claimsAdjustment = Money(),
                       .advances = Money::fromCents(-12000),
                       .reductions = Money::fromCents(500)}};
        r.transactions = {{.code = "10", .indicator = "R", .amount = Money::fromCents(26400)},
                          {.code = "40",
                           .dateText = "20120930",
                           .date = QDate(2012, 9, 30),
                           .amount = Money::fromCents(-800),
                           .message = "ACCESS BONUS PAYMENT"}};
        r.messages = {"**********", "CATEGORY  TYPE OF       BILLING", "",
                      "          CLAIM          NUMBER"};
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

    void longMessagesFillPages() {
        test::BatchOffice o;
        auto r = remittanceOf("99999999");
        r.messages = QStringList(600, "CATEGORY  TYPE OF       BILLING  PATIENTS ENCOUNTERS");
        const reports::ReportPrinter printer(remittanceReport(*o.db, r, "P1.001", kPrinted, {}),
                                             reports::ReportStyle{});
        saveShot(printer, 1, "remittance-messages.png");
        QVERIFY2(printer.pageCount() > 600 / 40 && printer.pageCount() < 600 / 20,
                 qPrintable(QString::number(printer.pageCount())));
    }

    void errorReportGridAndPrintout() {
        using namespace errorreport;
        const Item a003{.serviceCode = "A003A",
                        .fee = Money::fromCents(5410),
                        .serviceDate = QDate(2002, 8, 7),
                        .diagCode = "780",
                        .outcome = ItemOutcome::MarkedRejected};
        Item vj7 = a003;
        vj7.errors = "VJ7";
        vj7.outcome = ItemOutcome::Unknown;
        // The second item is one the ministry sent with its error codes alone.
        const Claim found{
            .healthNum = "1003100755",
            .birthDate = QDate(2000, 2, 10),
            .acctNum = "EDT2P1",
            .payProg = "HCP",
            .refDoc = "012345",
            .facilityNum = "1234",
            .errors = "VH5",
            .items = {a003, {.errors = "VJ5,V40,V42,V41", .outcome = ItemOutcome::Unknown}},
            .patientName = "Smith, Mary"};
        const Claim reciprocal{.reciprocal = true,
                               .acctNum = "X1",
                               .payProg = "RMB",
                               .regNum = "9845842346",
                               .lastName = "JONES",
                               .firstName = "TOM",
                               .items = {vj7}};
        const ErrorReport e{
            .providers = {{.provider = "170332", .doctorName = "Doe", .claims = {found}},
                          {.provider = "123456", .claims = {reciprocal}}},
            .messages = {{0, "VJ7", "SERVICE DATE AFTER RECEIVED DATE"}}};

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
        b.rows = {{.batchNumber = "00001"},
                  {.batchNumber = "00002", .message = "(Rejected) INVALID PROVIDER"}};
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
