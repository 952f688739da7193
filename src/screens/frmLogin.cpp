#include "screens/frmLogin.h"
#include "screens/ScreenPrompter.h"
#include "screens/SlotGuard.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace brimsett {

frmLogin::frmLogin(AccessLevels& levels, Prompter& prompter, QWidget* parent)
    : QDialog(parent), m_actions(levels, ScreenPrompter::attach(prompter, this)) {
    setWindowTitle(QStringLiteral("Login"));

    m_password = new QLineEdit(this);
    m_password->setEchoMode(QLineEdit::Password);

    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("&Password:"), m_password);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, guarded(this, &frmLogin::tryLogin));
    connect(buttons, &QDialogButtonBox::rejected, this, guarded(this, &QDialog::reject));

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
}

void frmLogin::tryLogin() {
    if (m_actions.login(m_password->text())) {
        accept();
        return;
    }
    m_password->clear();
    m_password->setFocus();
}

}  // namespace brimsett
