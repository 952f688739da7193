#include "patients/ProviderRegister.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"
#include "patients/ProviderChecks.h"

#include <QSqlRecord>

namespace brimsett {

namespace {

const QString kPending = QStringLiteral("000000000000");

// The tables that point at a provider by Doctor ID and move with a new one. Claims move too:
// a batch finds its pending claims by Doctor ID, and past claims are reread with their
// provider's modifier when a batch is reversed.
const QStringList kMovedByRenumber = {QStringLiteral("appointments"),
                                      QStringLiteral("apptemplates"), QStringLiteral("claims")};
// The tables whose rows are kept, unassigned, when their provider is deleted. Claims keep
// their Doctor ID: they are what was billed under it.
const QStringList kReleasedByDelete = {QStringLiteral("appointments"),
                                       QStringLiteral("apptemplates")};

QString quoted(const QString& value) {
    return sqltext::quoteValue(value);
}

}  // namespace

ProviderRegister::ProviderRegister(Database& db, AppSettings& settings, Prompter& prompter,
                                   const SqlLog& log)
    : m_db(db), m_settings(settings), m_prompter(prompter), m_log(log) {}

QList<Provider> ProviderRegister::list() {
    QList<Provider> providers;
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From Doctors Order By DoctorID"), {},
                            QStringLiteral("listing the providers"));
    while (q.next()) {
        providers << Provider::fromRecord(q.record());
    }
    return providers;
}

std::optional<Provider> ProviderRegister::load(const QString& doctorId) {
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select * From Doctors Where Upper(DoctorID)=?"),
                  {doctorId.trimmed().toUpper()}, QStringLiteral("reading provider ") + doctorId);
    if (!q.next()) {
        return std::nullopt;
    }
    return Provider::fromRecord(q.record());
}

std::optional<Provider> ProviderRegister::save(const Provider& typed, const QString& savedId) {
    m_badField.reset();
    try {
        return trySave(typed.normalised(), savedId);
    } catch (const DbError& e) {
        // The transaction, if one was open, has been rolled back.
        m_prompter.error({QStringLiteral("Provider %1 was not saved; nothing was changed.")
                              .arg(typed.normalised().doctorId),
                          e.message()});
        return std::nullopt;
    }
}

std::optional<Provider> ProviderRegister::trySave(const Provider& provider,
                                                  const QString& savedId) {
    const QList<ProviderChecks::Problem> problems =
        ProviderChecks(m_db).problems(provider, savedId);
    if (!problems.isEmpty()) {
        m_badField = problems.first().field;
        m_prompter.tell(ProviderChecks::kTitle,
                        QStringList{ProviderChecks::kHeading} + ProviderChecks::texts(problems),
                        Icon::Critical);
        return std::nullopt;
    }
    const bool isNew = savedId.isEmpty();
    const bool renumbered = !isNew && provider.doctorId != savedId;
    if (renumbered &&
        !m_prompter.confirm(
            kRenumberTitle,
            {QStringLiteral("Change Doctor ID %1 to %2?").arg(savedId, provider.doctorId),
             QStringLiteral("The provider's appointments, templates and claims move to the "
                            "new ID.")})) {
        return std::nullopt;
    }

    SqlStatementBuilder builder;
    if (isNew) {
        builder.beginInsert(QStringLiteral("Doctors"));
    } else {
        builder.beginUpdate(QStringLiteral("Doctors"));
    }
    for (const Provider::Column& c : Provider::columns()) {
        builder.addField(c.name, provider.*c.member, SqlStatementBuilder::Kind::Text);
    }

    QStringList logged;
    {
        Transaction transaction(m_db, QStringLiteral("saving provider ") + provider.doctorId);
        if (isNew) {
            const auto bound = builder.boundInsert();
            m_db.exec(bound.sql, bound.values,
                      QStringLiteral("adding provider ") + provider.doctorId);
            logged << builder.finishInsert();
        } else {
            const auto bound = builder.boundUpdate(QStringLiteral("DoctorID=?"), {savedId});
            const QSqlQuery q =
                m_db.exec(bound.sql, bound.values, QStringLiteral("saving provider ") + savedId);
            if (q.numRowsAffected() == 0) {
                m_prompter.error(
                    {QStringLiteral("Provider %1 is no longer in the database.").arg(savedId),
                     QStringLiteral("Nothing was saved.")});
                return std::nullopt;
            }
            logged << builder.finishUpdate(QStringLiteral("DoctorID=") + quoted(savedId));
        }
        if (renumbered) {
            for (const QString& table : kMovedByRenumber) {
                m_db.exec(QStringLiteral("Update %1 Set DoctorID=? Where DoctorID=?").arg(table),
                          {provider.doctorId, savedId},
                          QStringLiteral("moving the %1 of provider %2").arg(table, savedId));
                logged << QStringLiteral("Update %1 Set DoctorID=%2 Where DoctorID=%3")
                              .arg(table, quoted(provider.doctorId), quoted(savedId));
            }
        }
        transaction.commit();
    }
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
    if (renumbered) {
        renumberSettings(savedId, provider.doctorId);
    }
    return provider;
}

bool ProviderRegister::remove(const QString& doctorId) {
    try {
        return tryRemove(doctorId);
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("Provider %1 was not deleted; nothing was changed.").arg(doctorId),
             e.message()});
        return false;
    }
}

bool ProviderRegister::tryRemove(const QString& doctorId) {
    const std::optional<Provider> provider = load(doctorId);
    if (!provider) {
        return false;
    }
    const QString id = provider->doctorId;
    const auto refuse = [this, &id](qint64 pending) {
        m_prompter.tell(
            kDeleteTitle,
            {QStringLiteral("Provider %1 still has %2 pending claim(s).").arg(id).arg(pending),
             QStringLiteral("Submit or delete them before deleting the provider.")},
            Icon::Warning);
        return false;
    };
    if (const qint64 pending = pendingClaims(id); pending > 0) {
        return refuse(pending);
    }
    QString who = id;
    if (!provider->displayName().isEmpty()) {
        who += QStringLiteral(" (") + provider->displayName() + QLatin1Char(')');
    }
    if (!m_prompter.confirm(
            kDeleteTitle,
            {QStringLiteral("Delete provider %1?").arg(who),
             QStringLiteral("Their appointments and templates are kept without a provider.")})) {
        return false;
    }

    QStringList logged;
    {
        Transaction transaction(m_db, QStringLiteral("deleting provider ") + id);
        // A claim may have been entered on another computer while the question was open.
        if (const qint64 pending = pendingClaims(id); pending > 0) {
            return refuse(pending);
        }
        m_db.exec(QStringLiteral("Delete From Doctors Where DoctorID=?"), {id},
                  QStringLiteral("deleting provider ") + id);
        logged << QStringLiteral("Delete From Doctors Where DoctorID=") + quoted(id);
        for (const QString& table : kReleasedByDelete) {
            m_db.exec(QStringLiteral("Update %1 Set DoctorID=NULL Where DoctorID=?").arg(table),
                      {id}, QStringLiteral("releasing the %1 of provider %2").arg(table, id));
            logged << QStringLiteral("Update %1 Set DoctorID=NULL Where DoctorID=%2")
                          .arg(table, quoted(id));
        }
        transaction.commit();
    }
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
    renumberSettings(id, QString());
    return true;
}

qint64 ProviderRegister::pendingClaims(const QString& doctorId) {
    return scalarLookup(m_db, QStringLiteral("Count"), QStringLiteral("*"),
                        QStringLiteral("claims"), QStringLiteral("DoctorID=? And BatchID=?"),
                        {doctorId, kPending})
        .toLongLong();
}

void ProviderRegister::renumberSettings(const QString& from, const QString& to) {
    for (QString* remembered : {&m_settings.lastDoctor, &m_settings.lastDoctorReconcile,
                                &m_settings.lastDoctorPTC, &m_settings.lastDoctorApp}) {
        if (remembered->compare(from, Qt::CaseInsensitive) == 0) {
            *remembered = to;
        }
    }
}

}  // namespace brimsett
