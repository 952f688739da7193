#include "OfficeFixture.h"

#include "hcv/OvernightBatch.h"
#include "ministry/TransferWait.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

using namespace brimsett;
using hcv::OvernightBatch;
using test::row;
using L = QStringList;

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
// doctor B sees patient 4 that day and A sees patient 5 the day after, B only a stranger.
struct Office : test::OfficeFixture {
    OvernightBatch batch{*db, office.store(), clock, prompter, log, office.folder()};

    Office() {
        db->exec(
            "Insert Into doctors (DoctorID, ProviderNum, FacilityNum, FName, LName)"
            " Values ('A', '123456', '3456', 'Ann', 'Able'), ('B', '654321', NULL, NULL, NULL)");
        addPatient(1, "1234567890", "AB");
        addPatient(2, "2234567891", "");
        addPatient(3, "3234567892", QVariant());
        addPatient(4, "4234567893", "CD");
        addPatient(5, "5234567894", "EF");
        db->exec(
            "Insert Into appointments (AppID, AppDate, PatientID, DoctorID, Deleted) Values"
            " (1, '2026-11-22', 3, 'A', 0), (2, '2026-11-22', 1, 'A', 0),"
            " (3, '2026-11-22', 1, 'A', 0), (4, '2026-11-22', 2, 'A', 1),"
            " (5, '2026-11-22', 99, 'A', 0), (6, '2026-11-22', 4, 'B', 0),"
            " (7, '2026-11-23', 5, 'A', 0), (8, '2026-11-23', 77, 'B', 0)");
    }
    void addPatient(int id, const QString& number, const QVariant& version) {
        db->exec(
            "Insert Into patients (PatientID, HealthNum, VersionCode, LName, FName)"
            " Values (?, ?, ?, ?, ?)",
            {id, number, version, QString("Last%1").arg(id), QString("First%1").arg(id)});
    }
    QStringList rows() {  // SubmitDate as a day on either engine
        return test::rowsOf(db->exec("Select BatchID, FileName, Records, SubmitDate"
                                     " From [HN batches] Order By BatchID, FileName"))
            .replaceInStrings(" 00:00:00", "");
    }
    QStringList batchIds() {
        return test::rowsOf(db->exec("Select BatchID From patients Order By PatientID"));
    }
    QString fileText(const QString& name) { return test::readText(office.file(name)); }
    QString record(const QString& name) { return office.store().get("Batch", name); }
};

const QString kDayLines = "OBEC011234567890AB\r\nOBEC012234567891 \r\nOBEC013234567892 \r\n";

}  // namespace

class TestOvernightBatch : public QObject {
    Q_OBJECT

private slots:
    // A day's line (number, version) or a typed card's record (number, version, provider,
    // facility, user).
    void records_data() {
        QTest::addColumn<QList<QVariant>>("fields");
        QTest::addColumn<QString>("line");
        using V = QList<QVariant>;
        row("with a version code", V{"1234567890", "AB"}, "OBEC011234567890AB\r\n");
        row("a NULL version is one blank", V{"1234567890", QVariant()}, "OBEC011234567890 \r\n");
        row("an empty version is one blank", V{"1234567890", ""}, "OBEC011234567890 \r\n");
        row("one-letter version padded", V{"1234567890", "K"}, "OBEC011234567890K \r\n");
        row("long values cut", V{"123456789012", "ABC"}, "OBEC011234567890AB\r\n");
        row("short number padded", V{"12345", "AB"}, "OBEC0112345     AB\r\n");
        row("card: every field its width", V{"1234567890", "AB", "123456", "3456", "USER0001"},
            "RPVR0300 1234567890AB1234563456USER0001HCNP\r\n");
        row("card: short padded, long cut", V{"12345", "", "1234567", "12", "LONGUSERID"},
            "RPVR0300 12345       12345612  LONGUSERHCNP\r\n");
    }
    void records() {
        QFETCH(QList<QVariant>, fields);
        QFETCH(QString, line);
        QStringList f;
        for (const QVariant& v : fields.mid(2)) {
            f << v.toString();
        }
        QCOMPARE(fields.size() == 2
                     ? OvernightBatch::obecLine(fields[0].toString(), fields[1])
                     : OvernightBatch::cardRecord(fields[0].toString(), fields[1].toString(), f[0],
                                                  f[1], f[2]),
                 line);
    }

    // Preparing a day, after nothing or after an earlier day's file: refused, asked about,
    // replaced or kept. "told" is an error's text or the question's.
    void prepareDay_data() {
        QTest::addColumn<QString>("earlier");  // "", "unsubmitted" or "submitted" 2026/11/22
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<QString>("date");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("told");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QStringList>("rows");
        QTest::addColumn<QStringList>("ids");
        const QString day23 = "OBEC015234567894EF\r\n";
        const L ids23{"20261122", "20261122", "20261122", "<null>", "20261123"};
        const L none(5, "<null>");
        const L kept{"20261122|OBECA.txt|3|<null>"};
        const L ids22{"20261122", "20261122", "20261122", "<null>", "<null>"};
        const QString question =
            "OBECA.txt still holds the cards of batch 20261122, which were not submitted.\n"
            "Replace them with the cards of batch 20261123?";
        row("no doctor", "", " ", "2026/11/22", false, "Please select a doctor.", "", L{}, none);
        row("not a date", "", "A", "2026/02/30", false, "'2026/02/30' is not a valid date.", "",
            L{}, none);
        row("unknown doctor", "", "Z", "2026/11/22", false,
            "Doctor Not Found.\nPlease check that the Doctor ID is correct.", "", L{}, none);
        row("no appointments", "", "A", "2026/11/24", false, "No patient to submit.", "", L{},
            none);
        row("only a patient not in the register", "", "B", "2026/11/23", false,
            "No patient to submit.", "", L{}, none);
        row("once", "", "A", "2026/11/22", false, "", kDayLines, kept, ids22);
        row("again: the row is replaced", "unsubmitted", "A", "2026/11/22", false, "", kDayLines,
            kept, ids22);
        row("unsubmitted, kept", "unsubmitted", "A", "2026/11/23", false, question, kDayLines, kept,
            ids22);
        row("unsubmitted, replaced", "unsubmitted", "A", "2026/11/23", true, question, day23,
            L{"20261123|OBECA.txt|1|<null>"}, ids23);
        row("submitted: replaced unasked", "submitted", "A", "2026/11/23", false, "", day23,
            L{"20261122|OBECA.txt|3|2026-11-22", "20261123|OBECA.txt|1|<null>"}, ids23);
    }
    void prepareDay() {
        QFETCH(QString, earlier);
        QFETCH(QString, doctor);
        QFETCH(QString, date);
        QFETCH(bool, yes);
        QFETCH(QString, told);
        QFETCH(QString, file);
        QFETCH(QStringList, rows);
        QFETCH(QStringList, ids);
        Office o;
        if (!earlier.isEmpty()) {
            QVERIFY(o.batch.prepareDay("A", "2026/11/22"));
        }
        if (earlier == "submitted") {
            o.db->exec("Update [HN batches] Set SubmitDate=?", {QDate(2026, 11, 22)});
        }
        o.prompter.script({yes ? Answer::Yes : Answer::No});
        const bool asked = told.startsWith("OBECA");
        const auto prepared = o.batch.prepareDay(doctor, date);
        QCOMPARE(bool(prepared), told.isEmpty() || (asked && yes));
        QCOMPARE(o.prompter.messages().size(), told.isEmpty() ? 0 : 1);
        if (!told.isEmpty()) {
            QCOMPARE(o.prompter.last().title,
                     QString(asked ? "OBEC - Overnight Health Card Validation" : "Error"));
            QCOMPARE(o.prompter.last().text(), told);
            QVERIFY(!asked || o.prompter.last().defaultAnswer == Answer::No);
        }
        if (prepared) {
            QCOMPARE(prepared->batchId, rows.last().left(8));
            QCOMPARE(prepared->path, o.office.file("OBECA.txt"));
            QCOMPARE(prepared->cards.size(), file.count('\n'));
            QCOMPARE(QFileInfo(prepared->path).permissions() & 0077, QFileDevice::Permissions());
        }
        QCOMPARE(o.fileText("OBECA.txt"), file);
        QCOMPARE(o.rows(), rows);
        QCOMPARE(o.batchIds(), ids);
        QCOMPARE(o.record("OBECA.txt"), file.isEmpty() ? QString() : QStringLiteral("1"));
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
        QCOMPARE(o.rows(), L{"20261122|OBECA.txt|3|<null>"});
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
        QCOMPARE(o.prompter.messages().isEmpty() ? QString() : o.prompter.last().text(), message);
        QCOMPARE(o.fileText("HCR000.dat"),
                 prepared ? QStringLiteral("RPVR0300 1234567890KL1234563456USER0001HCNP\r\n")
                          : QString());
        QCOMPARE(o.rows(), prepared ? L{"20261122|HCR000.dat|1|<null>"} : QStringList());
        QCOMPARE(o.batchIds(), QStringList(5, "<null>"));
        QCOMPARE(o.record("HCR000.dat"), prepared ? QStringLiteral("1") : QString());
    }

    // Handing a batch's files to a disk: what is sent, what is told, what is recorded.
    void submitToDisk_data() {
        QTest::addColumn<QStringList>("files");  // prepared: day, card, extra
        QTest::addColumn<QString>("spoil");      // "missing", "unrecorded", "submitted", "dial-up"
        QTest::addColumn<int>("sent");
        QTest::addColumn<QStringList>("messages");
        const QString noneSent = "EDT Submit: No files were submitted.";
        row("one file", L{"day"}, "", 1, L{"EDT Submit: The file was submitted successfully."});
        row("both files", L{"day", "card"}, "", 2,
            L{"EDT Submit: Both files were submitted successfully."});
        row("three files", L{"day", "card", "extra"}, "", 3,
            L{"EDT Submit: All 3 files were submitted successfully."});
        row("a missing file is skipped", L{"day", "card"}, "missing", 1,
            L{"EDT Submit: The file to be submitted (OBECA.txt) does not exist.",
              "EDT Submit: 1 file was submitted successfully,\n1 file was not "
              "submitted."});
        row("a file not made here", L{"day"}, "unrecorded", 0,
            L{"Error: Brimsett does not have a record of creating this batch file.\n"
              "Please contact technical support for further assistance.",
              noneSent});
        row("already submitted", L{"day"}, "submitted", 0,
            L{"EDT Submit: OBECA.txt of batch 20261122 was already submitted on "
              "2026/11/20.\nPrepare it again to send it again.",
              noneSent});
        row("dial-up", L{"day"}, "dial-up", 0,
            L{"EDT Submit: This part of Brimsett is not available yet.\nPlease choose "
              "\"3.5'' Disk(s)\" or \"EDT / Internet\".",
              noneSent});
        row("no files", L{}, "", 0, L{noneSent});
    }
    void submitToDisk() {
        QFETCH(QStringList, files);
        QFETCH(QString, spoil);
        QFETCH(int, sent);
        QFETCH(QStringList, messages);
        Office o;
        o.db->exec("Insert Into edtparams Values ('A1', 'USER0001')");
        if (files.contains("day")) {
            QVERIFY(o.batch.prepareDay("A", "2026/11/22"));
        }
        if (files.contains("card")) {
            QVERIFY(o.batch.prepareCard("A", "1234567890", "AB"));
        }
        if (files.contains("extra")) {
            test::writeText(o.office.file("EXTRA.txt"), "x\r\n");
            o.office.store().save("Batch", "EXTRA.txt", "1");
            o.db->exec(
                "Insert Into [HN batches] (BatchID, FileName, Records)"
                " Values ('20261122', 'EXTRA.txt', 1)");
        }
        if (spoil == "missing") {
            QFile::remove(o.office.file("OBECA.txt"));
        } else if (spoil == "unrecorded") {
            o.office.store().remove("Batch", "OBECA.txt");
        } else if (spoil == "submitted") {
            o.db->exec("Update [HN batches] Set SubmitDate=?", {QDate(2026, 11, 20)});
        }
        o.clock.set(QDateTime(QDate(2026, 11, 24), QTime(9, 0)));
        o.prompter.clear();
        QTemporaryDir disk;
        RecordingWait wait;
        const auto method = spoil == "dial-up" ? TransferMethod::DialUp : TransferMethod::Disk;
        QCOMPARE(o.batch.submit("20261122", method, wait, disk.path()), sent);
        QStringList told;
        for (const auto& m : o.prompter.messages()) {
            told << m.title + ": " + m.text();
        }
        QCOMPARE(told, messages);
        // Each file sent is the office's on the disk and dated; the others keep their date.
        const QStringList names = o.batch.filesOf("20261122");
        QCOMPARE(names.size(), files.size());
        QStringList uploading;
        int dated = 0;
        for (const QString& name : names) {
            uploading << "Uploading '" + name + "' ...";
            const QDate date =
                o.db->scalar("Select SubmitDate From [HN batches] Where FileName=?", {name})
                    .toDate();
            if (QFileInfo::exists(disk.filePath(name))) {
                QCOMPARE(test::readText(disk.filePath(name)), o.fileText(name));
                QCOMPARE(date, QDate(2026, 11, 24));
                ++dated;
            } else {
                QCOMPARE(date, spoil == "submitted" ? QDate(2026, 11, 20) : QDate());
            }
        }
        QCOMPARE(wait.statuses, uploading);
        QCOMPARE(dated, sent);
    }

    // The stored answers of the patients holding a card: "id|name|status|response|checked".
    void storedResults_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("version");
        QTest::addColumn<int>("status");  // 0: any
        QTest::addColumn<QStringList>("found");
        const QString one = "1|Last1, First1|1|50|2026-11-21T08:30:15";
        row("number and version", "1234567890", "AB", 0, L{one, "6|Last6, First6|2|65|"});
        row("and the class", "1234567890", "AB", 2, L{"6|Last6, First6|2|65|"});
        row("no version matches NULL and empty", "3234567892", "", 0, L{"3|Last3, First3|0||"});
        row("another version", "1234567890", "XY", 0, L{});
    }
    void storedResults() {
        QFETCH(QString, number);
        QFETCH(QString, version);
        QFETCH(int, status);
        QFETCH(QStringList, found);
        Office o;
        o.addPatient(6, "1234567890", "AB");
        o.db->exec("Update patients Set Status=1, Response='50', HNCheckDate=? Where PatientID=1",
                   {QString("2026-11-21 08:30:15")});
        o.db->exec("Update patients Set Status=2, Response='65' Where PatientID=6");
        QStringList shown;
        for (const hcv::StoredCheck& c : o.batch.storedResults(
                 number, version, status ? std::optional(status) : std::nullopt)) {
            shown << L{QString::number(c.patientId), c.name, QString::number(c.status), c.response,
                       c.checkedAt.toString(Qt::ISODate)}
                         .join('|');
        }
        QCOMPARE(shown, found);
    }
};

QTEST_GUILESS_MAIN(TestOvernightBatch)
#include "test_overnight_batch.moc"
