#include "OfficeFixture.h"

#include "hcv/OvernightBatch.h"
#include "ministry/TransferWait.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace brimsett;
using hcv::OvernightBatch;
using test::row;

namespace {

struct RecordingWait : TransferWait {
    QStringList statuses;
    void pause(int) override {}
    void status(const QString& text) override {
        if (!text.isEmpty()) {
            statuses << text;
        }
    }
};

// Doctor A (provider 123456 at facility 3456) with a day of appointments on 2026/11/22:
// patients 3, 1 (twice) and a cancelled one of 2, one of a patient not in the register;
// doctor B sees patient 4 that day and A sees patient 5 the day after.
struct Office : test::OfficeFixture {
    OvernightBatch batch{*db, office.store(), clock, prompter, log, office.folder()};

    Office() {
        db->exec(
            "Insert Into doctors (DoctorID, ProviderNum, FacilityNum, FName, LName)"
            " Values ('A', '123456', '3456', 'Ann', 'Able')");
        db->exec("Insert Into doctors (DoctorID, ProviderNum) Values ('B', '654321')");
        addPatient(1, "1234567890", "AB");
        addPatient(2, "2234567891", "");
        addPatient(3, "3234567892", QVariant());
        addPatient(4, "4234567893", "CD");
        addPatient(5, "5234567894", "EF");
        int id = 0;
        for (const auto& [doctor, day, patient, deleted] :
             QList<std::tuple<QString, QDate, int, int>>{{"A", QDate(2026, 11, 22), 3, 0},
                                                         {"A", QDate(2026, 11, 22), 1, 0},
                                                         {"A", QDate(2026, 11, 22), 1, 0},
                                                         {"A", QDate(2026, 11, 22), 2, 1},
                                                         {"A", QDate(2026, 11, 22), 99, 0},
                                                         {"B", QDate(2026, 11, 22), 4, 0},
                                                         {"A", QDate(2026, 11, 23), 5, 0}}) {
            db->exec(
                "Insert Into appointments (AppID, AppDate, PatientID, DoctorID, Deleted)"
                " Values (?, ?, ?, ?, ?)",
                {++id, day, patient, doctor, deleted});
        }
    }
    void addPatient(int id, const QString& number, const QVariant& version) {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName)"
            " Values (?, ?, ?, ?, ?)",
            {id, number, version, QString("Last%1").arg(id), QString("First%1").arg(id)});
    }
    // "BatchID FileName Records SubmitDate" per row.
    QStringList rows() {
        QStringList found;
        QSqlQuery q = db->exec(
            "Select BatchID, FileName, Records, SubmitDate From [HN batches]"
            " Order By BatchID, FileName");
        while (q.next()) {
            found << QStringList{q.value(0).toString(), q.value(1).toString(),
                                 q.value(2).toString(),
                                 q.isNull(3) ? QString("-")
                                             : q.value(3).toDate().toString(Qt::ISODate)}
                         .join(' ');
        }
        return found;
    }
    QStringList batchIds() {
        QStringList ids;
        QSqlQuery q = db->exec("Select BatchID From patients Order By PatientID");
        while (q.next()) {
            ids << (q.isNull(0) ? QString("-") : q.value(0).toString());
        }
        return ids;
    }
    QString fileText(const QString& name) { return test::readText(office.file(name)); }
    QString record(const QString& name) { return office.store().get("Batch", name); }
};

const QString kDayLines = "OBEC011234567890AB\r\nOBEC012234567891 \r\nOBEC013234567892 \r\n";

}  // namespace

class TestOvernightBatch : public QObject {
    Q_OBJECT

private slots:
    void obecLine_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QVariant>("version");
        QTest::addColumn<QString>("line");
        row("with a version code", "1234567890", QVariant("AB"), "OBEC011234567890AB\r\n");
        row("a NULL version is one blank", "1234567890", QVariant(), "OBEC011234567890 \r\n");
        row("an empty version is one blank", "1234567890", QVariant(""), "OBEC011234567890 \r\n");
        row("one-letter version padded", "1234567890", QVariant("K"), "OBEC011234567890K \r\n");
        row("long values cut", "123456789012", QVariant("ABC"), "OBEC011234567890AB\r\n");
        row("short number padded", "12345", QVariant("AB"), "OBEC0112345     AB\r\n");
    }
    void obecLine() {
        QFETCH(QString, number);
        QFETCH(QVariant, version);
        QFETCH(QString, line);
        QCOMPARE(OvernightBatch::obecLine(number, version), line);
    }

    void cardRecord_data() {
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("record");
        row("every field its width", QStringList{"1234567890", "AB", "123456", "3456", "USER0001"},
            "RPVR0300 1234567890AB1234563456USER0001HCNP\r\n");
        row("short fields padded, long ones cut",
            QStringList{"12345", "", "1234567", "12", "LONGUSERID"},
            "RPVR0300 12345       12345612  LONGUSERHCNP\r\n");
    }
    void cardRecord() {
        QFETCH(QStringList, fields);
        QFETCH(QString, record);
        QCOMPARE(OvernightBatch::cardRecord(fields[0], fields[1], fields[2], fields[3], fields[4]),
                 record);
    }

    void prepareDayRefusals_data() {
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("message");
        row("no doctor", " ", "2026/11/22", "Please select a doctor.");
        row("not a date", "A", "2026/02/30", "'2026/02/30' is not a valid date.");
        row("unknown doctor", "Z", "2026/11/22",
            "Doctor Not Found.\nPlease check that the Doctor ID is correct.");
        row("no appointments", "A", "2026/11/24", "No patient to submit.");
        row("only a patient not in the register", "B", "2026/11/23", "No patient to submit.");
    }
    void prepareDayRefusals() {
        QFETCH(QString, doctor);
        QFETCH(QString, date);
        QFETCH(QString, message);
        Office o;
        o.db->exec(
            "Insert Into appointments (AppID, AppDate, PatientID, DoctorID)"
            " Values (50, ?, 77, 'B')",
            {QDate(2026, 11, 23)});
        QVERIFY(!o.batch.prepareDay(doctor, date));
        QCOMPARE(o.prompter.messages().size(), 1);
        QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(o.prompter.last().text(), message);
        QVERIFY(!QFileInfo::exists(o.office.file(OvernightBatch::kDayFile)));
        QCOMPARE(o.rows(), QStringList());
        QCOMPARE(o.record(OvernightBatch::kDayFile), QString());
    }

    // Preparing a day once or again: one file, one row, the day's patients marked.
    void prepareDay_data() {
        QTest::addColumn<int>("times");
        row("once", 1);
        row("again: the row is replaced", 2);
    }
    void prepareDay() {
        QFETCH(int, times);
        Office o;
        std::optional<hcv::PreparedBatch> prepared;
        for (int i = 0; i < times; ++i) {
            prepared = o.batch.prepareDay("A", "2026/11/22");
            QVERIFY(prepared);
        }
        QCOMPARE(o.prompter.messages().size(), 0);
        QCOMPARE(prepared->batchId, QStringLiteral("20261122"));
        QCOMPARE(prepared->path, o.office.file("OBECA.txt"));
        QList<qint64> ids;
        for (const hcv::OvernightCard& card : prepared->cards) {
            ids << card.patientId;
            QCOMPARE(card.fileName, QStringLiteral("OBECA.txt"));
            QCOMPARE(card.doctorId, QStringLiteral("A"));
        }
        QCOMPARE(ids, (QList<qint64>{1, 2, 3}));
        QCOMPARE(o.fileText("OBECA.txt"), kDayLines);
        QCOMPARE(QFileInfo(prepared->path).permissions() & 0077, QFileDevice::Permissions());
        QCOMPARE(o.rows(), QStringList{"20261122 OBECA.txt 3 -"});
        QCOMPARE(o.batchIds(), (QStringList{"20261122", "20261122", "20261122", "-", "-"}));
        QCOMPARE(o.record("OBECA.txt"), QStringLiteral("1"));
    }

    // An unsubmitted file of another day is replaced only when the user says so; a submitted
    // one is history and replaced without asking.
    void anotherDaysFile_data() {
        QTest::addColumn<bool>("submitted");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<bool>("asked");
        QTest::addColumn<QStringList>("rows");
        row("unsubmitted, kept", false, false, true, QStringList{"20261122 OBECA.txt 3 -"});
        row("unsubmitted, replaced", false, true, true, QStringList{"20261123 OBECA.txt 1 -"});
        row("submitted", true, false, false,
            QStringList{"20261122 OBECA.txt 3 2026-11-22", "20261123 OBECA.txt 1 -"});
    }
    void anotherDaysFile() {
        QFETCH(bool, submitted);
        QFETCH(bool, yes);
        QFETCH(bool, asked);
        QFETCH(QStringList, rows);
        Office o;
        QVERIFY(o.batch.prepareDay("A", "2026/11/22"));
        if (submitted) {
            o.db->exec("Update [HN batches] Set SubmitDate=?", {QDate(2026, 11, 22)});
        }
        o.prompter.script({yes ? Answer::Yes : Answer::No});
        const bool replaced = asked ? yes : true;
        QCOMPARE(bool(o.batch.prepareDay("A", "2026/11/23")), replaced);
        QCOMPARE(o.prompter.messages().size(), asked ? 1 : 0);
        if (asked) {
            QCOMPARE(o.prompter.last().title,
                     QStringLiteral("OBEC - Overnight Health Card Validation"));
            QCOMPARE(o.prompter.last().text(),
                     QStringLiteral("OBECA.txt still holds the cards of batch 20261122, which "
                                    "were not submitted.\nReplace them with the cards of batch "
                                    "20261123?"));
            QCOMPARE(o.prompter.last().defaultAnswer, Answer::No);
        }
        QCOMPARE(o.fileText("OBECA.txt"),
                 replaced ? QStringLiteral("OBEC015234567894EF\r\n") : kDayLines);
        QCOMPARE(o.rows(), rows);
        QCOMPARE(o.batchIds().last(), replaced ? QStringLiteral("20261123") : QStringLiteral("-"));
    }

    // A write the database refuses part-way leaves the earlier file, rows and record as they
    // were.
    void refusedWriteChangesNothing() {
        Office o;
        QVERIFY(o.batch.prepareDay("A", "2026/11/22"));
        o.prompter.script({Answer::Yes});
        test::refuseRows(*o.db, "Update", "patients", {}, "disk full");
        QVERIFY(!o.batch.prepareDay("A", "2026/11/23"));
        QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(o.prompter.last().lines.first(), QStringLiteral("Nothing was prepared."));
        QCOMPARE(o.fileText("OBECA.txt"), kDayLines);
        QCOMPARE(o.rows(), QStringList{"20261122 OBECA.txt 3 -"});
        QCOMPARE(o.record("OBECA.txt"), QStringLiteral("1"));
    }

    void prepareCard_data() {
        QTest::addColumn<QString>("userId");
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("message");
        row("written", "USER0001", "A", " 1234567890 ", "");
        row("no transfer login", "", "A", "1234567890", "EDT setup incomplete for this Provider.");
        row("no doctor", "USER0001", "", "1234567890", "Please select a doctor.");
        row("unknown doctor", "USER0001", "Q", "1234567890",
            "Doctor Not Found.\nPlease check that the Doctor ID is correct.");
        row("no number", "USER0001", "A", " ", "Please enter the health number.");
    }
    void prepareCard() {
        QFETCH(QString, userId);
        QFETCH(QString, doctor);
        QFETCH(QString, number);
        QFETCH(QString, message);
        Office o;
        if (!userId.isEmpty()) {
            o.db->exec("Insert Into edtparams Values ('A1', ?)", {userId});
        }
        const auto prepared = o.batch.prepareCard(doctor, number, "kl");
        QCOMPARE(bool(prepared), message.isEmpty());
        if (!prepared) {
            QCOMPARE(o.prompter.last().title, QStringLiteral("Error"));
            QCOMPARE(o.prompter.last().text(), message);
            QVERIFY(!QFileInfo::exists(o.office.file("HCR000.dat")));
            QCOMPARE(o.rows(), QStringList());
            return;
        }
        QCOMPARE(prepared->batchId, QStringLiteral("20261122"));  // today
        QCOMPARE(prepared->cards.size(), 1);
        QCOMPARE(prepared->cards.first().healthNum, QStringLiteral("1234567890"));
        QCOMPARE(prepared->cards.first().patientId, 0);
        QCOMPARE(o.fileText("HCR000.dat"),
                 QStringLiteral("RPVR0300 1234567890KL1234563456USER0001HCNP\r\n"));
        QCOMPARE(o.rows(), QStringList{"20261122 HCR000.dat 1 -"});
        QCOMPARE(o.batchIds(), QStringList(5, "-"));
        QCOMPARE(o.record("HCR000.dat"), QStringLiteral("1"));
    }

    // Handing a batch's files to a disk: what is sent, what is told, what is recorded.
    void submitToDisk_data() {
        QTest::addColumn<QStringList>("files");  // prepared: day, card, extra
        QTest::addColumn<QString>("spoil");      // "missing", "unrecorded", "submitted", "dial-up"
        QTest::addColumn<int>("sent");
        QTest::addColumn<QStringList>("messages");
        const QString noneSent = "EDT Submit: No files were submitted.";
        row("one file", QStringList{"day"}, "", 1,
            QStringList{"EDT Submit: The file was submitted successfully."});
        row("both files", QStringList{"day", "card"}, "", 2,
            QStringList{"EDT Submit: Both files were submitted successfully."});
        row("three files", QStringList{"day", "card", "extra"}, "", 3,
            QStringList{"EDT Submit: All 3 files were submitted successfully."});
        row("a missing file is skipped", QStringList{"day", "card"}, "missing", 1,
            QStringList{"EDT Submit: The file to be submitted (OBECA.txt) does not exist.",
                        "EDT Submit: 1 file was submitted successfully,\n1 file was not "
                        "submitted."});
        row("a file not made here", QStringList{"day"}, "unrecorded", 0,
            QStringList{"Error: Brimsett does not have a record of creating this batch file.\n"
                        "Please contact technical support for further assistance.",
                        noneSent});
        row("already submitted", QStringList{"day"}, "submitted", 0,
            QStringList{"EDT Submit: OBECA.txt of batch 20261122 was already submitted on "
                        "2026/11/20.\nPrepare it again to send it again.",
                        noneSent});
        row("dial-up", QStringList{"day"}, "dial-up", 0,
            QStringList{"EDT Submit: This part of Brimsett is not available yet.\nPlease choose "
                        "\"3.5'' Disk(s)\" or \"EDT / Internet\".",
                        noneSent});
        row("no files", QStringList{}, "", 0, QStringList{noneSent});
    }
    void submitToDisk() {
        QFETCH(QStringList, files);
        QFETCH(QString, spoil);
        QFETCH(int, sent);
        QFETCH(QStringList, messages);
        Office o;
        o.db->exec("Insert Into edtparams Values ('A1', 'USER0001')");
        QStringList names;
        if (files.contains("day")) {
            QVERIFY(o.batch.prepareDay("A", "2026/11/22"));
            names << "OBECA.txt";
        }
        if (files.contains("card")) {
            QVERIFY(o.batch.prepareCard("A", "1234567890", "AB"));
            names << "HCR000.dat";
        }
        if (files.contains("extra")) {
            test::writeText(o.office.file("EXTRA.txt"), "x\r\n");
            o.office.store().save("Batch", "EXTRA.txt", "1");
            o.db->exec(
                "Insert Into [HN batches] (BatchID, FileName, Records)"
                " Values ('20261122', 'EXTRA.txt', 1)");
            names << "EXTRA.txt";
        }
        if (spoil == "missing") {
            QFile::remove(o.office.file("OBECA.txt"));
        } else if (spoil == "unrecorded") {
            o.office.store().remove("Batch", "OBECA.txt");
        } else if (spoil == "submitted") {
            o.db->exec("Update [HN batches] Set SubmitDate=?", {QDate(2026, 11, 20)});
        }
        o.clock.set(QDateTime(QDate(2026, 11, 24), QTime(9, 0)));
        const QStringList before = o.rows();
        o.prompter.clear();
        QTemporaryDir disk;
        RecordingWait wait;
        const TransferMethod method =
            spoil == "dial-up" ? TransferMethod::DialUp : TransferMethod::Disk;
        QCOMPARE(o.batch.submit("20261122", method, wait, disk.path()), sent);
        QStringList told;
        for (const auto& m : o.prompter.messages()) {
            told << m.title + ": " + m.text();
        }
        QCOMPARE(told, messages);
        names.sort();
        QStringList uploading;
        for (const QString& name : names) {
            uploading << "Uploading '" + name + "' ...";
        }
        QCOMPARE(wait.statuses, uploading);
        QCOMPARE(o.batch.filesOf("20261122"), names);
        // Each file on the disk is the office's, and only those got their date.
        int dated = 0;
        for (const QString& name : names) {
            const bool copied = QFileInfo::exists(disk.filePath(name));
            if (copied) {
                QCOMPARE(test::readText(disk.filePath(name)), o.fileText(name));
            }
            const QVariant date =
                o.db->scalar("Select SubmitDate From [HN batches] Where FileName=?", {name});
            if (copied) {
                QCOMPARE(date.toDate(), QDate(2026, 11, 24));
                ++dated;
            } else if (spoil != "submitted") {
                QVERIFY(date.isNull());
            }
        }
        QCOMPARE(dated, sent);
        QCOMPARE(o.rows().size(), before.size());
    }

    void storedResults_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("status");  // 0: any
        QTest::addColumn<QList<qint64>>("patients");
        row("number and version", "1234567890", "AB", 0, QList<qint64>{1, 6});
        row("and the class", "1234567890", "AB", 2, QList<qint64>{6});
        row("no version matches NULL and empty", "3234567892", "", 0, QList<qint64>{3});
        row("another version", "1234567890", "XY", 0, QList<qint64>{});
    }
    void storedResults() {
        QFETCH(QString, number);
        QFETCH(QString, version);
        QFETCH(int, status);
        QFETCH(QList<qint64>, patients);
        Office o;
        o.addPatient(6, "1234567890", "AB");
        o.db->exec("Update patients Set Status=1, Response='50', HNCheckDate=? Where PatientID=1",
                   {QString("2026-11-21 08:30:15")});
        o.db->exec("Update patients Set Status=2, Response='65' Where PatientID=6");
        const QList<hcv::StoredCheck> found =
            o.batch.storedResults(number, version, status ? std::optional(status) : std::nullopt);
        QList<qint64> ids;
        for (const hcv::StoredCheck& check : found) {
            ids << check.patientId;
            QCOMPARE(check.name, QString("Last%1, First%1").arg(check.patientId));
            if (check.patientId == 1) {
                QCOMPARE(check.status, 1);
                QCOMPARE(check.response, QStringLiteral("50"));
                QCOMPARE(check.checkedAt, QDateTime(QDate(2026, 11, 21), QTime(8, 30, 15)));
            } else if (check.patientId == 6) {
                QCOMPARE(check.response, QStringLiteral("65"));
                QVERIFY(!check.checkedAt.isValid());
            }
        }
        QCOMPARE(ids, patients);
    }
};

QTEST_GUILESS_MAIN(TestOvernightBatch)
#include "test_overnight_batch.moc"
