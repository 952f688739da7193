#pragma once

#include <QByteArray>
#include <QStringList>

#include <cstddef>
#include <cstdint>

namespace brimsett {

class Database;
class SqlLog;

namespace fuzz {

// A small office shared by every input of a run: a database in a temporary folder holding a
// few claims whose account numbers, codes and dates the seed files answer, so that inputs
// reach the matching and writing code and not only the parsing.
Database& office();
const SqlLog& sqlLog();

// The input's records, as the readers receive them.
QStringList linesOf(const std::uint8_t* data, std::size_t size);

// Runs `work` inside a transaction that is always rolled back, so that every input meets
// the same office; then checks that no item was left with a status the readers never write.
template <class Work>
void inRolledBackTransaction(Work&& work);

void checkStatuses();

}  // namespace fuzz
}  // namespace brimsett

#include "foundation/Database.h"

template <class Work>
void brimsett::fuzz::inRolledBackTransaction(Work&& work) {
    Transaction outer(office(), QStringLiteral("fuzzing"));
    work();
    checkStatuses();
}
