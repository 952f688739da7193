#pragma once

#include "patients/Provider.h"

#include <QList>
#include <QString>

#include <optional>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;
struct AppSettings;

// Listing, saving, renumbering and deleting the office's providers. Every question and
// message goes through the Prompter; each save or delete is one transaction, and its
// statements go to the SQL log (when logging is on) only after the commit.
//
// A provider's Doctor ID is what appointments, templates and claims point at, so a new ID
// takes them along, and a deleted provider leaves appointments and templates unassigned.
// The settings that remember a provider ("LastDoctor" and the other screens' choices) follow
// both changes.
class ProviderRegister {
public:
    static inline const QString kDeleteTitle = QStringLiteral("Delete Provider");
    static inline const QString kRenumberTitle = QStringLiteral("Change Doctor ID");
    static inline const QString kLeaveTitle = QStringLiteral("Provider changed");

    ProviderRegister(Database& db, AppSettings& settings, Prompter& prompter, const SqlLog& log);

    // Every provider, in Doctor ID order.
    QList<Provider> list();
    // The stored provider; the ID is compared without regard to case.
    std::optional<Provider> load(const QString& doctorId);

    // Saves the provider as typed (normalised first). savedId is the ID the row is stored
    // under, empty for a new provider; a different Doctor ID renumbers after a question
    // (default No). Problems are shown at once under ProviderChecks::kHeading and nothing is
    // written. Returns the provider as stored, or none when nothing was saved; badField()
    // then names the first field to correct, if a check refused.
    std::optional<Provider> save(const Provider& typed, const QString& savedId);
    std::optional<Provider::Field> badField() const { return m_badField; }

    // Refuses a provider with pending claims, asks (default No), then deletes the row and
    // sets DoctorID to NULL in appointments and apptemplates. True when deleted.
    bool remove(const QString& doctorId);

private:
    // The work of save() and remove(); a refused statement throws, and the transaction
    // rolls back on the way out.
    std::optional<Provider> trySave(const Provider& provider, const QString& savedId);
    bool tryRemove(const QString& doctorId);
    qint64 pendingClaims(const QString& doctorId);
    void renumberSettings(const QString& from, const QString& to);

    Database& m_db;
    AppSettings& m_settings;
    Prompter& m_prompter;
    const SqlLog& m_log;
    std::optional<Provider::Field> m_badField;
};

}  // namespace brimsett
