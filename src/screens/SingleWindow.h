#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>
#include <utility>

namespace brimsett {

// A window the run has once: make() builds it on first use (it is deleted when closed, so
// the next use builds it again); every call shows it, brings it forward, gives it the
// keyboard and returns it. Copies share the one window, so a menu action and another way
// in (the appointment book's billing) reach the same window.
template <typename Window, typename Make>
auto singleWindow(Make make) {
    return [window = std::make_shared<QPointer<Window>>(), make = std::move(make)]() -> Window* {
        if (!*window) {
            *window = make();
            (*window)->setAttribute(Qt::WA_DeleteOnClose);
        }
        (*window)->show();
        (*window)->raise();
        (*window)->activateWindow();
        return *window;
    };
}

// The menu action of a single window, as above.
template <typename Window, typename Make>
auto showSingleWindow(Make make) {
    return [window = singleWindow<Window>(std::move(make))] { window(); };
}

}  // namespace brimsett
