#pragma once

#include "foundation/DbError.h"

#include <concepts>
#include <functional>
#include <utility>

class QObject;

namespace brimsett {

// Tells the user, through the prompter of the screen that holds screen, that the database
// refused what an action asked and that nothing of the action was kept.
void reportRefusal(QObject* screen, const DbError& error);

// What a screen connects to a signal: runs action (a callable, or a member function of
// Screen) and turns a database refusal into a message over the screen, so that no exception
// crosses Qt's event loop. The action's transaction has rolled back by then. Arguments of the
// signal the action does not take are dropped, as with a plain connect.
template <typename Screen, typename Action>
auto guarded(Screen* screen, Action action) {
    return [ screen, action = std::move(action) ]<typename... Args>(
        Args && ... args) requires std::invocable<Action&, Args...> ||
        std::invocable<Action&, Screen*, Args...> {
        try {
            if constexpr (std::invocable<Action&, Args...>) {
                std::invoke(action, std::forward<Args>(args)...);
            } else {
                std::invoke(action, screen, std::forward<Args>(args)...);
            }
        } catch (const DbError& error) {
            reportRefusal(screen, error);
        }
    };
}

}  // namespace brimsett
