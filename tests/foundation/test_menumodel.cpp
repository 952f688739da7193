#include "TestSupport.h"

#include "foundation/MenuModel.h"

#include <QtTest>

using namespace brimsett;

namespace {

void ensureMenusTable(Database& db) {
    if (!db.hasTable(QStringLiteral("Menus"))) {
        db.exec(
            QStringLiteral("Create Table Menus (MenuID Long PRIMARY KEY, SubMenuID Long, "
                           "Caption Text(50), MenuPosition Long, Action Long, "
                           "ActionParam Long, ShortCutMod Long, ShortCutKey Long)"));
    }
}

void insertRow(Database& db, const MenuEntry& e) {
    db.exec(QStringLiteral("Insert Into Menus (MenuID, SubMenuID, Caption, MenuPosition, Action, "
                           "ActionParam, ShortCutMod, ShortCutKey) Values (?,?,?,?,?,?,?,?)"),
            {e.menuId, e.subMenuId, e.caption, e.position, e.action, e.actionParam, e.shortCutMod,
             e.shortCutKey});
}

QStringList captions(const QList<MenuEntry>& entries) {
    QStringList out;
    for (const MenuEntry& e : entries) {
        out << e.caption;
    }
    return out;
}

}  // namespace

class TestMenuModel : public QObject {
    Q_OBJECT

private slots:
    void defaultTableHasRunningIds() {
        const QList<MenuEntry> menu = defaultMenu();
        QCOMPARE(menu.size(), 38);
        for (int i = 0; i < menu.size(); ++i) {
            QCOMPARE(menu[i].menuId, i + 1);
        }
    }

    void defaultTableRows_data() {
        QTest::addColumn<int>("menuId");
        QTest::addColumn<int>("subMenu");
        QTest::addColumn<int>("position");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("param");
        QTest::addColumn<int>("mod");
        QTest::addColumn<int>("key");
        QTest::newRow("main title") << 1 << 0 << 0 << "Main Menu" << 0 << 0 << 0 << 0;
        QTest::newRow("claims F3") << 2 << 0 << 1 << "&Claims" << 1 << 0 << 0 << 114;
        QTest::newRow("print opens 1") << 5 << 0 << 4 << "P&rint" << 0 << 1 << 0 << 0;
        QTest::newRow("exit") << 7 << 0 << 6 << "E&xit" << 10 << 0 << 0 << 0;
        QTest::newRow("todays appts") << 9 << 1 << 1 << "Today's &Appts" << 4 << 0 << 0 << 0;
        QTest::newRow("print setup") << 13 << 1 << 5 << "Print &Setup" << 8 << 0 << 6 << 80;
        QTest::newRow("more back") << 22 << 2 << 7 << "Back" << 10 << 0 << 0 << 0;
        QTest::newRow("system F10") << 21 << 2 << 6 << "System Functions" << 16 << 0 << 0 << 121;
        QTest::newRow("about") << 25 << -1 << 0 << "About Brimsett" << 23 << 0 << 1 << 121;
        QTest::newRow("debug sql") << 28 << -1 << 0 << "(debug) SQL" << 26 << 0 << 4 << 121;
        QTest::newRow("import") << 34 << -1 << 0 << "Import patients" << 33 << 0 << 6 << 115;
        QTest::newRow("hl7 last") << 38 << -1 << 0 << "HL7" << 38 << 0 << 7 << 72;
    }

    void defaultTableRows() {
        QFETCH(int, menuId);
        const MenuEntry e = defaultMenu().at(menuId - 1);
        QCOMPARE(e.menuId, menuId);
        QTEST(e.subMenuId, "subMenu");
        QTEST(e.position, "position");
        QTEST(e.caption, "caption");
        QTEST(e.action, "action");
        QTEST(e.actionParam, "param");
        QTEST(e.shortCutMod, "mod");
        QTEST(e.shortCutKey, "key");
    }

    void emptyTableGivesDefault() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        ensureMenusTable(*db);
        QCOMPARE(loadMenu(*db), defaultMenu());
    }

    void officeTableReplacesDefault() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        ensureMenusTable(*db);
        const MenuEntry claims{7, 0, QStringLiteral("&Bill"), 2, 1, 0, 2, 66};
        const MenuEntry title{3, 0, QStringLiteral("Office Menu"), 0, 0, 0, 0, 0};
        insertRow(*db, claims);
        insertRow(*db, title);
        // In SubMenuID, MenuPosition order, and nothing of the default added.
        QCOMPARE(loadMenu(*db), (QList<MenuEntry>{title, claims}));
    }

    void subMenuItemsInPositionOrder() {
        QList<MenuEntry> shuffled = defaultMenu();
        std::reverse(shuffled.begin(), shuffled.end());
        const MenuModel model(shuffled);
        QCOMPARE(model.title(1), QStringLiteral("Print Menu"));
        QCOMPARE(captions(model.items(1)),
                 (QStringList{"Today's &Appts", "&Today's Claims", "&Past Claims",
                              "&Monthly Totals", "Print &Setup", "Back"}));
        QCOMPARE(model.items(0).size(), 6);
        QCOMPARE(model.title(5), QString());
    }

    void keyFindsEntry_data() {
        QTest::addColumn<int>("mod");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("action");  // -1: nothing
        QTest::newRow("F3 claims") << 0 << 114 << 1;
        QTest::newRow("F4 patients") << 0 << 115 << 2;
        QTest::newRow("Ctrl+Alt+F4 import") << 6 << 115 << 33;
        QTest::newRow("F10 in more menu") << 0 << 121 << 16;
        QTest::newRow("Shift+F10 hidden") << 1 << 121 << 23;
        QTest::newRow("Ctrl+F10") << 2 << 121 << 24;
        QTest::newRow("Shift+Ctrl+F10") << 3 << 121 << 25;
        QTest::newRow("Alt+F10") << 4 << 121 << 26;
        QTest::newRow("Ctrl+Alt+P") << 6 << 80 << 8;
        QTest::newRow("plain P") << 0 << 80 << -1;
        QTest::newRow("Ctrl+Alt+Shift+R") << 7 << 82 << 31;
        QTest::newRow("Shift+F3") << 1 << 114 << -1;
        QTest::newRow("no key") << 0 << 0 << -1;
    }

    void keyFindsEntry() {
        QFETCH(int, mod);
        QFETCH(int, key);
        QFETCH(int, action);
        const auto entry = MenuModel(defaultMenu()).entryForKey(mod, key);
        QCOMPARE(entry ? entry->action : -1, action);
    }

    void accessLetters_data() {
        QTest::addColumn<int>("subMenu");
        QTest::addColumn<QString>("letter");
        QTest::addColumn<QString>("caption");  // empty: nothing
        QTest::newRow("x exits") << 0 << "x"
                                 << "E&xit";
        QTest::newRow("R print") << 0 << "R"
                                 << "P&rint";
        QTest::newRow("a in main") << 0 << "a"
                                   << "&Appointments";
        QTest::newRow("a in print") << 1 << "a"
                                    << "Today's &Appts";
        QTest::newRow("w in more") << 2 << "w"
                                   << "S&wipe Card";
        QTest::newRow("no letter") << 0 << "z"
                                   << "";
        QTest::newRow("hidden have none") << -1 << "o"
                                          << "";
    }

    void accessLetters() {
        QFETCH(int, subMenu);
        QFETCH(QString, letter);
        const auto entry = MenuModel(defaultMenu()).entryForLetter(subMenu, letter[0]);
        QTEST(entry ? entry->caption : QString(), "caption");
    }

    void captionText_data() {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("plain");
        QTest::addColumn<QString>("letter");
        QTest::newRow("first") << "&Claims"
                               << "Claims"
                               << "C";
        QTest::newRow("inside") << "Today's &Appts"
                                << "Today's Appts"
                                << "A";
        QTest::newRow("lower") << "P&rint"
                               << "Print"
                               << "R";
        QTest::newRow("none") << "Back"
                              << "Back"
                              << "";
        QTest::newRow("doubled") << "Fish && &Chips"
                                 << "Fish & Chips"
                                 << "C";
    }

    void captionText() {
        QFETCH(QString, caption);
        QTEST(MenuModel::plainCaption(caption), "plain");
        const QChar letter = MenuModel::accessLetter(caption);
        QTEST(letter.isNull() ? QString() : QString(letter), "letter");
    }
};

QTEST_GUILESS_MAIN(TestMenuModel)
#include "test_menumodel.moc"
