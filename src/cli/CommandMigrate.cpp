#include "cli/CliSession.h"
#include "foundation/DatabaseCopy.h"
#include "foundation/Money.h"
#include "foundation/ReceiverClient.h"
#include "foundation/ServerAddress.h"

namespace brimsett {

namespace {

QString money(qint64 units) {
    return Money::fromUnits(units).currency();
}

void printReport(QTextStream& out, const CopyReport& report) {
    for (const QString& made : report.madeBeyondLayout) {
        out << "Made on the server from the office file: " << made << "\n";
    }
    for (const TableTally& t : report.tables) {
        out << "  " << t.table.leftJustified(22) << QString::number(t.targetRows).rightJustified(9)
            << " rows";
        if (!t.moneyColumns.isEmpty()) {
            out << "  " << money(t.targetMoney).rightJustified(18) << " in "
                << t.moneyColumns.join(QStringLiteral(", "));
        }
        if (!t.equal()) {
            out << "  DIFFERENT: the file has " << t.sourceRows << " rows, "
                << money(t.sourceMoney);
        }
        out << "\n";
    }
    out << "Total: " << report.tables.size() << " tables, " << report.rows() << " rows, "
        << money(report.money()) << " of money; "
        << (report.equal() ? "every table equal" : "NOT EQUAL") << "\n";
    out.flush();
}

int migrate(CliSession& session, const CliArgs& args) {
    const QString address = args.value(QStringLiteral("to")).trimmed();
    if (!ServerAddress::names(address)) {
        return args.usageError(
            QStringLiteral("--to must name a PostgreSQL database "
                           "(postgresql://user@host/dbname or service=NAME)"));
    }
    if (QString problem; !ServerAddress::parse(address, &problem)) {
        return args.usageError(problem);
    }
    // A running program would go on writing to the file after the office has moved.
    if (receiverRunning(session.paths())) {
        return fail(
            QStringLiteral("Brimsett is running on this office; close it on this "
                           "computer before moving the database."));
    }
    std::unique_ptr<Database> fromFile;
    Database* source = nullptr;
    if (args.isSet(QStringLiteral("from"))) {
        auto opened = Database::openSqlite(args.value(QStringLiteral("from")));
        if (auto* failure = std::get_if<OpenFailure>(&opened)) {
            return fail(failure->lines().join(QLatin1Char(' ')));
        }
        fromFile = std::move(std::get<std::unique_ptr<Database>>(opened));
        source = fromFile.get();
    } else {
        if (!session.open()) {
            return fail(QStringLiteral("the database is not available"));
        }
        source = &session.db();
    }
    if (source->onServer()) {
        return fail(QStringLiteral("The office already uses the server database at %1.")
                        .arg(source->location()));
    }
    auto opened = Database::openServer(address);
    if (auto* failure = std::get_if<OpenFailure>(&opened)) {
        return fail(failure->lines().join(QLatin1Char(' ')));
    }
    auto target = std::move(std::get<std::unique_ptr<Database>>(opened));
    session.out() << "Copying " << source->location() << " to " << address << "\n";
    try {
        copyDatabase(*source, *target,
                     [&](const CopyReport& report) { printReport(session.out(), report); });
    } catch (const DbError& e) {
        return fail(e.message() + QStringLiteral(". Nothing was copied."));
    }
    session.store().save(QStringLiteral("General"), QStringLiteral("dbPath"), address);
    if (!session.store().sync()) {
        return fail(QStringLiteral("The database was copied, but the settings file %1 could not "
                                   "be written; set General/dbPath to %2 by hand.")
                        .arg(session.store().path(), address));
    }
    session.out() << "The office now uses the database at " << address << "; " << source->location()
                  << " was left as it was.\n";
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("migrate"),
    .summary =
        QStringLiteral("copy the office database to an empty PostgreSQL database and use it"),
    .options = {{QStringLiteral("to"), QStringLiteral("ADDRESS"),
                 QStringLiteral("postgresql://user@host:port/dbname or service=NAME"), true},
                {QStringLiteral("from"), QStringLiteral("FILE"),
                 QStringLiteral("an office file to copy instead of the current database")}},
    .details = {QStringLiteral("The copy is one transaction: every table's rows and money are "
                               "counted on both sides"),
                QStringLiteral("before it is committed. The settings then name the server; the "
                               "file is left as it was.")},
    // Where the office's database lives is the options screen's business.
    .level = AccessLevels::kMaster,
    .run = migrate,
});

}  // namespace

}  // namespace brimsett
