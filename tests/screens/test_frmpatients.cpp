#include "OfficeFixture.h"

#include "foundation/ActionRegistry.h"
#include "foundation/MenuModel.h"
#include "screens/PatientScreens.h"
#include "screens/frmBMain.h"
#include "screens/frmPatients.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>

using namespace brimsett;

namespace {

struct Desk : test::OfficeFixture {
    std::unique_ptr<frmPatients> window;

    Desk() {
        settings.option[8] = true;
        db->exec(QStringLiteral(
            "Insert Into Patients (PatientID, HealthNum, VersionCode, FName, LName, DOB, Sex,"
            " Province, HPhone, City, RefDoc) Values (7, '9876543217', 'AB', 'Mary', 'O''Brien',"
            " '1961-04-02', 'F', 'ON', '(416) 555-1234', 'Kingston', '550001')"));
        db->exec(
            QStringLiteral("Insert Into DoctorsOther (ProviderNum, LName, FName, City) Values"
                           " ('550001', 'Smith', 'John', 'Toronto'),"
                           " ('550002', 'Smyth', 'Anna', 'Ottawa')"));
        window = std::make_unique<frmPatients>(*db, settings, prompter, clock, log);
        window->show();
        // The keys typed go where the desk's would.
        QApplication::setActiveWindow(window.get());
        (void)QTest::qWaitForWindowActive(window.get());  // offscreen may not say so
    }
    QLineEdit* edit(const QString& label, QWidget* in = nullptr) const {
        for (auto* caption : (in ? in : window.get())->findChildren<QLabel*>()) {
            if (caption->text() == label) {
                return qobject_cast<QLineEdit*>(caption->buddy());
            }
        }
        return nullptr;
    }
    void click(const QString& caption) const {
        for (auto* button : window->findChildren<QPushButton*>()) {
            if (button->text() == caption) {
                button->click();
            }
        }
    }
};

}  // namespace

class TestFrmPatients : public QObject {
    Q_OBJECT

private slots:
    void findByNameListsAndEnterOpens() {
        Desk desk;
        auto* findText = desk.window->findChild<QLineEdit*>("findText");
        QVERIFY(findText);
        findText->setText(QStringLiteral("o'b*"));
        desk.window->find();
        auto* results = desk.window->findChild<QTreeWidget*>();
        QCOMPARE(results->topLevelItemCount(), 1);
        QCOMPARE(results->topLevelItem(0)->text(1), QStringLiteral("O'Brien, Mary"));
        QTest::keyClick(results, Qt::Key_Return);
        QCOMPARE(desk.edit("&Health Number:")->text(), QStringLiteral("9876543217"));
        QCOMPARE(desk.edit("&Birth Date:")->text(), QStringLiteral("1961/04/02"));
        QVERIFY(desk.window->windowTitle().endsWith("O'Brien, Mary"));
        desk.window->grab().save(QStringLiteral("/tmp/frmPatients.png"));
    }

    // A changed patient is saved with Alt+S wherever the cursor is, postal codes show in
    // capitals as typed, and the flag follows switch 25.
    void editAndSave() {
        Desk desk;
        desk.settings.option[25] = true;
        QVERIFY(desk.window->showPatient(7));
        QVERIFY(desk.window->findChild<QCheckBox*>()->isVisible());
        desk.edit("Ci&ty:")->setText(QStringLiteral("Ottawa"));
        QLineEdit* postal = desk.edit("&Postal Code:");
        postal->setFocus();
        QTest::keyClicks(postal, QStringLiteral("k7l 3n6"));
        QCOMPARE(postal->text(), QStringLiteral("K7L 3N6"));
        QTest::keyClick(desk.window->windowHandle(), Qt::Key_S, Qt::AltModifier);
        // The button shows itself pressed for a moment before it clicks.
        QTRY_COMPARE(
            test::rowsOf(desk.db->exec("Select City, PostalCode From Patients Where PatientID=7")),
            QStringList{"Ottawa|K7L 3N6"});
        // Leaving an unchanged patient asks nothing.
        QVERIFY(desk.window->mayLeaveCurrent());
        QVERIFY(desk.prompter.messages().isEmpty());
    }

    // "Check Card" (Alt+K) is there only with a card check and asks it for the number on
    // the screen; a stored answer shows at once, but never over what the desk has typed.
    void cardCheckAndItsAnswer() {
        Desk desk;
        QVERIFY(desk.window->showPatient(7));
        QVERIFY(!desk.window->findChild<QPushButton*>("checkCard")->isVisible());
        QStringList asked;
        desk.window->setCardCheck(
            [&](const QString& hn, const QString& vc) { asked << hn + QLatin1Char('|') + vc; });
        QTest::keyClick(desk.window->windowHandle(), Qt::Key_K, Qt::AltModifier);
        QTRY_COMPARE(asked, QStringList{"9876543217|AB"});

        desk.db->exec(
            "Update Patients Set Response='65', Status=2, LName='OBRIEN' Where"
            " PatientID=7");
        desk.window->cardAnswered(QStringLiteral("1111111111"));  // someone else's
        QCOMPARE(desk.edit("&Last Name:")->text(), QStringLiteral("O'Brien"));
        desk.edit("Ci&ty:")->setText(QStringLiteral("Ottawa"));
        desk.window->cardAnswered(QStringLiteral("9876543217"));
        QCOMPARE(desk.edit("Response:")->text(), QStringLiteral("65"));
        QCOMPARE(desk.edit("Ci&ty:")->text(), QStringLiteral("Ottawa"));
        QCOMPARE(desk.edit("&Last Name:")->text(), QStringLiteral("O'Brien"));

        desk.edit("Ci&ty:")->setText(QStringLiteral("Kingston"));
        desk.window->cardAnswered(QStringLiteral("9876543217"));
        QCOMPARE(desk.edit("&Last Name:")->text(), QStringLiteral("OBRIEN"));
        QVERIFY(desk.window->mayLeaveCurrent());
        QVERIFY(desk.prompter.messages().isEmpty());
    }

    // Enter in the id field looks the patient up. With switch 6 a letter typed there starts
    // the last name and the rest of the name follows it; without it the letters stay.
    void idFieldLooksUp_data() {
        QTest::addColumn<bool>("switch6");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("idAfter");
        QTest::addColumn<QString>("lastNameAfter");
        const char* none = "Patients - New Patient";
        test::row("stored patient", false, "7", "", "Patients - O'Brien, Mary", "7", "O'Brien");
        test::row("no such patient", false, "8", "No such patient", none, "8", "");
        test::row("not a number", false, "7x", "Invalid number.", none, "7x", "");
        test::row("switch 6: letters", true, "Smith", "", none, "", "Smith");
    }
    void idFieldLooksUp() {
        QFETCH(bool, switch6);
        QFETCH(QString, typed);
        Desk desk;
        desk.settings.option[6] = switch6;
        QLineEdit* id = desk.edit("Patient &ID:");
        id->setFocus();
        QTest::keyClick(id, typed.at(0).toLatin1());
        QTest::keyClicks(QApplication::focusWidget(), typed.mid(1));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTEST(desk.prompter.messages().isEmpty() ? QString() : desk.prompter.last().text(),
              "message");
        QTEST(desk.window->windowTitle(), "title");
        QTEST(id->text(), "idAfter");
        QTEST(desk.edit("&Last Name:")->text(), "lastNameAfter");
    }

    // A new patient typed in as the desk would: names get their capitals, the number loses
    // its blanks, and the saved patient stays on the screen under the next id.
    void newPatientTypedAndSaved() {
        Desk desk;
        const QList<std::pair<QString, QString>> typing = {{"&Last Name:", "MACDONALD-SMITH"},
                                                           {"&First Name:", "ann"},
                                                           {"&Health Number:", "1234 567 897"},
                                                           {"&Birth Date:", "1990/02/03"},
                                                           {"Se&x:", "f"}};
        for (const auto& [label, text] : typing) {
            QLineEdit* edit = desk.edit(label);
            edit->setFocus();
            QTest::keyClicks(edit, text);
            QTest::keyClick(edit, Qt::Key_Return);
        }
        desk.click("&Save");
        QCOMPARE(desk.prompter.messages().size(), 0);
        QCOMPARE(test::rowsOf(desk.db->exec(
                     "Select PatientID, LName, FName, HealthNum, Sex From Patients Where "
                     "PatientID<>7")),
                 QStringList{"8|Macdonald-Smith|Ann|1234567897|F"});
        QCOMPARE(desk.window->windowTitle(), QStringLiteral("Patients - Macdonald-Smith, Ann"));
    }

    // The health number is checked with its province when the field is left: told beside the
    // field, no box, and the cursor goes on to the next field.
    void healthNumberCheckedOnLeaving_data() {
        QTest::addColumn<QString>("number");
        QTest::addColumn<QString>("province");
        QTest::addColumn<QString>("note");
        test::row("valid", "1234567897", "ON", "");
        test::row("bad check digit", "1234567890", "ON",
                  "'1234567890' is not a valid health card number.");
        test::row("another patient's", "9876543217", "ON",
                  "There is already an existing patient (Mary O'Brien)\nwith health card "
                  "number '9876543217'.");
        test::row("other province spared by switch 1", "1234567890", "QC", "");
    }
    void healthNumberCheckedOnLeaving() {
        QFETCH(QString, number);
        QFETCH(QString, province);
        Desk desk;
        desk.settings.option[1] = true;
        desk.edit("Pr&ovince:")->setText(province);
        QLineEdit* health = desk.edit("&Health Number:");
        health->setFocus();
        QTest::keyClicks(health, number);
        QTest::keyClick(health, Qt::Key_Return);
        QTEST(desk.window->findChild<QLabel*>("healthNumberNote")->text(), "note");
        QVERIFY(desk.prompter.messages().isEmpty());
        QCOMPARE(QApplication::focusWidget(), desk.edit("&Version:"));
    }

    // A search the database refuses is told over the window, which stays usable.
    void refusedSearchIsTold() {
        Desk desk;
        desk.db->exec(QStringLiteral("Drop Table Patients"));
        desk.window->findChild<QLineEdit*>("findText")->setText(QStringLiteral("smith"));
        desk.click("Find");
        QCOMPARE(desk.prompter.messages().size(), 1);
        QCOMPARE(desk.prompter.last().title, QStringLiteral("Patients - New Patient"));
        QCOMPARE(
            desk.prompter.last().lines.first(),
            QStringLiteral("The database refused a statement; nothing of this action was saved."));
        QVERIFY(desk.prompter.last().lines.last().contains(QStringLiteral("no such table")));
        QVERIFY(desk.window->isVisible());
    }

    // With switch 24 a name typed for the referring doctor becomes the doctor's number.
    void referringDoctorByName() {
        Desk desk;
        desk.settings.option[24] = true;
        QLineEdit* refDoc = desk.edit("&Referring Dr.:");
        refDoc->setText(QStringLiteral("smy"));
        QTest::keyClick(refDoc, Qt::Key_Return);
        QCOMPARE(refDoc->text(), QStringLiteral("550002"));
        QVERIFY(std::ranges::any_of(desk.window->findChildren<QLabel*>(),
                                    [](QLabel* label) { return label->text().contains("Smyth"); }));
    }

    // Closing the main menu closes the patient window first; Cancel on its unsaved changes
    // keeps both open.
    void menuClosingAsksAboutUnsavedChanges() {
        Desk desk;
        ActionRegistry registry;
        frmBMain menu(defaultMenu(), desk.settings, registry, desk.prompter);
        menu.show();
        auto* window =
            new frmPatients(*desk.db, desk.settings, desk.prompter, desk.clock, desk.log, &menu);
        window->show();
        QVERIFY(window->showPatient(7));
        desk.edit("Ci&ty:", window)->setText(QStringLiteral("Ottawa"));
        desk.prompter.script({Answer::Cancel});
        QVERIFY(!menu.close());
        QVERIFY(window->isVisible());
        desk.prompter.script({Answer::No});
        QVERIFY(menu.close());
        QVERIFY(!window->isVisible());
        QCOMPARE(desk.prompter.messages().size(), 2);
        QCOMPARE(desk.db->scalar("Select City From Patients Where PatientID=7").toString(),
                 QStringLiteral("Kingston"));
    }

    void receiverWords_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("shown");  // the window's title, or "" for no window
        test::row("patient", "PATIENT 7", "OK", "Patients - O'Brien, Mary");
        test::row("no such patient", "PATIENT 8", "NOT FOUND", "");
        test::row("not a number", "PATIENT x", "NOT FOUND", "");
        test::row("from the book", "PATIENTFROMAPP 7", "OK", "Patients - O'Brien, Mary");
        test::row("new from the book", "PATIENTFROMAPP 0", "OK", "Patients - New Patient");
        test::row("describe", "VPAT 7", "7|O'Brien|Mary|9876543217|AB|1961/04/02|F", "");
        test::row("describe nobody", "VPAT 8", "NOT FOUND", "");
    }
    void receiverWords() {
        QFETCH(QString, line);
        QFETCH(QString, shown);
        Desk desk;
        QWidget owner;
        ActionRegistry registry;
        PatientScreens screens(*desk.db, desk.settings, desk.office.store(), desk.prompter,
                               desk.clock, desk.log, &owner);
        screens.registerIn(registry);
        QTEST(registry.runCommand(line).value_or("UNKNOWN"), "answer");
        auto* window = owner.findChild<frmPatients*>();
        QCOMPARE(window != nullptr && window->isVisible() ? window->windowTitle() : QString(),
                 shown);
    }
};

QTEST_MAIN(TestFrmPatients)
#include "test_frmpatients.moc"
