#include "TestSupport.h"

#include "foundation/MenuModel.h"

#include <QtTest>

using namespace brimsett;
using test::row;

namespace {

// "id|sub-menu|caption|position|action|param|modifiers|key"
QString describe(const MenuEntry& e) {
    QStringList parts{QString::number(e.menuId), QString::number(e.subMenuId), e.caption};
    for (int n : {e.position, e.action, e.actionParam, e.shortCutMod, e.shortCutKey}) {
        parts << QString::number(n);
    }
    return parts.join(QLatin1Char('|'));
}

}  // namespace

class TestMenuModel : public QObject {
    Q_OBJECT

private slots:
    void defaultTable() {
        const QList<MenuEntry> menu = defaultMenu();
        QCOMPARE(menu.size(), 38);
        for (int i = 0; i < menu.size(); ++i) {
            QCOMPARE(menu[i].menuId, i + 1);
        }
        // Rows with a key are checked by keyFindsEntry.
        const QStringList samples = {"1|0|Main Menu|0|0|0|0|0", "5|0|P&rint|4|0|1|0|0",
                                     "7|0|E&xit|6|10|0|0|0", "9|1|Today's &Appts|1|4|0|0|0",
                                     "22|2|Back|7|10|0|0|0"};
        for (const QString& sample : samples) {
            QCOMPARE(describe(menu.at(sample.section(QLatin1Char('|'), 0, 0).toInt() - 1)), sample);
        }
    }

    void officeTableReplacesDefaultUnlessEmpty() {
        test::TempOffice office;
        auto db = office.emptyDatabase();
        db->exec(db->dialect().ddl(
            QStringLiteral("Create Table Menus (MenuID Long PRIMARY KEY, SubMenuID Long, "
                           "Caption Text(50), MenuPosition Long, Action Long, "
                           "ActionParam Long, ShortCutMod Long, ShortCutKey Long)")));
        QCOMPARE(loadMenu(*db), defaultMenu());

        const MenuEntry claims{7, 0, QStringLiteral("&Bill"), 2, 1, 0, 2, 66};
        const MenuEntry title{3, 0, QStringLiteral("Office Menu"), 0, 0, 0, 0, 0};
        for (const MenuEntry& e : {claims, title}) {
            db->exec(QStringLiteral("Insert Into Menus Values (?,?,?,?,?,?,?,?)"),
                     {e.menuId, e.subMenuId, e.caption, e.position, e.action, e.actionParam,
                      e.shortCutMod, e.shortCutKey});
        }
        // A row without a position reads as 0 and comes first on either engine.
        db->exec(QStringLiteral(
            "Insert Into Menus (MenuID, SubMenuID, Caption) Values (9, 0, 'Spare')"));
        const MenuEntry spare{9, 0, QStringLiteral("Spare"), 0, 0, 0, 0, 0};
        // In SubMenuID, MenuPosition order, and nothing of the default added.
        QCOMPARE(loadMenu(*db), (QList<MenuEntry>{spare, title, claims}));
    }

    void subMenuItemsInPositionOrder() {
        QList<MenuEntry> shuffled = defaultMenu();
        std::reverse(shuffled.begin(), shuffled.end());
        const MenuModel model(shuffled);
        QCOMPARE(model.title(1), QStringLiteral("Print Menu"));
        QStringList captions;
        for (const MenuEntry& e : model.items(1)) {
            captions << e.caption;
        }
        QCOMPARE(captions, (QStringList{"Today's &Appts", "&Today's Claims", "&Past Claims",
                                        "&Monthly Totals", "Print &Setup", "Back"}));
        QCOMPARE(model.items(0).size(), 6);
        QCOMPARE(model.title(5), QString());
    }

    void keyFindsEntry_data() {
        QTest::addColumn<int>("mod");
        QTest::addColumn<int>("key");
        QTest::addColumn<QString>("entry");  // empty: nothing
        row("F3 claims", 0, 114, "2|0|&Claims|1|1|0|0|114");
        row("Ctrl+Alt+F4 import, not F4", 6, 115, "34|-1|Import patients|0|33|0|6|115");
        row("F10 in more menu", 0, 121, "21|2|System Functions|6|16|0|0|121");
        row("Shift+F10 hidden", 1, 121, "25|-1|About Brimsett|0|23|0|1|121");
        row("Alt+F10", 4, 121, "28|-1|(debug) SQL|0|26|0|4|121");
        row("Ctrl+Alt+P", 6, 80, "13|1|Print &Setup|5|8|0|6|80");
        row("plain P", 0, 80, "");
        row("Ctrl+Alt+Shift+R", 7, 82, "32|-1|Remove Demo Database|0|31|0|7|82");
        row("Ctrl+Alt+Shift+H, the last row", 7, 72, "38|-1|HL7|0|38|0|7|72");
        row("Shift+F3", 1, 114, "");
        row("no key", 0, 0, "");
    }
    void keyFindsEntry() {
        QFETCH(int, mod);
        QFETCH(int, key);
        const auto entry = MenuModel(defaultMenu()).entryForKey(mod, key);
        QTEST(entry ? describe(*entry) : QString(), "entry");
    }

    void accessLetters_data() {
        QTest::addColumn<int>("subMenu");
        QTest::addColumn<QString>("letter");
        QTest::addColumn<QString>("caption");  // empty: nothing
        row("x exits", 0, "x", "E&xit");
        row("R print", 0, "R", "P&rint");
        row("a in main", 0, "a", "&Appointments");
        row("a in print", 1, "a", "Today's &Appts");
        row("no letter", 0, "z", "");
        row("hidden have none", -1, "o", "");
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
        row("inside", "Today's &Appts", "Today's Appts", "A");
        row("lower", "P&rint", "Print", "R");
        row("none", "Back", "Back", "");
        row("doubled", "Fish && &Chips", "Fish & Chips", "C");
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
