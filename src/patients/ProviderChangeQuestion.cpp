#include "patients/ProviderChangeQuestion.h"

#include "foundation/Prompter.h"

namespace brimsett {

LeaveChoice askToSaveChanges(Prompter& prompter, const QString& title) {
    switch (prompter.ask(title, {QStringLiteral("Save changes?")}, Icon::Question,
                         Buttons::YesNoCancel, Answer::Cancel)) {
        case Answer::Yes:
            return LeaveChoice::Save;
        case Answer::No:
            return LeaveChoice::Discard;
        default:
            return LeaveChoice::Stay;
    }
}

}  // namespace brimsett
