#include "CliRun.h"
#include "TestSupport.h"

#include <QtTest>

using namespace brimsett;

// An office of two patients of doctor JS: claim 10000000 sent in a batch (one item paid, one
// rejected with code ZZ), two direct claims on invoices 12 and 123 (the first paid less than
// billed), and a pending claim.
class TestCliPastClaims : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    QString sql(const QString& statement) { return run({"sql", statement}).out; }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        for (const char* statement : {
                 "Insert Into doctors (DoctorID, SpecCode) Values ('JS','00')",
                 "Insert Into patients (PatientID, FName, LName) Values (1,'Mary','Smith')",
                 "Insert Into patients (PatientID, FName, LName) Values (2,'John','Brown')",
                 "Insert Into explcodes (ExplCode, Description) Values ('ZZ','Not a service')",
                 "Insert Into invoices (ID, InvoiceNum) Values (1,'12')",
                 "Insert Into invoices (ID, InvoiceNum) Values (2,'123')",
                 "Insert Into claims (ClaimID, AcctNum, BatchID, AllBatches, DoctorID, PayProg,"
                 " PatientID, FName, LName) Values (10000000,'00000001','260101000001',"
                 "'260101000001!','JS','HCP - P',1,'Mary','Smith')",
                 "Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, FeeSubm,"
                 " ServiceDate, FeePaid, Status) Values (10000000,1,'A007A','401',337000,"
                 "'2026-01-05',337000,2)",
                 "Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, FeeSubm,"
                 " ServiceDate, Status, Errors) Values (10000000,2,'E083A','401',101100,"
                 "'2026-01-05',1,'ZZ')",
                 "Insert Into claims (ClaimID, AcctNum, BatchID, DoctorID, PayProg, PatientID,"
                 " FName, LName, InvoiceNum) Values (10000001,'00000002',' Direct     ','JS',"
                 "'Direct',2,'John','Brown','12!')",
                 "Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, FeeSubm,"
                 " ServiceDate, FeePaid, Status) Values (10000001,1,'A001A','250',237500,"
                 "'2026-02-10',100000,2)",
                 "Insert Into claims (ClaimID, AcctNum, BatchID, DoctorID, PayProg, PatientID,"
                 " FName, LName, InvoiceNum) Values (10000002,'00000003',' Direct     ','JS',"
                 "'Direct',2,'John','Brown','123!')",
                 "Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, FeeSubm,"
                 " ServiceDate, Status) Values (10000002,1,'A007A','250',337000,'2026-02-11',0)",
                 "Insert Into claims (ClaimID, AcctNum, BatchID, DoctorID, PayProg, PatientID,"
                 " FName, LName) Values (10000003,'00000004','000000000000','JS','HCP - P',1,"
                 "'Mary','Smith')",
                 "Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, FeeSubm,"
                 " ServiceDate, Status) Values (10000003,1,'A007A','401',337000,'2026-03-01',0)",
             }) {
            QCOMPARE(run({"sql", statement}).status, 0);
        }
    }

    // The grid under its heading, the totals under Fee and Paid; a column's heading sorts.
    void grid_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QString>("totals");
        const QString paid =
            "JS\t00000001\t1\tSmith, Mary\tHCP-P\tA007A\t401\t2026/01/05\t33.70\t33.70";
        const QString rejected =
            "JS\t00000001\t1\tSmith, Mary\tHCP-P\tE083A\t401\t2026/01/05\t10.11\t";
        const QString direct =
            "JS\t00000002\t2\tBrown, John\tDirect\tA001A\t250\t2026/02/10\t23.75\t10.00";
        const QString unpaid =
            "JS\t00000003\t2\tBrown, John\tDirect\tA007A\t250\t2026/02/11\t33.70\t";
        const QString pending =
            "JS\t00000004\t1\tSmith, Mary\tHCP-P\tA007A\t401\t2026/03/01\t33.70\t";
        test::row("a doctor's January", QStringList{"--doctor", "js", "--to", "2026/01/31"},
                  QStringList{paid, rejected}, "Total 2 items\t\t\t\t\t\t\t\t43.81\t33.70");
        test::row("by name, then claim", QStringList{"--service", "a00"},
                  QStringList{direct, unpaid, paid, pending},
                  "Total 4 items\t\t\t\t\t\t\t\t124.85\t43.70");
        test::row("sorted by Fee", QStringList{"--service", "a00", "--sort", "fee"},
                  QStringList{direct, paid, unpaid, pending},
                  "Total 4 items\t\t\t\t\t\t\t\t124.85\t43.70");
        test::row("an invoice, not the one it begins", QStringList{"--invoice", "12"},
                  QStringList{direct}, "Total 1 items\t\t\t\t\t\t\t\t23.75\t10.00");
        test::row("unanswered, pending left out", QStringList{"--status", "submitted"},
                  QStringList{unpaid}, "Total 1 items\t\t\t\t\t\t\t\t33.70\t0.00");
        test::row("filters together",
                  QStringList{"--doctor", "JS", "--program", "hcp-p", "--from", "2026/01/01",
                              "--to", "2026/01/31", "--service", "E08", "--status", "rejected",
                              "--batch", "260101000001"},
                  QStringList{rejected}, "Total 1 items\t\t\t\t\t\t\t\t10.11\t0.00");
    }
    void grid() {
        QFETCH(QStringList, args);
        QFETCH(QStringList, rows);
        QFETCH(QString, totals);
        const test::CliResult found = run(QStringList{"past-claims"} + args);
        QCOMPARE(found.err, QString());
        QCOMPARE(found.status, 0);
        QCOMPARE(found.out,
                 (QStringList{"Doc.\tAccount\tPat.ID\tPatient Name\tCh. To\tService\tDiag\tDate\t"
                              "Fee\tPaid"} +
                  rows + QStringList{totals})
                         .join('\n') +
                     '\n');
    }

    void export_() {
        const QString path = office.folder() + "/export.txt";
        const test::CliResult saved =
            run({"past-claims", "--doctor", "JS", "--to", "2026/01/31", "--export", path});
        QCOMPARE(saved.status, 0);
        QCOMPARE(saved.out, QString("Successfully saved to text file.\n"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split("\r\n");
        QCOMPARE(lines.size(), 1 + 2 + 1);  // the heading, the items, the last line's end
        QCOMPARE(lines.at(0).split(';').size(), lines.at(2).split(';').size());
        QVERIFY2(lines.at(2).startsWith("10000000;2;JS;00000001;1;Smith, Mary;HCP-P;E083A;401;"
                                        "2026/01/05;10.11;;"),
                 qPrintable(lines.at(2)));
        QVERIFY(lines.at(2).contains(";ZZ;"));

        // A folder that is not there: the reason, and no file.
        const QString nowhere = office.folder() + "/missing/export.txt";
        const test::CliResult refused = run({"past-claims", "--export", nowhere});
        QCOMPARE(refused.status, 1);
        QVERIFY2(refused.err.startsWith("Error: "), qPrintable(refused.err));
        QVERIFY(refused.out.isEmpty());
        QVERIFY(!QFile::exists(nowhere));
    }

    void patientsAndRejections() {
        const test::CliResult patients = run({"past-claims", "--patients"});
        QCOMPARE(patients.status, 0);
        QCOMPARE(patients.out, QString("Pat.ID\tPatient Name\tLast Serv.\tDate\tPeriod Fees\tPaid\n"
                                       "2\tBrown, John\tA007A\t2026/02/11\t57.45\t10.00\n"
                                       "1\tSmith, Mary\tA007A\t2026/03/01\t77.51\t33.70\n"
                                       "2 unique patients found.\n"
                                       "Grand Total: $134.96  Paid: $43.70\n"));

        const test::CliResult rejected = run({"past-claims", "--rejected"});
        QCOMPARE(rejected.status, 0);
        QCOMPARE(rejected.out,
                 QString("Error Code\tItems\tFee\tErrors\nZZ\t1\t10.11\tNot a service\n"));
    }

    // Refused filters tell every problem and print no list; a wrong command line is a usage
    // error.
    void refused_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QStringList>("errors");
        test::row("doctor and date", QStringList{"--doctor", "XY", "--from", "2026/13/01"}, 1,
                  QStringList{"'XY' is not a valid doctor.", "Invalid Start Date."});
        test::row("no such invoice", QStringList{"--invoice", "99"}, 1, QStringList{"99"});
        test::row("third party without a payer", QStringList{"--program", "3rd.P."}, 1,
                  QStringList{"Please select a Third Party"});
        test::row("a sort that is no column", QStringList{"--sort", "ClaimID; Drop"}, 2,
                  QStringList{"brimsett-cli past-claims: ClaimID; Drop is not a column",
                              "usage: brimsett-cli past-claims"});
        test::row("an unknown status", QStringList{"--status", "lost"}, 2,
                  QStringList{"lost is not pending"});
        test::row("an unknown program", QStringList{"--program", "OHIP"}, 2,
                  QStringList{"OHIP is not a payment program"});
    }
    void refused() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QStringList, errors);
        const test::CliResult result = run(QStringList{"past-claims"} + args);
        QCOMPARE(result.status, status);
        QVERIFY(result.out.isEmpty());
        for (const QString& error : errors) {
            QVERIFY2(result.err.contains(error), qPrintable(result.err));
        }
    }

    // Every item of the invoice's claims is paid what was billed, whatever was paid before;
    // the invoice it begins keeps its own.
    void markInvoicePaid() {
        const test::CliResult marked = run({"mark-invoice-paid", "12"});
        QCOMPARE(marked.err, QString());
        QCOMPARE(marked.status, 0);
        QCOMPARE(marked.out, QString("1 item marked paid.\n"));
        QCOMPARE(sql("Select ClaimID, Status, FeePaid From items Where ClaimID In"
                     " (10000001, 10000002) Order By ClaimID"),
                 QString("ClaimID\tStatus\tFeePaid\n10000001\t2\t237500\n10000002\t0\t\n"));

        const test::CliResult missing = run({"mark-invoice-paid", "99"});
        QCOMPARE(missing.status, 1);
        QVERIFY2(missing.err.contains("99"), qPrintable(missing.err));
    }
};

QTEST_GUILESS_MAIN(TestCliPastClaims)
#include "test_cli_past_claims.moc"
