#include "foundation/ActionRegistry.h"

namespace brimsett {

void ActionRegistry::setAction(int action, QString title, Action run) {
    m_actions.insert(action, Entry{std::move(title), std::move(run)});
}

bool ActionRegistry::runAction(int action) const {
    const auto it = m_actions.constFind(action);
    if (it == m_actions.cend() || !it->run) {
        return false;
    }
    it->run();
    return true;
}

void ActionRegistry::setCommand(const QString& word, Command run) {
    m_commands.insert(word.toUpper(), std::move(run));
}

std::optional<QString> ActionRegistry::runCommand(const QString& line) const {
    const QString trimmed = line.trimmed();
    const qsizetype space = trimmed.indexOf(QLatin1Char(' '));
    const QString word = (space < 0 ? trimmed : trimmed.left(space)).toUpper();
    const QString arguments = space < 0 ? QString() : trimmed.mid(space + 1).trimmed();
    const auto it = m_commands.constFind(word);
    if (it == m_commands.cend() || !*it) {
        return std::nullopt;
    }
    return (*it)(arguments);
}

}  // namespace brimsett
