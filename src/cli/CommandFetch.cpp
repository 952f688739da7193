#include "cli/CliSession.h"
#include "cli/TransferOptions.h"
#include "foundation/SqlLog.h"
#include "ministry/FolderExchange.h"

#include <QDir>

namespace brimsett {

namespace {

int fetchAnswers(CliSession& session, const CliArgs& args) {
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
    SleepingWait wait;
    ClaimTransfer transfer(session.db(), session.store(), session.clock(), session.prompter(), wait,
                           log, places);
    const std::optional<QStringList> files = transfer.fetchAnswers(options->word, method);
    if (!files) {
        return 1;  // the reason went to standard error
    }
    // Where the reading screens will find them: the disk itself, or the office's downloads.
    const QDir folder(method == TransferMethod::Disk
                          ? places.diskFolder
                          : places.officeFolder + FolderExchange::kDownload);
    for (const QString& name : *files) {
        session.out() << QDir::cleanPath(folder.absoluteFilePath(name)) << "\n";
    }
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("fetch-answers"),
    .summary = QStringLiteral("fetch the ministry's answers and print the files' paths"),
    .arguments = {{QStringLiteral("DOCTOR"),
                   QStringLiteral("the doctor whose answers are fetched")}},
    .options = TransferOptions::declared(),
    .run = fetchAnswers,
});

}  // namespace

}  // namespace brimsett
