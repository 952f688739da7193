#include "OfficeFixture.h"

#include "foundation/ActionRegistry.h"
#include "screens/ProviderScreens.h"
#include "screens/frmDoctors.h"
#include "screens/frmDoctorsOther.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// An office with two providers and two referring doctors, its screens registered under a
// stand-in for the main window.
struct Office : test::OfficeFixture {
    ActionRegistry registry;
    QWidget main;

    Office() {
        db->exec(
            "Insert Into speccodes Values ('00', 'Family Practice'), "
            "('08', 'Internal Medicine')");
        db->exec("Insert Into mohoffices Values ('G', 'Y', 'Toronto'), ('N', 'Y', 'Kingston')");
        db->exec(
            "Insert Into Doctors (DoctorID, LName, FName, Title, ProviderNum, GroupNum, "
            "SpecCode, MOHOffice, LocationCode, Phone, Email) Values "
            "('AB', 'Abbott', 'Alice', 'Dr.', '111111', '0000', '00', 'G', '', "
            "'(416) 555-0101', 'alice@example.org'), "
            "('JS', 'Singh', 'Jaspreet', 'Dr.', '222222', 'AB12', '08', 'N', '1234', "
            "'(613) 555-0199', 'jsingh@example.org')");
        db->exec(
            "Insert Into DoctorsOther (ProviderNum, LName, FName, City, SpecCode) Values "
            "('550001', 'Smith', 'John', 'Toronto', '08'), "
            "('550002', 'Smyth', 'Anna', 'Ottawa', '00')");
        registerProviderScreens(registry, *db, settings, office.store(), log, prompter, &main);
    }
    frmDoctors* doctors() { return main.findChild<frmDoctors*>(); }
    frmDoctorsOther* others() { return main.findChild<frmDoctorsOther*>(); }
    QString run(const QString& line) { return registry.runCommand(line).value_or("UNKNOWN"); }
};

QTreeWidgetItem* itemOf(QTreeWidget* list, const QString& id) {
    const auto found = list->findItems(id, Qt::MatchExactly, 0);
    return found.isEmpty() ? nullptr : found.first();
}

void save(QWidget* screen, const QString& path) {
    QVERIFY(screen->grab().save(path));
}

}  // namespace

class TestFrmDoctors : public QObject {
    Q_OBJECT

private slots:
    void showsTheChosenProvider() {
        Office office;
        QVERIFY(office.registry.runAction(11));
        frmDoctors* screen = office.doctors();
        QVERIFY(screen && screen->isVisible());
        QCOMPARE(screen->windowTitle(), QStringLiteral("Providers"));
        QCOMPARE(screen->shownDoctorId(), QStringLiteral("AB"));

        auto* list = screen->findChild<QTreeWidget*>();
        QCOMPARE(list->topLevelItemCount(), 2);
        list->setCurrentItem(itemOf(list, "JS"));
        QTRY_COMPARE(screen->shownDoctorId(), QStringLiteral("JS"));
        const QList<QComboBox*> boxes = screen->findChildren<QComboBox*>();
        QCOMPARE(boxes.size(), 2);
        QCOMPARE(boxes[0]->currentText(), QStringLiteral("08 - Internal Medicine"));
        QCOMPARE(boxes[1]->currentText(), QStringLiteral("N - Kingston"));
        QVERIFY(office.prompter.messages().isEmpty());
        save(screen, "/tmp/frmDoctors.png");

        // Enter walks the fields in screen order, code boxes included.
        auto* first = screen->findChildren<QLineEdit*>().first();
        first->setFocus();
        QStringList walked;
        for (int i = 0; i < 7; ++i) {
            QWidget* focus = QApplication::focusWidget();
            walked << (qobject_cast<QComboBox*>(focus) ? QStringLiteral("box")
                                                       : qobject_cast<QLineEdit*>(focus)->text());
            QTest::keyClick(focus, Qt::Key_Return);
        }
        QCOMPARE(walked, (QStringList{"JS", "Dr.", "Jaspreet", "Singh", "222222", "AB12", "box"}));

        // Esc closes an unchanged provider without a question.
        const QPointer<frmDoctors> open(screen);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!open);
        QVERIFY(office.prompter.messages().isEmpty());
    }

    // The last name of AB is changed, then JS chosen in the list.
    void leavingAChangedProvider_data() {
        QTest::addColumn<int>("answer");  // Answer
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("storedName");
        row("Cancel stays", int(Answer::Cancel), "AB", "Abbott");
        row("No moves on and forgets", int(Answer::No), "JS", "Abbott");
        row("Yes saves and moves on", int(Answer::Yes), "JS", "Abbot-Lee");
    }
    void leavingAChangedProvider() {
        QFETCH(int, answer);
        Office office;
        office.registry.runAction(11);
        frmDoctors* screen = office.doctors();
        auto* lastName = screen->findChildren<QLineEdit*>().at(3);
        QCOMPARE(lastName->text(), QStringLiteral("Abbott"));
        lastName->setText("Abbot-Lee");
        office.prompter.script({Answer(answer)});
        auto* list = screen->findChild<QTreeWidget*>();
        list->setCurrentItem(itemOf(list, "JS"));
        QTRY_COMPARE(office.prompter.messages().size(), 1);
        QCOMPARE(office.prompter.last().lines, QStringList{"Save changes?"});
        QFETCH(QString, shown);
        QTRY_COMPARE(screen->shownDoctorId(), shown);
        QCOMPARE(list->currentItem()->text(0), shown);
        QCOMPARE(lastName->text(), shown == "AB" ? "Abbot-Lee" : "Singh");
        QTEST(office.db->scalar("Select LName From Doctors Where DoctorID='AB'").toString(),
              "storedName");
    }

    void receiverWords_data() {
        QTest::addColumn<QString>("line");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<QString>("onScreen");  // "doctor ID" or "other number/typed number"
        row("doctor in any case", "DOCTOR js", "OK", "doctor JS");
        row("unknown doctor", "DOCTOR ZZ", "NOT FOUND", "");
        row("description", "VDOC JS", "JS|Singh|Jaspreet|222222|AB12|08", "");
        row("description of nobody", "VDOC", "NOT FOUND", "");
        row("referring doctor", "NOTPROVIDER 550002", "OK", "other 550002/550002");
        row("new referring doctor", "NOTPROVIDER 660001", "OK", "other /660001");
        row("not a number", "NOTPROVIDER 5500", "BAD NUMBER", "");
    }
    void receiverWords() {
        QFETCH(QString, line);
        QFETCH(QString, onScreen);
        Office office;
        QTEST(office.run(line), "answer");
        if (onScreen.startsWith("doctor ")) {
            QVERIFY(office.doctors() && office.doctors()->isVisible());
            QCOMPARE(office.doctors()->shownDoctorId(), onScreen.mid(7));
        } else if (onScreen.startsWith("other ")) {
            frmDoctorsOther* screen = office.others();
            QVERIFY(screen && screen->isVisible());
            QCOMPARE(screen->shownNumber(), onScreen.mid(6).section('/', 0, 0));
            QCOMPARE(screen->findChildren<QLineEdit*>().at(1)->text(),
                     onScreen.section('/', 1));  // the billing number field
        } else {
            QVERIFY(!office.doctors() && !office.others());
        }
        QVERIFY(office.prompter.messages().isEmpty());
    }

    void referringDoctorsScreen() {
        Office office;
        office.registry.runAction(11);
        for (auto* button : office.doctors()->findChildren<QPushButton*>()) {
            if (button->text() == "&Referring Doctors...") {
                button->click();
            }
        }
        frmDoctorsOther* screen = office.others();
        QVERIFY(screen && screen->isVisible());
        QCOMPARE(screen->windowTitle(), QStringLiteral("Referring Doctors"));
        auto* find = screen->findChildren<QLineEdit*>().first();
        QTest::keyClicks(find, "sm");
        auto* list = screen->findChild<QTreeWidget*>();
        QCOMPARE(list->topLevelItemCount(), 2);
        list->setCurrentItem(itemOf(list, "550001"));
        QTRY_COMPARE(screen->shownNumber(), QStringLiteral("550001"));
        QCOMPARE(screen->findChild<QComboBox*>()->currentText(),
                 QStringLiteral("08 - Internal Medicine"));
        save(screen, "/tmp/frmDoctorsOther.png");
    }
};

QTEST_MAIN(TestFrmDoctors)
#include "test_frmdoctors.moc"
