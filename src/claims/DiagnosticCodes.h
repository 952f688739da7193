#pragma once

#include <QString>

namespace brimsett {
class Database;
}

// Whether a diagnostic code is one the office bills with.
namespace brimsett::diagcodes {

// The code (trimmed by the caller) is in `diagcodes`, or the list is still empty: a new
// office's list refuses nothing until it has been filled.
bool isListed(Database& db, const QString& code, const QString& doing);

// Of the right form (claimform::isDiagnosticCode) and listed.
bool isValid(Database& db, const QString& code, const QString& doing);

}  // namespace brimsett::diagcodes
