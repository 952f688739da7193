#pragma once

namespace brimsett {

// Escape pressed while a drop-down list is open closes the list and nothing else. Left to
// itself Qt closes the list on the key's first event and then hands the key to the window,
// whose Escape closes the screen. Installed once for the application; each screen asks for
// it when it is made, so tests of a single screen have it too.
void keepEscapeForOpenLists();

}  // namespace brimsett
