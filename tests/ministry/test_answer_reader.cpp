#include "BatchOffice.h"
#include "ministry/AnswerReader.h"

#include <QDir>
#include <QSqlQuery>
#include <QtTest>

using namespace brimsett;

namespace {

// A record of the given length with each text at its 1-based position.
QByteArray record(std::initializer_list<std::pair<int, const char*>> fields, int length = 79) {
    QByteArray line(length, ' ');
    for (const auto& [pos, text] : fields) {
        const QByteArray bytes(text);
        line.replace(pos - 1, bytes.size(), bytes);
    }
    return line.left(length);
}

QByteArray lines(const QList<QByteArray>& records, const char* end = "\r\n") {
    QByteArray out;
    for (const QByteArray& r : records) {
        out += r + end;
    }
    return out;
}

const QByteArray kHr1 =
    record({{1, "HR1V030BAAA12345600H720261115DR SMITH"}, {60, "000003370"}, {70, "99999999"}});
const QByteArray kHr4 =
    record({{1, "HR4J209300006012345600"}, {24, "00000042"}, {53, "1234567897"}, {67, "HCP"}});
const QByteArray kHr5 =
    record({{1, "HR5J2093000060120261102"}, {24, "01A007A"}, {32, "003370003370"}});

}  // namespace

class TestAnswerReader : public QObject {
    Q_OBJECT

private slots:
    void refusesWhatIsNotAnAnswer_data();
    void refusesWhatIsNotAnAnswer();
    void refusesADeviceAndListsAnOverLongLineOnce();
    void reconcilesOneFileInOneTransaction();
    void listsWaitingFilesWithProviderAndDate();
};

void TestAnswerReader::refusesWhatIsNotAnAnswer_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("message");
    const QString notValid = QStringLiteral("This file does not appear to be a valid OHIP file.");
    QTest::newRow("a claim file") << record({{1, "HEBV03"}}) << "Error"
                                  << "This file does not appear\nto be a valid OHIP file.\n"
                                     "(File name: ANSWER.TXT)";
    QTest::newRow("empty") << QByteArray() << "Error"
                           << "This file does not appear\nto be a valid OHIP file.\n"
                              "(File name: ANSWER.TXT)";
    QTest::newRow("batch edit of an unknown release")
        << record({{1, "HB1X03"}, {57, "123456"}}, 132) << "OHIP Batch Edit File" << notValid;
    QTest::newRow("batch edit without a provider number")
        << record({{1, "HB1V03"}, {57, "12A456"}}, 132) << "OHIP Batch Edit File" << notValid;
    QTest::newRow("error report of an unknown release")
        << record({{1, "HX1X03J"}, {28, "123456"}}) << "OHIP EDT Error Report File" << notValid;
}

void TestAnswerReader::refusesWhatIsNotAnAnswer() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, title);
    QFETCH(QString, message);
    test::OfficeFixture f;
    const QString path = f.office.file(QStringLiteral("ANSWER.TXT"));
    test::writeText(path, bytes);
    QVERIFY(!readAnswer(*f.db, f.log, f.prompter, path, {}).has_value());
    QCOMPARE(f.prompter.messages().size(), 1);
    QCOMPARE(f.prompter.last().title, title);
    QCOMPARE(f.prompter.last().text(), message);

    QVERIFY(!readAnswer(*f.db, f.log, f.prompter, f.office.file(QStringLiteral("GONE.TXT")), {})
                 .has_value());
    QCOMPARE(f.prompter.last().text(), QStringLiteral("Could not open file GONE.TXT"));
}

// Read within bounds (proven with the bounded reader): a device is refused; a line of a megabyte
// is listed once by its whole length, and a claim header lost so lets no item join it.
void TestAnswerReader::refusesADeviceAndListsAnOverLongLineOnce() {
    test::OfficeFixture f;
    QVERIFY(!readAnswer(*f.db, f.log, f.prompter, "/dev/zero", {}).has_value());
    QCOMPARE(f.prompter.last().text(),
             "/dev/zero is not a regular file (a folder, a device or a pipe); it was not read.");

    const QString path = f.office.file(QStringLiteral("PK123456.001"));
    test::writeText(path, lines({kHr1, kHr4 + QByteArray(1 << 20, 'x'), kHr5}));
    const auto answer = readAnswer(*f.db, f.log, f.prompter, path, {});
    QVERIFY(answer.has_value());
    QCOMPARE(answer->errors(),
             (QList<received::LineError>{
                 {2, "Incorrect record length", QString::number(79 + (1 << 20)), "79"},
                 {3, "Invalid (orphaned) Claim Item Record", "J2093000060",
                  "Claim header (HR4) first"}}));
}

void TestAnswerReader::reconcilesOneFileInOneTransaction() {
    test::BatchOffice f;
    f.claim(10000001, QStringLiteral("00000042"), QStringLiteral("1"),
            {{QStringLiteral("A007A"), Money::fromCents(3370), QDate(2026, 11, 2)}},
            QStringLiteral("HCP - P"), [](ClaimRecord& c) { c.batchId = "202611150001"; });
    const QString path = f.office.file(QStringLiteral("PK123456.001"));
    test::writeText(path, lines({kHr1, kHr4, kHr5}, "\n") + "\x1a");
    const auto table = [&] {
        return test::rowsOf(f.db->exec(
            QStringLiteral("Select c.RA, c.MOHClaim, i.FeePaid, i.Status From claims c, items i"
                           " Where c.ClaimID = i.ClaimID")));
    };
    const QStringList before = table();

    // A database that refuses the item's update (while "trouble" holds a row) keeps the claim's
    // `RA` as it was too.
    f.db->exec(f.db->dialect().ddl(QStringLiteral("Create Table trouble (Kind Text(10))")));
    f.db->exec(QStringLiteral("Insert Into trouble Values ('disk')"));
    test::refuseRows(*f.db, QStringLiteral("Update"), QStringLiteral("items"),
                     QStringLiteral("Exists (Select 1 From trouble)"), QStringLiteral("refused"));
    QVERIFY(!readAnswer(*f.db, f.log, f.prompter, path, {}).has_value());
    QVERIFY(f.prompter.last().text().startsWith(
        QStringLiteral("The file PK123456.001 was not reconciled; nothing was changed.")));
    QCOMPARE(table(), before);

    f.db->exec(QStringLiteral("Delete From trouble"));
    ReadOptions off;
    off.reconcile = false;
    const auto checked = readAnswer(*f.db, f.log, f.prompter, path, off);
    QVERIFY(checked && !checked->reconciled);
    QCOMPARE(table(), before);

    const auto answer = readAnswer(*f.db, f.log, f.prompter, path, {});
    QVERIFY(answer.has_value());
    QCOMPARE(answer->kind, received::FileKind::Remittance);
    QCOMPARE(answer->errors(), QList<received::LineError>());
    QCOMPARE(answer->counts.paid, 1);
    QCOMPARE(table(), QStringList{"PK123456.001 20261115!|J2093000060|337000|2"});
}

void TestAnswerReader::listsWaitingFilesWithProviderAndDate() {
    test::TempOffice office;
    const QString folder = office.folder();
    test::writeText(folder + "PK123456.001", lines({kHr1}));
    test::writeText(folder + "EK123456.002", lines({record({{1, "HX1V03J"},
                                                            {18, "000000"},
                                                            {24, "BAAA"},
                                                            {28, "654321"},
                                                            {34, "00"},
                                                            {39, "20261120"}})}));
    test::writeText(
        folder + "BK123456.003",
        lines({record({{1, "HB1V0300001000000202611010005"}, {57, "222222"}, {74, "20261103"}},
                      132)}));
    test::writeText(folder + "notes.txt", "nothing of the ministry\r\n");
    QStringList seen;
    for (const WaitingFile& file : waitingFiles(folder)) {
        seen << file.fileName + "|" + file.provider + "|" + file.date.toString(Qt::ISODate);
    }
    QCOMPARE(seen, (QStringList{"BK123456.003|222222|2026-11-03", "EK123456.002|654321|2026-11-20",
                                "PK123456.001|123456|2026-11-15"}));
}

QTEST_GUILESS_MAIN(TestAnswerReader)
#include "test_answer_reader.moc"
