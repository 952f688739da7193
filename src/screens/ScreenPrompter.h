#pragma once

#include "foundation/Prompter.h"

#include <QObject>

class QWidget;

namespace brimsett {

// A screen's own voice. Each screen speaks through one, made over the program's prompter: a
// message box it shows belongs to the screen (not the main menu), so that the keyboard comes
// back to the screen when the box closes. A prompter that shows no boxes (the tests') hears
// every message as before.
class ScreenPrompter : public QObject, public Prompter {
    Q_OBJECT

public:
    // Made as a child of the screen, which owns it.
    static ScreenPrompter& attach(Prompter& shared, QWidget* screen);
    // The prompter of the screen that holds object (itself or a parent of it); one over the
    // object's window when no screen on the way has its own.
    static Prompter& of(QObject* object);

    void tell(const QString& title, const QStringList& lines, Icon icon) override;
    Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
               Answer defaultAnswer) override;

private:
    ScreenPrompter(Prompter& shared, QWidget* screen);

    Prompter& m_shared;
    QWidget* m_screen;
};

}  // namespace brimsett
