#include "foundation/KillPoints.h"

#include <QByteArray>
#include <QtGlobal>

#include <csignal>

namespace brimsett::killpoints {

namespace {

struct Target {
    QByteArray point;
    long long statement = 0;  // 0: not counting
};

const Target& target() {
    static const Target t = [] {
        Target made;
        const QByteArray value = qgetenv("BRIMSETT_KILL_AT");
        if (value.startsWith("statement:")) {
            made.statement = value.mid(10).toLongLong();
        } else {
            made.point = value;
        }
        return made;
    }();
    return t;
}

[[noreturn]] void die() {
    std::raise(SIGKILL);
    std::abort();  // not reached: SIGKILL cannot be caught
}

}  // namespace

void reach(const char* point) {
    const Target& t = target();
    if (!t.point.isEmpty() && t.point == point) {
        die();
    }
}

void statement() {
    static long long run = 0;
    const Target& t = target();
    if (t.statement > 0 && ++run == t.statement) {
        die();
    }
}

}  // namespace brimsett::killpoints
