#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace brimsett::schema {

// One table of the current layout. Column texts use the old engine's type words
// ("Text(12)", "Long", "Currency", ...); the dialect turns them into the engine's own.
struct TableDefinition {
    const char* name;
    const char* columns;               // "Name Type [NOT NULL], ..."
    const char* primaryKey = nullptr;  // column list, or none
    // Each a column list, "ClaimID, ServiceDate", or an expression, "Lower(PatientName)".
    std::vector<const char*> indexes;

    // A name with a blank (the overnight card batches) must be bracketed in statements.
    QString quotedName() const;
    QString createStatement() const;
    QStringList indexStatements() const;
};

// Every table of the current layout, in creation order.
const std::vector<TableDefinition>& tableDefinitions();

}  // namespace brimsett::schema
