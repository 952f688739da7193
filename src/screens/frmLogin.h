#pragma once

#include "foundation/PasswordActions.h"

#include <QDialog>

class QLineEdit;

namespace brimsett {

class AccessLevels;
class Prompter;

// "Login": one password field; accepted once the password matches a level.
class frmLogin : public QDialog {
    Q_OBJECT
public:
    frmLogin(AccessLevels& levels, Prompter& prompter, QWidget* parent = nullptr);

private:
    void tryLogin();

    PasswordActions m_actions;
    QLineEdit* m_password = nullptr;
};

}  // namespace brimsett
