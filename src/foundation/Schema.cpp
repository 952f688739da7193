#include "foundation/Schema.h"

#include "foundation/Database.h"
#include "foundation/Provinces.h"
#include "foundation/SchemaTables.h"

namespace brimsett::schema {

namespace {

void fillProvinces(Database& db) {
    const QString doing = QStringLiteral("filling the province table");
    if (db.scalar(QStringLiteral("SELECT Count(*) FROM provincodes"), {}, doing).toLongLong() > 0) {
        return;
    }
    for (const ProvinceRow& row : initialProvinceRows()) {
        db.exec(QStringLiteral("INSERT INTO provincodes (ProvinCode, ProvName, Format) "
                               "VALUES (?, ?, ?)"),
                {row.code, row.name, row.numberLength ? QVariant(*row.numberLength) : QVariant()},
                doing);
    }
}

}  // namespace

void create(Database& db) {
    Transaction transaction(db, QStringLiteral("creating the database tables"));
    for (const TableDefinition& table : tableDefinitions()) {
        const QString name = QString::fromLatin1(table.name);
        // An existing table is left exactly as it is; bringing its columns up to date is the
        // upgrade's work.
        if (db.hasTable(name)) {
            continue;
        }
        const QString doing = QStringLiteral("creating table %1").arg(name);
        db.exec(db.dialect().ddl(table.createStatement()), {}, doing);
        for (const QString& index : table.indexStatements()) {
            db.exec(db.dialect().ddl(index), {}, doing);
        }
    }
    fillProvinces(db);
    transaction.commit();
}

QStringList tableNames() {
    QStringList names;
    for (const TableDefinition& table : tableDefinitions()) {
        names << QString::fromLatin1(table.name);
    }
    return names;
}

}  // namespace brimsett::schema
