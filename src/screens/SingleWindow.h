#pragma once

#include <QPointer>
#include <QWidget>

#include <memory>
#include <utility>

namespace brimsett {

// The menu action of a window the run has once: make() builds it on first use (it is
// deleted when closed, so the next use builds it again); every use shows it, brings it
// forward and gives it the keyboard.
template <typename Window, typename Make>
auto showSingleWindow(Make make) {
    return [window = std::make_shared<QPointer<Window>>(), make = std::move(make)] {
        if (!*window) {
            *window = make();
            (*window)->setAttribute(Qt::WA_DeleteOnClose);
        }
        (*window)->show();
        (*window)->raise();
        (*window)->activateWindow();
    };
}

}  // namespace brimsett
