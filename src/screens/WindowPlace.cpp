#include "screens/WindowPlace.h"

#include "foundation/SettingsStore.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <optional>

namespace brimsett::windowplace {

namespace {

QString textOf(const QRect& r) {
    return QStringLiteral("%1,%2,%3,%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

std::optional<QRect> rectOf(const QString& text) {
    const QStringList parts = text.split(QLatin1Char(','));
    if (parts.size() != 4) {
        return std::nullopt;
    }
    int values[4];
    for (int i = 0; i < 4; ++i) {
        bool ok = false;
        values[i] = parts.at(i).trimmed().toInt(&ok);
        if (!ok) {
            return std::nullopt;
        }
    }
    if (values[2] <= 0 || values[3] <= 0) {
        return std::nullopt;
    }
    return QRect(values[0], values[1], values[2], values[3]);
}

// Saves the window's place when it closes or hides.
class PlaceKeeper : public QObject {
public:
    PlaceKeeper(QWidget* window, SettingsStore& store, QString key)
        : QObject(window), m_window(window), m_store(store), m_key(std::move(key)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_window &&
            (event->type() == QEvent::Close || event->type() == QEvent::Hide)) {
            m_store.save(kSection, m_key, textOf(m_window->geometry()));
        }
        return false;
    }

private:
    QWidget* m_window;
    SettingsStore& m_store;
    QString m_key;
};

}  // namespace

QRect clamped(QRect rect, const QRect& available) {
    if (available.isEmpty()) {
        return rect;
    }
    rect.setWidth(std::min(rect.width(), available.width()));
    rect.setHeight(std::min(rect.height(), available.height()));
    rect.moveLeft(std::clamp(rect.left(), available.left(), available.right() - rect.width() + 1));
    rect.moveTop(std::clamp(rect.top(), available.top(), available.bottom() - rect.height() + 1));
    return rect;
}

void remember(QWidget* window, SettingsStore& store, const QString& key) {
    const std::optional<QRect> kept = rectOf(store.get(kSection, key));
    const QScreen* screen = kept ? QGuiApplication::screenAt(kept->center()) : nullptr;
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    const QRect available = screen != nullptr ? screen->availableGeometry() : QRect();
    if (kept) {
        window->setGeometry(clamped(*kept, available));
    } else if (!available.isEmpty()) {
        // The first time, the window's own size, but never larger than the screen.
        window->resize(window->size().boundedTo(available.size()));
    }
    window->installEventFilter(new PlaceKeeper(window, store, key));
}

}  // namespace brimsett::windowplace
