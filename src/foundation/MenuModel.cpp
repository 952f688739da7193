#include "foundation/MenuModel.h"

#include "foundation/Database.h"

#include <QSqlRecord>

#include <algorithm>

namespace brimsett {

namespace {

struct DefaultRow {
    int subMenu;
    int position;
    const char* caption;
    int action;
    int param;
    int mod;
    int key;
};

// Key codes: F2 = 113 ... F12 = 123; letters are their upper-case character codes.
constexpr DefaultRow kDefaultRows[] = {
    {0, 0, "Main Menu", 0, 0, 0, 0},
    {0, 1, "&Claims", 1, 0, 0, 114},
    {0, 2, "&Patients", 2, 0, 0, 115},
    {0, 3, "&Appointments", 3, 0, 0, 116},
    {0, 4, "P&rint", 0, 1, 0, 0},
    {0, 5, "&More", 0, 2, 0, 0},
    {0, 6, "E&xit", 10, 0, 0, 0},
    {1, 0, "Print Menu", 0, 0, 0, 0},
    {1, 1, "Today's &Appts", 4, 0, 0, 0},
    {1, 2, "&Today's Claims", 5, 0, 0, 0},
    {1, 3, "&Past Claims", 6, 0, 0, 0},
    {1, 4, "&Monthly Totals", 7, 0, 0, 0},
    {1, 5, "Print &Setup", 8, 0, 6, 80},
    {1, 6, "Back", 10, 0, 0, 0},
    {2, 0, "More Menu", 0, 0, 0, 0},
    {2, 1, "&Providers", 11, 0, 0, 0},
    {2, 2, "&Manage Codes", 12, 0, 0, 0},
    {2, 3, "S&wipe Card", 13, 0, 0, 0},
    {2, 4, "&Submit Claims", 14, 0, 0, 0},
    {2, 5, "&Reconcile", 15, 0, 0, 0},
    {2, 6, "System Functions", 16, 0, 0, 121},
    {2, 7, "Back", 10, 0, 0, 0},
    {-1, 0, "Patient History", 20, 0, 0, 118},
    {-1, 0, "Options", 21, 0, 0, 120},
    {-1, 0, "About Brimsett", 23, 0, 1, 121},
    {-1, 0, "Open Brimsett Folder", 24, 0, 2, 121},
    {-1, 0, "(debug) Tables", 25, 0, 3, 121},
    {-1, 0, "(debug) SQL", 26, 0, 4, 121},
    {-1, 0, "Syncwell", 27, 0, 0, 122},
    {-1, 0, "Brimsett Handry Connection", 28, 0, 1, 122},
    {-1, 0, "Create Demo Database", 30, 0, 7, 67},
    {-1, 0, "Remove Demo Database", 31, 0, 7, 82},
    {-1, 0, "Login", 32, 0, 0, 123},
    {-1, 0, "Import patients", 33, 0, 6, 115},
    {-1, 0, "Pendrix", 35, 0, 0, 113},
    {-1, 0, "Patient Profile", 36, 0, 0, 117},
    {-1, 0, "Patient Reminders", 37, 0, 0, 119},
    {-1, 0, "HL7", 38, 0, 7, 72},
};

// Index of the access letter in a caption, or -1.
qsizetype accessIndex(const QString& caption) {
    for (qsizetype i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != QLatin1Char('&')) {
            continue;
        }
        if (caption[i + 1] == QLatin1Char('&')) {
            ++i;  // a literal "&"
            continue;
        }
        return i + 1;
    }
    return -1;
}

}  // namespace

MenuModel::MenuModel(QList<MenuEntry> entries) : m_entries(std::move(entries)) {}

QString MenuModel::title(int subMenu) const {
    for (const MenuEntry& e : m_entries) {
        if (e.subMenuId == subMenu && e.position == 0) {
            return plainCaption(e.caption);
        }
    }
    return {};
}

QList<MenuEntry> MenuModel::items(int subMenu) const {
    QList<MenuEntry> list;
    for (const MenuEntry& e : m_entries) {
        if (e.subMenuId == subMenu && e.position != 0) {
            list << e;
        }
    }
    std::stable_sort(list.begin(), list.end(), [](const MenuEntry& a, const MenuEntry& b) {
        return a.position < b.position;
    });
    return list;
}

std::optional<MenuEntry> MenuModel::entryForKey(int modifiers, int key) const {
    if (key == 0) {
        return std::nullopt;
    }
    for (const MenuEntry& e : m_entries) {
        if (e.shortCutKey == key && e.shortCutMod == modifiers) {
            return e;
        }
    }
    return std::nullopt;
}

std::optional<MenuEntry> MenuModel::entryForLetter(int subMenu, QChar letter) const {
    const QChar wanted = letter.toUpper();
    if (wanted.isNull()) {
        return std::nullopt;
    }
    for (const MenuEntry& e : items(subMenu)) {
        if (accessLetter(e.caption) == wanted) {
            return e;
        }
    }
    return std::nullopt;
}

MenuModel::Step MenuModel::stepFor(const MenuEntry& entry, int currentSubMenu) {
    switch (entry.action) {
        case kActionSubMenu:
            return {Step::Kind::ShowSubMenu, entry.actionParam};
        case kActionBack:
            // One level up: every sub-menu hangs under the main menu.
            if (currentSubMenu == kMainMenu) {
                return {Step::Kind::Exit, 0};
            }
            return {Step::Kind::ShowSubMenu, kMainMenu};
        default:
            return {Step::Kind::RunAction, entry.action};
    }
}

QString MenuModel::plainCaption(const QString& caption) {
    QString plain;
    plain.reserve(caption.size());
    for (qsizetype i = 0; i < caption.size(); ++i) {
        if (caption[i] == QLatin1Char('&')) {
            if (i + 1 < caption.size() && caption[i + 1] == QLatin1Char('&')) {
                plain += QLatin1Char('&');
                ++i;
            }
            continue;
        }
        plain += caption[i];
    }
    return plain;
}

QChar MenuModel::accessLetter(const QString& caption) {
    const qsizetype i = accessIndex(caption);
    return i < 0 ? QChar() : caption[i].toUpper();
}

QList<MenuEntry> defaultMenu() {
    QList<MenuEntry> list;
    int id = 0;
    for (const DefaultRow& row : kDefaultRows) {
        list << MenuEntry{++id,         row.subMenu, QString::fromLatin1(row.caption),
                          row.position, row.action,  row.param,
                          row.mod,      row.key};
    }
    return list;
}

QList<MenuEntry> loadMenu(Database& db) {
    const QString doing = QStringLiteral("reading the menu");
    if (db.scalar(QStringLiteral("Select Count(*) From menus"), {}, doing).toLongLong() == 0) {
        return defaultMenu();
    }
    // A missing number sorts first on every engine, as SQLite puts it.
    QSqlQuery q =
        db.exec(QStringLiteral("Select * From menus Order By SubMenuID Is Null Desc,SubMenuID,"
                               "MenuPosition Is Null Desc,MenuPosition"),
                {}, doing);
    const QSqlRecord r = q.record();
    // Field names are looked up without regard to case, as the old engine did.
    const int menuId = r.indexOf(QStringLiteral("MenuID"));
    const int subMenuId = r.indexOf(QStringLiteral("SubMenuID"));
    const int caption = r.indexOf(QStringLiteral("Caption"));
    const int position = r.indexOf(QStringLiteral("MenuPosition"));
    const int action = r.indexOf(QStringLiteral("Action"));
    const int param = r.indexOf(QStringLiteral("ActionParam"));
    const int mod = r.indexOf(QStringLiteral("ShortCutMod"));
    const int key = r.indexOf(QStringLiteral("ShortCutKey"));
    auto number = [&q](int column) { return column < 0 ? 0 : q.value(column).toInt(); };
    QList<MenuEntry> list;
    while (q.next()) {
        list << MenuEntry{number(menuId),
                          number(subMenuId),
                          caption < 0 ? QString() : q.value(caption).toString(),
                          number(position),
                          number(action),
                          number(param),
                          number(mod),
                          number(key)};
    }
    return list;
}

}  // namespace brimsett
