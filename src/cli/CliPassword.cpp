#include "cli/CliPassword.h"

#include <QTextStream>

#include <iostream>
#include <string>

#include <termios.h>
#include <unistd.h>

namespace brimsett {

std::optional<QString> cliPassword() {
    if (qEnvironmentVariableIsSet("BRIMSETT_PASSWORD")) {
        return qEnvironmentVariable("BRIMSETT_PASSWORD");
    }
    if (isatty(STDIN_FILENO) == 0) {
        return std::nullopt;
    }
    return readUnseenLine(QStringLiteral("Password: "));
}

std::optional<QString> readUnseenLine(const QString& prompt) {
    const bool terminal = isatty(STDIN_FILENO) != 0;
    QTextStream err(stderr);
    termios before{};
    const bool quiet = terminal && tcgetattr(STDIN_FILENO, &before) == 0;
    if (terminal) {
        err << prompt;
        err.flush();
    }
    if (quiet) {
        termios silent = before;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    std::string line;
    const bool read = static_cast<bool>(std::getline(std::cin, line));
    if (quiet) {
        tcsetattr(STDIN_FILENO, TCSAFLUSH, &before);
    }
    if (terminal) {
        err << "\n";
    }
    if (!read) {
        return std::nullopt;
    }
    QString text = QString::fromStdString(line);
    if (text.endsWith(QLatin1Char('\r'))) {
        text.chop(1);  // a line ended the Windows way
    }
    return text;
}

}  // namespace brimsett
