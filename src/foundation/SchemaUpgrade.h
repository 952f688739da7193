#pragma once

#include <QString>
#include <QStringList>

namespace brimsett {

class Database;

// Brings an older office database up to the current layout by adding the columns, tables and
// indexes it lacks, always with the same statements in the same order. Returns true when
// the database already had everything, false when it changed anything. Each step (its look
// and its statement) is one transaction. A statement the engine refuses throws DbError and
// leaves its table as it was; the steps before it stay done, so the next start finds only
// the remaining work.
// `executed`, when given, receives each statement run, in order.
bool upgradeSchema(Database& db, QStringList* executed = nullptr);

}  // namespace brimsett
