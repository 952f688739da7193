#include "cli/CliSession.h"
#include "foundation/AppSettings.h"
#include "foundation/SqlLog.h"
#include "ministry/AnswerReader.h"
#include "ministry/AnswerReports.h"
#include "ministry/FolderExchange.h"

#include <QFileInfo>

#include <algorithm>

namespace brimsett {

namespace {

QString kindName(received::FileKind kind) {
    switch (kind) {
        case received::FileKind::Remittance:
            return QStringLiteral("Remittance advice");
        case received::FileKind::ErrorReport:
            return QStringLiteral("Claims error report");
        case received::FileKind::BatchEdit:
            return QStringLiteral("Batch edit report");
        case received::FileKind::Unknown:
            break;
    }
    return QStringLiteral("Unknown");
}

// A name as given, else the file of that name among the office's downloads.
QString locate(CliSession& session, const QString& name) {
    if (QFileInfo::exists(name)) {
        return name;
    }
    const QString downloaded =
        session.paths().folder() + FolderExchange::kDownload + QLatin1Char('/') + name;
    return QFileInfo::exists(downloaded) ? downloaded : name;
}

void printRemittance(CliSession& session, const ReceivedAnswer& answer) {
    const auto& remittance = std::get<remittance::Remittance>(answer.content);
    // The figures are the printed report's own, so the two can never disagree.
    const reports::Report report = answerreports::remittanceReport(
        session.db(), remittance, answer.fileName, session.clock().today(), MoneyFormat{});
    for (const reports::ReportTable& table : report.tables()) {
        const bool grandTotals = std::any_of(
            table.columns.begin(), table.columns.end(),
            [](const auto& column) { return column.caption == QLatin1String("Number of Items"); });
        if (!grandTotals) {
            continue;
        }
        session.out() << "Grand Totals\n";
        for (const QStringList& row : table.rows + table.totals) {
            session.out() << row.join(QLatin1Char('\t')) << "\n";
        }
    }
    if (remittance.header.totalPayable) {
        session.out() << "OHIP Amount Payable\t" << remittance.header.totalPayable->currency()
                      << "\n";
    }
    if (answer.reconciled) {
        const remittance::ReconcileCounts& c = answer.counts;
        session.out() << "Paid\t" << c.paid << "\nRejected\t" << c.rejected << "\nUnmatched\t"
                      << c.unmatched << "\nRead before\t" << c.alreadyRead << "\n";
    }
}

void printErrorReport(CliSession& session, const ReceivedAnswer& answer) {
    const auto& report = std::get<errorreport::ErrorReport>(answer.content);
    session.out() << "Total Items: " << report.itemCount() << "\n";
    if (answer.reconciled) {
        session.out() << "Rejected\t" << report.countOf(errorreport::ItemOutcome::MarkedRejected)
                      << "\nUnknown items\t" << report.countOf(errorreport::ItemOutcome::Unknown)
                      << "\n";
    }
}

void printBatchEdit(CliSession& session, const ReceivedAnswer& answer) {
    for (const batchedit::Row& row : std::get<batchedit::Report>(answer.content).rows) {
        session.out() << row.batchNumber << "\t" << row.provider << "\t" << row.claims << "\t"
                      << row.records << "\t" << row.message << "\n";
    }
}

int receive(CliSession& session, const CliArgs& args) {
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    ReadOptions options;
    options.reconcile = !args.isSet(QStringLiteral("no-reconcile"));
    options.remittance.i2ToFullSubmitted = session.settings().option[16];
    options.remittance.autoSplit =
        session.store().get(QStringLiteral("Options"), QStringLiteral("AutoSplit")) ==
        QLatin1String("1");
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    const std::optional<ReceivedAnswer> answer = readAnswer(
        session.db(), log, session.prompter(), locate(session, args.argument(0)), options);
    if (!answer) {
        return 1;  // the reason went to standard error
    }
    session.out() << kindName(answer->kind) << "\n";
    const QList<received::LineError>& errors = answer->errors();
    session.out() << "Errors\t" << errors.size() << "\n";
    if (!errors.isEmpty()) {
        session.out() << received::errorColumns().join(QLatin1Char('\t')) << "\n";
        for (const received::LineError& error : errors) {
            session.out() << received::cellsOf(error).join(QLatin1Char('\t')) << "\n";
        }
    }
    switch (answer->kind) {
        case received::FileKind::Remittance:
            printRemittance(session, *answer);
            break;
        case received::FileKind::ErrorReport:
            printErrorReport(session, *answer);
            break;
        case received::FileKind::BatchEdit:
            printBatchEdit(session, *answer);
            break;
        case received::FileKind::Unknown:
            break;
    }
    // A remittance cut short reads without a fault of its own lines: only its total tells.
    if (const auto* advice = std::get_if<remittance::Remittance>(&answer->content)) {
        if (const QString problem = advice->payableProblem(); !problem.isEmpty()) {
            return fail(problem);
        }
    }
    session.out() << "Finished\n";
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("receive"),
    .summary = QStringLiteral("read a remittance advice, batch edit or claims error report"),
    .arguments = {{QStringLiteral("FILE"),
                   QStringLiteral(
                       "the ministry's file; a bare name is looked for in Download/ too")}},
    .options = {{QStringLiteral("no-reconcile"),
                 {},
                 QStringLiteral("only read and print it; the claims stay as they are")}},
    .details = {QStringLiteral("Writes what the file answers into the claims, and prints its "
                               "errors and totals.")},
    .run = receive,
});

}  // namespace

}  // namespace brimsett
