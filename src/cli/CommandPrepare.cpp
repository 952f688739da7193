#include "cli/CliSession.h"
#include "foundation/DbError.h"
#include "foundation/SqlLog.h"
#include "ministry/BatchPreparation.h"

namespace brimsett {

namespace {

const QString kUsage = QStringLiteral(
    "usage: prepare DOCTOR [--cutoff YYYY/MM/DD] [--start YYYY/MM/DD] [--one-profile] "
    "[--by-created]");

}  // namespace

int commandPrepare(CliSession& session, const QStringList& args) {
    PrepareRequest request;
    QStringList rest = args;
    while (!rest.isEmpty()) {
        const QString word = rest.takeFirst();
        if ((word == QLatin1String("--cutoff") || word == QLatin1String("--start")) &&
            !rest.isEmpty()) {
            (word == QLatin1String("--cutoff") ? request.cutOff : request.start) = rest.takeFirst();
        } else if (word == QLatin1String("--one-profile")) {
            request.oneProfile = true;
        } else if (word == QLatin1String("--by-created")) {
            request.dateBy = PrepareRequest::DateBy::Created;
        } else if (!word.startsWith(QLatin1String("--")) && request.doctorId.isEmpty()) {
            request.doctorId = word;
        } else {
            return fail(kUsage);
        }
    }
    if (request.doctorId.isEmpty()) {
        return fail(kUsage);
    }
    Startup::Result* opened = session.open();
    if (opened == nullptr) {
        return 1;
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    BatchPreparation preparation(session.db(), session.store(), session.settings(), session.clock(),
                                 session.prompter(), log, session.paths().folder());
    std::optional<PreparedFile> file;
    try {
        file = preparation.prepare(request);
    } catch (const DbError& e) {
        return fail(e.message());
    }
    if (!file) {
        return 1;  // the reason went to standard error
    }
    QTextStream& out = session.out();
    out << file->fileName << "\n";
    for (const PreparedBatch& b : file->batches) {
        out << "Batch " << b.batchId << "  claims " << b.claims << "  records " << b.records
            << "  total " << b.total.plain(opened->money) << "\n";
    }
    return 0;
}

}  // namespace brimsett
