#pragma once

class QLineEdit;

namespace brimsett {

// The field shows what is typed (or pasted) in capitals at once, the cursor staying where
// it was: postal codes are written so on every letter the office sends.
void capitalsAsTyped(QLineEdit* field);

}  // namespace brimsett
