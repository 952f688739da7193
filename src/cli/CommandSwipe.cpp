#include "cli/CliSession.h"
#include "foundation/AppSettings.h"
#include "foundation/SqlLog.h"
#include "hcv/CardExchange.h"
#include "hcv/HcvSettings.h"
#include "hcv/SwipeMatch.h"

namespace brimsett {

namespace {

QString stateText(hcv::CardState state) {
    switch (state) {
        case hcv::CardState::NoExpiry:
            return QStringLiteral("no expiry");
        case hcv::CardState::Valid:
            return QStringLiteral("valid");
        case hcv::CardState::Expired:
            return QStringLiteral("expired");
    }
    return {};
}

void printCard(CliSession& session, const hcv::SwipedCard& card) {
    QTextStream& out = session.out();
    out << "Health Number: " << card.healthNum << "\n"
        << "Version Code: " << card.versionCode << "\n"
        << "Last Name: " << card.lastName << "\n"
        << "First Name: " << card.firstName << "\n"
        << "Middle Name: " << card.middleName << "\n"
        << "Expiry: " << card.expiry << "\n"
        << "Card: " << stateText(hcv::cardState(card, session.clock().today())) << "\n"
        << "Sex: " << card.sex << "\n"
        << "Date of Birth: " << card.dob << "\n";
}

// The swipe screen's work for a card typed on the command line: read it, and with --apply
// match it to the register, asking through the prompter as the screen does.
int swipe(CliSession& session, const CliArgs& args) {
    const hcv::SwipeResult result = hcv::parseSwipe(args.argument(0));
    if (result.kind != hcv::SwipeResult::Kind::Card) {
        session.prompter().tell(QStringLiteral("Error"), result.problem, Icon::Warning);
        return 1;
    }
    printCard(session, result.card);
    if (!args.isSet(QStringLiteral("apply"))) {
        return 0;
    }
    if (session.open() == nullptr) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    hcv::CardExchange exchange(session.db(), session.store(), session.clock(), session.prompter(),
                               log, session.paths().folder());
    exchange.setPollingOn(hcv::HcvSettings::read(session.store()).pollingOn);
    QString requested;
    const auto requestCheck = [&](const QString& healthNum, const QString& versionCode) {
        const auto sent = exchange.RequestCardCheck(healthNum, versionCode, false);
        if (sent.outcome == hcv::CardExchange::Outcome::Written) {
            requested = QStringLiteral("Card check requested: ") + sent.path;
        } else if (sent.outcome == hcv::CardExchange::Outcome::AnsweredToday) {
            requested = QStringLiteral("Card check: already answered today");
        }
    };
    const hcv::SwipeOutcome outcome =
        hcv::SwipeMatch(session.db(), session.settings(), session.prompter(), session.clock(), log,
                        exchange.pollingOn(), requestCheck)
            .match(result.card);
    for (const QString& line : outcome.lines) {
        session.out() << line << "\n";
    }
    session.out() << outcome.appointmentLine << "\n";
    if (!requested.isEmpty()) {
        session.out() << requested << "\n";
    }
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("swipe"),
    .summary = QStringLiteral("read a health card's stripe; with --apply match it to the patients"),
    .arguments = {{QStringLiteral("TEXT"),
                   QStringLiteral("the stripe as the card reader types it")}},
    .options = {{QStringLiteral("apply"),
                 {},
                 QStringLiteral("bring the card's patient up to date and tell today's "
                                "appointment")}},
    .details = {QStringLiteral("A possible existing patient is asked about: an answer on "
                               "standard input (y or n), --yes takes the first one offered."),
                QStringLiteral("With health card polling on (\"Options\" TCP1 = 1) the card's "
                               "check is requested.")},
    .run = swipe,
});

}  // namespace

}  // namespace brimsett
