#include "ClaimSamples.h"
#include "OfficeFixture.h"
#include "claims/ClaimResubmit.h"
#include "claims/ClaimSave.h"
#include "claims/ClaimStore.h"
#include "foundation/DbError.h"
#include "foundation/SettingsStore.h"

#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// The valid claim with a service location, an empty row and a second item.
ClaimEntry ontarioClaim() {
    ClaimEntry c = test::ontarioClaim();
    c.payProg.clear();  // "DefClaim" chooses
    c.sli = "OFF";
    c.rows << ItemEntry{} << ItemEntry{"A001A", "401", "2", "50.00", "2026/11/21"};
    return c;
}

struct RecordedPrints : ClaimPrints {
    QStringList printed;
    void printReceipt(const ClaimRecord& c, int copies) override {
        printed << QStringLiteral("receipt %1 x%2").arg(c.acctNum).arg(copies);
    }
    void printInvoice(const ClaimRecord& c, int copies) override {
        printed << QStringLiteral("invoice %1 x%2").arg(c.acctNum).arg(copies);
    }
};

}  // namespace

class TestClaimSave : public QObject {
    Q_OBJECT

    std::unique_ptr<test::OfficeFixture> f;

    void sql(const QString& statement) { f->db->exec(statement); }
    QStringList rows(const QString& query) { return test::rowsOf(f->db->exec(query)); }
    std::optional<ClaimSave::Saved> save(ClaimEntry& c, bool versionEdited = false,
                                         ClaimEntryOptions options = {},
                                         ClaimPrints* prints = nullptr) {
        ClaimSave saver(*f->db, f->prompter, f->clock, f->settings, options, f->log);
        saver.setPrints(prints);
        return saver.save(c, versionEdited);
    }

private slots:
    void init() {
        f = std::make_unique<test::OfficeFixture>();
        sql("Insert Into doctors (DoctorID, SpecCode) Values ('JS','00'), ('KS','00')");
        sql("Insert Into patients (PatientID, HealthNum, VersionCode, ExpYear) Values"
            " (1,'1234567897','AA','2030-01-31')");
        sql("Insert Into thirdparty (ThirdPartyID, Name) Values (5,'Insurer')");
        sql("Insert Into servicecodes (ServiceCode, FeeGeneral) Values ('A007', 337000),"
            " ('A001', 250000)");
        sql("Insert Into servicecodesdirect (ServiceCode, Fee) Values ('X100', 250000)");
        // Visits of patient 1: with JS on the 20th (booked, and a cancelled one beside it) and
        // the 21st (deleted, and a cancelled one alone), with KS on the 20th.
        sql("Insert Into appointments (AppID, PatientID, DoctorID, AppDate, Status, Deleted)"
            " Values (1,1,'JS','2026-11-20',1,0), (2,1,'JS','2026-11-21',1,1),"
            " (3,1,'KS','2026-11-20',1,0), (4,1,'JS','2026-11-20',7,0),"
            " (5,1,'JS','2026-11-21',7,0)");
    }

    void savesAnOntarioClaim() {
        ClaimEntry c = ontarioClaim();
        c.doctorId = "js";  // typed in small letters: stored as the register has it
        const auto saved = save(c);
        QVERIFY(saved);
        QCOMPARE(saved->statusLine,
                 QString("Last Saved: [10:00] -- PatientID: [1] - Account: [00000001]"));
        QCOMPARE(rows("Select ClaimID, AcctNum, BatchID, DoctorID, PayProg, VersionCode, SLI"
                      " From claims"),
                 L{"10000000|00000001|000000000000|JS|HCP - P|AB|OFF"});
        QCOMPARE(ClaimStore(*f->db, f->clock, f->log).load(10000000)->dateCreated,
                 QDateTime(QDate(2026, 11, 22), QTime(10, 0)));
        QCOMPARE(
            rows("Select ItemID, ServiceCode, NumServ, FeeSubm, ServiceDate, Status,"
                 " FeePaid From items Order By ItemID"),
            L({"1|A007A|1|337000|2026-11-20|0|<null>", "2|A001A|2|500000|2026-11-21|0|<null>"}));
        // The program came from "DefClaim"; the register keeps its version code.
        QCOMPARE(c.payProg, QString("HCP - P"));
        QCOMPARE(rows("Select VersionCode From patients"), L{"AA"});
        // The visit with the same provider on a service date is billed: the booking rather
        // than a cancellation beside it, a cancellation when it is the day's only visit.
        QCOMPARE(rows("Select AppID, Status From appointments Order By AppID"),
                 L({"1|6", "2|1", "3|1", "4|7", "5|6"}));
        QCOMPARE(f->settings.lastSLI, QString("OFF"));
        QCOMPARE(f->settings.lastDoctor, QString("JS"));
    }

    void editedClaimKeepsItsNumbers() {
        ClaimEntry first = ontarioClaim();
        QVERIFY(save(first));
        ClaimEntry second = ontarioClaim();
        f->prompter.script({Answer::Yes});  // the same items again
        QVERIFY(save(second));
        ClaimEntry edited = ontarioClaim();
        edited.claimId = 10000000;
        edited.rows = {{"A001A", "250", "1", "25.00", "2026/11/19"}};
        const auto saved = save(edited, true);
        QVERIFY(saved);
        QCOMPARE(saved->claim.acctNum, QString("00000001"));
        QCOMPARE(rows("Select ClaimID, AcctNum From claims Order By ClaimID"),
                 L({"10000000|00000001", "10000001|00000002"}));
        QCOMPARE(rows("Select ItemID, ServiceCode, DiagCode From items Where ClaimID=10000000"),
                 L{"1|A001A|250"});
        // The version code typed on the screen is brought into the register.
        QCOMPARE(rows("Select VersionCode From patients"), L{"AB"});
    }

    void batchByProgram_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QString>("batch");
        test::row("ontario", "HCP - S", "A007A", "000000000000");
        test::row("ontario, typed in small letters", "hcp - s", "A007A", "000000000000");
        test::row("direct", "Direct", "X100", " Direct     ");
        test::row("third party", "Third Party", "X100", " thirdparty ");
    }
    void batchByProgram() {
        QFETCH(QString, program);
        QFETCH(QString, code);
        QFETCH(QString, batch);
        ClaimEntry c = ontarioClaim();
        c.payProg = program;
        c.thirdPartyId = program == "Third Party" ? "5" : "";
        c.rows = {{code, "401", "1", "25.00", "2026/11/20"}};
        QVERIFY(save(c));
        QCOMPARE(rows("Select BatchID From claims"), L{batch});
    }

    void refusalsWriteNothing_data() {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("message");
        test::row("no provider", "doctor", "A Doctor must be selected.");
        test::row("no province", "province", "A province must be selected.");
        test::row("unknown program", "program",
                  "'HCP' is not a payment program (HCP - P, HCP - S, RMB, WCB, Direct, "
                  "Third Party).");
        test::row("check refused", "code",
                  "Cannot save this claim due to the following problem(s):");
        test::row("duplicate refused", "duplicate", "Are you sure you want to submit it again?");
    }
    void refusalsWriteNothing() {
        QFETCH(QString, change);
        QFETCH(QString, message);
        if (change == "duplicate") {
            ClaimEntry earlier = ontarioClaim();
            QVERIFY(save(earlier));
            f->prompter.clear();
        }
        const QStringList before = rows("Select ClaimID From claims");
        ClaimEntry c = ontarioClaim();
        c.doctorId = change == "doctor" ? "" : c.doctorId;
        c.province = change == "province" ? "" : c.province;
        c.payProg = change == "program" ? "HCP" : c.payProg;
        c.rows[0].serviceCode = change == "code" ? "Q999A" : c.rows[0].serviceCode;
        c.versionCode = "ZZ";
        QVERIFY(!save(c, true));  // every question answered with its default, No
        QVERIFY(f->prompter.last().text().contains(message));
        QCOMPARE(rows("Select ClaimID From claims"), before);
        QCOMPARE(rows("Select VersionCode From patients"), L{"AA"});
        QCOMPARE(rows("Select Status From appointments Where AppID=1"),
                 L{change == "duplicate" ? "6" : "1"});
    }

    void failedSaveLeavesTheOldClaim() {
        ClaimEntry first = ontarioClaim();
        QVERIFY(save(first));
        const QStringList before = rows("Select * From items");
        test::refuseRows(*f->db, "Insert", "items", "NEW.ServiceCode='A001A'", "disk full");
        ClaimEntry edited = ontarioClaim();
        edited.claimId = 10000000;
        QVERIFY_THROWS_EXCEPTION(DbError, save(edited, true));
        QCOMPARE(rows("Select * From items"), before);
        QCOMPARE(rows("Select VersionCode From patients"), L{"AA"});
    }

    void submittedSinceOpenedIsRefused() {
        ClaimEntry first = ontarioClaim();
        QVERIFY(save(first));
        sql("Update claims Set BatchID='HE0001000001'");
        ClaimEntry edited = ontarioClaim();
        edited.claimId = 10000000;
        QVERIFY(!save(edited));
        QVERIFY(f->prompter.last().text().contains("HE0001000001"));
        QCOMPARE(rows("Select BatchID From claims"), L{"HE0001000001"});
    }

    void printsAsTheSettingsSay_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<L>("switches");  // of RecPrint0, RecPrint1, InvPrint0, InvPrint1
        QTest::addColumn<int>("yesAnswers");
        QTest::addColumn<L>("printed");
        test::row("nothing chosen", "Direct", L{}, 0, L{});
        test::row("always", "Direct", L{"RecPrint1", "InvPrint1"}, 0,
                  L({"receipt 00000001 x2", "invoice 00000001 x2"}));
        test::row("asked, yes", "Direct", L{"RecPrint0", "InvPrint0"}, 2,
                  L({"receipt 00000001 x2", "invoice 00000001 x2"}));
        test::row("asked, no", "Direct", L{"RecPrint0", "InvPrint0"}, 0, L{});
        test::row("third party takes no receipt", "Third Party", L{"RecPrint1", "InvPrint1"}, 0,
                  L{"invoice 00000001 x2"});
        test::row("ontario claims print nothing", "HCP - P", L{"RecPrint1", "InvPrint1"}, 0, L{});
    }
    void printsAsTheSettingsSay() {
        QFETCH(QString, program);
        QFETCH(L, switches);
        QFETCH(int, yesAnswers);
        QFETCH(L, printed);
        ClaimEntryOptions options;
        options.recPrint0 = switches.contains("RecPrint0");
        options.recPrint1 = switches.contains("RecPrint1");
        options.invPrint0 = switches.contains("InvPrint0");
        options.invPrint1 = switches.contains("InvPrint1");
        options.lCopies = 2;
        for (int i = 0; i < yesAnswers; ++i) {
            f->prompter.script({Answer::Yes});
        }
        ClaimEntry c = ontarioClaim();
        c.payProg = program;
        c.thirdPartyId = "5";
        c.rows = {{program == "HCP - P" ? "A007A" : "X100", "401", "1", "25.00", "2026/11/20"}};
        RecordedPrints prints;
        QVERIFY(save(c, false, options, &prints));
        QCOMPARE(prints.printed, printed);
        QCOMPARE(f->prompter.unusedAnswers(), 0);
    }

    void optionsKeepTheirKeys() {
        ClaimEntryOptions options;
        QCOMPARE(ClaimEntryOptions::read(f->office.store()), options);
        options = {"Direct", "B", false, true, true, false, 3, "Bag"};
        options.save(f->office.store());
        QCOMPARE(ClaimEntryOptions::read(f->office.store()), options);
        QCOMPARE(options.suffix(), QChar('B'));
        options.defaultClaimSuffix = "x";
        QCOMPARE(options.suffix(), QChar('A'));
    }

    void resubmitsARejectedAccount() {
        ClaimEntry c = ontarioClaim();
        QVERIFY(save(c));
        sql("Update claims Set BatchID='HE0001000001', AllBatches='HE0001000001'");
        sql("Update items Set Status=2, FeePaid=337000 Where ItemID=1");
        sql("Update items Set Status=1, Errors='EH1' Where ItemID=2");
        ClaimResubmit resubmit(*f->db, f->prompter, f->clock, f->log);
        QCOMPARE(resubmit.resubmitAccount("2"), 0);
        QCOMPARE(f->prompter.last().text(), QString("Account 00000002 was not found."));
        QCOMPARE(resubmit.resubmitAccount("1"), 0);  // the question answered No
        QCOMPARE(rows("Select BatchID From claims"), L{"HE0001000001"});
        f->prompter.script({Answer::Yes});
        QCOMPARE(resubmit.resubmitAccount("00000001"), 1);
        QCOMPARE(rows("Select BatchID, AllBatches From claims"), L{"000000000000|HE0001000001"});
        // Every item goes back, the paid one too.
        QCOMPARE(rows("Select Status, FeePaid, Errors From items"),
                 L({"0|<null>|<null>", "0|<null>|<null>"}));
        QCOMPARE(resubmit.resubmitAccount("1"), 0);
        QCOMPARE(f->prompter.last().text(),
                 QString("Account 00000001 has no rejected claim to resubmit."));
    }
};

QTEST_GUILESS_MAIN(TestClaimSave)
#include "test_claim_save.moc"
