#pragma once

#include "foundation/Prompter.h"

class QWidget;

namespace brimsett {

// Shows the program's messages in message boxes over the given window.
class MessageBoxPrompter : public Prompter {
public:
    explicit MessageBoxPrompter(QWidget* parent = nullptr) : m_parent(parent) {}
    void setParent(QWidget* parent) { m_parent = parent; }
    void tell(const QString& title, const QStringList& lines, Icon icon) override;
    Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
               Answer defaultAnswer) override;

private:
    QWidget* m_parent = nullptr;
};

}  // namespace brimsett
