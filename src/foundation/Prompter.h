#pragma once

#include <QString>
#include <QStringList>

namespace brimsett {

// A typed value as messages quote it back: between apostrophes.
inline QString quotedInMessage(const QString& typed) {
    return QLatin1Char('\'') + typed + QLatin1Char('\'');
}

enum class Icon { None, Information, Question, Warning, Critical };
enum class Buttons { Ok, OkCancel, YesNo, YesNoCancel };
enum class Answer { Ok, Cancel, Yes, No };

// How logic asks the user and tells them things. Each line of a message is one element;
// an empty element is an empty line. Screens show a message box, the command line prints
// and reads, tests script the answers and record every message.
class Prompter {
public:
    virtual ~Prompter() = default;

    virtual void tell(const QString& title, const QStringList& lines, Icon icon) = 0;
    virtual Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
                       Answer defaultAnswer) = 0;

    // The usual confirmation: a Yes/No question whose default is No.
    bool confirm(const QString& title, const QStringList& lines, Icon icon = Icon::Question) {
        return ask(title, lines, icon, Buttons::YesNo, Answer::No) == Answer::Yes;
    }
    void error(const QStringList& lines) { tell(QStringLiteral("Error"), lines, Icon::Critical); }
};

}  // namespace brimsett
