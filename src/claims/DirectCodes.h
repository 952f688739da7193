#pragma once

#include "foundation/Money.h"

#include <QString>

#include <optional>

namespace brimsett {

class Database;

// The office's own prices for services billed directly or to a third party
// (`servicecodesdirect`).
namespace directcodes {

struct DirectCode {
    QString serviceCode;       // as stored
    std::optional<Money> fee;  // NULL: no price
};

// The row of the code as typed, or else of the four-character fee code of a schedule code
// billed directly ("A007A" by "A007"); either without regard to case or blanks. `doing`
// names the caller in a database error.
std::optional<DirectCode> find(Database& db, const QString& code, const QString& doing);

}  // namespace directcodes

}  // namespace brimsett
