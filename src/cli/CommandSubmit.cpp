#include "cli/CliSession.h"
#include "cli/TransferOptions.h"
#include "foundation/SqlLog.h"

#include <QDir>
#include <QFileInfo>

namespace brimsett {

namespace {

const QString kUsage = QStringLiteral("usage: submit FILE [--method disk|folder] [--to DIR]");

}  // namespace

int commandSubmit(CliSession& session, const QStringList& args) {
    QString problem;
    const std::optional<TransferOptions> options = TransferOptions::read(args, &problem);
    if (!options) {
        return fail(problem + QLatin1Char('\n') + kUsage, 2);
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
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const TransferMethod method = options->methodFor(session);
    const std::optional<TransferPlaces> places = options->places(session, method, &problem);
    if (!places) {
        return fail(problem, 2);
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    SleepingWait wait;
    ClaimTransfer transfer(session.db(), session.store(), session.clock(), session.prompter(), wait,
                           log, *places);
    if (!transfer.submit(fileName, method)) {
        return 1;  // the reason went to standard error
    }
    session.out() << fileName << "\n";
    return 0;
}

}  // namespace brimsett
