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
    QTextStream err(stderr);
    err << "Password: ";
    err.flush();
    termios before{};
    const bool quiet = tcgetattr(STDIN_FILENO, &before) == 0;
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
    err << "\n";
    return read ? std::optional<QString>(QString::fromStdString(line)) : std::nullopt;
}

}  // namespace brimsett
