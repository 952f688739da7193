#include "screens/SlotGuard.h"

#include "screens/ScreenPrompter.h"

#include <QWidget>

namespace brimsett {

void reportRefusal(QObject* screen, const DbError& error) {
    auto* widget = qobject_cast<QWidget*>(screen);
    const QString title = widget != nullptr && !widget->window()->windowTitle().isEmpty()
                              ? widget->window()->windowTitle()
                              : QStringLiteral("Error");
    ScreenPrompter::of(screen).tell(
        title,
        {QStringLiteral("The database refused a statement; nothing of this action was saved."),
         QString(), error.message()},
        Icon::Critical);
}

}  // namespace brimsett
