#pragma once

#include <QString>

#include <functional>

namespace brimsett {

class Prompter;

// Whether the user may leave a record that has unsaved changes (for another record, a new
// one, or by closing the screen). Asks "Save changes?" under the given title with Yes, No
// and Cancel: Yes runs save and leaves only when it succeeded, No drops the changes, and
// Cancel, the default, stays on the record so that a key pressed by mistake loses nothing.
// Without changes nothing is asked.
bool mayLeaveChanges(Prompter& prompter, const QString& title, bool changed,
                     const std::function<bool()>& save);

}  // namespace brimsett
