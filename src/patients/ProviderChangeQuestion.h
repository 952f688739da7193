#pragma once

#include <QString>

namespace brimsett {

class Prompter;

// What to do with unsaved changes when the user leaves a provider or referring doctor.
enum class LeaveChoice { Save, Discard, Stay };

// "Save changes?" under the given title, with Yes, No and Cancel; Cancel, the default,
// stays on the record so that an Enter pressed by mistake loses nothing.
LeaveChoice askToSaveChanges(Prompter& prompter, const QString& title);

}  // namespace brimsett
