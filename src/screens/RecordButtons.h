#pragma once

#include "screens/SlotGuard.h"

#include <QHBoxLayout>
#include <QKeySequence>
#include <QPushButton>
#include <QShortcut>

namespace brimsett {

// The button row of a record screen: New, Save and Delete on the left, Close on the right.
struct RecordButtons {
    QPushButton* add = nullptr;
    QPushButton* save = nullptr;
    QPushButton* remove = nullptr;
    QPushButton* close = nullptr;
    QHBoxLayout* row = nullptr;

    // A button of the screen's own, placed just before Close.
    void addBeforeClose(QPushButton* button) { row->insertWidget(row->indexOf(close), button); }
};

// Makes the row with each action guarded and Ctrl+S saving. No button takes Enter, which
// moves between the fields.
template <typename Screen, typename New, typename Save, typename Delete, typename Close>
RecordButtons recordButtons(Screen* screen, New onNew, Save onSave, Delete onDelete, Close onClose,
                            const QString& deleteTip = {}) {
    RecordButtons b;
    b.add = new QPushButton(QStringLiteral("&New"), screen);
    b.save = new QPushButton(QStringLiteral("&Save"), screen);
    b.remove = new QPushButton(QStringLiteral("&Delete"), screen);
    b.close = new QPushButton(QStringLiteral("Close"), screen);
    b.save->setToolTip(QStringLiteral("Ctrl+S"));
    b.remove->setToolTip(deleteTip);
    b.close->setToolTip(QStringLiteral("Esc"));
    b.row = new QHBoxLayout;
    for (QPushButton* button : {b.add, b.save, b.remove}) {
        button->setAutoDefault(false);
        b.row->addWidget(button);
    }
    b.row->addStretch();
    b.close->setAutoDefault(false);
    b.row->addWidget(b.close);
    QObject::connect(b.add, &QPushButton::clicked, screen, guarded(screen, onNew));
    QObject::connect(b.save, &QPushButton::clicked, screen, guarded(screen, onSave));
    QObject::connect(b.remove, &QPushButton::clicked, screen, guarded(screen, onDelete));
    QObject::connect(b.close, &QPushButton::clicked, screen, guarded(screen, onClose));
    QObject::connect(new QShortcut(QKeySequence(Qt::CTRL | Qt::Key_S), screen),
                     &QShortcut::activated, screen, guarded(screen, onSave));
    return b;
}

}  // namespace brimsett
