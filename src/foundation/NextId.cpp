#include "foundation/NextId.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/SqlText.h"

#include <stdexcept>

namespace brimsett {

namespace {

void requirePlainName(const QString& name, const char* what) {
    if (!sqltext::isPlainName(name)) {
        throw std::invalid_argument(std::string(what) +
                                    " is not a plain name: " + name.toStdString());
    }
}

// Max() of an empty set is NULL, which counts as 0.
qint64 followingId(const QVariant& highest) {
    bool ok = false;
    const qint64 value = highest.toLongLong(&ok);
    return (ok ? value : 0) + 1;
}

}  // namespace

qint64 nextId(Database& db, const QString& table, const QString& column) {
    requirePlainName(table, "table");
    requirePlainName(column, "column");
    return followingId(db.scalar(QStringLiteral("Select Max(%1) From %2").arg(column, table), {},
                                 QStringLiteral("finding the next %1 of %2").arg(column, table)));
}

qint64 nextPatientId(Database& db, const AppSettings& settings) {
    QString statement = QStringLiteral("Select Max(PatientID) From patients");
    QVariantList values;
    if (settings.nextIDUnder > 0) {
        statement += QStringLiteral(" Where PatientID<?");
        values << settings.nextIDUnder;
    }
    return followingId(db.scalar(statement, values, QStringLiteral("finding the next patient id")));
}

QVariant scalarLookup(Database& db, const QString& function, const QString& column,
                      const QString& table, const QString& condition, const QVariantList& values) {
    requirePlainName(function, "function");
    if (column != QLatin1String("*")) {
        requirePlainName(column, "column");
    }
    requirePlainName(table, "table");
    const QString statement =
        QStringLiteral("Select %1(%2) From %3 Where %4").arg(function, column, table, condition);
    return db.scalar(statement, values,
                     QStringLiteral("looking up %1(%2) of %3").arg(function, column, table));
}

}  // namespace brimsett
