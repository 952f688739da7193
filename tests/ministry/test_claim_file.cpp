// The claim file as the ministry reads it: records, a whole file byte for byte, numbering.
#include "BatchOffice.h"
#include "ministry/BatchNumbers.h"
#include "ministry/ClaimFileRecords.h"

#include <QFile>
#include <QtTest>

using namespace brimsett;

namespace {

// A record as typed here, with the blanks the writer adds up to 79 and CR LF.
QByteArray line(const char* fields) {
    return QByteArray(fields).leftJustified(79, ' ') + "\r\n";
}

QByteArray fileBytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

class TestClaimFile : public QObject {
    Q_OBJECT

private slots:
    void wholeFileByteForByte();
    void publicSampleReproduced();
    void fields_data();
    void fields();
    void oddClaimsStillMakeFullRecords();
    void twoFilesOnOneDay();
    void numbersWrap_data();
    void numbersWrap();
};

void TestClaimFile::wholeFileByteForByte() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    const QDate d20(2026, 11, 20);

    o.claim(10000001, "17", "AB",
            {{"A007A", Money::fromCents(3370), d20},
             {"G365A", std::nullopt, d20},
             {"", Money::fromCents(500), d20}},
            "HCP - P", [](ClaimRecord& c) {
                c.refDoc = "123456";
                c.facilityNum = "1234";
                c.admitDate = QDate(2026, 11, 1);
                c.manualReview = true;
                c.sli = "HOP";
                c.items[1].numServ = 2;
                c.items[1].diagCode.clear();
            });
    o.claim(10000002, "00000002", "AB", {{"A001A", Money::fromCents(2170), QDate(2026, 11, 19)}},
            "WCB", [](ClaimRecord& c) {
                c.healthNum = "9876543225";
                c.versionCode.clear();
                c.dob = QDate(1975, 1, 2);
                c.items[0].diagCode = "799";
            });
    o.claim(10000003, "00000003", "AB", {{"A007A", Money::fromCents(3370), QDate(2026, 11, 18)}},
            "RMB", [](ClaimRecord& c) {
                c.healthNum = "9845842346";
                c.province = "BC";
                c.lName = "O'Brien-Smithers";
                c.fName = "Jean-Luc";
                c.sex = "M";
                c.dob = QDate(1990, 12, 31);
            });

    o.claim(10000004, "00000004", "AB", {}, "HCP - S");  // no items
    o.claim(10000005, "00000005", "AB", {{"A007A", Money::fromCents(3370), QDate(2026, 11, 23)}});
    o.claim(10000006, "00000006", "AB", {{"00010", Money::fromCents(2500), d20}}, "Direct");

    const auto file = o.prepare(test::requestFor("ab", "2026/11/22"));
    QVERIFY(file);
    QCOMPARE(file->fileName, QStringLiteral("HK123456.001"));

    const QByteArray expected =
        line("HEBV03J202611220001      000012345600") +
        line("HEH9876543225  1975010200000002WCBP") + line("HETA001A  0021700120261119799") +
        line("HEH            1990123100000003RMBP") + line("HER9845842346  OBRIENSMIJEANL1BC") +
        line("HETA007A  0033700120261118401") +
        line("HEH1234567897AB1980051700000017HCPP123456123420261101    YHOP") +
        line("HETA007A  0033700120261120401") + line("HETG365A  0000000220261120") +
        line("HEE0003000100004");
    QCOMPARE(fileBytes(file->path), expected);

    QCOMPARE(file->batches.size(), std::size_t(1));
    const PreparedBatch& b = file->batches.front();
    QCOMPARE(b.batchId, QStringLiteral("202611220001"));
    QCOMPARE(b.records, 10);
    QCOMPARE(b.total, Money::fromCents(8910));
    QCOMPARE(test::rowsOf(o.db->exec("Select BatchID, MOHOffice, Operator, GroupNum, ProviderNum, "
                                     "SpecCode, H, R, T, Records, Total, FileName, SubmitDate "
                                     "From batches")),
             QStringList{"202611220001|J||0000|123456|00|3|1|4|10|891000|HK123456.001|<null>"});

    // Every pending claim of the doctor joined the batch, the one without items and the
    // directly billed one included; the claim after the cut-off waits.
    for (qint64 id : {10000001, 10000002, 10000003, 10000004, 10000006}) {
        QCOMPARE(o.batchOf(id), QStringLiteral("202611220001"));
    }
    QCOMPARE(o.batchOf(10000005), kPendingBatch);
    QCOMPARE(o.count("Select Count(*) From claims Where AllBatches='202611220001!'"), 5);
    QVERIFY(test::readText(o.office.file("HeadersNoItems.txt")).contains("00000004"));
    QCOMPARE(o.office.store().get("Batch", "HK123456.001"), QStringLiteral("1"));
    QCOMPARE(o.settings.diskIDCounter, 1);
}

void TestClaimFile::publicSampleReproduced() {
    const QString sample = test::samplesFolder() + "/openo_vendor_claim_file.txt";
    if (!QFile::exists(sample)) {
        QSKIP("the public sample files are not beside the project");
    }
    // The same claim, made here on the day the sample was, gives the sample byte for byte.
    test::BatchOffice o;
    o.clock.set(QDateTime(QDate(2024, 6, 24), QTime(9, 0)));
    o.db->exec(
        "Insert Into doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice) "
        "Values ('AB','0000','030200','00','N')");
    o.claim(10000000, "00000001", "AB", {{"A007A", Money::fromCents(3470), QDate(2024, 6, 24)}},
            "HCP - P", [](ClaimRecord& c) {
                c.healthNum = "9876543225";
                c.dob = QDate(1985, 6, 15);
                c.sli = "3821";
                c.items[0].diagCode = "799";
            });
    const auto file = o.prepare(test::requestFor("AB"));
    QVERIFY(file);
    QCOMPARE(fileBytes(file->path), fileBytes(sample));
}

void TestClaimFile::fields_data() {
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("expected");
    test::row("fee in cents", "fee", "35.75", "003575");
    test::row("half a cent rounds up", "fee", "35.755", "003576");
    test::row("no fee", "fee", "", "000000");
    test::row("a fee of 10,000 overflows", "fee", "10000.00", "1000000");
    test::row("numeric account zero-filled", "account", "17", "00000017");
    test::row("other account as it stands", "account", " EDT2P1", " EDT2P1 ");
    test::row("no account", "account", "", "        ");
    test::row("name keeps A to Z", "name", " d'Arcy-Lee 2nd ", "DARCYLEEN");
    test::row("name cut", "name", "Montgomery-Wellington", "MONTGOMER");
    test::row("second opinion payee", "payee", "HCP - S", "S");
    test::row("reciprocal payee", "payee", "RMB", "P");
    test::row("workplace payee", "payee", "WCB", "P");
}

void TestClaimFile::fields() {
    QFETCH(QString, kind);
    QFETCH(QString, value);
    QFETCH(QString, expected);
    QString actual;
    if (kind == "fee") {
        actual = claimfile::feeField(value.isEmpty() ? std::nullopt : Money::parse(value));
    } else if (kind == "account") {
        actual = claimfile::accountField(value);
    } else if (kind == "name") {
        actual = claimfile::nameField(value, 9);
    } else {
        actual = claimfile::payeeOf(value);
    }
    QCOMPARE(actual, expected);
}

void TestClaimFile::oddClaimsStillMakeFullRecords() {
    ClaimRecord c;
    c.payProg = "RMB";
    c.healthNum = "123456789012345";  // longer than any province's
    c.lName = QString(80, 'x');
    c.fName = QString(80, 'y');
    c.refDoc = "1234567";
    c.facilityNum = "ABCDEFG";
    c.sli = "HOSPITAL";
    ItemRecord item;
    item.serviceCode = "A007AXX";
    item.diagCode = "40123";
    for (const QString& record :
         {claimfile::claimHeader(c), claimfile::reciprocalHeader(c), claimfile::itemRecord(item)}) {
        QVERIFY2(record.size() <= claimfile::kRecordLength, qPrintable(record));
    }
    QCOMPARE(claimfile::itemRecord(item).mid(10, 8), QStringLiteral("00000001"));
    QCOMPARE(claimfile::claimHeader(c).mid(15, 16), QString(16, ' '));  // no birth date, no account

    item.feeSubm = Money::fromCents(1000000);
    QCOMPARE(claimfile::itemRecord(item).mid(10, 7), QStringLiteral("1000000"));
    QCOMPARE(claimfile::itemRecord(item).size(), 42);  // one wider, not cut

    // In the file the overflow shifts the fields after it; the record is still padded.
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(1000000), QDate()}});
    const auto file = o.prepare(test::requestFor("AB"));
    QVERIFY(file);
    const QList<QByteArray> lines = fileBytes(file->path).split('\n');
    QCOMPARE(lines.size(), 5);  // four records and the empty rest after the last CR LF
    QCOMPARE(lines[2].mid(10, 9), QByteArray("100000001"));
    QCOMPARE(lines[2].mid(19, 12), QByteArray("        401 "));  // no service date
    for (int i : {0, 1, 2, 3}) {
        QCOMPARE(lines[i].size(), 80);  // 79 and CR
    }
}

void TestClaimFile::twoFilesOnOneDay() {
    test::BatchOffice o;
    o.addDoctor("AB", "0000", "123456", "00");
    o.claim(10000001, "00000001", "AB", {{"A007A", Money::fromCents(3370), QDate(2026, 11, 20)}});
    const auto first = o.prepare(test::requestFor("AB"));
    o.claim(10000002, "00000002", "AB", {{"A007A", Money::fromCents(3370), QDate(2026, 11, 21)}});
    const auto second = o.prepare(test::requestFor("AB"));
    QVERIFY(first && second);
    QCOMPARE(first->fileName, QStringLiteral("HK123456.001"));
    QCOMPARE(second->fileName, QStringLiteral("HK123456.002"));
    QCOMPARE(first->batches.front().batchId, QStringLiteral("202611220001"));
    QCOMPARE(second->batches.front().batchId, QStringLiteral("202611220002"));
    // Both headers carry sequence 0001.
    QCOMPARE(fileBytes(first->path).mid(15, 4), QByteArray("0001"));
    QCOMPARE(fileBytes(second->path).mid(15, 4), QByteArray("0001"));
    QCOMPARE(o.batchOf(10000001), QStringLiteral("202611220001"));
    QCOMPARE(o.batchOf(10000002), QStringLiteral("202611220002"));
}

void TestClaimFile::numbersWrap_data() {
    QTest::addColumn<QStringList>("taken");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty list") << QStringList{} << "202611220001";
    QTest::newRow("after yesterday's") << QStringList{"202611210007"} << "202611220008";
    QTest::newRow("9999 wraps to 0001") << QStringList{"202611219999"} << "202611220001";
    QTest::newRow("wrap skips taken")
        << QStringList{"202611220001", "202611220002", "202611229999"} << "202611220003";
    QTest::newRow("unreadable sequence") << QStringList{"20261121ABCD"} << "202611220001";
}

void TestClaimFile::numbersWrap() {
    QFETCH(QStringList, taken);
    QFETCH(QString, expected);
    test::BatchOffice o;
    for (const QString& id : taken) {
        o.db->exec("Insert Into batches (BatchID) Values (?)", {id});
    }
    QCOMPARE(batchnumbers::nextBatchId(*o.db, o.clock.today()), expected);

    // The file counter's extension wraps as visibly: 1000 is "000" again.
    QCOMPARE(batchnumbers::claimFileName(QDate(2026, 3, 1), "123456", 7),
             QStringLiteral("HC123456.007"));
    QCOMPARE(batchnumbers::claimFileName(QDate(2026, 12, 1), "GR01", 1000),
             QStringLiteral("HLGR01.000"));
}

QTEST_GUILESS_MAIN(TestClaimFile)
#include "test_claim_file.moc"
