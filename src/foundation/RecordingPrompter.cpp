#include "foundation/RecordingPrompter.h"

namespace brimsett {

void RecordingPrompter::tell(const QString& title, const QStringList& lines, Icon icon) {
    m_messages.append({false, title, lines, icon, Buttons::Ok, Answer::Ok});
}

Answer RecordingPrompter::ask(const QString& title, const QStringList& lines, Icon icon,
                              Buttons buttons, Answer defaultAnswer) {
    m_messages.append({true, title, lines, icon, buttons, defaultAnswer});
    return m_answers.isEmpty() ? defaultAnswer : m_answers.takeFirst();
}

}  // namespace brimsett
