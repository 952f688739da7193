#include "OfficeFixture.h"
#include "ScreenTestSupport.h"

#include "../claims/ClaimSamples.h"
#include "claims/ClaimEntryRecord.h"
#include "claims/ClaimStore.h"
#include "foundation/ActionRegistry.h"
#include "foundation/MenuModel.h"
#include "ministry/BatchRegister.h"
#include "ministry/BatchReports.h"
#include "reports/ReportPrinter.h"
#include "screens/TransferScreens.h"
#include "screens/frmBMain.h"
#include "screens/frmPrepare.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// An office with two providers of their own billing numbers, patient 1 and the code A007,
// on 2026/11/22; the screen is opened by menu action 14.
struct Desk : test::OfficeFixture {
    QWidget owner;
    ActionRegistry registry;
    ClaimStore claims{*db, clock, log};
    frmPrepare* window = nullptr;

    Desk() {
        db->exec(
            "Insert Into Doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice, LName,"
            " FName) Values ('JS', '0000', '123456', '00', 'J', 'Smith', 'John'),"
            " ('KS', '0000', '654321', '00', 'J', 'Kent', 'Sue')");
        db->exec(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, FName, LName, DOB, Sex,"
            " Province) Values (1, '1234567897', 'AB', 'Mary', 'Smith', '1980-05-17', 'F', 'ON')");
        db->exec("Insert Into ServiceCodes (ServiceCode, FeeGeneral) Values ('A007', 337000)");
        settings.lastDoctor = "JS";
    }
    // A pending claim of the doctor, one A007A item of 33.70 (and more rows when given).
    qint64 addClaim(const QString& doctor = "JS", const QList<ItemEntry>& more = {}) {
        ClaimEntry entry = test::ontarioClaim();
        entry.doctorId = doctor;
        entry.rows.append(more);
        return claims.insertNew(claimentry::toRecord(entry)).claimId;
    }
    void open() {
        registerTransferScreens(registry, *db, settings, office.store(), prompter, clock, log, {},
                                office.folder(), &owner);
        QVERIFY(registry.runAction(kActionSubmitClaims));
        window = owner.findChild<frmPrepare*>();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    template <typename T>
    T* child(const char* name) const {
        return test::childNamed<T>(window, name);
    }
    QStringList listed() const { return test::treeRows(child<QTreeWidget>("lstBatches")); }
    void click(const char* name) const {
        QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton);
    }
    QString batchOf(qint64 claimId) {
        return db->scalar("Select BatchID From claims Where ClaimID=?", {claimId}).toString();
    }
    QPrintPreviewDialog* preview() const {
        return window->findChild<QPrintPreviewDialog*>(QStringLiteral("ReportPreview"));
    }
    static QString shots() { return qEnvironmentVariable("BRIMSETT_SHOTS"); }
};

}  // namespace

class TestFrmPrepare : public QObject {
    Q_OBJECT

private slots:
    // The doctor of the claim screen is chosen, the fields are gone through with Enter, and
    // Enter on the button prepares the file; the list shows its batch.
    void prepareFromTheScreen() {
        Desk desk;
        const qint64 claim = desk.addClaim();
        desk.open();
        QCOMPARE(desk.window->windowTitle(), QString("Submit Claims"));
        auto* doctor = desk.child<QComboBox>("cboDoctor");
        QCOMPARE(doctor->currentData().toString(), QString("JS"));
        QCOMPARE(doctor->count(), 2);
        QVERIFY(desk.child<QRadioButton>("optDateService")->isChecked());
        QVERIFY(!desk.child<QCheckBox>("chkOneProfile")->isChecked());
        QVERIFY(desk.child<QLineEdit>("txtStart")->isHidden());  // switch 18 is off
        QVERIFY(desk.listed().isEmpty());
        QVERIFY(!desk.child<QPushButton>("cmdSubmit")->isEnabled());

        QCOMPARE(QApplication::focusWidget(), doctor);
        QTest::keyClick(doctor, Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), desk.child<QLineEdit>("txtCutOff"));
        QTest::keyClicks(QApplication::focusWidget(), "2026/11/21");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), desk.child<QRadioButton>("optDateService"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), desk.child<QCheckBox>("chkOneProfile"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), desk.child<QPushButton>("cmdStart"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);

        QCOMPARE(desk.prompter.messages().size(), 0);
        QCOMPARE(desk.listed(),
                 L{"0000-123456-00|202611220001|1/4|$33.70|HK123456.001|Not Submitted"});
        QCOMPARE(desk.batchOf(claim), QString("202611220001"));
        QCOMPARE(desk.child<QLabel>("lblProgress")->text(), QString("4 Records"));
        QCOMPARE(desk.window->statusLine(),
                 QString("Claim file HK123456.001: 1 batch, 1 claim, $33.70."));
        QCOMPARE(desk.window->selectedBatch()->batchId, QString("202611220001"));
        QVERIFY(desk.child<QPushButton>("cmdSubmit")->isEnabled());
        QVERIFY(QFile::exists(desk.office.file("HK123456.001")));

        // Nothing is left: the same again says so and adds no batch.
        desk.click("cmdStart");
        QCOMPARE(desk.prompter.last().text(), QString("No claims to submit."));
        QCOMPARE(desk.listed().size(), 1);
    }

    void reverseFromTheScreen() {
        Desk desk;
        const qint64 claim = desk.addClaim();
        desk.open();
        desk.click("cmdStart");
        QCOMPARE(desk.listed().size(), 1);
        QCOMPARE(desk.batchOf(claim), QString("202611220001"));

        desk.prompter.script({Answer::Yes});
        desk.click("cmdReverse");
        QVERIFY(desk.listed().isEmpty());
        QCOMPARE(desk.batchOf(claim), kPendingBatch);
        QCOMPARE(desk.window->statusLine(),
                 QString("Batch 202611220001 was reversed: its claims are pending again."));
        QVERIFY(!desk.child<QPushButton>("cmdReverse")->isEnabled());
    }

    void printsOpenInPreview() {
        Desk desk;
        desk.addClaim();
        desk.open();
        desk.click("cmdStart");
        desk.click("cmdSummary");
        QPrintPreviewDialog* preview = desk.preview();
        QVERIFY(preview);
        QCOMPARE(preview->windowTitle(), QString("Submission Summary - Print Preview"));
        QVERIFY(preview->isVisible());
        preview->close();
        QTRY_VERIFY(!desk.preview());

        desk.click("cmdClaims");
        preview = desk.preview();
        QVERIFY(preview);
        QCOMPARE(preview->windowTitle(),
                 QString("Claims submitted in file HK123456.001 - Print Preview"));
        QCOMPARE(preview->printer()->pageLayout().orientation(), QPageLayout::Landscape);
        preview->close();
        QTRY_VERIFY(!desk.preview());
    }

    // The method list is "SubmitMethod": shown on opening, saved when changed.
    void methodIsTheSetting() {
        Desk desk;
        desk.settings.submitMethod = 2;
        desk.open();
        auto* method = desk.child<QComboBox>("cboMethod");
        QCOMPARE(method->count(), 3);
        QCOMPARE(method->itemText(0), QString("3.5'' Disk(s)"));
        QCOMPARE(method->itemText(1), QString("EDT / Phone Line Dial-Up"));
        QCOMPARE(method->itemText(2), QString("EDT / Internet"));
        QCOMPARE(method->currentIndex(), 2);
        method->setCurrentIndex(0);
        QCOMPARE(desk.settings.submitMethod, 0);
        QCOMPARE(desk.office.store().get("General", "SubmitMethod"), QString("0"));
    }

    // "Submit" hands the selected batch's file over by the chosen method; by disk the file is
    // copied to the folder chosen and the batch shows its date.
    void submitByDisk() {
        Desk desk;
        desk.settings.submitMethod = 0;
        desk.addClaim();
        desk.open();
        desk.click("cmdStart");
        QTemporaryDir disk;
        int asked = 0;
        QString answer;
        desk.window->setDiskFolderChooser([&] {
            ++asked;
            return answer;
        });
        // Cancelling the folder sends nothing.
        desk.click("cmdSubmit");
        QCOMPARE(asked, 1);
        QVERIFY(desk.listed().first().endsWith("|Not Submitted"));

        answer = disk.path();
        desk.click("cmdSubmit");
        QCOMPARE(asked, 2);
        QVERIFY(QFile::exists(disk.filePath("HK123456.001")));
        QCOMPARE(desk.listed(),
                 L{"0000-123456-00|202611220001|1/4|$33.70|HK123456.001|2026/11/22"});
        QCOMPARE(desk.window->statusLine(), QString("HK123456.001 was submitted (3.5'' Disk(s))."));
    }

    // Every action has its Alt letter; the menu's F-keys reach the main menu's actions from
    // the screen, which takes none of them.
    void keysReachTheActions() {
        Desk desk;
        QList<int> ran;
        for (int action : {1, 2}) {
            desk.registry.setAction(action, QString(), [&ran, action] { ran << action; });
        }
        frmBMain menu(defaultMenu(), desk.settings, desk.registry, desk.prompter);
        menu.show();
        QVERIFY(QTest::qWaitForWindowActive(&menu));
        desk.addClaim();
        desk.open();
        auto* cutOff = desk.child<QLineEdit>("txtCutOff");
        QTest::keyClick(desk.window, Qt::Key_C, Qt::AltModifier);
        QCOMPARE(QApplication::focusWidget(), cutOff);
        QTest::keyClick(cutOff, Qt::Key_F3);  // Claims
        QTest::keyClick(cutOff, Qt::Key_F4);  // Patients
        QCOMPARE(ran, QList<int>({1, 2}));
        QVERIFY(cutOff->text().isEmpty());

        QTest::keyClick(cutOff, Qt::Key_P, Qt::AltModifier);
        QTRY_COMPARE(desk.listed().size(), 1);  // a button's letter clicks it after a flash
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_B, Qt::AltModifier);
        QCOMPARE(QApplication::focusWidget(), desk.child<QTreeWidget>("lstBatches"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_M, Qt::AltModifier);
        QTRY_VERIFY(desk.preview());
        desk.preview()->close();
        QTRY_VERIFY(!desk.preview());
        // The offscreen platform leaves no window active after a dialog.
        QApplication::setActiveWindow(desk.window);
        QVERIFY(QTest::qWaitForWindowActive(desk.window));
        desk.prompter.script({Answer::Yes});
        QTest::keyClick(desk.window, Qt::Key_R, Qt::AltModifier);
        QTRY_VERIFY(desk.listed().isEmpty());
        QCOMPARE(desk.prompter.last().title, QString("Reverse Submission"));
    }

    // A list of three batches in two files, and the summary of the file of two; pictures of
    // both go to $BRIMSETT_SHOTS when it is set.
    void screenshots() {
        Desk desk;
        desk.db->exec(
            "Insert Into Doctors (DoctorID, GroupNum, ProviderNum, SpecCode, MOHOffice,"
            " LName, FName) Values ('JD', '0000', '123456', '18', 'J', 'Smith', 'Jane')");
        desk.addClaim("JS", {{"A001A", "401", "2", "50.00", "2026/11/20"}});
        desk.addClaim("JS");
        desk.addClaim("JD");
        desk.open();
        desk.click("cmdStart");
        desk.addClaim("KS");
        desk.child<QComboBox>("cboDoctor")
            ->setCurrentIndex(desk.child<QComboBox>("cboDoctor")->findData("KS"));
        desk.click("cmdStart");
        QCOMPARE(desk.listed().size(), 3);
        QVERIFY(desk.window->selectBatch("202611220001"));

        BatchRegister batches(*desk.db, desk.prompter, desk.log);
        const reports::ReportPrinter summary(
            batchreports::submissionSummary(batches, "HK123456.001", desk.clock.today(), {}),
            reports::ReportStyle::fromSettings(desk.settings));
        QCOMPARE(summary.pageCount(), 1);
        const QImage page = summary.pageImage(0, 96);
        QVERIFY(!page.isNull());
        const reports::ReportPrinter claimsList(
            *batchreports::claimsSubmitted(batches, "202611220001", desk.clock.today(), {}, false),
            reports::ReportStyle::fromSettings(desk.settings));
        if (!Desk::shots().isEmpty()) {
            QDir().mkpath(Desk::shots());
            QVERIFY(desk.window->grab().save(Desk::shots() + "/frmPrepare.png"));
            QVERIFY(page.save(Desk::shots() + "/submission-summary.png"));
            QVERIFY(claimsList.pageImage(0, 96).save(Desk::shots() + "/claims-in-file.png"));
        }
    }
};

QTEST_MAIN(TestFrmPrepare)
#include "test_frmprepare.moc"
