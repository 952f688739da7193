#include "cli/CliCommand.h"
#include "cli/CliSession.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QGuiApplication>

#include <memory>

using namespace brimsett;

namespace {

const QList<CliOption> kGlobalOptions = {
    {QStringLiteral("home"), QStringLiteral("DIR"),
     QStringLiteral("the office data folder (else $BRIMSETT_HOME)")},
    {QStringLiteral("settings"), QStringLiteral("FILE"),
     QStringLiteral("the settings file (else $BRIMSETT_SETTINGS)")},
    {QStringLiteral("yes"), {}, QStringLiteral("answer Yes to every question")},
    {QStringLiteral("help"), {}, QStringLiteral("show this help")},
};

}  // namespace

int main(int argc, char** argv) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    // The global options come before the command; everything from the command on is its own.
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    for (const CliOption& option : kGlobalOptions) {
        parser.addOption(cli::parserOption(option));
    }
    if (!parser.parse(arguments)) {
        QTextStream(stderr) << "brimsett-cli: " << parser.errorText() << "\n"
                            << cli::programHelp(kGlobalOptions);
        return 2;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        QTextStream(stdout) << cli::programHelp(kGlobalOptions);
        return 0;
    }
    const auto found = cli::find(parser.positionalArguments(), kGlobalOptions);
    if (const int* status = std::get_if<int>(&found)) {
        return *status;
    }
    const cli::Found& command = std::get<cli::Found>(found);
    const auto parsed = cli::parse(*command.command, command.rest);
    if (const int* status = std::get_if<int>(&parsed)) {
        return *status;
    }
    const CliArgs& args = std::get<CliArgs>(parsed);
    // Painting pages needs the GUI application; it never shows a window, so no display is
    // needed unless the user names a platform.
    std::unique_ptr<QCoreApplication> app;
    if (command.command->paints) {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        app = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        app = std::make_unique<QCoreApplication>(argc, argv);
    }
    CliSession session(parser.value(QStringLiteral("home")),
                       parser.value(QStringLiteral("settings")),
                       parser.isSet(QStringLiteral("yes")));
    try {
        if (command.command->level && !session.require(*command.command->level)) {
            return 1;
        }
        return command.command->run(session, args);
    } catch (const DbError& e) {
        return fail(e.message());
    }
}
