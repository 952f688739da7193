#pragma once

#include "screens/WindowPlace.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace brimsett {

class Database;
class Prompter;
class SettingsStore;
class SqlLog;
struct AppSettings;

// What the openers of the program's windows share: the office's pieces a screen is made
// with, and opening each window once, bringing it forward when it is asked for again.
class ScreenOpener : public QObject {
public:
    ScreenOpener(Database& db, AppSettings& settings, SettingsStore& store, const SqlLog& log,
                 Prompter& prompter, QWidget* parent)
        : QObject(parent),
          m_db(db),
          m_settings(settings),
          m_store(store),
          m_log(log),
          m_prompter(prompter),
          m_parent(parent) {}

protected:
    // The window made by make() on first use (deleted when closed, its place and size kept
    // under placeKey when one is given), shown, raised and given the keyboard.
    template <typename Window, typename Make>
    Window* bringForward(QPointer<Window>& window, Make make, const QString& placeKey = {}) {
        if (!window) {
            window = make();
            window->setAttribute(Qt::WA_DeleteOnClose);
            if (!placeKey.isEmpty()) {
                windowplace::remember(window, m_store, placeKey);
            }
        }
        window->show();
        window->raise();
        window->activateWindow();
        return window;
    }

    Database& m_db;
    AppSettings& m_settings;
    SettingsStore& m_store;
    const SqlLog& m_log;
    Prompter& m_prompter;
    QWidget* m_parent;
};

}  // namespace brimsett
