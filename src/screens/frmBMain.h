#pragma once

#include "foundation/MenuModel.h"

#include <QFont>
#include <QKeySequence>
#include <QList>
#include <QMainWindow>

class QKeyEvent;
class QLabel;
class QPushButton;
class QShortcut;
class QVBoxLayout;

namespace brimsett {

class ActionRegistry;
class Prompter;
struct AppSettings;

// The main menu. Shows one sub-menu at a time as a column of large entries under its title;
// every entry's key combination works anywhere in the window, hidden entries included.
class frmBMain : public QMainWindow {
    Q_OBJECT

public:
    frmBMain(const QList<MenuEntry>& entries, const AppSettings& settings, ActionRegistry& actions,
             Prompter& prompter, QWidget* parent = nullptr);

    int currentSubMenu() const { return m_current; }
    // The entry captions of the sub-menu on screen, as they are written in the menu.
    QStringList visibleCaptions() const;

    // Font, size and spacing of the menu after the options changed.
    void applySettings(const AppSettings& settings);

    // The key combination of a menu entry; empty for a code no key on the keyboard has.
    static QKeySequence sequenceOf(int shortCutMod, int shortCutKey);

public slots:
    void showSubMenu(int subMenu);
    // What choosing the entry does: another sub-menu, back, the end, or its action.
    void runEntry(const MenuEntry& entry);
    // The status line at the bottom; an empty text clears it.
    void setStatusText(const QString& text);

signals:
    // The window is closing: the moment to save the settings and close the database.
    void shuttingDown();

protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // A menu F-key pressed in another window of the program runs its entry's action.
    bool keyFromOtherWindow(QWidget* target, const QKeyEvent* key);
    void buildShortcuts();
    void rebuildAccessShortcuts();
    void moveFocus(int step);
    QFont menuFont() const;
    // What the right-hand side of an entry shows: its keys, "Esc" for back, a sub-menu mark.
    QString hintOf(const MenuEntry& entry) const;

    MenuModel m_model;
    ActionRegistry& m_actions;
    Prompter& m_prompter;
    QString m_fontFamily;
    int m_fontSize = 16;
    int m_skip = 6;
    int m_current = MenuModel::kMainMenu;
    bool m_shutDown = false;

    QLabel* m_title = nullptr;
    QWidget* m_list = nullptr;
    QVBoxLayout* m_listLayout = nullptr;
    QList<QPushButton*> m_buttons;
    QList<MenuEntry> m_shown;
    QList<QShortcut*> m_accessShortcuts;
};

}  // namespace brimsett
