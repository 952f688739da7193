#pragma once

#include <QCommandLineOption>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

namespace brimsett {

class CliSession;
class CliArgs;

// "--name VALUE", or a switch "--name" when it has no value name.
struct CliOption {
    QString name;
    QString valueName;
    QString help;
    bool required = false;
};

// A positional argument: NAME, [NAME] when optional, NAME... when repeated.
struct CliArgument {
    enum class Count { One, Optional, OneOrMore, AnyNumber };
    QString name;
    QString help;
    Count count = Count::One;
};

// One command of brimsett-cli, declared once: its parsing, its usage line, its --help and its
// line in "brimsett-cli --help" all come from here. A name of several words ("claim add",
// "appt slot-type add") makes each of its leading words a group, whose own --help lists
// its commands.
struct CliCommand {
    QString name{};
    QString summary{};  // one line
    QList<CliArgument> arguments{};
    QList<CliOption> options{};
    QStringList details{};       // further lines of the command's --help
    std::optional<int> level{};  // the access level the whole command needs
    bool paints = false;         // draws pages (a PDF): runs as a GUI application, offscreen
    int (*run)(CliSession& session, const CliArgs& args) = nullptr;
};

// What a command was given, parsed by its declaration.
class CliArgs {
public:
    CliArgs(const CliCommand& command, QStringList positional, QMap<QString, QString> options)
        : m_command(command), m_positional(std::move(positional)), m_options(std::move(options)) {}

    const CliCommand& command() const { return m_command; }
    const QStringList& positional() const { return m_positional; }
    QString argument(int i) const { return m_positional.value(i); }
    bool isSet(const QString& option) const { return m_options.contains(option); }
    QString value(const QString& option, const QString& otherwise = {}) const {
        return m_options.value(option, otherwise);
    }
    // "brimsett-cli COMMAND: problem" and the command's usage on standard error; the status 2.
    int usageError(const QString& problem) const;

private:
    const CliCommand& m_command;
    QStringList m_positional;
    QMap<QString, QString> m_options;
};

namespace cli {

// Adds a command to the program; each command file registers its own at start.
bool add(CliCommand command);
// Every command, by name.
const QList<CliCommand>& commands();

// The option as QCommandLineParser takes it.
QCommandLineOption parserOption(const CliOption& option);

// "usage: brimsett-cli NAME ..." from the declaration.
QString usageLine(const CliCommand& command);
// The text of "brimsett-cli NAME --help".
QString helpText(const CliCommand& command);
// The text of "brimsett-cli --help": the global options and one line per command.
QString programHelp(const QList<CliOption>& globalOptions);

// The command named by the first words of the arguments and the words after its name; the
// exit status when there is none (its reason or a group's help printed).
struct Found {
    const CliCommand* command;
    QStringList rest;
};
std::variant<Found, int> find(const QStringList& words, const QList<CliOption>& globalOptions);

// The arguments parsed by the command's declaration, or the exit status when they were not
// run (--help printed: 0; a usage error printed: 2).
std::variant<CliArgs, int> parse(const CliCommand& command, const QStringList& words);

}  // namespace cli

}  // namespace brimsett
