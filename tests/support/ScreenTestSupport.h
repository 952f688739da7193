#pragma once

#include <QString>
#include <QStringList>
#include <QTreeWidget>
#include <QWidget>

// What the screen tests share in looking at a window.
namespace brimsett::test {

// The window's child of that object name; a missing one is a broken test, said at once.
template <typename T>
T* childNamed(const QWidget* window, const char* name) {
    T* found = window->findChild<T*>(QString::fromLatin1(name));
    if (found == nullptr) {
        qFatal("no child %s", name);
    }
    return found;
}

// Each row of a list as its cells joined by "|".
inline QStringList treeRows(const QTreeWidget* list) {
    QStringList rows;
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QStringList cells;
        for (int c = 0; c < list->columnCount(); ++c) {
            cells << list->topLevelItem(i)->text(c);
        }
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

}  // namespace brimsett::test
