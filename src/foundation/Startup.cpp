#include "foundation/Startup.h"

#include "foundation/AccessLevels.h"
#include "foundation/Clock.h"
#include "foundation/FileModes.h"
#include "foundation/Prompter.h"
#include "foundation/Schema.h"
#include "foundation/SchemaUpgrade.h"
#include "foundation/ServerAddress.h"
#include "foundation/SettingsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace brimsett {

namespace {

// SQLite keeps uncommitted pages beside the file; they belong to it and move with it.
const QStringList kCompanions = {QStringLiteral("-wal"), QStringLiteral("-shm")};

bool moveDatabaseFile(const QString& from, const QString& to) {
    if (!QFile::rename(from, to)) {
        return false;
    }
    for (const QString& suffix : kCompanions) {
        QFile::remove(to + suffix);
        if (QFileInfo::exists(from + suffix)) {
            QFile::rename(from + suffix, to + suffix);
        }
    }
    return true;
}

}  // namespace

Startup::Startup(OfficePaths paths, SettingsStore& store, AccessLevels& access, const Clock& clock,
                 Prompter& prompter, QLocale locale)
    : m_paths(std::move(paths)),
      m_store(store),
      m_access(access),
      m_clock(clock),
      m_prompter(prompter),
      m_locale(std::move(locale)) {}

MoneyFormat Startup::moneyFormatOf(const QLocale& locale) {
    MoneyFormat format;
    format.decimal = locale.toCurrencyString(0.5).contains(QLatin1Char(',')) ? QLatin1Char(',')
                                                                             : QLatin1Char('.');
    return format;
}

bool Startup::prepareDatabaseFile(Result& result) {
    const QString target = m_paths.defaultDatabase();
    if (QFileInfo::exists(target)) {
        return true;
    }
    m_paths.ensureFolder();
    // Build under a temporary name, so an interrupted start never leaves half a database
    // named medical.mdb.
    const QString partial = target + QStringLiteral(".new");
    QFile::remove(partial);
    try {
        if (QFileInfo::exists(m_paths.blankTemplate())) {
            if (!QFile::copy(m_paths.blankTemplate(), partial)) {
                throw DbError(QStringLiteral("copying bsblank.db"), {},
                              QStringLiteral("the template could not be copied to ") + partial);
            }
            result.done << QStringLiteral("Copied bsblank.db to ") + target;
        } else {
            auto db = Database::createSqlite(partial);
            schema::create(*db);
            db->close();
            result.done << QStringLiteral("Created a new database at ") + target;
        }
        if (!moveDatabaseFile(partial, target)) {
            throw DbError(QStringLiteral("creating the database"), {},
                          QStringLiteral("could not rename %1 to %2").arg(partial, target));
        }
    } catch (const DbError& e) {
        QFile::remove(partial);
        for (const QString& suffix : kCompanions) {
            QFile::remove(partial + suffix);
        }
        result.error = e.message();
        m_prompter.error(
            {QStringLiteral("Brimsett could not create a new database at this location:"), target,
             QString(), e.message()});
        return false;
    }
    return true;
}

void Startup::applyPendingRestore(Result& result) {
    const QString handOver = m_paths.restoreHandOver();
    if (!QFileInfo::exists(handOver)) {
        return;
    }
    const QString current = m_paths.defaultDatabase();
    if (QFileInfo::exists(current)) {
        const QString kept = m_paths.file(OfficePaths::datedDatabaseName(m_clock.now()));
        if (QFileInfo::exists(kept) || !moveDatabaseFile(current, kept)) {
            m_prompter.tell(
                QStringLiteral("Restore"),
                {QStringLiteral("The restored database could not be put in place:"),
                 QStringLiteral("the current database could not be renamed to ") + kept, QString(),
                 QStringLiteral("Brimsett starts with the current database; the "
                                "restored one stays in medical-r.mdb.")},
                Icon::Warning);
            return;
        }
        result.done << QStringLiteral("Kept the replaced database as ") + kept;
    }
    if (!moveDatabaseFile(handOver, current)) {
        m_prompter.error(
            {QStringLiteral("The restored database medical-r.mdb could not be renamed "
                            "to medical.mdb.")});
        return;
    }
    result.done << QStringLiteral("Restored medical-r.mdb as ") + current;
}

Startup::Result Startup::run() {
    Result result;
    filemodes::ownerOnly();
    m_access.load();
    result.settings = AppSettings::loadAll(m_store, m_paths.folder());
    const QString location = m_paths.databaseFile(result.settings.dbPath);
    const bool onServer = ServerAddress::names(location);
    if (!onServer) {
        if (!prepareDatabaseFile(result)) {
            result.outcome = Outcome::SetupFailed;
            return result;
        }
        applyPendingRestore(result);
        // An office made before its files were kept private is made so now.
        filemodes::makePrivate(m_paths.folder());
        filemodes::makePrivate(location);
        for (const QString& suffix : kCompanions) {
            filemodes::makePrivate(location + suffix);
        }
    }
    auto opened = Database::open(location);
    if (auto* failure = std::get_if<OpenFailure>(&opened)) {
        m_prompter.tell(failure->title(), failure->lines(), Icon::Critical);
        result.openFailure = *failure;
        result.outcome = Outcome::OpenFailed;
        return result;
    }
    result.db = std::move(std::get<std::unique_ptr<Database>>(opened));
    result.done << QStringLiteral("Opened ") + location;

    try {
        // A new, empty database on the server gets the tables an office starts with; the
        // creation takes the office's write turn, so two computers starting at once build
        // them once.
        if (onServer && !result.db->hasTable(QStringLiteral("Patients"))) {
            schema::create(*result.db);
            result.done << QStringLiteral("Created the tables of a new office on the server");
        }
        if (!upgradeSchema(*result.db)) {
            result.done << QStringLiteral("Updated the database to the current layout");
            m_prompter.tell(
                QStringLiteral("Updated..."),
                {QStringLiteral("Brimsett has updated your database to current standards."),
                 QString(), QStringLiteral("Please restart your copy of Brimsett.")},
                Icon::Information);
            result.db->close();
            result.db.reset();
            result.outcome = Outcome::RestartNeeded;
            return result;
        }
    } catch (const DbError& e) {
        result.error = e.message();
        m_prompter.error({QStringLiteral("Brimsett could not update your database:"), e.message()});
        result.db->close();
        result.db.reset();
        result.outcome = Outcome::UpgradeFailed;
        return result;
    }
    result.done << QStringLiteral("The database layout is current");
    result.money = moneyFormatOf(m_locale);
    result.outcome = Outcome::Ready;
    return result;
}

}  // namespace brimsett
