#include "screens/OpenListEscape.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>

namespace brimsett {

namespace {

class OpenListEscape : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject*, QEvent* event) override {
        const QEvent::Type type = event->type();
        if (type != QEvent::ShortcutOverride && type != QEvent::KeyPress &&
            type != QEvent::KeyRelease) {
            return false;
        }
        if (static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) {
            return false;
        }
        if (type == QEvent::ShortcutOverride) {
            QComboBox* box = openList();
            if (box == nullptr) {
                m_swallow = false;  // a new press, the last release having gone elsewhere
                return false;
            }
            box->hidePopup();
            // Taken as the field's own key, so no Escape shortcut fires; the press that
            // follows is swallowed below.
            event->accept();
            m_swallow = true;
            return true;
        }
        if (type == QEvent::KeyPress && m_swallow) {
            return true;
        }
        if (type == QEvent::KeyRelease) {
            m_swallow = false;
        }
        return false;
    }

private:
    static QComboBox* openList() {
        for (QWidget* w = QApplication::activePopupWidget(); w != nullptr; w = w->parentWidget()) {
            if (auto* box = qobject_cast<QComboBox*>(w)) {
                return box;
            }
        }
        return nullptr;
    }

    bool m_swallow = false;
};

}  // namespace

void keepEscapeForOpenLists() {
    static QObject* installed = nullptr;
    if (installed == nullptr && qApp != nullptr) {
        installed = new OpenListEscape(qApp);
        qApp->installEventFilter(installed);
    }
}

}  // namespace brimsett
