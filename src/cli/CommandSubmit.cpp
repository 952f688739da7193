#include "cli/CliSession.h"
#include "cli/TransferOptions.h"
#include "foundation/SqlLog.h"

#include <QDir>
#include <QFileInfo>

namespace brimsett {

namespace {

int submit(CliSession& session, const CliArgs& args) {
    QString problem;
    const std::optional<TransferOptions> options = TransferOptions::read(args, &problem);
    if (!options) {
        return args.usageError(problem);
    }
    // Claim files are sent from the office folder; a path must point there.
    QString fileName = options->word;
    if (fileName.contains(QLatin1Char('/'))) {
        const QFileInfo given(fileName);
        if (QDir(given.absolutePath()).canonicalPath() !=
            QDir(session.paths().folder()).canonicalPath()) {
            return fail(QStringLiteral("claim files are sent from the office folder %1")
                            .arg(session.paths().folder()));
        }
        fileName = given.fileName();
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
    if (!transfer.submit(fileName, method)) {
        return 1;  // the reason went to standard error
    }
    session.out() << fileName << "\n";
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("submit"),
    .summary = QStringLiteral("hand a claim file of the office folder to the ministry"),
    .arguments = {{QStringLiteral("FILE"), QStringLiteral("the claim file's name or path")}},
    .options = TransferOptions::declared(),
    .run = submit,
});

}  // namespace

}  // namespace brimsett
