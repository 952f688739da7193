#include "TestSupport.h"

#include "foundation/OptionsEditor.h"
#include "foundation/RecordingPrompter.h"

#include <QtTest>

using namespace brimsett;

using Field = OptionsEditor::Field;
Q_DECLARE_METATYPE(OptionsEditor::Field)

namespace {

const QString kOptions = QStringLiteral("Options");

std::unique_ptr<Database> officeDatabase(test::TempOffice& office) {
    auto db = office.emptyDatabase();
    if (!db->hasTable(QStringLiteral("OtherParams"))) {
        db->exec(
            QStringLiteral("Create Table OtherParams(ParamName text(50),ParamValue text(50))"));
    }
    return db;
}

void setPlacerId(Database& db, const QString& value) {
    db.exec(
        QStringLiteral("Insert Into OtherParams (ParamName, ParamValue) Values ('PlacerID', ?)"),
        {value});
}

QStringList placerRows(Database& db) {
    QStringList values;
    QSqlQuery q =
        db.exec(QStringLiteral("Select ParamValue From OtherParams Where ParamName = 'PlacerID'"));
    while (q.next()) {
        values << q.value(0).toString();
    }
    return values;
}

AppSettings settingsIn(const test::TempOffice& office) {
    AppSettings s;
    s.appPath = office.folder();
    s.dbPath = office.folder();
    s.dbPPath = office.folder();
    return s;
}

}  // namespace

class TestOptionsEditor : public QObject {
    Q_OBJECT

private slots:
    void refusesTypedValue_data() {
        QTest::addColumn<Field>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("message");
        const QString placer = QStringLiteral("Please Enter a valid number for next Placer ID");
        QTest::newRow("placer word") << Field::PlacerID << "abc" << placer;
        QTest::newRow("placer mixed") << Field::PlacerID << "12a" << placer;
        QTest::newRow("placer decimal") << Field::PlacerID << "1.5" << placer;
        QTest::newRow("placer emptied") << Field::PlacerID << "" << placer;
        const QString size =
            QStringLiteral("Please enter a whole number from 6 to 72 for Menu font size.");
        QTest::newRow("menu size word") << Field::MenuSize << "big" << size;
        QTest::newRow("menu size zero") << Field::MenuSize << "0" << size;
        QTest::newRow("menu skip negative")
            << Field::MenuSkip << "-1"
            << "Please enter a whole number from 0 to 100 for Menu spacing.";
        QTest::newRow("next id under")
            << Field::NextIDUnder << "12x"
            << "Please enter a whole number (0 or more) for Next ID under.";
        QTest::newRow("label count empty")
            << Field::PrintLabelCount << ""
            << "Please enter a whole number from 1 to 99 for Number of chart labels.";
        QTest::newRow("invoice choice")
            << Field::PrintInvoice << "one"
            << "Please enter a whole number from 0 to 99 for Print invoice.";
    }

    void refusesTypedValue() {
        QFETCH(Field, field);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        test::TempOffice office;
        auto db = officeDatabase(office);
        setPlacerId(*db, QStringLiteral("100"));
        RecordingPrompter prompter;
        OptionsEditor editor(settingsIn(office), *db, prompter);
        editor.settings().option[5] = true;
        editor.setText(field, typed);

        QVERIFY(!editor.save(office.store()));
        QCOMPARE(prompter.messages().size(), 1);
        QCOMPARE(prompter.last().title, QStringLiteral("Options"));
        QCOMPARE(prompter.last().lines, QStringList{message});
        QCOMPARE(editor.badField(), std::optional<Field>(field));
        // Nothing saved, and what was typed is still there to correct.
        QVERIFY(!office.store().contains(kOptions, QStringLiteral("Option5")));
        QCOMPARE(placerRows(*db), QStringList{"100"});
        QCOMPARE(editor.text(field), typed);
    }

    void tellsEveryProblemAtOnce() {
        test::TempOffice office;
        auto db = officeDatabase(office);
        RecordingPrompter prompter;
        OptionsEditor editor(settingsIn(office), *db, prompter);
        editor.setText(Field::PlacerID, QStringLiteral("x"));
        editor.setText(Field::MenuSkip, QStringLiteral("wide"));

        QVERIFY(!editor.save(office.store()));
        QCOMPARE(prompter.messages().size(), 1);
        QCOMPARE(prompter.last().lines,
                 (QStringList{"Please enter a whole number from 0 to 100 for Menu spacing.",
                              "Please Enter a valid number for next Placer ID"}));
        QCOMPARE(editor.badField(), std::optional<Field>(Field::MenuSkip));
    }

    void savesNumbersAndPlacerId_data() {
        QTest::addColumn<QString>("storedPlacer");  // empty: no row
        QTest::addColumn<QString>("typedPlacer");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("updates the row") << "100"
                                         << " 250 " << QStringList{"250"};
        QTest::newRow("adds the row") << ""
                                      << "7" << QStringList{"7"};
        QTest::newRow("none kept none") << ""
                                        << "" << QStringList{};
        QTest::newRow("unchanged") << "42"
                                   << "42" << QStringList{"42"};
    }

    void savesNumbersAndPlacerId() {
        QFETCH(QString, storedPlacer);
        QFETCH(QString, typedPlacer);
        test::TempOffice office;
        auto db = officeDatabase(office);
        if (!storedPlacer.isEmpty()) {
            setPlacerId(*db, storedPlacer);
        }
        RecordingPrompter prompter;
        OptionsEditor editor(settingsIn(office), *db, prompter);
        QCOMPARE(editor.text(Field::PlacerID), storedPlacer);
        editor.setText(Field::PlacerID, typedPlacer);
        editor.setText(Field::MenuSize, QStringLiteral(" 20"));
        editor.setText(Field::PrintLabelCount, QStringLiteral("3"));

        QVERIFY(editor.save(office.store()));
        QVERIFY(prompter.messages().isEmpty());
        QTEST(placerRows(*db), "rows");
        QCOMPARE(editor.settings().menuSize, 20);
        QCOMPARE(office.store().get(kOptions, QStringLiteral("MenuSize")), QStringLiteral("20"));
        QCOMPARE(office.store().get(kOptions, QStringLiteral("PrintLabelCount")),
                 QStringLiteral("3"));
    }

    void asksAboutDatabasePathThatLeadsNowhere_data() {
        QTest::addColumn<bool>("answerYes");
        QTest::newRow("keeps the screen open") << false;
        QTest::newRow("saves anyway") << true;
    }

    void asksAboutDatabasePathThatLeadsNowhere() {
        QFETCH(bool, answerYes);
        test::TempOffice office;
        auto db = officeDatabase(office);
        RecordingPrompter prompter;
        prompter.script({answerYes ? Answer::Yes : Answer::No});
        OptionsEditor editor(settingsIn(office), *db, prompter);
        editor.settings().dbPath = office.folder() + QStringLiteral("nowhere/");

        QCOMPARE(editor.save(office.store()), answerYes);
        QCOMPARE(prompter.messages().size(), 1);
        QVERIFY(prompter.last().question);
        QCOMPARE(prompter.last().lines.first(),
                 QStringLiteral("There is no database at the Main database path:"));
        QCOMPARE(prompter.last().lines.at(1),
                 office.folder() + QStringLiteral("nowhere/medical.mdb"));
        QCOMPARE(office.store().contains(QStringLiteral("General"), QStringLiteral("dbPath")),
                 answerYes);
        QCOMPARE(editor.badField() == Field::DbPath, !answerYes);
    }

    void unchangedPathIsNotQuestioned() {
        test::TempOffice office;
        auto db = officeDatabase(office);
        AppSettings s = settingsIn(office);
        s.dbPPath = QStringLiteral("/no/such/place/");
        RecordingPrompter prompter;
        OptionsEditor editor(s, *db, prompter);
        QVERIFY(editor.save(office.store()));
        QVERIFY(prompter.messages().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestOptionsEditor)
#include "test_optionseditor.moc"
