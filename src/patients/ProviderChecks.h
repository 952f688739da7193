#pragma once

#include "patients/Provider.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {

class Database;

// What stops a provider from being saved: everything the claim file needs from the row
// (billing number, group, specialty, ministry office, location), the office's own code and
// the lengths the columns hold.
class ProviderChecks {
public:
    static inline const QString kTitle = QStringLiteral("Error");
    static inline const QString kHeading =
        QStringLiteral("Cannot save this provider due to the following problem(s):");

    struct Problem {
        Provider::Field field;
        QString text;
    };

    explicit ProviderChecks(Database& db) : m_db(db) {}

    // The problems of a normalised provider, one each: the office code, the name, the codes
    // the claim file carries, then the lengths of the free texts. savedId is the Doctor ID the
    // row is stored under (empty for a new provider): the row itself is no duplicate.
    QList<Problem> problems(const Provider& provider, const QString& savedId) const;

    static QStringList texts(const QList<Problem>& problems);

private:
    bool doctorIdTaken(const QString& doctorId, const QString& savedId) const;

    Database& m_db;
};

}  // namespace brimsett
