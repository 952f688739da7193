#include "OfficeFixture.h"

#include "appointments/AppColumns.h"
#include "foundation/ActionRegistry.h"
#include "screens/AppSetupScreens.h"
#include "screens/frmAppDoctors.h"
#include "screens/frmAppSetup.h"
#include "screens/frmAppTimeSlots.h"
#include "screens/frmManageCodes.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QTreeWidget>
#include <QtTest>

using namespace brimsett;
using namespace brimsett::appointments;

namespace {

// Slot types 1 "Office visit" (OV, red), 2 the reserved "Requisition" (REQ, blue) and
// 3 "Physical" (PH, green); appointments 1 and 2 and template 1 use type 1; doctor AB.
struct Office : test::OfficeFixture {
    Office() {
        // Colours as the table keeps them: red in the lowest byte.
        db->exec(
            "Insert Into AppTimeSlots (ID, Name, QuickCode, Type, Color, DefaultLength) Values"
            " (1, 'Office visit', 'OV', 0, 255, 15), (2, 'Requisition', 'REQ', 2, 16711680, 15),"
            " (3, 'Physical', 'PH', 0, 65280, 15)");
        db->exec("Insert Into Appointments (AppID, SlotType) Values (1, 1), (2, 1)");
        db->exec(
            "Insert Into AppTemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) Values"
            " (1, '(d)', 2, 540, 1)");
        db->exec("Insert Into Doctors (DoctorID, LName, FName) Values ('AB', 'Abbott', 'Alice')");
    }
    QString column(const QString& sql) { return test::rowsOf(db->exec(sql)).join(' '); }
    QString typeIds() { return column("Select ID From AppTimeSlots Order By 1"); }
};

// The field whose label begins with the text (access letters left out).
QWidget* field(QWidget* screen, const QString& label) {
    for (QLabel* l : screen->findChildren<QLabel*>()) {
        if (l->text().remove('&').startsWith(label)) {
            return l->buddy();
        }
    }
    return nullptr;
}

void typeInto(QWidget* screen, const QString& label, const QString& text) {
    auto* line = qobject_cast<QLineEdit*>(field(screen, label));
    QVERIFY2(line, qPrintable(label));
    line->selectAll();
    QTest::keyClicks(line, text);
}

QStringList listed(const QTreeWidget* list, int column) {
    QStringList texts;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        texts << list->topLevelItem(i)->text(column);
    }
    return texts;
}

}  // namespace

class TestAppSetupScreens : public QObject {
    Q_OBJECT

private slots:
    // Leaving a changed type asks "Save changes?" under "Time slot changed": Yes saves and
    // goes, No drops the change and goes, Cancel stays; the colour counts as a change. Delete
    // refuses a reserved type, asks the purge question of one in use and purges only on Yes.
    // The reserved kind can be neither chosen for an ordinary type nor left by a reserved one:
    // it is told as it is chosen and the box goes back to the type's own kind.
    void questionsAskedAndObeyed_data() {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("action");  // "rename", "recolour" (then show 3), "delete", "key"
        QTest::addColumn<int>("answer");
        QTest::addColumn<QString>("told");  // title: text
        QTest::addColumn<int>("shownAfter");
        QTest::addColumn<QString>("left");  // types / type 1 / appointments / templates, or kind
        const QString leave = QStringLiteral("Time slot changed: Save changes?");
        const QString purge = QStringLiteral(
            "Confirm Delete: There are 2 appointments and 1 templates with this type. Pressing Yes "
            "will "
            "PURGE these appointments. Are you sure?");
        const QString kept = QStringLiteral("1 2 3 / Office visit|255 / 1 2 / 1");
        test::row("leave, yes", 1, "rename", int(Answer::Yes), leave, 3,
                  "1 2 3 / Home visit|255 / 1 2 / 1");
        test::row("leave, no", 1, "rename", int(Answer::No), leave, 3, kept);
        test::row("leave, cancel", 1, "rename", int(Answer::Cancel), leave, 1, kept);
        test::row("colour only, yes", 1, "recolour", int(Answer::Yes), leave, 3,
                  "1 2 3 / Office visit|65280 / 1 2 / 1");
        test::row("delete reserved", 2, "delete", int(Answer::Yes),
                  "Warning: This slot type is required.\nYou may not delete it.", 2, kept);
        test::row("delete in use, no", 1, "delete", int(Answer::No), purge, 1, kept);
        const QString reserved = QStringLiteral("Error: This slot type is reserved.");
        test::row("blocked time chosen", 1, "key", int(Qt::Key_Down), "", 1, "Blocked time");
        test::row("made reserved", 1, "key", int(Qt::Key_End), reserved, 1, "Appointment");
        test::row("reserved left", 2, "key", int(Qt::Key_Home), reserved, 2, "Reserved");
        test::row("delete in use, yes", 1, "delete", int(Answer::Yes), purge, 2, "2 3 /  /  / ");
    }
    void questionsAskedAndObeyed() {
        QFETCH(int, type);
        QFETCH(QString, action);
        QFETCH(int, answer);
        QFETCH(QString, told);
        QFETCH(int, shownAfter);
        QFETCH(QString, left);
        Office office;
        frmAppSetup screen(*office.db, office.prompter, office.log);
        QVERIFY(screen.showType(type == 1 ? 2 : 1));  // nothing changed: nothing asked
        QVERIFY(screen.showType(type));
        QVERIFY(office.prompter.messages().isEmpty());
        if (action == "recolour") {
            screen.setColor(0x00FF00);
        } else if (action == "rename") {
            typeInto(&screen, "Description", "Home visit");
        }
        auto* kinds = qobject_cast<QComboBox*>(field(&screen, "Kind"));
        if (action == "key") {
            QTest::keyClick(kinds, Qt::Key(answer));
        } else {
            office.prompter.script({Answer(answer)});
        }
        if (action == "delete") {
            screen.deleteType();
        } else if (action != "key") {
            QCOMPARE(screen.showType(3), shownAfter == 3);
        }
        QCOMPARE(office.prompter.messages().size(), told.isEmpty() ? 0 : 1);
        if (!told.isEmpty()) {
            QCOMPARE(office.prompter.last().title + ": " + office.prompter.last().text(), told);
        }
        QCOMPARE(screen.shownId(), shownAfter);
        if (action == "key") {
            QCOMPARE(kinds->currentText(), left);
            return;
        }
        QCOMPARE(QStringList({office.typeIds(),
                              office.column("Select Name || '|' || Color From AppTimeSlots "
                                            "Where ID=1"),
                              office.column("Select AppID From Appointments Order By 1"),
                              office.column("Select AppTempID From AppTemplates Order By 1")})
                     .join(" / "),
                 left);
    }

    // For the doctor and weekday chosen, a slot is inserted at the time typed (a time that
    // does not read is refused) and drawn in its type's colour; its time and type change in
    // its row; Delete asks first and keeps the row on No.
    void templateSlotsInsertedChangedAndDeleted() {
        Office office;
        frmAppTimeSlots screen(*office.db, office.settings, office.prompter, office.log);
        QCOMPARE(qobject_cast<QComboBox*>(field(&screen, "Doctor"))->itemText(0),
                 QStringLiteral("(Default)"));
        screen.showTemplate("ab", 4);
        QCOMPARE(qobject_cast<QComboBox*>(field(&screen, "Weekday"))->currentText(),
                 QStringLiteral("Wednesday"));
        auto* type = qobject_cast<QComboBox*>(field(&screen, "Type"));
        type->setCurrentIndex(type->findText("Physical"));
        auto* list = screen.findChild<QTreeWidget*>();
        const auto stored = [&] {
            return office.column(
                "Select DoctorID || Day || ' ' || TemplateTime || '/' || "
                "TimeSlot From AppTemplates Where AppTempID=2");
        };
        typeInto(&screen, "Time", "13:75");
        QVERIFY(!screen.insertSlot());
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        QVERIFY(office.prompter.last().text().contains("'13:75'"));
        typeInto(&screen, "Time", "1:05pm");
        QVERIFY(screen.insertSlot());
        QCOMPARE(listed(list, 0), QStringList{" 1:05 pm"});
        QCOMPARE(stored(), QStringLiteral("AB4 785/3"));
        QCOMPARE(list->topLevelItem(0)->icon(1).pixmap(14).toImage().pixelColor(7, 7),
                 QColor(Qt::green));
        list->setCurrentItem(list->topLevelItem(0));
        list->topLevelItem(0)->setText(0, "10:15 am");
        QTRY_COMPARE(listed(list, 0), QStringList{"10:15 am"});
        QCOMPARE(stored(), QStringLiteral("AB4 615/3"));
        list->topLevelItem(0)->setText(0, "25:00");  // refused, and put back
        QTRY_COMPARE(listed(list, 0), QStringList{"10:15 am"});
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        // The type from the keyboard: Right to it, F2, a letter of the type, Enter.
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        list->setFocus();
        list->setCurrentItem(list->topLevelItem(0), 0);
        QTest::keyClick(list, Qt::Key_Right);
        QTest::keyClick(list, Qt::Key_F2);
        auto* editor = qobject_cast<QComboBox*>(QApplication::focusWidget());
        QVERIFY(editor);
        QTest::keyClicks(editor, "Of");
        QTest::keyClick(editor, Qt::Key_Return);
        QTRY_COMPARE(stored(), QStringLiteral("AB4 615/1"));
        QTRY_COMPARE(listed(list, 1), QStringList{"Office visit"});
        QAbstractButton* remove = nullptr;
        for (QAbstractButton* b : screen.findChildren<QAbstractButton*>()) {
            remove = b->text() == "De&lete" ? b : remove;
        }
        for (Answer answer : {Answer::No, Answer::Yes}) {
            office.prompter.script({answer});
            QVERIFY(remove->isEnabled());
            remove->click();
            QCOMPARE(office.prompter.last().text(),
                     QStringLiteral("Are you sure you want to\ndelete this time slot?"));
        }
        QCOMPARE(stored(), QString());
        QCOMPARE(list->topLevelItemCount(), 0);
        QVERIFY(!remove->isEnabled());
    }

    // Ctrl+Up and Ctrl+Down move the current column; Save writes the grid's order as
    // ColumnOrder with the ticks and widths; a width that is not a number saves nothing.
    void columnsReorderedAndSaved() {
        Office office;
        frmAppDoctors screen(*office.db, office.prompter, office.log);
        screen.show();
        QVERIFY(QTest::qWaitForWindowExposed(&screen));
        auto* grid = screen.findChild<QTreeWidget*>();
        QCOMPARE(grid->headerItem()->text(4), QStringLiteral("Alignment"));
        grid->setFocus();
        grid->setCurrentItem(grid->topLevelItem(0));  // Time
        QTest::keyClick(grid, Qt::Key_Down, Qt::ControlModifier);
        QTest::keyClick(grid, Qt::Key_Down, Qt::ControlModifier);
        grid->setCurrentItem(grid->topLevelItem(6));  // Notes
        QTest::keyClick(grid, Qt::Key_Up, Qt::ControlModifier);
        // Length hidden from the keyboard: Right to the Visible box, Space.
        grid->setCurrentItem(grid->topLevelItem(0), 0);
        QTest::keyClick(grid, Qt::Key_Right);
        QTest::keyClick(grid, Qt::Key_Space);
        grid->topLevelItem(3)->setText(3, "wide");
        QVERIFY(!screen.save());
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(office.column("Select Count(*) From AppColumns"), QStringLiteral("0"));
        grid->topLevelItem(3)->setText(3, "120");
        QTest::keyClick(grid, Qt::Key_S, Qt::ControlModifier);
        QStringList saved;
        for (const GridColumn& c : LoadColumns(*office.db)) {
            saved << QStringLiteral("%1 %2%3 %4")
                         .arg(c.order)
                         .arg(c.name)
                         .arg(c.visible ? "" : "-")
                         .arg(c.width);
        }
        QCOMPARE(saved, QStringList({"0 Length- 50", "1 Patient 180", "2 Time 70", "3 Phone 120",
                                     "4 Type 90", "5 Notes 220", "6 Status 80", "7 Service- 60",
                                     "8 Diagnosis- 60"}));
        QVERIFY(office.prompter.messages().size() == 1);
        screen.reject();  // saved: nothing asked
        QCOMPARE(office.prompter.messages().size(), 1);
    }

    // "Appointment Setup" lists the three windows and opens each. A new type starts
    // "Untitled 1"; saving shows every problem of the checks at once and writes nothing until
    // there are none; the templates offer it as soon as it is saved. Each window fits a modest
    // desk with every button whole and inside it; the pictures are left to be looked at.
    void appointmentSetupOpensTheThree() {
        Office office;
        ActionRegistry registry;
        QWidget main;
        registerAppSetupScreens(registry, *office.db, office.settings, office.office.store(),
                                office.log, office.prompter, &main);
        QVERIFY(registry.runAction(kActionAppointmentSetup));
        auto* list = main.findChild<frmManageCodes*>();
        QCOMPARE(list->windowTitle(), QStringLiteral("Appointment Setup"));
        for (int i : {0, 1, 2}) {
            list->choose(i);
        }
        auto* columns = main.findChild<frmAppDoctors*>();
        auto* slotTypes = main.findChild<frmAppSetup*>();
        auto* templates = main.findChild<frmAppTimeSlots*>();
        auto* type = qobject_cast<QComboBox*>(field(templates, "Type"));
        QCOMPARE(type->count(), 3);
        slotTypes->newType();
        QCOMPARE(qobject_cast<QLineEdit*>(field(slotTypes, "Description"))->text(),
                 QStringLiteral("Untitled 1"));
        const auto fill = [&](const QString& name, const QString& shortcut, const QString& length) {
            typeInto(slotTypes, "Description", name);
            typeInto(slotTypes, "Shortcut", shortcut);
            typeInto(slotTypes, "Length", length);
        };
        fill(" ", "O-V", "0");
        QVERIFY(!slotTypes->save());
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        QCOMPARE(
            office.prompter.last().lines,
            (QStringList{"Please enter a description for this time slot.",
                         "Shortcut must be alphanumeric.", "Length must be greater than zero."}));
        QCOMPARE(office.typeIds(), QStringLiteral("1 2 3"));
        fill("Surgery", "SU", "1440");
        auto* kinds = qobject_cast<QComboBox*>(field(slotTypes, "Kind"));
        kinds->setCurrentIndex(kinds->findData(kKindBlocked));
        QVERIFY(slotTypes->save());
        QCOMPARE(office.column("Select Name || '|' || QuickCode || '|' || DefaultLength || '|' || "
                               "Type From AppTimeSlots Where ID=4"),
                 QStringLiteral("Surgery|SU|1440|1"));
        QCOMPARE(type->itemText(3), QStringLiteral("Surgery"));
        templates->showTemplate("(d)", 2);
        auto* rows = templates->findChild<QTreeWidget*>();
        QCOMPARE(rows->topLevelItemCount(), 1);
        for (QWidget* window : std::initializer_list<QWidget*>{slotTypes, templates, columns}) {
            const QSize size(window == slotTypes ? 760 : 560, 480);
            window->resize(size);
            QVERIFY(QTest::qWaitForWindowExposed(window));
            const QString name = QString(window->metaObject()->className()).section("::", -1);
            window->grab().save(QDir::tempPath() + "/" + name + ".png");
            QCOMPARE(window->size(), size);
            for (QAbstractButton* button : window->findChildren<QAbstractButton*>()) {
                if (button->isVisibleTo(window) && button->window() == window) {
                    const QRect place(button->mapTo(window, QPoint(0, 0)), button->size());
                    QVERIFY2(window->rect().contains(place) &&
                                 button->width() >= button->minimumSizeHint().width(),
                             qPrintable(button->text()));
                }
            }
        }
        // A type purged takes its slots off the template shown.
        QVERIFY(slotTypes->showType(1));
        office.prompter.script({Answer::Yes});
        slotTypes->deleteType();
        QCOMPARE(rows->topLevelItemCount(), 0);
        QCOMPARE(type->count(), 3);
    }
};

QTEST_MAIN(TestAppSetupScreens)
#include "test_app_setup_screens.moc"
