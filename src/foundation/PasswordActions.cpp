#include "foundation/PasswordActions.h"

#include "foundation/AccessLevels.h"
#include "foundation/Prompter.h"

namespace brimsett {

namespace {

const QString kTitle = QStringLiteral("Passwords");

QStringList masterFirst() {
    return {QStringLiteral("You must create a Master password"),
            QStringLiteral("before creating any lower level passwords.")};
}

QString success(const QString& what) {
    return QStringLiteral("Password was successfully ") + what + QLatin1Char('.');
}

}  // namespace

void PasswordActions::say(const QString& line) {
    m_prompter.tell(kTitle, {line}, Icon::Information);
}

void PasswordActions::invalid() {
    m_prompter.tell(QStringLiteral("Invalid"), {QStringLiteral("Invalid Password")},
                    Icon::Critical);
}

bool PasswordActions::change(int level, const QString& current, const QString& newPassword,
                             const QString& confirmation) {
    if (level != AccessLevels::kMaster && !m_levels.isSet(AccessLevels::kMaster)) {
        m_prompter.tell(kTitle, masterFirst(), Icon::Warning);
        return false;
    }
    if (!m_levels.mayManage(level, current)) {
        invalid();
        return false;
    }
    if (newPassword != confirmation) {
        m_prompter.tell(kTitle,
                        {QStringLiteral("The new password and its confirmation do not match.")},
                        Icon::Warning);
        return false;
    }
    switch (m_levels.change(level, newPassword)) {
        case AccessLevels::ChangeResult::Changed:
            say(success(QStringLiteral("changed")));
            return true;
        case AccessLevels::ChangeResult::MasterFirst:
            m_prompter.tell(kTitle, masterFirst(), Icon::Warning);
            return false;
        case AccessLevels::ChangeResult::InUse:
            m_prompter.tell(kTitle, {QStringLiteral("Another level already has this password.")},
                            Icon::Warning);
            return false;
        case AccessLevels::ChangeResult::Unchanged:
            break;
    }
    say(QStringLiteral("No changes were made"));
    return false;
}

bool PasswordActions::remove(int level, const QString& current) {
    if (!m_levels.isSet(level)) {
        say(QStringLiteral("No changes were made"));
        return false;
    }
    if (!m_levels.mayManage(level, current)) {
        invalid();
        return false;
    }
    const QStringList question = {
        QStringLiteral("You are removing the 'Level ") + QString::number(level) +
            QStringLiteral("' password."),
        QStringLiteral("This will also remove all lower level passwords."),
        QStringLiteral("Are you sure?")};
    if (!m_prompter.confirm(QStringLiteral("Removing password"), question)) {
        return false;
    }
    m_levels.remove(level);
    say(success(QStringLiteral("removed")));
    return true;
}

bool PasswordActions::login(const QString& password) {
    if (m_levels.login(password)) {
        return true;
    }
    invalid();
    return false;
}

}  // namespace brimsett
