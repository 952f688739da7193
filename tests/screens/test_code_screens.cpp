#include "OfficeFixture.h"

#include "claims/CodeSheet.h"
#include "foundation/AccessLevels.h"
#include "foundation/ActionRegistry.h"
#include "screens/CodeEditors.h"
#include "screens/CodeScreens.h"
#include "screens/frmManageCodes.h"
#include "screens/frmOHIPCodes.h"

#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// An office with three direct service codes and one OHIP code, its code screens registered
// under a stand-in for the main window.
struct Office : test::OfficeFixture {
    ActionRegistry registry;
    AccessLevels access{office.store()};
    QWidget main;

    Office() {
        db->exec(
            "Insert Into ServiceCodesDirect Values ('A001', 'Consultation', 250000), "
            "('B002', 'Sick note', 100000), ('C003', 'Insurance form', 350000)");
        db->exec(
            "Insert Into ServiceCodes (ServiceCode, Description, FeeGeneral, Sex) "
            "Values ('A007', 'Intermediate assessment', 100000, 'B')");
        registerCodeScreens(registry, *db, settings, log, prompter, MoneyFormat{}, access, &main);
    }

    // Opens the editor at that place of the "Manage Codes" list, as the user does.
    template <typename Screen>
    Screen* open(int place) {
        registry.runAction(12);
        auto* list = main.findChild<frmManageCodes*>()->findChild<QListWidget*>();
        list->setCurrentRow(place);
        QTest::keyClick(list, Qt::Key_Return);
        Screen* screen = main.findChild<Screen*>();
        if (screen && !QTest::qWaitForWindowActive(screen)) {
            qWarning("the editor did not become the active window");
        }
        return screen;
    }
    QStringList direct() {
        return test::rowsOf(
            db->exec("Select ServiceCode, Description, Fee From ServiceCodesDirect Order By 1"));
    }
};

QStringList keysOn(CodeTableEditor* screen) {
    QStringList keys;
    for (int r = 0; r < screen->sheet().rowCount(); ++r) {
        keys << screen->sheet().cell(r, 0);
    }
    return keys;
}

// Types into the open cell and commits it with Enter.
void typeCell(const QString& text) {
    QTest::keyClicks(QApplication::focusWidget(), text);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
}

// A line of the long schedule layout: code, effective and termination dates, five fees of
// 7 + 4 digits.
QByteArray sobLine(const QString& codeAndDates, std::initializer_list<qint64> fees) {
    QString line = codeAndDates;
    for (const qint64 fee : fees) {
        line += QStringLiteral("%1").arg(fee, 11, 10, QLatin1Char('0'));
    }
    return line.toLatin1() + "\r\n";
}

void find(CodeTableEditor* screen, const QString& text) {
    screen->findBox()->setText(text);
    QTest::keyClick(screen->findBox(), Qt::Key_Return);
}

}  // namespace

class TestCodeScreens : public QObject {
    Q_OBJECT

private slots:
    void theListNeedsTheBillingPassword() {
        Office o;
        o.access.change(AccessLevels::kMaster, QStringLiteral("boss"));
        o.access.change(AccessLevels::kBillingSecretary, QStringLiteral("fees"));
        o.registry.runAction(12);
        QVERIFY(!o.main.findChild<frmManageCodes*>());
        QVERIFY(o.prompter.last().lines.join(u' ').contains(u"Billing Secretary"));
        QVERIFY(o.access.login(QStringLiteral("fees")));
        o.registry.runAction(12);
        QVERIFY(o.main.findChild<frmManageCodes*>());
    }

    void editAndSave() {
        Office office;
        office.log.setOn(true);
        auto* screen = office.open<frmCodes>(1);
        QVERIFY(screen && screen->isVisible());
        QCOMPARE(office.open<frmCodes>(1), screen);  // asked again: the same window
        QCOMPARE(office.main.findChildren<frmCodes*>().size(), 1);
        QTableView* grid = screen->grid();
        QCOMPARE(grid->model()->index(0, 2).data().toString(), QStringLiteral("25.00"));

        // A new row typed cell by cell: Enter moves on, codes go to capitals.
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_Insert);
        typeCell("x100");
        typeCell("Driver's medical");
        typeCell("1234.5");
        QCOMPARE(keysOn(screen).last(), QStringLiteral("X100"));
        QCOMPARE(grid->model()->index(3, 2).data().toString(), QStringLiteral("1,234.50"));

        grid->model()->setData(grid->model()->index(0, 1), "Consultation, full");
        grid->setCurrentIndex(grid->model()->index(1, 0));
        office.prompter.script({Answer::No});
        QTest::keyClick(grid, Qt::Key_Delete);  // refused: the row stays
        QCOMPARE(office.prompter.last().defaultAnswer, Answer::No);
        office.prompter.script({Answer::Yes});
        QTest::keyClick(grid, Qt::Key_Delete);
        QCOMPARE(keysOn(screen), (QStringList{"A001", "C003", "X100"}));

        // Esc with unsaved edits asks; Cancel stays on them.
        office.prompter.script({Answer::Cancel});
        QTest::keyClick(grid, Qt::Key_Escape);
        QCOMPARE(office.prompter.last().lines, QStringList{"Save changes?"});
        QVERIFY(screen->isVisible());
        QCOMPARE(office.direct().size(), 3);

        QTest::keyClick(grid, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(office.direct(),
                 (QStringList{"A001|Consultation, full|250000", "C003|Insurance form|350000",
                              "X100|Driver's medical|12345000"}));
        QVERIFY(!screen->sheet().hasChanges());
        QCOMPARE(office.prompter.messages().size(), 3);  // nothing more was said
        const QString logged = test::readText(office.log.path());
        QVERIFY(logged.contains("Delete From ServiceCodesDirect Where ServiceCode='B002'"));
        QVERIFY(
            logged.contains("Update ServiceCodesDirect Set Description='Consultation, full' "
                            "Where ServiceCode='A001'"));
        QVERIFY(logged.contains("Values('X100','Driver''s medical',12345000)"));

        const QPointer<frmCodes> open(screen);
        QTest::keyClick(grid, Qt::Key_Escape);
        QTRY_VERIFY(!open);
    }

    // A new row is typed while the grid shows what the find text found; nothing is written.
    void refusedSave_data() {
        QTest::addColumn<QString>("findText");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("fee");
        QTest::addColumn<QString>("problem");
        QTest::addColumn<int>("badColumn");
        row("not an amount", "", "x100", "12..5", "Row 4, X100: Fee is not an amount: \"12..5\".",
            2);
        row("amount with letters", "", "x100", "12.5O",
            "Row 4, X100: Fee is not an amount: \"12.5O\".", 2);
        row("key on the sheet", "", "a001", "1", "Row 4, A001: this service code is also on row 1.",
            0);
        row("key outside the found rows", "b", "c003", "1",
            "Row 2, C003: this service code is already in the table (clear the find box to see "
            "it).",
            0);
        row("key missing", "", "", "1", "Row 4: Code is required.", 0);
    }
    void refusedSave() {
        QFETCH(QString, findText);
        QFETCH(QString, key);
        QFETCH(QString, fee);
        Office office;
        auto* screen = office.open<frmCodes>(1);
        find(screen, findText);
        const QStringList before = office.direct();
        QTableView* grid = screen->grid();
        const int added = grid->model()->rowCount();
        screen->addRow();
        grid->model()->setData(grid->model()->index(added, 0), key);
        grid->model()->setData(grid->model()->index(added, 2), fee);

        QVERIFY(!screen->save());
        QCOMPARE(office.prompter.last().title, QStringLiteral("Error"));
        QFETCH(QString, problem);
        QCOMPARE(office.prompter.last().lines, (QStringList{CodeSheet::kHeading, problem}));
        QTEST(grid->currentIndex().column(), "badColumn");
        QCOMPARE(grid->currentIndex().row(), added);
        QCOMPARE(office.direct(), before);
        QVERIFY(screen->sheet().hasChanges());
    }

    void findFilters_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("keys");
        row("key begins", "b0", QStringList{"B002"});
        row("words of the description", "FORM", QStringList{"C003"});
        row("nothing", "zz", QStringList{});
        row("a comparison is about the key", ">b", QStringList{"B002", "C003"});
        row("empty", "", QStringList{"A001", "B002", "C003"});
    }
    void findFilters() {
        Office office;
        auto* screen = office.open<frmCodes>(1);
        find(screen, "a0");
        QCOMPARE(keysOn(screen), QStringList{"A001"});
        QFETCH(QString, text);
        find(screen, text);
        QTEST(keysOn(screen), "keys");
        QCOMPARE(screen->grid()->model()->rowCount(), keysOn(screen).size());
    }

    void updateFeeSchedules() {
        Office office;
        auto* screen = office.open<frmOHIPCodes>(0);
        QVERIFY(screen);
        QCOMPARE(screen->windowTitle(), QStringLiteral("OHIP Service Codes[*]"));
        QCOMPARE(keysOn(screen), QStringList{"A007"});

        const QString file = office.office.file("sob.txt");
        test::writeText(file, sobLine("A0072024040199999999", {257000, 0, 257000, 0, 0}) +
                                  sobLine("Z4012023010120250400", {0, 1204000, 0, 4816000, 0}));
        QVERIFY(screen->updateFeeSchedules(file));
        QCOMPARE(office.prompter.last().lines, QStringList{"Processed 2 codes"});
        QCOMPARE(keysOn(screen), (QStringList{"A007", "Z401"}));
        const QAbstractItemModel* grid = screen->grid()->model();
        QCOMPARE(grid->index(0, 2).data().toString(), QStringLiteral("25.70"));
        QCOMPARE(grid->index(0, 11).data().toString(), QStringLiteral("1980/01/01"));
        QCOMPARE(grid->index(1, 1).data().toString(), QStringLiteral("New Code"));
        QCOMPARE(grid->index(1, 4).data().toString(), QStringLiteral("120.40"));
        QCOMPARE(grid->index(1, 11).data().toString(), QStringLiteral("2025/04/01"));
    }
};

QTEST_MAIN(TestCodeScreens)
#include "test_code_screens.moc"
