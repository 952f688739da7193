#pragma once

#include "foundation/Prompter.h"

#include <QList>

namespace brimsett {

// Answers questions from a script and records every message, so that tests can compare
// the exact titles and texts. With the script used up, each question takes its default.
class RecordingPrompter : public Prompter {
public:
    struct Message {
        bool question = false;
        QString title;
        QStringList lines;
        Icon icon = Icon::None;
        Buttons buttons = Buttons::Ok;
        Answer defaultAnswer = Answer::Ok;
        QString text() const { return lines.join(QLatin1Char('\n')); }
    };

    void script(std::initializer_list<Answer> answers) { m_answers.append(answers); }
    void tell(const QString& title, const QStringList& lines, Icon icon) override;
    Answer ask(const QString& title, const QStringList& lines, Icon icon, Buttons buttons,
               Answer defaultAnswer) override;

    const QList<Message>& messages() const { return m_messages; }
    const Message& last() const { return m_messages.last(); }
    int unusedAnswers() const { return m_answers.size(); }
    void clear() {
        m_messages.clear();
        m_answers.clear();
    }

private:
    QList<Answer> m_answers;
    QList<Message> m_messages;
};

}  // namespace brimsett
