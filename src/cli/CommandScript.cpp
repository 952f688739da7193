#include "cli/CliSession.h"
#include "foundation/DbError.h"

#include <QFile>
#include <QProcess>
#include <QTextStream>

namespace brimsett {

namespace {

// One command of a script: found, parsed and run as if typed after "brimsett-cli".
int runLine(CliSession& session, const QStringList& words) {
    const auto found = cli::find(words, {});
    if (const int* status = std::get_if<int>(&found)) {
        return *status == 0 ? 2 : *status;  // a group's help is not a command either
    }
    const cli::Found& command = std::get<cli::Found>(found);
    if (command.command->name == QLatin1String("script")) {
        return fail(QStringLiteral("a script may not run a script"), 2);
    }
    const auto parsed = cli::parse(*command.command, command.rest);
    if (const int* status = std::get_if<int>(&parsed)) {
        return *status == 0 ? 2 : *status;
    }
    if (command.command->level && !session.require(*command.command->level)) {
        return 1;
    }
    try {
        return command.command->run(session, std::get<CliArgs>(parsed));
    } catch (const DbError& e) {
        return fail(e.message());
    }
}

// Many commands in one run, for agents that would otherwise start the program, open the
// database and check the layout once per patient or claim. Each command is its own
// transaction as on its own; the script stops at the first that fails, so what follows
// never runs on top of a failure.
int script(CliSession& session, const CliArgs& args) {
    QFile file;
    const QString name = args.argument(0);
    const bool opened = name == QLatin1String("-")
                            ? file.open(stdin, QIODevice::ReadOnly)
                            : (file.setFileName(name), file.open(QIODevice::ReadOnly));
    if (!opened) {
        return fail(QStringLiteral("cannot read %1: %2").arg(name, file.errorString()));
    }
    QTextStream in(&file);
    int lineNumber = 0;
    while (!in.atEnd()) {
        const QString line = in.readLine().trimmed();
        ++lineNumber;
        if (line.isEmpty() || line.startsWith(QLatin1Char('#'))) {
            continue;
        }
        const int status = runLine(session, QProcess::splitCommand(line));
        session.out().flush();
        if (status != 0) {
            return fail(QStringLiteral("line %1 failed (status %2); the lines after it were not "
                                       "run: %3")
                            .arg(lineNumber)
                            .arg(status)
                            .arg(line),
                        status);
        }
    }
    return 0;
}

[[maybe_unused]] const bool registered = cli::add({
    .name = QStringLiteral("script"),
    .summary = QStringLiteral("run the commands of a file (- for standard input), one a line"),
    .arguments = {{QStringLiteral("FILE"), QStringLiteral("the commands, as typed after "
                                                          "brimsett-cli; # starts a comment")}},
    .details = {QStringLiteral("Each command is saved on its own; the first that fails stops "
                               "the script with its status.")},
    .run = script,
});

}  // namespace

}  // namespace brimsett
