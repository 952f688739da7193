#include "cli/CliSession.h"
#include "foundation/DbError.h"
#include "foundation/SqlLog.h"
#include "ministry/BatchPreparation.h"

namespace brimsett {

namespace {

int prepare(CliSession& session, const CliArgs& args) {
    PrepareRequest request;
    request.doctorId = args.argument(0);
    request.cutOff = args.value(QStringLiteral("cutoff"));
    request.start = args.value(QStringLiteral("start"));
    request.oneProfile = args.isSet(QStringLiteral("one-profile"));
    if (args.isSet(QStringLiteral("by-created"))) {
        request.dateBy = PrepareRequest::DateBy::Created;
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

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("prepare"),
    .summary = QStringLiteral("write the doctor's pending claims into a claim file"),
    .arguments = {{QStringLiteral("DOCTOR"), QStringLiteral("the doctor whose claims are sent")}},
    .options = {{QStringLiteral("cutoff"), QStringLiteral("YYYY/MM/DD"),
                 QStringLiteral("the last service date taken")},
                {QStringLiteral("start"), QStringLiteral("YYYY/MM/DD"),
                 QStringLiteral("the first service date taken")},
                {QStringLiteral("one-profile"),
                 {},
                 QStringLiteral("this doctor's profile only, not the others of the group")},
                {QStringLiteral("by-created"),
                 {},
                 QStringLiteral("the dates are the claims' creation dates")}},
    .details = {QStringLiteral("Prints the file's name and each batch's number, claims, records "
                               "and total.")},
    .run = prepare,
});

}  // namespace

}  // namespace brimsett
