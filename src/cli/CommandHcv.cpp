#include "cli/CliSession.h"
#include "foundation/AppSettings.h"
#include "foundation/SqlLog.h"
#include "hcv/CardExchange.h"
#include "hcv/ResponseCodes.h"
#include "patients/HealthNumbers.h"

namespace brimsett {

namespace {

int request(CliSession& session, const CliArgs& args) {
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    hcv::CardExchange exchange(session.db(), session.store(), session.clock(), session.prompter(),
                               log, session.paths().folder());
    const auto result = exchange.RequestCardCheck(hn::fromTyped(args.argument(0)),
                                                  args.argument(1).trimmed().toUpper(),
                                                  args.isSet(QStringLiteral("force")));
    switch (result.outcome) {
        case hcv::CardExchange::Outcome::Written:
            session.out() << result.path << "\n";
            return 0;
        case hcv::CardExchange::Outcome::AnsweredToday:
            session.out() << "already answered today\n";
            return 0;
        case hcv::CardExchange::Outcome::Failed:
            break;
    }
    return 1;  // the reason went to standard error
}

int poll(CliSession& session, const CliArgs&) {
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    hcv::CardExchange exchange(session.db(), session.store(), session.clock(), session.prompter(),
                               log, session.paths().folder());
    // Asked for by name, so the office's polling switch does not matter here.
    exchange.setPollingOn(true);
    const QList<hcv::PolledAnswer> answers = exchange.PollCardResponses();
    for (qsizetype i = 0; i < answers.size(); ++i) {
        session.out() << (i > 0 ? "\n" : "") << answers[i].message.join(QLatin1Char('\n')) << "\n";
    }
    if (answers.isEmpty()) {
        session.out() << "No answers.\n";
    }
    return 0;
}

int message(CliSession& session, const CliArgs& args) {
    session.out() << hcv::ResponseMessage(args.argument(0)) << "\n";
    return 0;
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("hcv request"),
        .summary = QStringLiteral("ask for a health card check; prints the request file"),
        .arguments = {{QStringLiteral("HN"), QStringLiteral("the health number")},
                      {QStringLiteral("VC"), QStringLiteral("the card's version code"),
                       CliArgument::Count::Optional}},
        .options = {{QStringLiteral("force"),
                     {},
                     QStringLiteral("send it even when the card was answered today")}},
        .details = {QStringLiteral("Prints \"already answered today\" instead when the card's "
                                   "patient was answered today.")},
        .run = request,
    }) &&
    cli::add({
        .name = QStringLiteral("hcv poll"),
        .summary = QStringLiteral("take the health card answers waiting in the answer folders"),
        .details = {QStringLiteral("Stores each answer on its patient and prints its message; "
                                   "answers for no patient go to the archive.")},
        .run = poll,
    }) &&
    cli::add({
        .name = QStringLiteral("hcv message"),
        .summary = QStringLiteral("the message of a health card answer code"),
        .arguments = {{QStringLiteral("CODE"), QStringLiteral("two characters, e.g. 50")}},
        .run = message,
    });

}  // namespace

}  // namespace brimsett
