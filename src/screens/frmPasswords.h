#pragma once

#include "foundation/PasswordActions.h"

#include <QDialog>

class QComboBox;
class QLineEdit;

namespace brimsett {

class AccessLevels;
class Prompter;

// "Passwords": sets, changes and removes the level passwords of this computer.
class frmPasswords : public QDialog {
    Q_OBJECT
public:
    frmPasswords(AccessLevels& levels, Prompter& prompter, QWidget* parent = nullptr);

private:
    int chosenLevel() const;
    void changeClicked();
    void removeClicked();
    void clearFields();

    PasswordActions m_actions;
    QComboBox* m_level = nullptr;
    QLineEdit* m_current = nullptr;
    QLineEdit* m_new = nullptr;
    QLineEdit* m_confirm = nullptr;
};

}  // namespace brimsett
