#include "BatchOffice.h"
#include "ministry/AnswerReader.h"

#include <QDir>
#include <QtTest>

using namespace brimsett;

// The ministry's public sample files, read as the office would read them from its mailbox.
class TestMinistrySamples : public QObject {
    Q_OBJECT

    static QString sample(const char* name) {
        const QString folder = test::samplesFolder();
        if (folder.isEmpty() || !QFile::exists(folder + "/" + name)) {
            return {};
        }
        return folder + "/" + name;
    }

private slots:
    void readsEverySampleAnswer_data();
    void readsEverySampleAnswer();
    void reconcilesTheSampleRemittance();
    void refusesAClaimFile();
};

void TestMinistrySamples::readsEverySampleAnswer_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<received::FileKind>("kind");
    QTest::addColumn<int>("records");  // claims, rows or items: what each kind is made of
    QTest::addColumn<QString>("facts");
    QTest::newRow("remittance") << "moh_sample_ra_extract.txt" << received::FileKind::Remittance
                                << 2 << "272278|$82.30|direct|4 items paid $82.30";
    QTest::newRow("group remittance with messages")
        << "moh_sample_ra_group_payment_messages.txt" << received::FileKind::Remittance << 0
        << "000000|$16.20|direct|4 transactions, 2024 messages";
    QTest::newRow("batch edit") << "moh_sample_batch_edit_HB1.txt" << received::FileKind::BatchEdit
                                << 1 << "170332|9 claims|38 records|accepted";
    QTest::newRow("error report") << "moh_sample_claims_error_report.txt"
                                  << received::FileKind::ErrorReport << 1
                                  << "102152|4 items|VH5|VJ5,V40,V42,V41";
    QTest::newRow("error report extract")
        << "moh_sample_claims_error_report_extract.txt" << received::FileKind::ErrorReport << 4
        << "010092|4 items|VJ7";
}

namespace {

QString factsOf(const ReceivedAnswer& answer) {
    QStringList facts;
    if (const auto* r = std::get_if<remittance::Remittance>(&answer.content)) {
        facts << r->header.provider << r->header.totalPayable.value_or(Money()).currency()
              << (r->header.directDeposit() ? "direct" : "cheque");
        int items = 0;
        Money paid;
        for (const auto& claim : r->claims) {
            for (const auto& item : claim.items) {
                ++items;
                paid = paid + item.paid.value_or(Money());
            }
        }
        facts << (r->claims.isEmpty()
                      ? QString("%1 transactions, %2 messages")
                            .arg(r->transactions.size())
                            .arg(r->messages.size())
                      : QString("%1 items paid %2").arg(items).arg(paid.currency()));
    } else if (const auto* b = std::get_if<batchedit::Report>(&answer.content)) {
        const batchedit::Row& row = b->rows.first();
        facts << row.provider << row.claims + " claims" << row.records + " records"
              << (row.rejected ? "rejected" : "accepted");
    } else if (const auto* e = std::get_if<errorreport::ErrorReport>(&answer.content)) {
        facts << e->providers.first().provider << QString("%1 items").arg(e->itemCount());
        QStringList codes;
        for (const auto& claim : e->providers.first().claims) {
            codes << claim.errors;
            for (const auto& item : claim.items) {
                codes << item.errors;
            }
        }
        codes.removeAll(QString());
        codes.removeDuplicates();
        facts << codes;
    }
    return facts.join('|');
}

int recordsOf(const ReceivedAnswer& answer) {
    if (const auto* r = std::get_if<remittance::Remittance>(&answer.content)) {
        return int(r->claims.size());
    }
    if (const auto* b = std::get_if<batchedit::Report>(&answer.content)) {
        return int(b->rows.size());
    }
    const auto& e = std::get<errorreport::ErrorReport>(answer.content);
    return int(e.providers.first().claims.size());
}

}  // namespace

void TestMinistrySamples::readsEverySampleAnswer() {
    QFETCH(QString, file);
    QFETCH(received::FileKind, kind);
    QFETCH(int, records);
    QFETCH(QString, facts);
    const QString path = sample(file.toLatin1().constData());
    if (path.isEmpty()) {
        QSKIP("the ministry's sample files are not beside the project");
    }
    test::OfficeFixture f;
    // The office the error report is for: its doctor decides where the header is read.
    f.db->exec(
        "Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, LName)"
        " Values ('D1', '0000', '102152', '00', 'Doe')");
    const auto answer = readAnswer(*f.db, f.log, f.prompter, path, {});
    QVERIFY(answer.has_value());
    QCOMPARE(answer->kind, kind);
    // The ministry's own files are well formed: nothing to list.
    QCOMPARE(answer->errors(), QList<received::LineError>());
    QCOMPARE(recordsOf(*answer), records);
    QCOMPARE(factsOf(*answer), facts);
}

void TestMinistrySamples::reconcilesTheSampleRemittance() {
    const QString path = sample("moh_sample_ra_extract.txt");
    if (path.isEmpty()) {
        QSKIP("the ministry's sample files are not beside the project");
    }
    test::BatchOffice f;
    const auto submitted = [](ClaimRecord& c) { c.batchId = "201202280001"; };
    f.claim(10000001, "EDT2G6", "1", {{"A003A", Money::fromCents(7720), QDate(2012, 2, 21)}},
            "HCP - P", submitted);
    f.claim(10000002, "EDT2G8", "1",
            {{"G010A", Money::fromCents(207), QDate(2012, 2, 12)},
             {"G489A", Money::fromCents(354), QDate(2012, 2, 12)},
             {"G700A", Money::fromCents(510), QDate(2012, 2, 12)}},
            "HCP - P", submitted);
    const auto answer = readAnswer(*f.db, f.log, f.prompter, path, {});
    QVERIFY(answer.has_value());
    QCOMPARE(answer->counts, (remittance::ReconcileCounts{4, 0, 0, 0}));
    // The two "I2" items are paid nothing and reconciled as paid in full of nothing.
    QCOMPARE(test::rowsOf(f.db->exec("Select ClaimID, ServiceCode, FeeSubm, FeePaid, Status"
                                     " From items Order By ClaimID, ItemID")),
             (QStringList{"10000001|A003A|772000|772000|2", "10000002|G010A|0|0|2",
                          "10000002|G489A|0|0|2", "10000002|G700A|51000|51000|2"}));
    QCOMPARE(test::rowsOf(f.db->exec("Select MOHClaim, RA From claims Order By ClaimID")),
             (QStringList{"J2093000060|moh_sample_ra_extract.txt 20121015!",
                          "J2093000062|moh_sample_ra_extract.txt 20121015!"}));
}

void TestMinistrySamples::refusesAClaimFile() {
    const QString path = sample("moh_sample_claim_file_small.txt");
    if (path.isEmpty()) {
        QSKIP("the ministry's sample files are not beside the project");
    }
    test::OfficeFixture f;
    QVERIFY(!readAnswer(*f.db, f.log, f.prompter, path, {}).has_value());
    QCOMPARE(f.prompter.last().lines.first(), QStringLiteral("This file does not appear"));
}

QTEST_GUILESS_MAIN(TestMinistrySamples)
#include "test_ministry_samples.moc"
