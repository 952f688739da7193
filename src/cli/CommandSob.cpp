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

}  // namespace

int commandImportSob(CliSession& session, const QStringList& args) {
    if (args.size() != 1) {
        return fail(QStringLiteral("usage: import-sob FILE"), 2);
    }
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    CountToStdout prompter(session.prompter(), session.out());
    SobImport import(session.db(), prompter, log);
    return import.run(args.first()).imported ? 0 : 1;
}

int commandFee(CliSession& session, const QStringList& args) {
    if (args.size() != 2) {
        return fail(QStringLiteral("usage: fee CODE SPECIALTY"), 2);
    }
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    FeeSchedule schedule(session.db(), log);
    // The item's code: the fee code and its suffix letter.
    const QString code = args.at(0).trimmed().toUpper();
    if (code.size() < 2) {
        return fail(QStringLiteral("a fee code and its suffix letter are needed, e.g. A007A"), 2);
    }
    const std::optional<ServiceFees> row = schedule.find(code);
    if (!row) {
        return fail(
            QStringLiteral("fee code %1 is not in the schedule of benefits").arg(code.chopped(1)));
    }
    const std::optional<ItemFee> fee = fees::bySuffix(*row, code.back(), args.at(1));
    if (!fee) {
        return fail(QStringLiteral("suffix %1 takes no fee from the schedule; the item keeps "
                                   "its own")
                        .arg(code.back()));
    }
    session.out() << fee->fee.format(opened->money) << " units " << fee->units << "\n";
    return 0;
}

}  // namespace brimsett
