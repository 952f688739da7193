#pragma once

#include <QApplication>
#include <QList>
#include <QPointer>
#include <QWidget>

namespace brimsett {

// Parts of a window that wait while work that must not be interrupted runs (the screen
// keeps repainting meanwhile): they are disabled, the cursor waits, and the field that had
// the focus gets it back afterwards.
class BusyParts {
public:
    explicit BusyParts(QList<QWidget*> parts) : m_parts(std::move(parts)) {
        m_focus = QApplication::focusWidget();
        for (QWidget* part : std::as_const(m_parts)) {
            part->setEnabled(false);
        }
        QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~BusyParts() {
        QApplication::restoreOverrideCursor();
        for (QWidget* part : std::as_const(m_parts)) {
            part->setEnabled(true);
        }
        if (m_focus) {
            m_focus->setFocus();
        }
    }
    BusyParts(const BusyParts&) = delete;
    BusyParts& operator=(const BusyParts&) = delete;

private:
    QList<QWidget*> m_parts;
    QPointer<QWidget> m_focus;
};

}  // namespace brimsett
