#include "BatchOffice.h"

#include "ministry/BatchRegister.h"
#include "ministry/BatchReports.h"
#include "reports/ReportPrinter.h"

#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

const QDate kDay20(2026, 11, 20);

QStringList joined(const QList<QStringList>& rows) {
    QStringList lines;
    for (const QStringList& r : rows) {
        lines << r.join('|');
    }
    return lines;
}

// One provider number billing under two specialties: one file of two batches. A "Direct"
// claim of the first doctor is swept into its batch without being written.
struct TwoBatches : test::BatchOffice {
    std::optional<PreparedFile> file;

    TwoBatches() {
        addDoctor("AB", "0000", "123456", "00");
        addDoctor("AD", "0000", "123456", "18");
        claim(
            10000001, "00000001", "AB",
            {{"A007A", Money::fromCents(3370), kDay20}, {"A001A", Money::fromCents(2500), kDay20}});
        claim(10000002, "00000002", "AB", {{"A007A", Money::fromCents(3370), kDay20}}, "HCP - P",
              [](ClaimRecord& c) {
                  c.fName = "Tom";
                  c.lName = "Jones";
                  c.healthNum = "9876543217";
                  c.versionCode.clear();
              });
        claim(10000003, "00000003", "AD", {{"A135A", Money::fromCents(125000), kDay20}});
        claim(10000004, "00000004", "AB", {{"A007A", Money::fromCents(2000), kDay20}}, "Direct");
        file = prepare(test::requestFor("AB"));
    }
};

}  // namespace

class TestBatchReports : public QObject {
    Q_OBJECT

private slots:
    void summaryOfAFileWithTwoBatches() {
        TwoBatches o;
        QVERIFY(o.file);
        QCOMPARE(o.file->fileName, QString("HK123456.001"));
        QCOMPARE(o.file->batches.size(), std::size_t(2));
        BatchRegister batches(*o.db, o.prompter, o.log);

        const reports::Report summary = batchreports::submissionSummary(
            batches, o.file->fileName, o.clock.today(), MoneyFormat{});
        QCOMPARE(summary.title(), QString("Submission Summary"));
        QCOMPARE(summary.headings(), L({"Date: 2026/11/22", "File Name: HK123456.001"}));
        QCOMPARE(summary.tables().size(), 1);
        const reports::ReportTable table = summary.tables().first();
        QStringList captions;
        for (const reports::ReportColumn& c : table.columns) {
            captions << c.caption;
        }
        QCOMPARE(captions, L({"Doctor", "Batch ID", "No. of Claims", "No. of Records", "Total"}));
        // Claims and records of each batch: header, claim headers, items and trailer.
        QCOMPARE(joined(table.rows), L({"0000-123456-00|202611220001|2|7|$92.40",
                                        "0000-123456-18|202611220002|1|4|$1,250.00"}));
        QCOMPARE(joined(table.totals), L({"Total|2 batches|3|11|$1,342.40"}));
        QVERIFY(table.columns.at(4).alignment & Qt::AlignRight);

        // The other decimal separator is used by every amount.
        const reports::Report comma = batchreports::submissionSummary(
            batches, o.file->fileName, o.clock.today(), MoneyFormat{QLatin1Char(',')});
        QCOMPARE(comma.tables().first().totals.first().last(), QString("$1.342,40"));

        // It prints on one page.
        test::TempOffice out;
        QCOMPARE(reports::ReportPrinter(summary, {}).writePdf(out.file("summary.pdf")), 1);
    }

    void claimsSubmittedInABatch() {
        TwoBatches o;
        QVERIFY(o.file);
        BatchRegister batches(*o.db, o.prompter, o.log);
        const QString first = o.file->batches.front().batchId;
        QCOMPARE(first, QString("202611220001"));
        // The "Direct" claim was swept into the batch, but the file does not carry it.
        QCOMPARE(o.batchOf(10000004), first);

        const auto report =
            batchreports::claimsSubmitted(batches, first, o.clock.today(), MoneyFormat{}, false);
        QVERIFY(report);
        QCOMPARE(report->title(), QString("Claims submitted in file HK123456.001"));
        QCOMPARE(report->headings(),
                 L({"Date: 2026/11/22", "Batch ID: 202611220001    Doctor: 0000-123456-00"}));
        QVERIFY(report->landscape());
        const reports::ReportTable table = report->tables().first();
        QStringList captions;
        for (const reports::ReportColumn& c : table.columns) {
            captions << c.caption;
        }
        QCOMPARE(captions, L({"Account", "Patient", "Health Number", "Service Code", "Diagnosis",
                              "No. of Services", "Fee", "Service Date"}));
        QCOMPARE(joined(table.rows),
                 L({"00000001|Mary Smith|1234567897 AB|A007A|401|1|$33.70|2026/11/20",
                    "|||A001A|401|1|$25.00|2026/11/20",
                    "00000002|Tom Jones|9876543217|A007A|401|1|$33.70|2026/11/20"}));
        QCOMPARE(table.groupStarts, QList<int>({0, 2}));
        // The total is the batch's own.
        QCOMPARE(joined(table.totals), L({"Total|2 claims, 3 items|||||$92.40|"}));
        QCOMPARE(batches.find(first)->total.currency(), QString("$92.40"));

        // Switch 3: "Last, First".
        const auto lastFirst =
            batchreports::claimsSubmitted(batches, first, o.clock.today(), MoneyFormat{}, true);
        QCOMPARE(lastFirst->tables().first().rows.first().at(1), QString("Smith, Mary"));

        // A batch no longer recorded gives nothing.
        QVERIFY(!batchreports::claimsSubmitted(batches, "202611229999", o.clock.today(),
                                               MoneyFormat{}, false));
    }

    // A claim whose items all lack a service code still went out as a claim header.
    void claimWithoutServiceCodes() {
        BatchRow batch;
        batch.batchId = "202611220001";
        batch.fileName = "HK123456.001";
        ClaimRecord c;
        c.claimId = 10000001;
        c.acctNum = "00000001";
        c.payProg = "HCP - P";
        c.fName = "Mary";
        c.lName = "Smith";
        c.healthNum = "1234567897";
        ItemRecord item;
        item.itemId = 1;
        item.numServ = 0;
        c.items = {item};
        const reports::Report report =
            batchreports::claimsSubmitted(batch, {c}, QDate(2026, 11, 22), MoneyFormat{}, false);
        QCOMPARE(joined(report.tables().first().rows), L({"00000001|Mary Smith|1234567897"}));
        QCOMPARE(joined(report.tables().first().totals), L({"Total|1 claim, 0 items|||||$0.00|"}));
    }
};

QTEST_MAIN(TestBatchReports)
#include "test_batch_reports.moc"
