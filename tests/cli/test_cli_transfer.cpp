#include "../ministry/TransferAgent.h"
#include "CliRun.h"
#include "TestSupport.h"

#include <QTemporaryDir>
#include <QtTest>

using namespace brimsett;

namespace {

const QString kFile = QStringLiteral("HC123456.007");

}  // namespace

class TestCliTransfer : public QObject {
    Q_OBJECT

    test::TempOffice office;
    QTemporaryDir disk;

    test::CliResult run(const QStringList& args) { return test::cli(office, args); }
    QString submitDate() {
        return run({"sql", "Select SubmitDate From batches Where FileName='" + kFile + "'"})
            .out.section('\n', 1, 1);
    }
    void resetBatch() { QCOMPARE(run({"sql", "Update batches Set SubmitDate=NULL"}).status, 0); }

private slots:
    void initTestCase() {
        QCOMPARE(run({"init"}).status, 0);
        QCOMPARE(run({"sql", "Insert Into batches (BatchID, FileName) Values ('202611220001', '" +
                                 kFile + "')"})
                     .status,
                 0);
        QCOMPARE(run({"sql", "Insert Into edtparams Values ('JS1', 'U1')"}).status, 0);
        QCOMPARE(run({"settings", "set", "Batch", kFile, "1"}).status, 0);
        test::writeText(office.file(kFile), "HEB\r\nHEE\r\n");
    }

    void submitToDiskAndAgain() {
        const auto sent = run({"submit", kFile, "--method", "disk", "--to", disk.path()});
        QCOMPARE(sent.status, 0);
        QCOMPARE(sent.out, kFile + "\n");
        QCOMPARE(test::readText(disk.path() + "/" + kFile), QStringLiteral("HEB\r\nHEE\r\n"));
        const QString today = QDate::currentDate().toString("yyyy-MM-dd");
        QCOMPARE(submitDate(), today);

        // Nothing on standard input takes the question's default: not sent again.
        const auto declined =
            run({"submit", office.file(kFile), "--method", "disk", "--to", disk.path()});
        QCOMPARE(declined.status, 1);
        QVERIFY2(declined.err.contains("already submitted on " +
                                       QDate::currentDate().toString("yyyy/MM/dd") + "."),
                 qPrintable(declined.err));
        QVERIFY(declined.err.contains("Batch was not re-submitted."));

        const auto again = run({"--yes", "submit", kFile, "--method", "disk", "--to", disk.path()});
        QCOMPARE(again.status, 0);
        QVERIFY(again.err.contains("Re-submission finished."));
        resetBatch();
    }

    void submitAndFetchThroughTheAgent() {
        // The office's own choice of method, "EDT / Internet".
        QCOMPARE(run({"settings", "set", "General", "SubmitMethod", "2"}).status, 0);
        test::TransferAgent agent(office.folder(), {{"PK123456.001", "remittance"}});
        const auto sent = run({"submit", kFile});
        QCOMPARE(sent.status, 0);
        QVERIFY2(sent.err.contains("File Submission successful."), qPrintable(sent.err));
        QCOMPARE(submitDate(), QDate::currentDate().toString("yyyy-MM-dd"));

        const auto fetched = run({"fetch-answers", "js"});
        QCOMPARE(fetched.status, 0);
        QCOMPARE(fetched.out, office.folder() + "Download/PK123456.001\n");
        QVERIFY(fetched.err.contains("Finished!"));
        QCOMPARE(agent.taken().keys(), (QStringList{kFile, "RU1.txt"}));
        QCOMPARE(run({"settings", "set", "General", "SubmitMethod", "0"}).status, 0);
        resetBatch();
    }

    void refused_data() {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        test::row("no file", QStringList{"submit"}, 2, "usage: brimsett-cli submit FILE");
        test::row("unknown method", QStringList{"submit", kFile, "--method", "modem"}, 2,
                  "unknown method modem");
        test::row("disk without its folder", QStringList{"submit", kFile}, 2,
                  "the disk method needs --to DIR");
        test::row("a folder for the exchange",
                  QStringList{"fetch-answers", "JS", "--method", "folder", "--to", "/tmp"}, 2,
                  "--to is the disk's folder");
        test::row("a file outside the office folder",
                  QStringList{"submit", "/tmp/" + kFile, "--to", "/tmp"}, 1,
                  "claim files are sent from the office folder");
    }
    void refused() {
        QFETCH(QStringList, args);
        QFETCH(int, status);
        QFETCH(QString, error);
        const auto result = run(args);
        QCOMPARE(result.status, status);
        QVERIFY2(result.err.contains(error), qPrintable(result.err));
        QCOMPARE(result.out, QString());
        QCOMPARE(submitDate(), QString());
    }
};

QTEST_GUILESS_MAIN(TestCliTransfer)
#include "test_cli_transfer.moc"
