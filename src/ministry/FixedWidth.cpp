#include "ministry/FixedWidth.h"

namespace brimsett::fixedwidth {

QString fit(const QString& value, int width) {
    if (width <= 0) {
        return {};
    }
    return value.left(width).leftJustified(width, QLatin1Char(' '));
}

QString zeroFilled(qint64 number, int width) {
    const QString digits = QString::number(number < 0 ? -number : number);
    const QString filled = digits.rightJustified(width, QLatin1Char('0'));
    return number < 0 ? QLatin1Char('-') + filled : filled;
}

Field fixed(const QString& value, int width) {
    return Field{value, width, false};
}

Field asIs(const QString& value) {
    return Field{value, 0, true};
}

Field blank(int width) {
    return Field{QString(), width, false};
}

QString record(std::initializer_list<Field> fields) {
    QString out;
    for (const Field& f : fields) {
        out += f.asIs ? f.value : fit(f.value, f.width);
    }
    return out;
}

QString take(const QString& line, int pos, int length) {
    if (pos < 1 || length <= 0) {
        return {};
    }
    return line.mid(pos - 1, length);
}

}  // namespace brimsett::fixedwidth
