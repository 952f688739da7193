#pragma once

#include <QString>
#include <QStringList>

namespace brimsett {

class Database;

// The complete current layout of the office database, declared in one place.
namespace schema {

// Creates every table (with keys and indexes) that is missing, and fills the reference
// tables whose content is fact (provinces). One transaction.
void create(Database& db);

// Names of all tables of the current layout, as they are written in the statements.
QStringList tableNames();

}  // namespace schema
}  // namespace brimsett
