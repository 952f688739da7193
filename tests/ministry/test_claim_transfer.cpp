#include "OfficeFixture.h"
#include "TransferAgent.h"

#include "ministry/ClaimTransfer.h"
#include "ministry/TransferWait.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

const QString kFile = QStringLiteral("HC123456.007");
const QByteArray kClaims = "HEBV03J202611220001      0000123456  \r\nHEE000100000000\r\n";

// Counts the pauses instead of waiting them out; with an agent running it sleeps a little,
// so the agent's thread has time to answer.
struct CountingWait : TransferWait {
    int sleepMs = 0;
    QList<int> pauses;
    QStringList statuses;
    void pause(int milliseconds) override {
        pauses << milliseconds;
        if (sleepMs > 0) {
            QThread::msleep(sleepMs);
        }
    }
    void status(const QString& text) override { statuses << text; }
};

struct Office : test::OfficeFixture {
    QTemporaryDir disk;
    CountingWait wait;
    ClaimTransfer transfer{
        *db, office.store(), clock, prompter, wait, log, {office.folder(), disk.path()}};

    // The claim file in the office folder, recorded as made here unless told otherwise, with
    // one batch per given submission date ("" for not yet submitted).
    void addFile(const QStringList& submitted = {""}, const QString& record = "1") {
        test::writeText(office.file(kFile), kClaims);
        if (!record.isEmpty()) {
            office.store().save("Batch", kFile, record);
        }
        int sequence = 0;
        for (const QString& day : submitted) {
            db->exec("Insert Into batches (BatchID, FileName, SubmitDate) Values (?, ?, ?)",
                     {QString("20261101%1").arg(++sequence, 4, 10, QChar('0')), kFile,
                      day.isEmpty() ? QVariant() : QVariant(day)});
        }
    }
    // The day of each batch's submission (stored as a date or a moment, as the engine keeps it).
    QStringList submitDates() {
        QStringList days;
        QSqlQuery q = db->exec("Select SubmitDate From batches Order By BatchID");
        while (q.next()) {
            days << (q.isNull(0) ? QString("<null>") : q.value(0).toDate().toString(Qt::ISODate));
        }
        return days;
    }
    QString path(const QString& relative) const { return office.file(relative); }
    QStringList filesIn(const QString& relative) const {
        return QDir(path(relative)).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }
    void setUserId(const QString& id) { db->exec("Insert Into edtparams Values ('A1', ?)", {id}); }
};

}  // namespace

class TestClaimTransfer : public QObject {
    Q_OBJECT

private slots:
    void submitByFolder_data() {
        QTest::addColumn<bool>("agent");
        QTest::addColumn<bool>("earlierReceipt");
        row("the agent confirms", true, false);
        row("no receipt comes", false, false);
        row("an earlier receipt is not taken for this one", false, true);
    }
    void submitByFolder() {
        QFETCH(bool, agent);
        QFETCH(bool, earlierReceipt);
        Office o;
        o.addFile();
        if (earlierReceipt) {
            test::writeText(o.path("OutboundSubmission/Done/" + kFile + ".done"), {});
        }
        std::optional<test::TransferAgent> running;
        if (agent) {
            o.wait.sleepMs = 20;
            running.emplace(o.office.folder());
        }
        QCOMPARE(o.transfer.submit(kFile, TransferMethod::Folder), agent);
        for (const char* folder : {"OutboundSubmission/Done", "InboundSubmission/Done"}) {
            QVERIFY(QFileInfo(o.path(folder)).isDir());
        }
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Submit Claims"));
        if (agent) {
            QCOMPARE(o.prompter.last().text(), QStringLiteral("File Submission successful."));
            QCOMPARE(o.submitDates(), QStringList{"2026-11-22"});
            QCOMPARE(running->taken(), (QMap<QString, QByteArray>{{kFile, kClaims}}));
            QVERIFY(o.wait.pauses.size() < 50);
        } else {
            QCOMPARE(o.prompter.last().text(),
                     QStringLiteral("File Submission Failed. Please contact technical support."));
            QCOMPARE(o.submitDates(), QStringList{"<null>"});
            QCOMPARE(o.wait.pauses, QList<int>(49, 1000));  // 50 looks, one second apart
            QCOMPARE(o.wait.statuses.first(), QStringLiteral("Please Wait (49)"));
        }
        // Neither the file nor a receipt is left for the next submission to find.
        QCOMPARE(o.filesIn("OutboundSubmission"), QStringList());
        QCOMPARE(o.filesIn("OutboundSubmission/Done"), QStringList());
        QCOMPARE(test::readText(o.path(kFile)), QString::fromLatin1(kClaims));
    }

    void submitToDisk_data() {
        QTest::addColumn<QString>("folder");  // "" for the test's disk folder
        QTest::addColumn<QStringList>("message");
        row("a disk folder", "", QStringList{"HC123456.007 was copied to <disk>."});
        row("a missing folder", "<disk>/none",
            QStringList{"The disk folder '<disk>/none' does not exist.",
                        "Please insert the disk or choose another folder."});
        row("a folder that cannot be written", "/proc",
            QStringList{"/proc/HC123456.007 could not be written: ",
                        "The file was not submitted."});
    }
    void submitToDisk() {
        QFETCH(QString, folder);
        QFETCH(QStringList, message);
        Office o;
        o.addFile({"", ""});
        const QString disk = o.disk.path();
        test::writeText(disk + "/" + kFile, "an older copy");
        ClaimTransfer transfer(
            *o.db, o.office.store(), o.clock, o.prompter, o.wait, o.log,
            {o.office.folder(), folder.isEmpty() ? disk : folder.replace("<disk>", disk)});
        const bool copied = folder.isEmpty();
        QCOMPARE(transfer.submit(kFile, TransferMethod::Disk), copied);
        QCOMPARE(o.prompter.messages().size(), 1);
        const QStringList told = o.prompter.last().lines;
        QCOMPARE(told.size(), message.size());
        for (int i = 0; i < told.size(); ++i) {
            QVERIFY2(told.at(i).startsWith(QString(message.at(i)).replace("<disk>", disk)),
                     qPrintable(told.at(i)));
        }
        const QString day = copied ? QStringLiteral("2026-11-22") : QStringLiteral("<null>");
        QCOMPARE(o.submitDates(), (QStringList{day, day}));
        QCOMPARE(test::readText(disk + "/" + kFile),
                 copied ? QString::fromLatin1(kClaims) : QStringLiteral("an older copy"));
        QCOMPARE(QDir(disk).entryList(QDir::Files | QDir::Hidden), QStringList{kFile});
    }

    void submissionDateNotRecorded() {
        Office o;
        o.addFile();
        test::refuseRows(*o.db, "Update", "batches", {}, "the disk is full");
        QVERIFY(!o.transfer.submit(kFile, TransferMethod::Disk));
        // The user learns both that the file went and that its date is missing.
        QCOMPARE(o.prompter.messages().size(), 2);
        QCOMPARE(o.prompter.messages().first().title, QStringLiteral("Submit Claims"));
        QCOMPARE(o.prompter.last().lines.first(),
                 QStringLiteral("The file was handed over, but its submission date could not be "
                                "recorded."));
        QVERIFY(o.prompter.last().lines.at(1).contains("the disk is full"));
        QCOMPARE(o.submitDates(), QStringList{"<null>"});
    }

    void refused_data() {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("record");
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("message");
        const QString notMade =
            "Brimsett does not have a record of creating this batch file.\n"
            "Please contact technical support for further assistance.";
        row("no such file", "HC123456.008", "1", 0, "Error",
            "This submission file does not exist.");
        row("a name with a folder", "../HC123456.007", "1", 2, "Error",
            "This submission file does not exist.");
        row("no record of making it", "HC123456.007", "", 0, "Error", notMade);
        row("a record that is not 1", "HC123456.007", "0", 2, "Error", notMade);
        row("dial-up", "HC123456.007", "1", 1, "Submit Claims",
            "This part of Brimsett is not available yet.\n"
            "Please choose \"3.5'' Disk(s)\" or \"EDT / Internet\".");
    }
    void refused() {
        QFETCH(QString, file);
        QFETCH(QString, record);
        QFETCH(int, method);
        QFETCH(QString, title);
        QFETCH(QString, message);
        Office o;
        o.addFile({""}, record);
        QVERIFY(!o.transfer.submit(file, static_cast<TransferMethod>(method)));
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, title);
        QCOMPARE(o.prompter.last().text(), message);
        QCOMPARE(o.submitDates(), QStringList{"<null>"});
        QCOMPARE(QDir(o.disk.path()).entryList(QDir::Files), QStringList());
        QVERIFY(!QFileInfo::exists(o.path("OutboundSubmission")));
    }

    void resubmission_data() {
        QTest::addColumn<bool>("again");
        row("sent again", true);
        row("not sent again", false);
    }
    void resubmission() {
        QFETCH(bool, again);
        Office o;
        o.addFile({"2026-10-05", ""});
        o.prompter.script({again ? Answer::Yes : Answer::No});
        QCOMPARE(o.transfer.submit(kFile, TransferMethod::Disk), again);
        const RecordingPrompter::Message& question = o.prompter.messages().first();
        QVERIFY(question.question);
        QCOMPARE(question.title, QStringLiteral("Resubmit"));
        QCOMPARE(question.defaultAnswer, Answer::No);
        QCOMPARE(question.lines,
                 (QStringList{"This file (HC123456.007) was", "already submitted on 2026/10/05.",
                              "Would you like to submit it again?"}));
        QCOMPARE(o.prompter.last().title, QStringLiteral("Finished"));
        QCOMPARE(o.prompter.last().text(), again ? QStringLiteral("Re-submission finished.")
                                                 : QStringLiteral("Batch was not re-submitted."));
        QCOMPARE(o.prompter.messages().size(), again ? 3 : 2);
        // The first hand-over keeps its date; only the batch never sent takes today's.
        QCOMPARE(o.submitDates(), (QStringList{"2026-10-05", again ? "2026-11-22" : "<null>"}));
        QCOMPARE(QFileInfo::exists(o.disk.path() + "/" + kFile), again);
    }

    void fetchByFolder_data() {
        QTest::addColumn<QStringList>("answers");  // name=content
        QTest::addColumn<QString>("message");
        row("two answers", QStringList{"PK123456.001=remittance", "EB123456.txt=errors"},
            "Finished!");
        row("nothing waiting", QStringList{}, "No Files were available for download.");
    }
    void fetchByFolder() {
        QFETCH(QStringList, answers);
        QFETCH(QString, message);
        Office o;
        o.setUserId("dr.smith@example.ca");
        // A ".nofiles" left from an earlier request must not answer this one.
        test::writeText(o.path("InboundSubmission/old.nofiles"), {});
        QMap<QString, QByteArray> files;
        for (const QString& a : answers) {
            files.insert(a.section('=', 0, 0), a.section('=', 1).toUtf8());
        }
        o.wait.sleepMs = 20;
        std::optional<QStringList> fetched;
        {
            test::TransferAgent agent(o.office.folder(), files);
            fetched = o.transfer.fetchAnswers("a", TransferMethod::Folder);
            QCOMPARE(
                agent.taken(),
                (QMap<QString, QByteArray>{{"Rdr.smith@example.ca.txt", QByteArray("!\r\n")}}));
        }
        QCOMPARE(o.prompter.last().title, QStringLiteral("Reconcile"));
        QCOMPARE(o.prompter.last().text(), message);
        QCOMPARE(fetched, std::optional<QStringList>(files.keys()));
        QCOMPARE(o.filesIn("Download"), files.keys());
        for (auto it = files.cbegin(); it != files.cend(); ++it) {
            QCOMPARE(test::readText(o.path("Download/" + it.key())).toUtf8(), it.value());
        }
        QStringList acknowledged;
        for (const QString& name : files.keys()) {
            acknowledged << name + ".ok";
        }
        QCOMPARE(o.filesIn("InboundSubmission/Ok"), acknowledged);
        QCOMPARE(o.filesIn("InboundSubmission"), QStringList());
        QCOMPARE(o.filesIn("OutboundSubmission"), QStringList());
    }

    void fetchRefused_data() {
        QTest::addColumn<QString>("userId");
        QTest::addColumn<int>("method");
        QTest::addColumn<QString>("message");
        row("no transfer login", "", 2, "EDT setup incomplete for this Provider.");
        row("a user id no file name can hold", "dr/smith", 2,
            "The User ID 'dr/smith' cannot be used: it may hold no blanks and none of "
            "\\ / : * ? \" < > |.\nPlease correct it in EDT Setup.");
        row("dial-up", "U1", 1,
            "This part of Brimsett is not available yet.\n"
            "Please choose \"3.5'' Disk(s)\" or \"EDT / Internet\".");
    }
    void fetchRefused() {
        QFETCH(QString, userId);
        QFETCH(int, method);
        QFETCH(QString, message);
        Office o;
        if (!userId.isEmpty()) {
            o.setUserId(userId);
        }
        QCOMPARE(o.transfer.fetchAnswers("A", static_cast<TransferMethod>(method)), std::nullopt);
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().text(), message);
        QVERIFY(!QFileInfo::exists(o.path("OutboundSubmission")));
    }

    void fetchFromDisk() {
        Office o;
        test::writeText(o.disk.path() + "/PK123456.001", "a");
        test::writeText(o.disk.path() + "/EB123456.txt", "b");
        QDir(o.disk.path()).mkdir("folder");
        QCOMPARE(o.transfer.fetchAnswers("A", TransferMethod::Disk),
                 std::optional<QStringList>({"EB123456.txt", "PK123456.001"}));
        QVERIFY(o.prompter.messages().isEmpty());

        ClaimTransfer noDisk(*o.db, o.office.store(), o.clock, o.prompter, o.wait, o.log,
                             {o.office.folder(), o.disk.path() + "/none"});
        QCOMPARE(noDisk.fetchAnswers("A", TransferMethod::Disk), std::nullopt);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Reconcile"));
        QCOMPARE(o.prompter.last().lines.first(),
                 "The disk folder '" + o.disk.path() + "/none' does not exist.");
    }
};

QTEST_GUILESS_MAIN(TestClaimTransfer)
#include "test_claim_transfer.moc"
