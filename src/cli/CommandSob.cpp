#include "claims/FeeSchedule.h"
#include "claims/SobImport.h"
#include "cli/CliSession.h"
#include "foundation/SqlLog.h"

namespace brimsett {

namespace {

// The import's closing count is the command's output; its other messages (the refusal, the
// skipped lines) go to standard error like every message.
class CountToStdout : public Prompter {
public:
    CountToStdout(Prompter& inner, QTextStream& out) : m_inner(inner), m_out(out) {}
    void tell(const QString& title, const QStringList& lines, Icon icon) override {
        if (icon == Icon::Information) {
            m_out << lines.join(QLatin1Char('\n')) << "\n";
        } else {
            m_inner.tell(title, lines, icon);
        }
    }
    Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
               Answer defaultAnswer) override {
        return m_inner.ask(title, lines, icon, buttons, defaultAnswer);
    }

private:
    Prompter& m_inner;
    QTextStream& m_out;
};

int importSob(CliSession& session, const CliArgs& args) {
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    CountToStdout prompter(session.prompter(), session.out());
    SobImport import(session.db(), prompter, log);
    return import.run(args.argument(0)).imported ? 0 : 1;
}

int feeOf(CliSession& session, const CliArgs& args) {
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    FeeSchedule schedule(session.db(), log);
    // The item's code: the fee code and its suffix letter.
    const QString code = args.argument(0).trimmed().toUpper();
    if (code.size() < 2) {
        return args.usageError(
            QStringLiteral("a fee code and its suffix letter are needed, e.g. A007A"));
    }
    const std::optional<ServiceFees> row = schedule.find(code);
    if (!row) {
        return fail(
            QStringLiteral("fee code %1 is not in the schedule of benefits").arg(code.chopped(1)));
    }
    const std::optional<ItemFee> fee = fees::bySuffix(*row, code.back(), args.argument(1));
    if (!fee) {
        return fail(QStringLiteral("suffix %1 takes no fee from the schedule; the item keeps "
                                   "its own")
                        .arg(code.back()));
    }
    session.out() << fee->fee.format(opened->money) << " units " << fee->units << "\n";
    return 0;
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("import-sob"),
        .summary = QStringLiteral("update the fee schedule from the ministry's master file"),
        .arguments = {{QStringLiteral("FILE"), QStringLiteral("the schedule of benefits file")}},
        // The fee schedule is Manage Codes' business.
        .level = AccessLevels::kBillingSecretary,
        .run = importSob,
    }) &&
    cli::add({
        .name = QStringLiteral("fee"),
        .summary = QStringLiteral("the fee and units an item with that code would take"),
        .arguments = {{QStringLiteral("CODE"), QStringLiteral("fee code and suffix, e.g. A007A")},
                      {QStringLiteral("SPECIALTY"), QStringLiteral("the doctor's specialty code")}},
        .run = feeOf,
    });

}  // namespace

}  // namespace brimsett
