#include "screens/BrimsettApplication.h"

#include "foundation/DbError.h"

#include <QMessageBox>

namespace brimsett {

namespace {

void report(const QStringList& lines) {
    QMessageBox box(QMessageBox::Critical, QStringLiteral("Error"), lines.join(QLatin1Char('\n')),
                    QMessageBox::Ok, QApplication::activeWindow());
    box.exec();
}

}  // namespace

bool BrimsettApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const DbError& e) {
        report(
            {QStringLiteral("The database refused a statement; nothing of this action was saved."),
             QString(), e.message()});
    } catch (const std::exception& e) {
        report({QStringLiteral("Brimsett could not finish what you asked for:"), QString(),
                QString::fromLocal8Bit(e.what())});
    }
    return false;
}

}  // namespace brimsett
