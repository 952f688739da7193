#include "screens/MessageBoxPrompter.h"

#include <QMessageBox>

namespace brimsett {

namespace {

QMessageBox::Icon iconOf(Icon icon) {
    switch (icon) {
        case Icon::Information:
            return QMessageBox::Information;
        case Icon::Question:
            return QMessageBox::Question;
        case Icon::Warning:
            return QMessageBox::Warning;
        case Icon::Critical:
            return QMessageBox::Critical;
        case Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton buttonOf(Answer a) {
    switch (a) {
        case Answer::Ok:
            return QMessageBox::Ok;
        case Answer::Cancel:
            return QMessageBox::Cancel;
        case Answer::Yes:
            return QMessageBox::Yes;
        case Answer::No:
            return QMessageBox::No;
    }
    return QMessageBox::Ok;
}

}  // namespace

void MessageBoxPrompter::tell(const QString& title, const QStringList& lines, Icon icon) {
    QMessageBox box(iconOf(icon), title, lines.join(QLatin1Char('\n')), QMessageBox::Ok, m_parent);
    box.exec();
}

Answer MessageBoxPrompter::ask(const QString& title, const QStringList& lines, Icon icon,
                               Buttons buttons, Answer defaultAnswer) {
    QMessageBox::StandardButtons set;
    switch (buttons) {
        case Buttons::Ok:
            set = QMessageBox::Ok;
            break;
        case Buttons::OkCancel:
            set = QMessageBox::Ok | QMessageBox::Cancel;
            break;
        case Buttons::YesNo:
            set = QMessageBox::Yes | QMessageBox::No;
            break;
        case Buttons::YesNoCancel:
            set = QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
            break;
    }
    QMessageBox box(iconOf(icon), title, lines.join(QLatin1Char('\n')), set, m_parent);
    box.setDefaultButton(buttonOf(defaultAnswer));
    switch (box.exec()) {
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        case QMessageBox::Cancel:
            return Answer::Cancel;
        case QMessageBox::Ok:
            return Answer::Ok;
        default:
            // Closed with Escape or the window's close button.
            return buttons == Buttons::YesNo ? Answer::No : Answer::Cancel;
    }
}

}  // namespace brimsett
