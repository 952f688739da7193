#include "cli/CliSession.h"
#include "cli/TransferOptions.h"
#include "foundation/FileModes.h"
#include "foundation/SqlLog.h"
#include "hcv/OvernightAnswers.h"
#include "hcv/OvernightBatch.h"
#include "reports/Report.h"
#include "reports/ReportPrinter.h"

#include <QFileInfo>
#include <QTextStream>

namespace brimsett {

namespace {

int prepare(CliSession& session, const CliArgs& args, bool day) {
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    hcv::OvernightBatch batch(session.db(), session.store(), session.clock(), session.prompter(),
                              log, session.paths().folder());
    const std::optional<hcv::PreparedBatch> prepared =
        day ? batch.prepareDay(args.argument(0).toUpper(), args.argument(1))
            : batch.prepareCard(args.argument(0).toUpper(), args.argument(1), args.argument(2));
    if (!prepared) {
        return 1;  // the reason went to standard error
    }
    session.out() << prepared->path << "\n";
    if (day) {
        session.out() << prepared->cards.size()
                      << (prepared->cards.size() == 1 ? " card\n" : " cards\n");
    }
    return 0;
}

int prepareDay(CliSession& session, const CliArgs& args) {
    return prepare(session, args, true);
}

int prepareCard(CliSession& session, const CliArgs& args) {
    return prepare(session, args, false);
}

int submit(CliSession& session, const CliArgs& args) {
    QString problem;
    const std::optional<TransferOptions> options = TransferOptions::read(args, &problem);
    if (!options) {
        return args.usageError(problem);
    }
    int status = 0;
    const std::optional<TransferOptions::Settled> settled = options->settle(session, args, &status);
    if (!settled) {
        return status;
    }
    const TransferMethod method = settled->method;
    const TransferPlaces& places = settled->places;
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    hcv::OvernightBatch batch(session.db(), session.store(), session.clock(), session.prompter(),
                              log, session.paths().folder());
    SleepingWait wait;
    const int sent = batch.submit(options->word, method, wait, places.diskFolder);
    session.out() << sent << (sent == 1 ? " file" : " files") << " submitted\n";
    return sent > 0 ? 0 : 1;
}

int read(CliSession& session, const CliArgs& args) {
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    const QString path = args.argument(0);
    const hcv::OvernightResult result = hcv::applyOvernightFile(session.db(), log, path);
    if (!result.problem.isEmpty()) {
        return fail(result.problem);
    }
    for (const hcv::AppliedOvernight& card : result.cards) {
        session.out() << card.answer.healthNum << "\t" << card.answer.code << "\t" << card.message
                      << "\t"
                      << (card.patientId ? QString::number(*card.patientId)
                                         : QStringLiteral("not in the register"))
                      << "\n";
    }
    if (result.skippedLines > 0) {
        QTextStream(stderr) << result.skippedLines
                            << (result.skippedLines == 1 ? " line was" : " lines were")
                            << " not an answer\n";
    }
    if (args.isSet(QStringLiteral("pdf"))) {
        const QString pdf = args.value(QStringLiteral("pdf"));
        const reports::ReportPrinter printer(
            hcv::overnightFailureReport(result, QFileInfo(path).fileName(),
                                        session.clock().today()),
            reports::ReportStyle::fromSettings(session.settings()));
        if (printer.writePdf(pdf) == 0) {
            return fail(QStringLiteral("%1 could not be written").arg(pdf));
        }
        filemodes::makePrivate(pdf);
    }
    return 0;
}

const QString kDoctor = QStringLiteral("DOCTOR");

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("obec prepare"),
        .summary = QStringLiteral("write the overnight card-check file of a doctor's day"),
        .arguments = {{kDoctor, QStringLiteral("the doctor")},
                      {QStringLiteral("DATE"), QStringLiteral("the day, YYYY/MM/DD")}},
        .details = {QStringLiteral("Prints the file's path and the number of cards.")},
        .run = prepareDay,
    }) &&
    cli::add({
        .name = QStringLiteral("obec card"),
        .summary = QStringLiteral("write the overnight card-check file of a single card"),
        .arguments = {{kDoctor, QStringLiteral("the doctor whose login sends it")},
                      {QStringLiteral("HN"), QStringLiteral("the health number")},
                      {QStringLiteral("VC"), QStringLiteral("the version code"),
                       CliArgument::Count::Optional}},
        .run = prepareCard,
    }) &&
    cli::add({
        .name = QStringLiteral("obec submit"),
        .summary = QStringLiteral("hand an overnight batch's files to the ministry"),
        .arguments = {{QStringLiteral("BATCH"), QStringLiteral("the batch, YYYYMMDD")}},
        .options = TransferOptions::declared(),
        .run = submit,
    }) &&
    cli::add({
        .name = QStringLiteral("obec read"),
        .summary = QStringLiteral("store the ministry's overnight answers on their patients"),
        .arguments = {{QStringLiteral("FILE"), QStringLiteral("the overnight answer file")}},
        .options = {{QStringLiteral("pdf"), QStringLiteral("FILE"),
                     QStringLiteral("also write the failed cards as a PDF file")}},
        .details = {QStringLiteral("Prints per card: number, code, message and the patient "
                                   "(or \"not in the register\"), tab-separated.")},
        .paints = true,
        .run = read,
    });

}  // namespace

}  // namespace brimsett
