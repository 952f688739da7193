#include "patients/NameCase.h"

namespace brimsett {

namespace {

bool mixesCase(const QString& text) {
    bool upper = false;
    bool lower = false;
    for (const QChar c : text) {
        upper = upper || c.isUpper();
        lower = lower || c.isLower();
    }
    return upper && lower;
}

bool isApostrophe(QChar c) {
    return c == QLatin1Char('\'') || c == QChar(0x2019);
}

}  // namespace

QString nameCase(const QString& typed) {
    const QString tidy = typed.simplified();
    if (mixesCase(tidy)) {
        return tidy;
    }
    QString out = tidy.toLower();
    qsizetype partBegin = 0;
    bool capitalNext = true;
    for (qsizetype i = 0; i < out.size(); ++i) {
        const QChar c = out.at(i);
        if (c == QLatin1Char(' ') || c == QLatin1Char('-')) {
            capitalNext = true;
            partBegin = i + 1;
            continue;
        }
        if (isApostrophe(c)) {
            // O'Brien, D'Arcy: a one-letter part before the apostrophe.
            capitalNext = i - partBegin == 1;
            partBegin = i + 1;
            continue;
        }
        if (capitalNext && c.isLetter()) {
            out[i] = c.toUpper();
            capitalNext = false;
        }
        if (i == partBegin + 1 && out.at(partBegin) == QLatin1Char('M') && c == QLatin1Char('c') &&
            i + 2 < out.size() && out.at(i + 1).isLetter() && out.at(i + 2).isLetter()) {
            capitalNext = true;
        }
    }
    return out;
}

}  // namespace brimsett
