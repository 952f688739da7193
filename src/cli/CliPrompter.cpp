#include "cli/CliPrompter.h"

#include <cstdio>
#include <iostream>
#include <string>

namespace brimsett {

void CliPrompter::print(const QString& title, const QStringList& lines) {
    QTextStream err(stderr);
    err << title << ":";
    for (const QString& line : lines) {
        err << "\n  " << line;
    }
    err << "\n";
    err.flush();
}

void CliPrompter::tell(const QString& title, const QStringList& lines, Icon) {
    print(title, lines);
}

Answer CliPrompter::ask(const QString& title, const QStringList& lines, Icon, Buttons buttons,
                        Answer defaultAnswer) {
    print(title, lines);
    const bool yesNo = buttons == Buttons::YesNo || buttons == Buttons::YesNoCancel;
    const Answer yes = yesNo ? Answer::Yes : Answer::Ok;
    const Answer no = yesNo ? Answer::No : Answer::Cancel;
    Answer answer = defaultAnswer;
    if (m_alwaysYes) {
        answer = yes;
    } else {
        QTextStream err(stderr);
        err << (defaultAnswer == yes ? "[Y/n] " : "[y/N] ");
        err.flush();
        std::string line;
        if (std::getline(std::cin, line)) {
            const QString reply = QString::fromStdString(line).trimmed().toLower();
            if (reply.startsWith(QLatin1Char('y')) || reply == QLatin1String("ok")) {
                answer = yes;
            } else if (reply.startsWith(QLatin1Char('n')) || reply.startsWith(QLatin1Char('c'))) {
                answer = no;
            }
        }
    }
    if (answer == Answer::No || answer == Answer::Cancel) {
        m_refused = true;
    }
    return answer;
}

}  // namespace brimsett
