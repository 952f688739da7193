#include "foundation/UnsavedChanges.h"

#include "foundation/Prompter.h"

namespace brimsett {

bool mayLeaveChanges(Prompter& prompter, const QString& title, bool changed,
                     const std::function<bool()>& save) {
    if (!changed) {
        return true;
    }
    switch (prompter.ask(title, {QStringLiteral("Save changes?")}, Icon::Question,
                         Buttons::YesNoCancel, Answer::Cancel)) {
        case Answer::Yes:
            return save();
        case Answer::No:
            return true;
        default:
            return false;
    }
}

}  // namespace brimsett
