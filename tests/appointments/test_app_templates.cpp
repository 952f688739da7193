#include "OfficeFixture.h"

#include "appointments/AppColumns.h"
#include "appointments/AppTemplates.h"

#include <QtTest>

using namespace brimsett;
using namespace brimsett::appointments;
using test::row;

namespace {

// Doctors AB (a Monday template of its own) and JS (none); the default template has Monday
// and Tuesday. Slot types 1 "Visit" (red) and 2 "Lunch".
struct Office : test::OfficeFixture {
    Office() {
        db->exec("Insert Into Doctors (DoctorID, LName) Values ('AB', 'Smith'), ('JS', 'Smith')");
        db->exec(
            "Insert Into AppTimeSlots (ID, Name, Color, Type) Values (1, 'Visit', 255, 0), "
            "(2, 'Lunch', 0, 1)");
        db->exec(
            "Insert Into AppTemplates (AppTempID, DoctorID, Day, TemplateTime, TimeSlot) "
            "Values (1, 'AB', 2, 600, 1), (2, 'AB', 2, 540, 2), (3, '(d)', 2, 480, 1), "
            "(4, '(d)', 3, 720, 2), (5, '(d)', 2, 450, 2)");
    }
    int loggedLines() const { return int(test::readText(log.path()).count("\r\n")); }
    QString rows() {
        return test::rowsOf(db->exec("Select AppTempID, DoctorID, Day, TemplateTime, TimeSlot "
                                     "From AppTemplates Order By 1"))
            .join(' ');
    }
};

QString ids(const QList<TemplateSlot>& rows) {
    QStringList out;
    for (const TemplateSlot& s : rows) {
        out << QString::number(s.id);
    }
    return out.join(' ');
}

const QString kRows =
    QStringLiteral("1|AB|2|600|1 2|AB|2|540|2 3|(d)|2|480|1 4|(d)|3|720|2 5|(d)|2|450|2");

}  // namespace

class TestAppTemplates : public QObject {
    Q_OBJECT

private slots:
    void dayNumbersStartOnSunday() {
        // 2026/11/22 is a Sunday.
        for (int i = 0; i < 7; ++i) {
            QCOMPARE(templateDay(QDate(2026, 11, 22).addDays(i)), kFirstDay + i);
        }
    }

    void templateForADay_data() {
        QTest::addColumn<QString>("doctor");
        QTest::addColumn<int>("day");
        QTest::addColumn<QString>("ids");  // in the order of their times
        row("the doctor's own, by time", "AB", 2, "2 1");
        row("no own rows that day: the default's", "AB", 3, "4");
        row("a doctor without a template", "JS", 2, "5 3");
        row("a day nobody has", "JS", 1, "");
    }
    void templateForADay() {
        QFETCH(QString, doctor);
        QFETCH(int, day);
        Office office;
        QTEST(ids(templateFor(*office.db, doctor, day)), "ids");
    }

    void listShowsTypeNameAndColour() {
        Office office;
        office.db->exec("Update AppTemplates Set TimeSlot=9 Where AppTempID=2");
        const QList<TemplateRow> list = templateList(*office.db, "AB", 2);
        QCOMPARE(list.size(), 2);
        QCOMPARE(list[0].typeName + "|" + list[1].typeName,
                 QStringLiteral("|Visit"));  // 2's is gone
        QCOMPARE(list[1].color, 0xFF0000);
    }

    // One change of the kind the setup screen makes: "insert DOCTOR DAY TIME TYPE", "time ID T"
    // or "type ID T"; the answer is the row as written, or the refusal with nothing written.
    void changes_data() {
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("answer");
        const QString badTime = "A time must lie between 12:00 am and 11:59 pm.";
        row("insert for a doctor", "insert JS 4 1439 2", "6|JS|4|1439|2");
        row("insert for a doctor typed in lower case", "insert ab 4 600 1", "6|AB|4|600|1");
        row("insert at 1440", "insert JS 4 1440 1", badTime);
        row("insert on day 8", "insert JS 8 600 1", "A day must be 1 (Sunday) to 7 (Saturday).");
        row("insert an unknown type", "insert JS 4 600 3", "Slot type 3 does not exist.");
        row("insert for an unknown doctor", "insert ZZ 4 600 1", "Doctor ZZ does not exist.");
        row("change a time", "time 1 615", "1|AB|2|615|1");
        row("change a type", "type 1 2", "1|AB|2|600|2");
        row("change a row that is gone", "time 9 600", "Template slot 9 no longer exists.");
    }
    void changes() {
        QFETCH(QString, change);
        QFETCH(QString, answer);
        Office office;
        office.log.setOn(true);
        const QStringList w = change.split(' ');
        QString refusal;
        if (w[0] == "insert") {
            TemplateSlot slot{0, w[1], w[2].toInt(), w[3].toInt(), w[4].toInt()};
            refusal = insertTemplateSlot(*office.db, office.log, slot);
        } else {
            const auto set = w[0] == "time" ? &setTemplateTime : &setTemplateType;
            refusal = set(*office.db, office.log, w[1].toInt(), w[2].toInt());
        }
        QStringList rows = kRows.split(' ');
        if (refusal.isEmpty()) {  // the row it names is replaced or added
            const int id = answer.section('|', 0, 0).toInt();
            rows.resize(std::max<qsizetype>(rows.size(), id));
            rows[id - 1] = answer;
        }
        QCOMPARE(refusal, answer.contains('|') ? QString() : answer);
        QCOMPARE(office.rows(), rows.join(' '));
        QCOMPARE(office.loggedLines(), refusal.isEmpty() ? 1 : 0);
    }

    void deleteAsksFirst() {
        Office office;
        office.prompter.script({Answer::No, Answer::Yes});
        QVERIFY(!deleteTemplateSlot(*office.db, office.prompter, office.log, 2));
        QCOMPARE(office.rows(), kRows);
        QCOMPARE(office.prompter.last().text(),
                 QStringLiteral("Are you sure you want to\ndelete this time slot?"));
        QCOMPARE(office.prompter.last().defaultAnswer, Answer::No);
        QVERIFY(deleteTemplateSlot(*office.db, office.prompter, office.log, 2));
        QCOMPARE(office.rows(), QString(kRows).remove(" 2|AB|2|540|2"));
    }

    void columnsShippedUntilSaved() {
        Office office;
        office.log.setOn(true);
        const QList<GridColumn> shipped = LoadColumns(*office.db);
        QCOMPARE(shipped.first().name, QStringLiteral("Time"));
        QCOMPARE(office.db->scalar("Select Count(*) From AppColumns").toInt(), 0);

        // The desk drags Patient first, renames and hides Phone and centres Notes.
        QList<GridColumn> mine = shipped;
        mine.move(2, 0);
        mine[3].name = "Telephone";
        mine[3].visible = false;
        mine[6].align = "center";
        mine.removeLast();
        SaveColumns(*office.db, office.log, mine);
        QCOMPARE(office.loggedLines(), 1 + mine.size());
        const QList<GridColumn> loaded = LoadColumns(*office.db);
        const auto key = [](const GridColumn& c) {
            return QStringList{c.name, QString::number(c.width), c.visible ? "v" : "",
                               c.print ? "p" : ""};
        };
        QCOMPARE(loaded.size(), mine.size());
        for (int i = 0; i < loaded.size(); ++i) {
            QCOMPARE(key(loaded[i]), key(mine[i]));
            QCOMPARE(loaded[i].order, i);
        }
        QCOMPARE(loaded[6].align, QStringLiteral("Center"));

        // A booking in the grid shows what the columns show: the renamed and hidden ones drop
        // out, a code only where the office also shows its column.
        QList<GridColumn> shown = loaded;
        QCOMPARE(blockFields(shown, true, true), (QStringList{"Type", "Status", "Notes"}));
        shown[7].visible = true;
        shown.move(7, 0);
        QCOMPARE(blockFields(shown, false, true), (QStringList{"Type", "Status", "Notes"}));
        QCOMPARE(blockFields(shown, true, false),
                 (QStringList{"Type", "Status", "Notes", "Service"}));  // by ColumnOrder
        appointments::Appointment a;
        a.slotName = "Visit";
        a.notes = "flu\nshot";
        a.serviceCode = "A007A";
        QCOMPARE(blockTexts(a, {"Status", "Notes", "Service", "Phone", "Type"}),
                 (QStringList{"flu shot", "A007A", "Visit"}));
        a.status = 8;
        QCOMPARE(blockTexts(a, {"Status"}), QStringList{"[Reschedulled]"});

        // A save that fails part-way keeps the columns saved before.
        test::refuseRows(*office.db, QStringLiteral("Insert"), QStringLiteral("AppColumns"),
                         QStringLiteral("NEW.ID = 3"), QStringLiteral("disk full"));
        QVERIFY_THROWS_EXCEPTION(DbError, SaveColumns(*office.db, office.log, shipped));
        QCOMPARE(LoadColumns(*office.db).size(), mine.size());
        QCOMPARE(office.loggedLines(), 1 + mine.size());
    }
};

QTEST_GUILESS_MAIN(TestAppTemplates)
#include "test_app_templates.moc"
