#include "OfficeFixture.h"

#include "appointments/BookBilling.h"
#include "claims/ClaimStore.h"
#include "foundation/ActionRegistry.h"
#include "screens/ClaimScreens.h"
#include "screens/frmClaim.h"
#include "screens/frmClaimGrid.h"
#include "screens/frmClaimPending.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using L = QStringList;

namespace {

// An office with provider JS, two patients and two fee codes, on 2026/11/22; the claim
// window is opened by its menu action.
struct Desk : test::OfficeFixture {
    QWidget owner;
    ActionRegistry registry;
    frmClaim* window = nullptr;
    std::function<bool(const appointments::BillingStart&)> bill;  // the book's way in

    Desk() {
        db->exec(
            "Insert Into Doctors (DoctorID, LName, FName, SpecCode) Values"
            " ('JS', 'Smith', 'John', '00'), ('KS', 'Kent', 'Sue', '00')");
        db->exec(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, FName, LName, DOB,"
            " Sex, Province, ExpYear) Values"
            " (1, '1234567897', 'AB', 'Mary', 'Smith', '1980-05-17', 'F', 'ON', '2030-01-31'),"
            " (2, '9876543217', '', 'Tom', 'Smithers', '1975-01-02', 'M', 'ON', NULL)");
        db->exec(
            "Insert Into ServiceCodes (ServiceCode, FeeGeneral) Values ('A007', 337000),"
            " ('A001', 250000)");
        settings.lastDoctor = "JS";
        settings.lastSLI = "OFF";
        settings.option[8] = true;
    }
    void open() {
        bill = registerClaimScreen(registry, *db, settings, office.store(), prompter, clock, log,
                                   {}, &owner);
        QVERIFY(registry.runAction(1));
        window = owner.findChild<frmClaim*>();
        QVERIFY(window);
        QApplication::setActiveWindow(window);
        QVERIFY(QTest::qWaitForWindowActive(window));
    }
    // Keys as the desk types them, each to whatever has the focus; "\n" is Enter.
    static void type(const QString& keys) {
        for (QChar c : keys) {
            QWidget* focus = QApplication::focusWidget();
            QVERIFY(focus);
            if (c == QLatin1Char('\n')) {
                QTest::keyClick(focus, Qt::Key_Return);
            } else {
                QTest::keyClick(focus, c.toLatin1());
            }
        }
    }
    QWidget* field(const QString& label) const {
        for (auto* caption : window->findChildren<QLabel*>()) {
            if (caption->text() == label) {
                return caption->buddy();
            }
        }
        return nullptr;
    }
    QLineEdit* edit(const QString& label) const { return qobject_cast<QLineEdit*>(field(label)); }
    QStringList rows(const QString& query) { return test::rowsOf(db->exec(query)); }
    QStringList grid() const {
        QStringList lines;
        for (const ItemEntry& r : window->grid()->rows()) {
            lines << L{r.serviceCode, r.diagCode, r.numServ, r.fee, r.serviceDate}.join('|');
        }
        return lines;
    }
};

}  // namespace

class TestFrmClaim : public QObject {
    Q_OBJECT

private slots:
    // A claim typed as the desk does: the number loads the patient, codes are completed and
    // priced, a second service doubles the fee; Ctrl+S saves and leaves an empty claim.
    void typedClaimIsSavedAndCleared() {
        Desk desk;
        desk.open();
        QCOMPARE(QApplication::focusWidget(), desk.edit("Patient &ID:"));
        desk.type("1\n");
        QCOMPARE(desk.edit("&Last Name:")->text(), QString("Smith"));
        QCOMPARE(desk.edit("&Health Number:")->text(), QString("1234567897"));
        desk.type("a7\n401\n\n\na1\n401\n2\n");
        QCOMPARE(desk.grid(), L({"A007A|401|1|33.70|2026/11/22", "A001A|401|2|50.00|2026/11/22"}));
        // Esc on the typed claim asks first; Cancel stays on it.
        desk.prompter.script({Answer::Cancel});
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QVERIFY(desk.window->isVisible());
        QCOMPARE(desk.prompter.last().text(), QString("Save changes?"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::ControlModifier);

        QCOMPARE(desk.prompter.messages().size(), 1);
        QCOMPARE(
            desk.rows("Select ClaimID, AcctNum, DoctorID, PatientID, PayProg, SLI From claims"),
            L{"10000000|00000001|JS|1|HCP - P|OFF"});
        QCOMPARE(desk.rows("Select ItemID, ServiceCode, DiagCode, NumServ, FeeSubm, ServiceDate"
                           " From items Order By ItemID"),
                 L({"1|A007A|401|1|337000|2026-11-22", "2|A001A|401|2|500000|2026-11-22"}));
        QCOMPARE(desk.window->statusLine(),
                 QString("Last Saved: [10:00] -- PatientID: [1] - Account: [00000001]"));
        QVERIFY(desk.edit("Patient &ID:")->text().isEmpty());
        QVERIFY(desk.edit("&Last Name:")->text().isEmpty());
        QVERIFY(desk.grid().isEmpty());
        QCOMPARE(desk.window->entryOnScreen().doctorId, QString("JS"));
        QCOMPARE(desk.window->entryOnScreen().sli, QString("OFF"));
        QCOMPARE(QApplication::focusWidget(), desk.edit("Patient &ID:"));
        QCOMPARE(desk.window->pending()->list()->topLevelItemCount(), 2);
    }

    // Switch 14 starts on the provider, switch 2 goes from the patient to the admission
    // date, switch 4 takes Enter through the service date.
    void enterFollowsTheSwitches_data() {
        QTest::addColumn<bool>("providerFirst");
        QTest::addColumn<bool>("admitDateFirst");
        QTest::addColumn<bool>("withServiceDate");
        QTest::addColumn<int>("columnAfterFee");
        test::row("office default", false, false, false, int(frmClaimGrid::Code));
        test::row("all three switches", true, true, true, int(frmClaimGrid::Date));
    }
    void enterFollowsTheSwitches() {
        QFETCH(bool, providerFirst);
        QFETCH(bool, admitDateFirst);
        QFETCH(bool, withServiceDate);
        Desk desk;
        desk.settings.option[14] = providerFirst;
        desk.settings.option[2] = admitDateFirst;
        desk.settings.option[4] = withServiceDate;
        desk.open();
        QCOMPARE(QApplication::focusWidget() == desk.field("Pro&vider:"), providerFirst);
        if (providerFirst) {
            desk.type("\n");
        }
        desk.type("1\n");
        if (admitDateFirst) {
            QCOMPARE(QApplication::focusWidget(), desk.edit("&Admit Date:"));
            desk.type("\n");
        }
        QCOMPARE(QApplication::focusWidget(), desk.window->grid());
        desk.type("a7\n\n\n\n");
        const int row = withServiceDate ? 0 : 1;
        QCOMPARE(desk.window->grid()->currentRow(), row);
        QTEST(desk.window->grid()->currentColumn(), "columnAfterFee");
    }

    // Letters search by last name and offer a pick list; a card number finds its patient.
    // Escape closes the pick list only.
    void patientFoundByNameOrCard_data() {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("offered");  // lines of the pick list; 0: none shown
        QTest::addColumn<bool>("escape");
        QTest::addColumn<QString>("lName");
        QTest::addColumn<QString>("message");
        test::row("name, two found, second picked", "smi", 2, false, "Smithers", "");
        test::row("name, list left with Escape", "smi", 2, true, "", "");
        test::row("health number in groups", "9876 543 217", 0, false, "Smithers", "");
        test::row("nobody", "55", 0, false, "", "No such patient");
    }
    void patientFoundByNameOrCard() {
        QFETCH(QString, typed);
        QFETCH(int, offered);
        QFETCH(bool, escape);
        Desk desk;
        desk.open();
        desk.type(typed + "\n");
        auto* pick = desk.window->findChild<QTreeWidget*>(QString(), Qt::FindDirectChildrenOnly);
        QCOMPARE(pick->isVisible() ? pick->topLevelItemCount() : 0, offered);
        if (escape) {
            QTest::keyClick(desk.window->windowHandle(), Qt::Key_Escape);
        } else if (offered > 0) {
            QTest::keyClick(pick, Qt::Key_Down);
            QTest::keyClick(pick, Qt::Key_Return);
        }
        QVERIFY(!pick->isVisible() && desk.window->isVisible());
        QTEST(desk.edit("&Last Name:")->text(), "lName");
        QTEST(desk.prompter.messages().isEmpty() ? QString() : desk.prompter.last().text(),
              "message");
    }

    // A pending claim opened from the list shows as stored and is saved over itself.
    void pendingClaimOpenedAndSavedAgain() {
        Desk desk;
        desk.open();
        desk.type("1\na7\n401\n\n\na1\n401\n2\n\n");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::ControlModifier);
        QTreeWidget* pending = desk.window->pending()->list();
        QCOMPARE(pending->topLevelItem(1)->text(8), QString("$50.00"));
        QCOMPARE(pending->topLevelItem(0)->text(4), QString("HCP-P"));

        pending->setFocus();
        QTest::keyClick(pending, Qt::Key_Return);
        QCOMPARE(desk.window->windowTitle(), QString("Claims - Account 00000001"));
        QCOMPARE(desk.edit("Patient &ID:")->text(), QString("1"));
        QCOMPARE(desk.edit("&Birth Date:")->text(), QString("1980/05/17"));
        QCOMPARE(desk.grid(), L({"A007A|401|1|33.70|2026/11/22", "A001A|401|2|50.00|2026/11/22"}));
        desk.window->grab().save("/tmp/frmClaim.png");

        desk.window->grid()->setCurrentCell(0, frmClaimGrid::NumServ);
        desk.window->grid()->setFocus();
        desk.type("3\n");
        QCOMPARE(desk.grid().first(), QString("A007A|401|3|101.10|2026/11/22"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(desk.rows("Select ClaimID, AcctNum From claims"), L{"10000000|00000001"});
        QCOMPARE(desk.rows("Select ItemID, NumServ, FeeSubm From items Order By ItemID"),
                 L({"1|3|1011000", "2|2|500000"}));
    }

    // A visit billed from the book replaces the claim being typed only after asking; it
    // starts with the visit's patient, provider and codes priced on its date, the cursor on
    // the fee. Saving marks the visit billed; leaving without saving leaves it as it was.
    void appointmentBilled_data() {
        QTest::addColumn<bool>("save");
        test::row("saved", true);
        test::row("closed without saving", false);
    }
    void appointmentBilled() {
        QFETCH(bool, save);
        Desk desk;
        desk.db->exec(
            "Insert Into appointments (AppID, PatientID, DoctorID, AppDate, AppTime, AppLength,"
            " Status, ServiceCode, DiagCode, Deleted) Values"
            " (5, 1, 'KS', '2026-11-20', 540, 15, 1, 'A007', '401', 0)");
        desk.open();
        desk.type("2\na1\n");
        const std::optional<appointments::BillingStart> start =
            appointments::startBilling(*desk.db, desk.prompter, 5);
        QVERIFY(start);
        desk.prompter.script({Answer::Cancel});
        QVERIFY(!desk.bill(*start));
        QCOMPARE(desk.edit("Patient &ID:")->text(), QString("2"));
        desk.prompter.script({Answer::No});
        QVERIFY(desk.bill(*start));
        QCOMPARE(desk.owner.findChildren<frmClaim*>().size(), 1);

        QCOMPARE(desk.edit("Patient &ID:")->text(), QString("1"));
        QCOMPARE(desk.edit("&Last Name:")->text(), QString("Smith"));
        QCOMPARE(qobject_cast<QComboBox*>(desk.field("Pro&vider:"))->currentData().toString(),
                 QString("KS"));
        QCOMPARE(desk.grid(), L{"A007A|401|1|33.70|2026/11/20"});
        QCOMPARE(QApplication::focusWidget(), desk.window->grid());
        QCOMPARE(desk.window->grid()->currentRow(), 0);
        QCOMPARE(desk.window->grid()->currentColumn(), int(frmClaimGrid::Fee));

        const QPointer<frmClaim> window = desk.window;
        if (save) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_S, Qt::ControlModifier);
        } else {
            desk.prompter.script({Answer::No});
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            QTRY_VERIFY(!window);
        }
        QCOMPARE(desk.prompter.messages().size(), save ? 2 : 3);
        QCOMPARE(desk.rows("Select DoctorID, PatientID From claims"), save ? L{"KS|1"} : L());
        QCOMPARE(desk.rows("Select Status From appointments"), L{save ? "6" : "1"});
    }

    // Splitting the claim open on the screen takes it off the screen first, so that saving
    // cannot put back the items that moved; Cancel on its edits stops the split.
    void splitClearsTheOpenClaim() {
        Desk desk;
        desk.open();
        ClaimRecord claim;
        claim.doctorId = "JS";
        claim.payProg = "HCP - P";
        claim.patientId = 1;
        claim.items = {{}, {}};
        claim.items[0].serviceCode = "A007A";
        claim.items[1].serviceCode = "A007B";
        ClaimStore(*desk.db, desk.clock, desk.log).insertNew(claim);
        desk.window->pending()->reload();
        QVERIFY(desk.window->openClaim(10000000));
        desk.window->grid()->item(0, frmClaimGrid::Diag)->setText("401");
        desk.prompter.script({Answer::Cancel});
        desk.window->pending()->splitChosen();
        QCOMPARE(desk.rows("Select Count(*) From claims"), L{"1"});
        desk.prompter.script({Answer::No});
        desk.window->pending()->splitChosen();
        QCOMPARE(desk.rows("Select ClaimID From claims Order By ClaimID"),
                 L({"10000000", "70000000"}));
        QVERIFY(desk.grid().isEmpty());
        QCOMPARE(desk.window->windowTitle(), QString("Claims"));
    }
};

QTEST_MAIN(TestFrmClaim)
#include "test_frmclaim.moc"
