#include "OfficeFixture.h"
#include "ScreenTestSupport.h"

#include "foundation/ActionRegistry.h"
#include "hcv/CardExchange.h"
#include "screens/FrmCheckHealth.h"
#include "screens/HcvScreens.h"
#include "screens/PatientScreens.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// An office on 2026/11/22: Dr. John Smith (with a transfer login) sees patients 1 and 2
// today, Dr. Sue Kent sees patient 3 tomorrow. The window comes from the opener the
// registration returns.
struct Desk : test::OfficeFixture {
    QWidget owner;
    ActionRegistry registry;
    PatientScreens patients{*db, settings, office.store(), prompter, clock, log, &owner};
    hcv::CardExchange exchange{*db, office.store(), clock, prompter, log, office.folder()};
    OpenCheckHealth openCheckHealth;
    FrmCheckHealth* window = nullptr;

    Desk() {
        db->exec(
            "Insert Into Doctors (DoctorID, LName, FName, ProviderNum, FacilityNum) Values"
            " ('JS', 'Smith', 'John', '123456', '3456'), ('KS', 'Kent', 'Sue', '654321', '')");
        db->exec("Insert Into edtparams Values ('JS1', 'USER0001')");
        db->exec(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, FName, LName, Response,"
            " Status, HNCheckDate) Values"
            " (1, '9876543225', 'AB', 'Jane', 'Doe', '50', 1, '2026-11-21 14:05:00'),"
            " (2, '1234567897', NULL, 'Mary', 'Roe', NULL, NULL, NULL),"
            " (3, '1111111119', 'XY', 'Sam', 'Poe', '9C', 2, '2026-11-20 09:00:00')");
        db->exec(
            "Insert Into Appointments (AppID, PatientID, AppDate, AppTime, AppLength,"
            " DoctorID) Values (1, 2, '2026-11-22', 540, 15, 'JS'),"
            " (2, 1, '2026-11-22', 600, 15, 'JS'), (3, 3, '2026-11-23', 600, 15, 'KS')");
        openCheckHealth =
            registerHcvScreens(registry, {*db, settings, office.store(), log, prompter, clock,
                                          exchange, patients, office.folder(), &owner});
    }
    void open(const QString& doctor = {}, const QDate& day = {}) {
        openCheckHealth(doctor, day);
        window = owner.findChild<FrmCheckHealth*>();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    template <typename T>
    T* child(const char* name) const {
        return test::childNamed<T>(window, name);
    }
    QStringList grid() const { return test::treeRows(child<QTreeWidget>("grdCards")); }
    void type(const char* field, const QString& text) const {
        child<QLineEdit>(field)->setText(text);
    }
    void press(Qt::Key letter) const {
        QTest::keyClick(window, letter, Qt::AltModifier);  // a button's letter clicks it after
        QTest::qWait(250);                                 // a flash
    }
    QStringList batches() {
        return test::rowsOf(
            db->exec("Select BatchID, FileName, Records, SubmitDate From"
                     " [HN batches] Order By BatchID, FileName"));
    }
};

}  // namespace

class TestFrmCheckHealth : public QObject {
    Q_OBJECT

private slots:
    // The day's cards and a typed one fill the grid of their batch, each with its file; a
    // batch of another day replaces the grid (after the question about the file it reuses).
    void prepareFromTheScreen() {
        Desk desk;
        desk.open("JS", QDate(2026, 11, 22));
        auto* doctor = desk.child<QComboBox>("cboDoctor");
        QCOMPARE(doctor->itemText(1), QString("KS - Sue Kent"));
        QCOMPARE(doctor->currentData().toString(), QString("JS"));
        QCOMPARE(desk.child<QLineEdit>("txtDate")->text(), QString("2026/11/22"));

        desk.press(Qt::Key_S);
        QCOMPARE(desk.grid(), L({"OBECA.txt|JS|1|9876543225 AB", "OBECA.txt|JS|2|1234567897"}));
        QCOMPARE(desk.window->batchId(), QString("20261122"));
        QCOMPARE(desk.window->statusLine(), QString("OBECA.txt: 2 card(s) of batch 20261122."));

        desk.type("txtHealthNum", " 1111111119 ");
        desk.type("txtVersion", "xy");
        desk.press(Qt::Key_C);
        QCOMPARE(desk.grid(), L({"OBECA.txt|JS|1|9876543225 AB", "OBECA.txt|JS|2|1234567897",
                                 "HCR000.dat|JS||1111111119 XY"}));
        if (const QString shots = qEnvironmentVariable("BRIMSETT_SHOTS"); !shots.isEmpty()) {
            desk.type("txtHealthNum", "9876543225");
            desk.type("txtVersion", "AB");
            desk.press(Qt::Key_L);
            QApplication::processEvents();
            QDir().mkpath(shots);
            QVERIFY(desk.window->grab().save(shots + "/FrmCheckHealth.png"));
        }

        // Prepared again, the day's file keeps the typed card beside it.
        desk.press(Qt::Key_S);
        QCOMPARE(desk.grid().size(), 3);

        desk.prompter.script({Answer::Yes});
        desk.window->open("KS", QDate(2026, 11, 23));
        desk.press(Qt::Key_S);
        QCOMPARE(desk.prompter.messages().size(), 1);  // OBECA.txt held another batch
        QCOMPARE(desk.grid(), L{"OBECA.txt|KS|3|1111111119 XY"});
        QCOMPARE(desk.window->batchId(), QString("20261123"));
    }

    // What the logic refuses, for either button, is told and leaves the grid empty.
    void refusals_data() {
        QTest::addColumn<QString>("number");  // typed card; none: the day is prepared
        QTest::addColumn<QString>("message");
        test::row("the day", nullptr, "Please select a doctor.");
        test::row("a card", "9876543225", "Please select a doctor.");
    }
    void refusals() {
        QFETCH(QString, number);
        QFETCH(QString, message);
        Desk desk;
        desk.open();
        auto* doctors = desk.child<QComboBox>("cboDoctor");
        doctors->setCurrentIndex(doctors->findData(QString()));
        desk.type("txtHealthNum", number);
        desk.press(number.isNull() ? Qt::Key_S : Qt::Key_C);
        QCOMPARE(desk.prompter.messages().size(), 1);
        QCOMPARE(desk.prompter.last().text(), message);
        QVERIFY(desk.grid().isEmpty());
    }

    // Look Up shows each patient of the typed card with the stored answer.
    void lookUp_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("version");
        QTest::addColumn<QString>("shown");
        test::row("answered", "9876543225", "ab",
                  "1 Doe, Jane - Status: 1 - Response: 50 Card passed validation - Checked: "
                  "2026/11/21 14:05");
        test::row("never checked", "1234567897", "",
                  "2 Roe, Mary - Status: 0 - Response: none - Checked: never");
        test::row("another version", "9876543225", "ZZ",
                  "No patient has the health number 9876543225 with version code 'ZZ'.");
    }
    void lookUp() {
        QFETCH(QString, number);
        QFETCH(QString, version);
        QFETCH(QString, shown);
        Desk desk;
        desk.open();
        desk.type("txtHealthNum", number);
        desk.type("txtVersion", version);
        desk.press(Qt::Key_L);
        QCOMPARE(desk.child<QLabel>("lblLookUp")->text(), shown);
    }

    // Submit hands the batch's files to the disk folder chosen; a cancelled choice sends
    // nothing.
    void submitByDisk() {
        Desk desk;
        desk.settings.submitMethod = 0;
        desk.open("JS", QDate(2026, 11, 22));
        desk.press(Qt::Key_S);
        QTemporaryDir disk;
        QString answer;
        desk.window->setDiskFolderChooser([&] { return answer; });
        desk.press(Qt::Key_U);
        QCOMPARE(desk.batches(), L{"20261122|OBECA.txt|2|<null>"});

        answer = disk.path();
        desk.press(Qt::Key_U);
        QVERIFY(QFile::exists(disk.filePath("OBECA.txt")));
        QCOMPARE(desk.window->statusLine(),
                 QString("Batch 20261122: 1 file(s) submitted (3.5'' Disk(s))."));
    }
};

QTEST_MAIN(TestFrmCheckHealth)
#include "test_frmcheckhealth.moc"
