#include "screens/ScreenPrompter.h"

#include "screens/MessageBoxPrompter.h"
#include "screens/OpenListEscape.h"

#include <QWidget>

namespace brimsett {

ScreenPrompter::ScreenPrompter(Prompter& shared, QWidget* screen)
    : QObject(screen), m_shared(shared), m_screen(screen) {}

ScreenPrompter& ScreenPrompter::attach(Prompter& shared, QWidget* screen) {
    // Every screen is made through here: the place to make sure of its Escape key too.
    keepEscapeForOpenLists();
    // A screen opened from another is handed that one's prompter: it speaks for itself.
    if (auto* other = dynamic_cast<ScreenPrompter*>(&shared)) {
        return *new ScreenPrompter(other->m_shared, screen);
    }
    return *new ScreenPrompter(shared, screen);
}

Prompter& ScreenPrompter::of(QObject* object) {
    for (QObject* o = object; o != nullptr; o = o->parent()) {
        if (auto* own = o->findChild<ScreenPrompter*>(QString(), Qt::FindDirectChildrenOnly)) {
            return *own;
        }
    }
    // Kept for the life of the run: only a screen without a prompter of its own gets here.
    static MessageBoxPrompter fallback;
    auto* widget = qobject_cast<QWidget*>(object);
    fallback.setParent(widget != nullptr ? widget->window() : nullptr);
    return fallback;
}

void ScreenPrompter::tell(const QString& title, const QStringList& lines, Icon icon) {
    if (dynamic_cast<MessageBoxPrompter*>(&m_shared) != nullptr) {
        // A part of a window (the claim's pending list) shows its boxes over the window.
        MessageBoxPrompter(m_screen->window()).tell(title, lines, icon);
    } else {
        m_shared.tell(title, lines, icon);
    }
}

Answer ScreenPrompter::ask(const QString& title, const QStringList& lines, Icon icon,
                           Buttons buttons, Answer defaultAnswer) {
    if (dynamic_cast<MessageBoxPrompter*>(&m_shared) != nullptr) {
        return MessageBoxPrompter(m_screen->window())
            .ask(title, lines, icon, buttons, defaultAnswer);
    }
    return m_shared.ask(title, lines, icon, buttons, defaultAnswer);
}

}  // namespace brimsett
