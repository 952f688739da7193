#pragma once

#include <QString>

namespace brimsett {

class AccessLevels;
class Prompter;

// What the Passwords and Login screens do with what was typed into them; the screens only
// read their fields and pass them on. Every outcome is told through the prompter.
//
// Changing or removing a level that has (or is guarded by) a password takes the current
// password of that level or of a stronger one, typed on the screen. Answering No to the
// removal question changes nothing and says nothing more.
class PasswordActions {
public:
    PasswordActions(AccessLevels& levels, Prompter& prompter)
        : m_levels(levels), m_prompter(prompter) {}

    // True when the new password was stored.
    bool change(int level, const QString& current, const QString& newPassword,
                const QString& confirmation);
    // True when the level (and every weaker one) was removed.
    bool remove(int level, const QString& current);
    // True when the password is one of the levels'; the current level is then set.
    bool login(const QString& password);

private:
    void say(const QString& line);
    void invalid();

    AccessLevels& m_levels;
    Prompter& m_prompter;
};

}  // namespace brimsett
