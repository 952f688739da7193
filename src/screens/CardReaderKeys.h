#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>

class QWidget;

namespace brimsett {

// A magnetic-stripe reader types the card's track as keystrokes and ends it with Enter. While
// the window is the active one, its bursts are caught wherever the keyboard focus is (a
// button, a list): key text that starts with "%", or with "5" then "B"/"b" (a reader whose
// shift state is lost), is kept from the focused widget until Enter and then handed over
// whole. Fields left to themselves (a box the stripe may be typed into) get their keys as
// usual. A burst that pauses longer than a reader would is dropped. A second track (";" up to
// Enter), which some readers type after the first, is taken in and dropped, so its Enter
// never presses the button the first track's card left the focus on.
class CardReaderKeys : public QObject {
public:
    using Swiped = std::function<void(const QString& text)>;

    CardReaderKeys(QWidget* window, Swiped swiped);
    void leaveAlone(QWidget* field);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class State { Idle, SawFive, Collecting, SecondTrack };
    static constexpr int kLongestPauseMs = 1500;
    static constexpr int kLongestBurst = 256;

    bool reaches(QObject* watched) const;
    void restart() {
        m_state = State::Idle;
        m_text.clear();
    }

    QWidget* m_window;
    Swiped m_swiped;
    QList<QPointer<QWidget>> m_leftAlone;
    State m_state = State::Idle;
    bool m_replaying = false;
    QString m_text;
    QElapsedTimer m_lastKey;
};

}  // namespace brimsett
