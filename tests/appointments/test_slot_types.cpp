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
        const QList<QVariantList> types = {{1, "Office visit", "OV", kKindAppointment},
                                           {2, "Requisition", "REQ", kKindReserved},
                                           {3, "Physical", "PH", kKindAppointment}};
        for (const QVariantList& t : types) {
            db->exec(QStringLiteral("Insert Into AppTimeSlots (ID, Name, QuickCode, Type, "
                                    "DefaultLength) Values (?, ?, ?, ?, 15)"),
                     t);
        }
        for (const auto& [id, type] : QList<QPair<int, int>>{{1, 1}, {2, 1}, {3, 3}}) {
            db->exec(QStringLiteral("Insert Into Appointments (AppID, SlotType) Values (?, ?)"),
                     {id, type});
        }
        for (const auto& [id, type] : QList<QPair<int, int>>{{1, 1}, {2, 3}}) {
            db->exec(QStringLiteral("Insert Into AppTemplates (AppTempID, TimeSlot) Values (?, ?)"),
                     {id, type});
        }
    }

    int loggedLines() const {
        const QString text = test::readText(log.path());
        return text.isEmpty() ? 0
                              : int(text.split(QStringLiteral("\r\n"), Qt::SkipEmptyParts).size());
    }

    // "types / appointments / templates", each as "id=type".
    QString state() {
        const auto column = [this](const QString& sql) {
            return test::rowsOf(db->exec(sql)).join(QLatin1Char(' '));
        };
        return QStringList{column("Select ID From AppTimeSlots Order By 1"),
                           column("Select AppID || '=' || SlotType From Appointments Order By 1"),
                           column("Select AppTempID || '=' || TimeSlot From AppTemplates "
                                  "Order By 1")}
            .join(QStringLiteral(" / "));
    }
};

const QString kAll = QStringLiteral("1 2 3 / 1=1 2=1 3=3 / 1=1 2=3");

}  // namespace

class TestSlotTypes : public QObject {
    Q_OBJECT

private slots:
    // A type edited (id > 0) or new (id 0), saved with the length as typed.
    void checksInOrder_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("shortcut");
        QTest::addColumn<QString>("length");
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("problems");  // empty: saved
        const QString desc = "Please enter a description for this time slot.";
        const QString noCode = "Please enter a shortcut for this time slot.";
        const QString other = "Please choose a different shortcut.";
        row("new and valid", 0, "Consult", "CON", "30", 0, QStringList{});
        row("a whole day", 0, "Surgery", "S1", "1440", 1, QStringList{});
        row("one minute over a day", 0, "Surgery", "S1", "1441", 1,
            QStringList{"Length cannot be greater than 1440."});
        row("all three fields at once", 0, "  ", "", "abc", 0,
            QStringList{desc, noCode, "Invalid length."});
        row("not alphanumeric, zero length", 0, "X", "A-1", "0", 0,
            QStringList{"Shortcut must be alphanumeric.", "Length must be greater than zero."});
        row("accented letter", 0, "X", "É1", "10", 0,
            QStringList{"Shortcut must be alphanumeric."});
        row("negative length", 0, "X", "X", "-5", 0,
            QStringList{"Length must be greater than zero."});
        row("another type's code starts with it", 0, "X", "O", "15", 0, QStringList{other});
        row("it starts with another's code", 0, "X", "OVX", "15", 0, QStringList{other});
        row("another's code in other case", 0, "X", "ov", "15", 0, QStringList{other});
        row("its own code kept", 1, "Office visit", "OV", "20", 0, QStringList{});
        row("taking another's code", 1, "Office visit", "PH", "20", 0, QStringList{other});
        row("choosing the reserved kind", 0, "X", "X", "15", 2,
            QStringList{"This slot type is reserved."});
        row("leaving the reserved kind", 2, "Requisition", "REQ", "15", 0,
            QStringList{"This slot type is reserved."});
        row("renaming a reserved type", 2, "Lab", "REQ", "15", 2, QStringList{});
        row("unknown kind", 0, "X", "X", "15", 7, QStringList{"Unknown kind of slot: 7."});
    }
    void checksInOrder() {
        QFETCH(int, id);
        QFETCH(QString, length);
        QFETCH(QStringList, problems);
        QFETCH(QString, name);
        QFETCH(QString, shortcut);
        QFETCH(int, kind);
        Office office;
        SlotType type{.id = id,
                      .name = name,
                      .description = {},
                      .color = 0x336699,
                      .quickCode = shortcut,
                      .type = kind,
                      .defaultServiceCode = "A007",
                      .defaultDiagCode = "250"};
        QCOMPARE(checkSlotType(*office.db, type, length), problems);
        const QString before =
            test::rowsOf(office.db->exec("Select * From AppTimeSlots")).join(';');
        QCOMPARE(saveSlotType(*office.db, office.log, type, length), problems);
        if (!problems.isEmpty()) {
            QCOMPARE(test::rowsOf(office.db->exec("Select * From AppTimeSlots")).join(';'), before);
            return;
        }
        QCOMPARE(type.id, id ? id : 4);
        const std::optional<SlotType> stored = slotTypeById(*office.db, type.id);
        QVERIFY(stored);
        QCOMPARE(stored->name, name.trimmed());
        QCOMPARE(stored->quickCode, shortcut);
        QCOMPARE(stored->defaultLength, length.toInt());
        QCOMPARE(stored->color, 0x336699);
        QCOMPARE(stored->defaultServiceCode, QStringLiteral("A007"));
        QCOMPARE(LoadSlotTypes(*office.db).size(), id ? 3 : 4);
        // The table keeps red in its lowest byte.
        QCOMPARE(office.db->scalar("Select Color From AppTimeSlots Where ID=?", {type.id}).toInt(),
                 0x996633);
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
        row("failing on the type itself", 1, true, "AppTimeSlots", kAll, asked);
        row("failing on the templates", 1, true, "AppTemplates", kAll, asked);
        row("reserved", 2, true, "", kAll,
            "Warning: This slot type is required.\nYou may not delete it.");
        row("unused elsewhere", 3, true, "", "1 2 / 1=1 2=1 / 1=1",
            "Confirm Delete: There are 1 appointments and 1 templates with this type. Pressing "
            "Yes will PURGE these appointments. Are you sure?");
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
            office.db->exec(QStringLiteral("Create Trigger fail Before Delete On %1 "
                                           "Begin Select Raise(Abort, 'disk full'); End")
                                .arg(failOn));
        }
        office.prompter.script({yes ? Answer::Yes : Answer::No});
        if (failOn.isEmpty()) {
            QCOMPARE(deleteSlotType(*office.db, office.prompter, office.log, id), state != kAll);
        } else {
            QVERIFY_THROWS_EXCEPTION(DbError,
                                     deleteSlotType(*office.db, office.prompter, office.log, id));
        }
        QCOMPARE(office.state(), state);
        QCOMPARE(office.loggedLines(), state == kAll ? 0 : 3);
        QCOMPARE(office.prompter.messages().size(), 1);
        const auto& message = office.prompter.last();
        QTEST(message.title + ": " + message.text(), "message");
        QCOMPARE(message.defaultAnswer, message.question ? Answer::No : Answer::Ok);
    }
};

QTEST_GUILESS_MAIN(TestSlotTypes)
#include "test_slot_types.moc"
