#pragma once

#include <QString>

namespace brimsett {

// A person's name as the front desk expects to see it, from a name typed or read off a card
// in one case throughout:
//  - Blanks at either end are dropped and a run of blanks inside becomes one blank.
//  - A name that already mixes upper and lower case ("McDONALD", "van der Berg", "DeLuca")
//    was capitalised on purpose and is kept as it stands (blanks tidied only).
//  - Otherwise every part begins with a capital and the rest is lower case; parts are
//    separated by blanks, hyphens and apostrophes: "mary ann" -> "Mary Ann",
//    "MACDONALD-SMITH" -> "Macdonald-Smith", "ST-PIERRE" -> "St-Pierre",
//    "VAN DER BERG" -> "Van Der Berg".
//  - After an apostrophe the capital comes back only behind a one-letter part ("O'BRIEN" ->
//    "O'Brien", "D'ARCY" -> "D'Arcy"); otherwise the letter stays small ("JOHN'S" -> "John's").
//    The typographic apostrophe counts as one.
//  - "Mc" at the start of a part is followed by a capital ("MCDONALD" -> "McDonald"), a
//    prefix without exceptions in practice; "Mac" is not ("Macdonald", "Mack", "Machado").
QString nameCase(const QString& typed);

}  // namespace brimsett
