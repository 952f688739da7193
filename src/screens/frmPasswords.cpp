#include "screens/frmPasswords.h"

#include "foundation/AccessLevels.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace brimsett {

namespace {

QLineEdit* passwordField(QWidget* parent) {
    auto* field = new QLineEdit(parent);
    field->setEchoMode(QLineEdit::Password);
    return field;
}

}  // namespace

frmPasswords::frmPasswords(AccessLevels& levels, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_actions(levels, ScreenPrompter::attach(prompter, this)) {
    setWindowTitle(QStringLiteral("Passwords"));

    m_level = new QComboBox(this);
    for (int level = 0; level < AccessLevels::kLevelCount; ++level) {
        const QString name = AccessLevels::levelName(level);
        m_level->addItem(
            QStringLiteral("Level %1").arg(level) +
                (name.isEmpty() ? QString() : QStringLiteral(" (") + name + QLatin1Char(')')),
            level);
    }
    m_current = passwordField(this);
    m_new = passwordField(this);
    m_confirm = passwordField(this);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Level:"), m_level);
    form->addRow(QStringLiteral("C&urrent password:"), m_current);
    form->addRow(QStringLiteral("&New password:"), m_new);
    form->addRow(QStringLiteral("Con&firm:"), m_confirm);

    auto* change = new QPushButton(QStringLiteral("&Change"), this);
    auto* remove = new QPushButton(QStringLiteral("&Remove"), this);
    auto* close = new QPushButton(QStringLiteral("Cl&ose"), this);
    change->setDefault(true);
    connect(change, &QPushButton::clicked, this, guarded(this, &frmPasswords::changeClicked));
    connect(remove, &QPushButton::clicked, this, guarded(this, &frmPasswords::removeClicked));
    connect(close, &QPushButton::clicked, this, guarded(this, &QDialog::reject));

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(change);
    buttons->addWidget(remove);
    buttons->addWidget(close);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(buttons);
}

int frmPasswords::chosenLevel() const {
    return m_level->currentData().toInt();
}

void frmPasswords::clearFields() {
    m_current->clear();
    m_new->clear();
    m_confirm->clear();
    m_current->setFocus();
}

void frmPasswords::changeClicked() {
    if (m_actions.change(chosenLevel(), m_current->text(), m_new->text(), m_confirm->text())) {
        clearFields();
    }
}

void frmPasswords::removeClicked() {
    if (m_actions.remove(chosenLevel(), m_current->text())) {
        clearFields();
    }
}

}  // namespace brimsett
