#include "screens/CardReaderKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace brimsett {

CardReaderKeys::CardReaderKeys(QWidget* window, Swiped swiped)
    : QObject(window), m_window(window), m_swiped(std::move(swiped)) {
    // The application sees a key before the focused widget does, whichever widget that is.
    qApp->installEventFilter(this);
}

void CardReaderKeys::leaveAlone(QWidget* field) {
    m_leftAlone << field;
}

bool CardReaderKeys::reaches(QObject* watched) const {
    auto* widget = qobject_cast<QWidget*>(watched);
    if (widget == nullptr || widget->window() != m_window || !m_window->isActiveWindow()) {
        return false;
    }
    // A key the focused widget ignores goes on to its parents: it is looked at once, where
    // it was first delivered.
    QWidget* focus = QApplication::focusWidget();
    if (focus != nullptr ? widget != focus : widget != m_window) {
        return false;
    }
    return !m_leftAlone.contains(widget);
}

bool CardReaderKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || m_replaying || !reaches(watched)) {
        return false;
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        return false;  // the program's own keys; a reader types none
    }
    if (m_state != State::Idle && m_lastKey.isValid() && m_lastKey.elapsed() > kLongestPauseMs) {
        restart();
    }
    m_lastKey.start();
    const QString text = key->text();
    const bool enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    switch (m_state) {
        case State::Idle:
            if (text == QLatin1String("%") || text == QLatin1String("5")) {
                m_state = text == QLatin1String("%") ? State::Collecting : State::SawFive;
                m_text = text;
                return true;
            }
            if (text == QLatin1String(";")) {
                m_state = State::SecondTrack;
                return true;
            }
            return false;
        case State::SawFive:
            if (text == QLatin1String("B") || text == QLatin1String("b")) {
                m_state = State::Collecting;
                m_text += text;
                return true;
            }
            // Only a "5": the field gets it back, then the key that followed.
            restart();
            m_replaying = true;
            {
                QKeyEvent five(QEvent::KeyPress, Qt::Key_5, Qt::NoModifier, QStringLiteral("5"));
                QCoreApplication::sendEvent(watched, &five);
            }
            m_replaying = false;
            return false;
        case State::Collecting:
        case State::SecondTrack:
            if (key->key() == Qt::Key_Escape) {
                restart();
                return false;
            }
            if (enter) {
                const QString burst = m_text;
                const bool firstTrack = m_state == State::Collecting;
                restart();
                if (firstTrack) {
                    m_swiped(burst);
                }
                return true;
            }
            if (m_state == State::Collecting && !text.isEmpty() && text.front().isPrint()) {
                m_text += text;
                if (m_text.size() > kLongestBurst) {
                    restart();
                }
            }
            return true;
    }
    return false;
}

}  // namespace brimsett
