#include "cli/CliCommand.h"

#include "foundation/AccessLevels.h"

#include <QCommandLineParser>
#include <QTextStream>

#include <algorithm>

namespace brimsett {

namespace {

const QString kProgram = QStringLiteral("brimsett-cli");
constexpr int kColumn = 26;  // where the help of a table row starts

QList<CliCommand>& registry() {
    static QList<CliCommand> all;
    return all;
}

// Rows of two columns; a left text too long for its column puts the help on the next line.
QString table(const QList<std::pair<QString, QString>>& rows) {
    QString text;
    for (const auto& [left, help] : rows) {
        QString line = QStringLiteral("  ") + left;
        if (!help.isEmpty()) {
            if (line.size() + 2 > kColumn) {
                line += QLatin1Char('\n') + QString(kColumn, QLatin1Char(' '));
            } else {
                line = line.leftJustified(kColumn);
            }
            line += help;
        }
        text += line + QLatin1Char('\n');
    }
    return text;
}

QString optionText(const CliOption& option) {
    return QStringLiteral("--") + option.name +
           (option.valueName.isEmpty() ? QString() : QLatin1Char(' ') + option.valueName);
}

QString argumentText(const CliArgument& argument) {
    switch (argument.count) {
        case CliArgument::Count::One:
            return argument.name;
        case CliArgument::Count::Optional:
            return QLatin1Char('[') + argument.name + QLatin1Char(']');
        case CliArgument::Count::OneOrMore:
            return argument.name + QStringLiteral("...");
        case CliArgument::Count::AnyNumber:
            return QLatin1Char('[') + argument.name + QStringLiteral("...]");
    }
    return argument.name;
}

QString optionsTable(const QList<CliOption>& options) {
    QList<std::pair<QString, QString>> rows;
    for (const CliOption& option : options) {
        rows.append({optionText(option), option.help});
    }
    return table(rows);
}

// The commands whose names begin with the group's words ("appt", "appt slot-type").
QList<const CliCommand*> groupCommands(const QString& group) {
    QList<const CliCommand*> found;
    for (const CliCommand& command : registry()) {
        if (command.name.startsWith(group + QLatin1Char(' '))) {
            found.append(&command);
        }
    }
    return found;
}

QString commandsTable(const QList<const CliCommand*>& commands) {
    QList<std::pair<QString, QString>> rows;
    for (const CliCommand* command : commands) {
        rows.append({command->name, command->summary});
    }
    return table(rows);
}

int usageError(const QString& who, const QString& problem, const QString& usage) {
    QTextStream(stderr) << who << ": " << problem << "\n" << usage;
    return 2;
}

QString groupUsage(const QList<const CliCommand*>& commands) {
    QString text;
    for (const CliCommand* command : commands) {
        text += cli::usageLine(*command) + QLatin1Char('\n');
    }
    return text;
}

}  // namespace

int CliArgs::usageError(const QString& problem) const {
    return brimsett::usageError(kProgram + QLatin1Char(' ') + m_command.name, problem,
                                cli::usageLine(m_command) + QLatin1Char('\n'));
}

namespace cli {

bool add(CliCommand command) {
    QList<CliCommand>& all = registry();
    const auto at =
        std::lower_bound(all.begin(), all.end(), command.name,
                         [](const CliCommand& c, const QString& name) { return c.name < name; });
    all.insert(at, std::move(command));
    return true;
}

const QList<CliCommand>& commands() {
    return registry();
}

QCommandLineOption parserOption(const CliOption& option) {
    return option.valueName.isEmpty()
               ? QCommandLineOption(option.name, option.help)
               : QCommandLineOption(option.name, option.help, option.valueName);
}

QString usageLine(const CliCommand& command) {
    // The options that must be given, the arguments, then the options that may be.
    QStringList words = {QStringLiteral("usage:"), kProgram, command.name};
    for (const CliOption& option : command.options) {
        if (option.required) {
            words << optionText(option);
        }
    }
    for (const CliArgument& argument : command.arguments) {
        words << argumentText(argument);
    }
    for (const CliOption& option : command.options) {
        if (!option.required) {
            words << QLatin1Char('[') + optionText(option) + QLatin1Char(']');
        }
    }
    return words.join(QLatin1Char(' '));
}

QString helpText(const CliCommand& command) {
    QString text =
        usageLine(command) + QStringLiteral("\n\n") + command.summary + QLatin1Char('\n');
    for (const QString& line : command.details) {
        text += line + QLatin1Char('\n');
    }
    if (command.level) {
        text += QStringLiteral("When the office has passwords it needs the [%1] password.\n")
                    .arg(AccessLevels::levelName(*command.level));
    }
    if (!command.arguments.isEmpty()) {
        QList<std::pair<QString, QString>> rows;
        for (const CliArgument& argument : command.arguments) {
            rows.append({argument.name, argument.help});
        }
        text += QStringLiteral("\narguments:\n") + table(rows);
    }
    text += QStringLiteral("\noptions:\n") +
            optionsTable(
                command.options +
                QList<CliOption>{{QStringLiteral("help"), {}, QStringLiteral("show this help")}});
    return text;
}

QString programHelp(const QList<CliOption>& globalOptions) {
    QList<const CliCommand*> all;
    for (const CliCommand& command : registry()) {
        all.append(&command);
    }
    QStringList usage = {QStringLiteral("usage:"), kProgram};
    for (const CliOption& option : globalOptions) {
        if (option.name != QLatin1String("help")) {
            usage << QLatin1Char('[') + optionText(option) + QLatin1Char(']');
        }
    }
    return usage.join(QLatin1Char(' ')) +
           QStringLiteral(
               " COMMAND ...\n"
               "       %1 COMMAND --help   the command's arguments and options\n"
               "\noptions (before the command):\n")
               .arg(kProgram) +
           optionsTable(globalOptions) + QStringLiteral("\ncommands:\n") + commandsTable(all);
}

std::variant<Found, int> find(const QStringList& words, const QList<CliOption>& globalOptions) {
    // The longest name the words begin with, so "appt slot-type add" wins over any shorter.
    const CliCommand* best = nullptr;
    qsizetype bestWords = 0;
    for (const CliCommand& command : registry()) {
        const QStringList name = command.name.split(QLatin1Char(' '));
        if (name.size() > bestWords && words.mid(0, name.size()) == name) {
            best = &command;
            bestWords = name.size();
        }
    }
    if (best) {
        return Found{best, words.mid(bestWords)};
    }
    // Otherwise the longest group the words name: its help, or what is missing in it.
    QString group;
    QList<const CliCommand*> members;
    qsizetype depth = 0;
    for (qsizetype n = 1; n <= words.size(); ++n) {
        const QString prefix = words.mid(0, n).join(QLatin1Char(' '));
        const QList<const CliCommand*> found = groupCommands(prefix);
        if (found.isEmpty()) {
            break;
        }
        group = prefix;
        members = found;
        depth = n;
    }
    const QString first = words.value(0);
    if (members.isEmpty()) {
        return usageError(kProgram,
                          first.isEmpty() ? QStringLiteral("missing command")
                                          : QStringLiteral("unknown command ") + first,
                          programHelp(globalOptions));
    }
    const QString next = words.value(depth);
    if (next == QLatin1String("--help") || next == QLatin1String("-h")) {
        QTextStream(stdout) << "commands:\n"
                            << commandsTable(members) << "\n'" << kProgram << " " << group
                            << " COMMAND --help' tells a command's arguments and options.\n";
        return 0;
    }
    return usageError(kProgram + QLatin1Char(' ') + group,
                      next.isEmpty() ? QStringLiteral("missing command")
                                     : QStringLiteral("unknown command ") + next,
                      groupUsage(members));
}

std::variant<CliArgs, int> parse(const CliCommand& command, const QStringList& words) {
    QCommandLineParser parser;
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    parser.addOption(help);
    for (const CliOption& option : command.options) {
        parser.addOption(parserOption(option));
    }
    const CliArgs empty(command, {}, {});
    if (!parser.parse(QStringList{kProgram} + words)) {
        return empty.usageError(parser.errorText());
    }
    if (parser.isSet(help)) {
        QTextStream(stdout) << helpText(command);
        return 0;
    }
    QMap<QString, QString> options;
    for (const CliOption& option : command.options) {
        if (parser.isSet(option.name)) {
            options.insert(option.name, parser.value(option.name));
        } else if (option.required) {
            return empty.usageError(QStringLiteral("missing ") + optionText(option));
        }
    }
    const QStringList positional = parser.positionalArguments();
    qsizetype at = 0;
    bool many = false;
    for (const CliArgument& argument : command.arguments) {
        const bool needed = argument.count == CliArgument::Count::One ||
                            argument.count == CliArgument::Count::OneOrMore;
        if (needed && at >= positional.size()) {
            return empty.usageError(QStringLiteral("missing ") + argument.name);
        }
        many = many || argument.count == CliArgument::Count::OneOrMore ||
               argument.count == CliArgument::Count::AnyNumber;
        at = many ? positional.size() : std::min(at + 1, positional.size());
    }
    if (at < positional.size()) {
        return empty.usageError(QStringLiteral("unexpected argument ") + positional.at(at));
    }
    return CliArgs(command, positional, options);
}

}  // namespace cli

}  // namespace brimsett
