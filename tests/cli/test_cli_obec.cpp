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

    // One refusal per command: the reason on standard error, the status telling it.
    void refusals_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("told");
        test::row("unknown doctor", QStringList{"obec", "prepare", "zz", "2026/11/22"}, 1,
                  "Doctor Not Found.");
        test::row("a card without a login", QStringList{"obec", "card", "js", "1111111116", "AB"},
                  1, "EDT setup incomplete for this Provider.");
        test::row("an unknown method",
                  QStringList{"obec", "submit", "20261122", "--method", "floppy"}, 2,
                  "unknown method floppy");
        test::row("a missing answer file", QStringList{"obec", "read", "/nonexistent/a.txt"}, 1,
                  "/nonexistent/a.txt could not be read");
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
        QCOMPARE(prepared.out, office.file("OBECA.txt") + "\n2 cards\n");
        QCOMPARE(test::readText(office.file("OBECA.txt")),
                 QStringLiteral("OBEC011111111116AB\r\nOBEC012222222222 \r\n"));

        QTemporaryDir disk;
        const auto sent =
            run({"obec", "submit", "20261122", "--method", "disk", "--to", disk.path()});
        QCOMPARE(sent.out, QStringLiteral("1 file submitted\n"));
        QVERIFY2(sent.err.contains("The file was submitted successfully."), qPrintable(sent.err));
        QVERIFY(QFile::exists(disk.filePath("OBECA.txt")));

        QCOMPARE(run({"sql", "Insert Into edtparams Values ('JS1', 'USER0001')"}).status, 0);
        QCOMPARE(run({"obec", "card", "js", "1111111116", "ab"}).out,
                 office.file("HCR000.dat") + "\n");
        QVERIFY(QFile::exists(office.file("HCR000.dat")));
    }

    void readAnswers() {
        test::writeText(office.file("answers.txt"), (QStringLiteral("2222222222  650ZJX") +
                                                     QString(189, ' ') + "\r\nnot an answer\r\n")
                                                        .toLatin1());
        const QString pdf = office.file("failed.pdf");
        const auto read = run({"obec", "read", office.file("answers.txt"), "--pdf", pdf});
        QCOMPARE(read.out, QStringLiteral("2222222222\t65\tInvalid version code\t2\n"));
        QVERIFY2(read.err.contains("1 line was not an answer"), qPrintable(read.err));
        QCOMPARE(query("Select Response, Status From patients Where PatientID=2"),
                 QStringLiteral("65\t2"));
        QVERIFY(test::readText(pdf).startsWith("%PDF"));
    }
};

QTEST_GUILESS_MAIN(TestCliObec)
#include "test_cli_obec.moc"
