#include "TestSupport.h"

#include "foundation/OptionsEditor.h"
#include "foundation/RecordingPrompter.h"

#include <QtTest>

using namespace brimsett;
using test::row;

using Field = OptionsEditor::Field;
Q_DECLARE_METATYPE(OptionsEditor::Field)

namespace {

const QString kOptions = QStringLiteral("Options");

// An office whose OtherParams holds the given next placer id (no row when empty), its paths
// at the office folder unless a patient path is given, and the editor over it.
struct Editing {
    test::TempOffice office;
    std::unique_ptr<Database> db = office.emptyDatabase();
    RecordingPrompter prompter;
    std::optional<OptionsEditor> editor;

    explicit Editing(const QString& placer, const QString& patientPath = {}) {
        db->exec(db->dialect().ddl(
            QStringLiteral("Create Table OtherParams(ParamName text(50),ParamValue text(50))")));
        if (!placer.isEmpty()) {
            db->exec(QStringLiteral("Insert Into OtherParams (ParamName, ParamValue) "
                                    "Values ('PlacerID', ?)"),
                     {placer});
        }
        AppSettings s;
        s.appPath = s.dbPath = s.dbPPath = office.folder();
        if (!patientPath.isEmpty()) {
            s.dbPPath = patientPath;
        }
        editor.emplace(s, *db, prompter);
    }
    bool save() { return editor->save(office.store()); }
    QStringList placerRows() const {
        return test::rowsOf(db->exec(
            QStringLiteral("Select ParamValue From OtherParams Where ParamName = 'PlacerID'")));
    }
};

}  // namespace

class TestOptionsEditor : public QObject {
    Q_OBJECT

private slots:
    void refusesTypedValue_data() {
        QTest::addColumn<Field>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        const char* placer = "Please Enter a valid number for next Placer ID";
        row("placer mixed", Field::PlacerID, "12a", placer);
        row("placer decimal", Field::PlacerID, "1.5", placer);
        row("placer emptied", Field::PlacerID, "", placer);
        const char* size = "Please enter a whole number from 6 to 72 for Menu font size.";
        row("menu size zero", Field::MenuSize, "0", size);
        row("menu skip negative", Field::MenuSkip, "-1",
            "Please enter a whole number from 0 to 100 for Menu spacing.");
        row("next id under", Field::NextIDUnder, "12x",
            "Please enter a whole number (0 or more) for Next ID under.");
        row("label count empty", Field::PrintLabelCount, "",
            "Please enter a whole number from 1 to 99 for Number of chart labels.");
        row("invoice choice", Field::PrintInvoice, "one",
            "Please enter a whole number from 0 to 99 for Print invoice.");
    }
    void refusesTypedValue() {
        QFETCH(Field, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        Editing e(QStringLiteral("100"));
        e.editor->settings().option[5] = true;
        e.editor->setText(field, typed);

        QVERIFY(!e.save());
        QCOMPARE(e.prompter.messages().size(), 1);
        QCOMPARE(e.prompter.last().title, QStringLiteral("Options"));
        QCOMPARE(e.prompter.last().lines, QStringList{message});
        QCOMPARE(e.editor->badField(), std::optional<Field>(field));
        // Nothing saved, and what was typed is still there to correct.
        QVERIFY(!e.office.store().contains(kOptions, QStringLiteral("Option5")));
        QCOMPARE(e.placerRows(), QStringList{"100"});
        QCOMPARE(e.editor->text(field), typed);
    }

    void tellsEveryProblemAtOnce() {
        Editing e{QString()};
        e.editor->setText(Field::PlacerID, QStringLiteral("x"));
        e.editor->setText(Field::MenuSkip, QStringLiteral("wide"));
        QVERIFY(!e.save());
        QCOMPARE(e.prompter.messages().size(), 1);
        QCOMPARE(e.prompter.last().lines,
                 (QStringList{"Please enter a whole number from 0 to 100 for Menu spacing.",
                              "Please Enter a valid number for next Placer ID"}));
        QCOMPARE(e.editor->badField(), std::optional<Field>(Field::MenuSkip));
    }

    void savesNumbersAndPlacerId_data() {
        QTest::addColumn<QString>("storedPlacer");  // empty: no row
        QTest::addColumn<QString>("typedPlacer");
        QTest::addColumn<QStringList>("rows");
        row("updates the row", "100", " 250 ", QStringList{"250"});
        row("adds the row", "", "7", QStringList{"7"});
        row("none kept none", "", "", QStringList{});
    }
    void savesNumbersAndPlacerId() {
        QFETCH(QString, storedPlacer);
        QFETCH(QString, typedPlacer);
        Editing e(storedPlacer);
        QCOMPARE(e.editor->text(Field::PlacerID), storedPlacer);
        e.editor->setText(Field::PlacerID, typedPlacer);
        e.editor->setText(Field::MenuSize, QStringLiteral(" 20"));
        e.editor->setText(Field::PrintLabelCount, QStringLiteral("3"));

        QVERIFY(e.save());
        QVERIFY(e.prompter.messages().isEmpty());
        QTEST(e.placerRows(), "rows");
        QCOMPARE(e.editor->settings().menuSize, 20);
        QCOMPARE(e.office.store().get(kOptions, QStringLiteral("MenuSize")), QStringLiteral("20"));
        QCOMPARE(e.office.store().get(kOptions, QStringLiteral("PrintLabelCount")),
                 QStringLiteral("3"));
    }

    // Only a changed path is questioned: the patient path that leads nowhere since the
    // start is not.
    void asksAboutDatabasePathThatLeadsNowhere_data() {
        QTest::addColumn<bool>("answerYes");
        QTest::newRow("keeps the screen open") << false;
        QTest::newRow("saves anyway") << true;
    }
    void asksAboutDatabasePathThatLeadsNowhere() {
        QFETCH(bool, answerYes);
        Editing e(QString(), QStringLiteral("/no/such/place/"));
        e.prompter.script({answerYes ? Answer::Yes : Answer::No});
        const QString nowhere = e.office.folder() + QStringLiteral("nowhere/");
        e.editor->settings().dbPath = nowhere;

        QCOMPARE(e.save(), answerYes);
        QCOMPARE(e.prompter.messages().size(), 1);
        QVERIFY(e.prompter.last().question);
        QCOMPARE(e.prompter.last().lines.mid(0, 2),
                 (QStringList{"There is no database at the Main database path:",
                              nowhere + QStringLiteral("medical.mdb")}));
        QCOMPARE(e.office.store().contains(QStringLiteral("General"), QStringLiteral("dbPath")),
                 answerYes);
        QCOMPARE(e.editor->badField() == Field::DbPath, !answerYes);
    }
};

QTEST_GUILESS_MAIN(TestOptionsEditor)
#include "test_optionseditor.moc"
