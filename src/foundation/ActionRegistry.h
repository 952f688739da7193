#pragma once

#include <QHash>
#include <QString>

#include <functional>
#include <optional>

namespace brimsett {

// What each menu action number and each receiver command word does. The main window and
// the receiver both dispatch through here; each screen registers itself when it exists.
class ActionRegistry {
public:
    using Action = std::function<void()>;
    // The answer is sent back to the sibling program that sent the word.
    using Command = std::function<QString(const QString& arguments)>;

    void setAction(int action, QString title, Action run);
    bool hasAction(int action) const { return m_actions.contains(action); }
    // False when nothing is registered under the number.
    bool runAction(int action) const;

    void setCommand(const QString& word, Command run);
    bool hasCommand(const QString& word) const { return m_commands.contains(word.toUpper()); }
    // A command line is a word and its arguments; an unknown word gives no value.
    std::optional<QString> runCommand(const QString& line) const;

private:
    struct Entry {
        QString title;
        Action run;
    };
    QHash<int, Entry> m_actions;
    QHash<QString, Command> m_commands;
};

}  // namespace brimsett
