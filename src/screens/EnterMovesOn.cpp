#include "screens/EnterMovesOn.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace brimsett {

void EnterMovesOn::watch(QWidget* field) {
    field->installEventFilter(this);
}

bool EnterMovesOn::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) {
        return false;
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    const Qt::KeyboardModifiers mods = key->modifiers() & ~Qt::KeypadModifier;
    if ((key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter) || mods != Qt::NoModifier) {
        return false;
    }
    // Tab is what the field itself knows as "next", whatever kind of field it is.
    QKeyEvent tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
    QApplication::sendEvent(watched, &tab);
    return true;
}

}  // namespace brimsett
