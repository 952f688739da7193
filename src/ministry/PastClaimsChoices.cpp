#include "ministry/PastClaimsChoices.h"

#include "foundation/Database.h"
#include "foundation/SettingsStore.h"

#include <algorithm>

namespace brimsett::pastclaims {

namespace {

QStringList column(Database& db, const QString& statement, const QString& doing) {
    QSqlQuery q = db.exec(statement, {}, doing);
    QStringList values;
    while (q.next()) {
        const QString value = q.value(0).toString().trimmed();
        if (!value.isEmpty()) {
            values << value;
        }
    }
    return values;
}

}  // namespace

ScreenOptions ScreenOptions::read(const SettingsStore& store) {
    const QString section = QStringLiteral("Options");
    ScreenOptions o;
    o.status = store.readFlag(section, QStringLiteral("EnablePCStatus"));
    o.remittance = store.readFlag(section, QStringLiteral("EnableRA"));
    o.facility = store.readFlag(section, QStringLiteral("EnablePastFac"));
    // The old store ignored the case of a key; the INI file does not.
    o.withoutDoctor = store.readFlag(section, QStringLiteral("OptPCNoDoc")) ||
                      store.readFlag(section, QStringLiteral("OptPCnoDoc"));
    return o;
}

QStringList batchChoices(Database& db) {
    return column(db,
                  QStringLiteral("Select Distinct BatchID From batches Where BatchID Is Not Null"
                                 " Order By BatchID Desc"),
                  QStringLiteral("listing the batches"));
}

QStringList remittanceChoices(Database& db) {
    QStringList files;
    for (const QString& joined : column(
             db, QStringLiteral("Select Distinct RA From claims Where RA Is Not Null And RA <> ''"),
             QStringLiteral("listing the remittance files"))) {
        for (const QString& part : joined.split(QLatin1Char('!'), Qt::SkipEmptyParts)) {
            if (const QString file = part.trimmed(); !file.isEmpty()) {
                files << file;
            }
        }
    }
    std::sort(files.begin(), files.end());
    files.erase(std::unique(files.begin(), files.end()), files.end());
    return files;
}

QStringList facilityChoices(Database& db) {
    return column(db,
                  QStringLiteral("Select Distinct Facility From items Where Facility Is Not Null"
                                 " Order By Facility"),
                  QStringLiteral("listing the facilities"));
}

}  // namespace brimsett::pastclaims
