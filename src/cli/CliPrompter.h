#pragma once

#include "foundation/Prompter.h"

#include <QTextStream>

namespace brimsett {

// Prints every message to standard error. A question is answered Yes by --yes, otherwise
// by a line read from standard input; at the end of input it takes its default answer.
class CliPrompter : public Prompter {
public:
    explicit CliPrompter(bool alwaysYes) : m_alwaysYes(alwaysYes) {}
    void tell(const QString& title, const QStringList& lines, Icon icon) override;
    Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
               Answer defaultAnswer) override;
    // Whether any question was answered No or Cancel: the action it guarded did not run.
    bool refused() const { return m_refused; }

private:
    void print(const QString& title, const QStringList& lines);
    bool m_alwaysYes;
    bool m_refused = false;
};

}  // namespace brimsett
