#pragma once

#include <QChar>
#include <QList>
#include <QString>

#include <optional>

namespace brimsett {

class Database;

// One row of table Menus, or of the built-in menu an office gets without one.
struct MenuEntry {
    int menuId = 0;
    int subMenuId = 0;  // 0 main, 1 print, 2 more, -1 reachable only by its key
    QString caption;    // "&" marks the access letter
    int position = 0;   // 0 is the sub-menu's title row
    int action = 0;     // 0 opens sub-menu actionParam, 10 goes back (or exits)
    int actionParam = 0;
    int shortCutMod = 0;  // sum of kShift, kCtrl, kAlt
    int shortCutKey = 0;  // 113-123 are F2-F12, letters their upper-case codes

    bool operator==(const MenuEntry&) const = default;
};

// The menu as the office configured it, and the questions the main window asks of it.
class MenuModel {
public:
    static constexpr int kMainMenu = 0;
    static constexpr int kHidden = -1;
    static constexpr int kActionSubMenu = 0;
    static constexpr int kActionBack = 10;
    static constexpr int kShift = 1;
    static constexpr int kCtrl = 2;
    static constexpr int kAlt = 4;

    // What choosing an entry does, seen from the sub-menu on screen.
    struct Step {
        enum class Kind { ShowSubMenu, Exit, RunAction };
        Kind kind = Kind::RunAction;
        int value = 0;  // the sub-menu to show, or the action to run
        bool operator==(const Step&) const = default;
    };

    explicit MenuModel(QList<MenuEntry> entries);

    const QList<MenuEntry>& entries() const { return m_entries; }

    // The title row of a sub-menu (position 0); empty when it has none.
    QString title(int subMenu) const;
    // The entries below the title row, in position order.
    QList<MenuEntry> items(int subMenu) const;
    // The first entry, of any sub-menu or hidden, whose key combination this is.
    // A key code of 0 never matches.
    std::optional<MenuEntry> entryForKey(int modifiers, int key) const;
    // The entry of a sub-menu whose access letter this is, in either case.
    std::optional<MenuEntry> entryForLetter(int subMenu, QChar letter) const;

    static Step stepFor(const MenuEntry& entry, int currentSubMenu);

    // The caption as people read it: "&" markers gone, "&&" a plain "&".
    static QString plainCaption(const QString& caption);
    // The letter after the first single "&", upper-cased; a null QChar when there is none.
    static QChar accessLetter(const QString& caption);

private:
    QList<MenuEntry> m_entries;
};

// The menu an office gets while its Menus table is empty.
QList<MenuEntry> defaultMenu();

// The office's own menu from table Menus, which replaces the default entirely; the default
// when the table has no rows.
QList<MenuEntry> loadMenu(Database& db);

}  // namespace brimsett
