#include "screens/RepaintingWait.h"

#include <QEventLoop>
#include <QTimer>

namespace brimsett {

void RepaintingWait::pause(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
}

void RepaintingWait::status(const QString& text) {
    if (m_show) {
        m_show(text);
    }
}

}  // namespace brimsett
