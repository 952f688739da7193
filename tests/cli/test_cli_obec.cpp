#include "CliRun.h"
#include "TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace brimsett;

class TestCliObec : public QObject {
    Q_OBJECT

    test::TempOffice office;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    QString query(const QString& sql) { return run({"sql", sql}).out.section('\n', 1).trimmed(); }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        for (const QString& sql :
             {QString("Insert Into doctors (DoctorID, ProviderNum, FacilityNum) Values "
                      "('JS', '123456', '3456')"),
              QString("Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName)"
                      " Values (1, '1111111116', 'AB', 'Able', 'Ann'),"
                      " (2, '2222222222', NULL, 'Baker', 'Bob')"),
              QString("Insert Into appointments (AppID, AppDate, PatientID, DoctorID) Values"
                      " (1, '2026-11-22', 2, 'JS'), (2, '2026-11-22', 1, 'JS')")}) {
            QCOMPARE(run({"sql", sql}).status, 0);
        }
    }

    void refusals_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("told");
        QTest::newRow("not a date") << QStringList{"obec", "prepare", "js", "2026/02/30"} << 1
                                    << "'2026/02/30' is not a valid date.";
        QTest::newRow("unknown doctor")
            << QStringList{"obec", "prepare", "zz", "2026/11/22"} << 1 << "Doctor Not Found.";
        QTest::newRow("an empty day")
            << QStringList{"obec", "prepare", "js", "2026/11/23"} << 1 << "No patient to submit.";
        QTest::newRow("a card without a login")
            << QStringList{"obec", "card", "js", "1111111116", "AB"} << 1
            << "EDT setup incomplete for this Provider.";
        QTest::newRow("an unknown method")
            << QStringList{"obec", "submit", "20261122", "--method", "floppy"} << 2
            << "unknown method floppy";
        QTest::newRow("a batch with no files")
            << QStringList{"obec", "submit", "19990101", "--method", "disk", "--to", "/tmp"} << 1
            << "No files were submitted.";
    }
    void refusals() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, told);
        const auto result = run(args);
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(told), qPrintable(result.err));
    }

    void prepareSubmitAndCard() {
        const auto prepared = run({"obec", "prepare", "js", "2026/11/22"});
        QCOMPARE(prepared.status, 0);
        QCOMPARE(prepared.out, office.file("OBECA.txt") + "\n2 cards\n");
        QCOMPARE(test::readText(office.file("OBECA.txt")),
                 QStringLiteral("OBEC011111111116AB\r\nOBEC012222222222 \r\n"));
        QCOMPARE(query("Select BatchID, Records From [HN batches]"), QStringLiteral("20261122\t2"));

        QTemporaryDir disk;
        const auto sent =
            run({"obec", "submit", "20261122", "--method", "disk", "--to", disk.path()});
        QCOMPARE(sent.status, 0);
        QCOMPARE(sent.out, QStringLiteral("1 file submitted\n"));
        QVERIFY2(sent.err.contains("Uploading 'OBECA.txt' ...") &&
                     sent.err.contains("The file was submitted successfully."),
                 qPrintable(sent.err));
        QCOMPARE(test::readText(disk.filePath("OBECA.txt")),
                 test::readText(office.file("OBECA.txt")));
        QVERIFY(!query("Select SubmitDate From [HN batches]").isEmpty());

        QCOMPARE(run({"sql", "Insert Into edtparams Values ('JS1', 'USER0001')"}).status, 0);
        const auto card = run({"obec", "card", "js", "1111111116", "ab"});
        QCOMPARE(card.status, 0);
        QCOMPARE(card.out, office.file("HCR000.dat") + "\n");
        QCOMPARE(test::readText(office.file("HCR000.dat")),
                 QStringLiteral("RPVR0300 1111111116AB1234563456USER0001HCNP\r\n"));
    }

    void readAnswers() {
        const QString line = QStringLiteral("2222222222  650ZJX") + QString(189, ' ');
        const QString stranger = QStringLiteral("3333333333AB500ZJXF19800203        STRANGE");
        test::writeText(office.file("answers.txt"),
                        (line + "\r\n" + stranger + "\r\nnot an answer\r\n").toLatin1());
        const QString pdf = office.file("failed.pdf");
        const auto read = run({"obec", "read", office.file("answers.txt"), "--pdf", pdf});
        QCOMPARE(read.status, 0);
        QCOMPARE(read.out, QStringLiteral("2222222222\t65\tInvalid version code\t2\n"
                                          "3333333333\t50\tCard passed validation\t"
                                          "not in the register\n"));
        QVERIFY2(read.err.contains("1 line was not an answer"), qPrintable(read.err));
        QCOMPARE(query("Select Response, Status From patients Where PatientID=2"),
                 QStringLiteral("65\t2"));
        QVERIFY(test::readText(pdf).startsWith("%PDF"));
        QCOMPARE(run({"obec", "read", office.file("missing.txt")}).status, 1);
    }
};

QTEST_GUILESS_MAIN(TestCliObec)
#include "test_cli_obec.moc"
