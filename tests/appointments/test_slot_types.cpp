#include "OfficeFixture.h"

#include "appointments/SlotTypes.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::appointments;
using test::row;

namespace {

// Slot types 1 "Office visit" (OV), 2 the reserved "Requisition" (REQ) and 3 "Physical" (PH);
// appointments 1 and 2 and template 1 use type 1, appointment 3 and template 2 type 3.
struct Office : test::OfficeFixture {
    Office() {
        db->exec(
            "Insert Into AppTimeSlots (ID, Name, QuickCode, Type, DefaultLength) Values "
            "(1, 'Office visit', 'OV', 0, 15), (2, 'Requisition', 'REQ', 2, 15), "
            "(3, 'Physical', 'PH', 0, 15)");
        db->exec("Insert Into Appointments (AppID, SlotType) Values (1, 1), (2, 1), (3, 3)");
        db->exec("Insert Into AppTemplates (AppTempID, TimeSlot) Values (1, 1), (2, 3)");
    }

    // "types / appointments / templates", each as "id=type".
    QString state() {
        QStringList parts;
        for (const char* query :
             {"Select ID From AppTimeSlots Order By ID",
              "Select AppID, SlotType From Appointments Order By AppID",
              "Select AppTempID, TimeSlot From AppTemplates Order By AppTempID"}) {
            parts << test::rowsOf(db->exec(QString::fromLatin1(query)))
                         .join(QLatin1Char(' '))
                         .replace(QLatin1Char('|'), QLatin1Char('='));
        }
        return parts.join(QStringLiteral(" / "));
    }
};

const QString kAll = QStringLiteral("1 2 3 / 1=1 2=1 3=3 / 1=1 2=3");

}  // namespace

class TestSlotTypes : public QObject {
    Q_OBJECT

private slots:
    // A type edited (id > 0) or new (id 0) as "id|name|shortcut|length|kind", saved in colour
    // 0x336699.
    void checksInOrder_data() {
        QTest::addColumn<QString>("type");
        QTest::addColumn<QStringList>("problems");  // empty: saved
        const QString desc = "Please enter a description for this time slot.";
        const QString noCode = "Please enter a shortcut for this time slot.";
        const QString other = "Please choose a different shortcut.";
        const QString reserved = "This slot type is reserved.";
        row("a whole day", "0|Surgery|S1|1440|1", QStringList{});
        row("one minute over a day", "0|Surgery|S1|1441|1",
            QStringList{"Length cannot be greater than 1440."});
        row("all three fields at once", "0|  ||abc|0",
            QStringList{desc, noCode, "Invalid length."});
        row("not alphanumeric, zero length", "0|X|A-1|0|0",
            QStringList{"Shortcut must be alphanumeric.", "Length must be greater than zero."});
        row("accented letter", "0|X|É1|10|0", QStringList{"Shortcut must be alphanumeric."});
        row("another type's code starts with it", "0|X|O|15|0", QStringList{other});
        row("it starts with another's code", "0|X|OVX|15|0", QStringList{other});
        row("another's code in other case", "0|X|ov|15|0", QStringList{other});
        row("its own code kept", "1|Office visit|OV|20|0", QStringList{});
        row("taking another's code", "1|Office visit|PH|20|0", QStringList{other});
        row("choosing the reserved kind", "0|X|X|15|2", QStringList{reserved});
        row("leaving the reserved kind", "2|Requisition|REQ|15|0", QStringList{reserved});
        row("renaming a reserved type", "2|Lab|REQ|15|2", QStringList{});
        row("unknown kind", "0|X|X|15|7", QStringList{"Unknown kind of slot: 7."});
    }
    void checksInOrder() {
        QFETCH(QString, type);
        QFETCH(QStringList, problems);
        const QStringList f = type.split('|');
        Office office;
        SlotType t{f[0].toInt(), f[1], {}, 0x336699, f[2], f[4].toInt(), 0, {}, {}};
        const QString before =
            test::rowsOf(office.db->exec("Select * From AppTimeSlots")).join(';');
        QCOMPARE(saveSlotType(*office.db, office.log, t, f[3]), problems);
        if (!problems.isEmpty()) {
            QCOMPARE(test::rowsOf(office.db->exec("Select * From AppTimeSlots")).join(';'), before);
            return;
        }
        QCOMPARE(t.id, f[0].toInt() ? f[0].toInt() : 4);  // a new type takes the next number
        // The table keeps red in its lowest byte (0x996633).
        QCOMPARE(
            test::rowsOf(office.db->exec("Select ID, Name, QuickCode, DefaultLength, Color, "
                                         "Type From AppTimeSlots Where ID=?",
                                         {t.id})),
            QStringList{QString::number(t.id) + "|" + f.mid(1, 3).join('|') + "|10053171|" + f[4]});
        QCOMPARE(slotTypeById(*office.db, t.id)->color, 0x336699);
    }

    void untitledNameSkipsTakenNumbers() {
        Office office;
        QCOMPARE(untitledSlotTypeName(*office.db), QStringLiteral("Untitled 1"));
        office.db->exec("Update AppTimeSlots Set Name='untitled 1' Where ID=3");
        QCOMPARE(untitledSlotTypeName(*office.db), QStringLiteral("Untitled 2"));
    }

    void deleteType_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<bool>("yes");
        QTest::addColumn<QString>("failOn");  // a table whose delete fails
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("message");  // "title: text" of the one message
        const QString asked =
            "Confirm Delete: There are 2 appointments and 1 templates with this type. Pressing "
            "Yes will PURGE these appointments. Are you sure?";
        row("purged with its appointments and templates", 1, true, "", "2 3 / 3=3 / 2=3", asked);
        row("answered No", 1, false, "", kAll, asked);
        row("failing on the templates", 1, true, "AppTemplates", kAll, asked);
        row("reserved", 2, true, "", kAll,
            "Warning: This slot type is required.\nYou may not delete it.");
        row("unknown", 9, true, "", kAll, "Error: Slot type 9 does not exist.");
    }
    void deleteType() {
        QFETCH(int, id);
        QFETCH(bool, yes);
        QFETCH(QString, failOn);
        QFETCH(QString, state);
        Office office;
        office.log.setOn(true);
        if (!failOn.isEmpty()) {
            test::refuseRows(*office.db, QStringLiteral("Delete"), failOn, {},
                             QStringLiteral("disk full"));
        }
        office.prompter.script({yes ? Answer::Yes : Answer::No});
        if (failOn.isEmpty()) {
            QCOMPARE(deleteSlotType(*office.db, office.prompter, office.log, id), state != kAll);
        } else {
            QVERIFY_THROWS_EXCEPTION(DbError,
                                     deleteSlotType(*office.db, office.prompter, office.log, id));
        }
        QCOMPARE(office.state(), state);
        QCOMPARE(test::readText(office.log.path()).count("\r\n"), state == kAll ? 0 : 3);
        QCOMPARE(office.prompter.messages().size(), 1);
        const auto& message = office.prompter.last();
        QTEST(message.title + ": " + message.text(), "message");
        QCOMPARE(message.defaultAnswer, message.question ? Answer::No : Answer::Ok);
    }
};

QTEST_GUILESS_MAIN(TestSlotTypes)
#include "test_slot_types.moc"
