#pragma once

#include <QRect>
#include <QString>

class QWidget;

namespace brimsett {

class SettingsStore;

// The size and place of the record windows are kept in the settings section "Windows", one
// key per window ("left,top,width,height"), saved whenever the window closes or hides and
// put back when it is made, so each computer's desk finds its windows where it left them.
namespace windowplace {

inline const QString kSection = QStringLiteral("Windows");

// The rectangle moved and shrunk to lie inside the available area (a window kept on a
// screen that is gone, or a larger one, still opens whole).
QRect clamped(QRect rect, const QRect& available);

// Puts the window where it was last left (clamped to the screen it lands on) and saves its
// place under key each time it closes or hides. The store must outlive the window.
void remember(QWidget* window, SettingsStore& store, const QString& key);

}  // namespace windowplace
}  // namespace brimsett
