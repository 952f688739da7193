#include "ministry/ModemPorts.h"

#include <QRegularExpression>
#include <QSerialPortInfo>

#include <algorithm>

namespace brimsett::modemports {

namespace {

// Digit runs compare by their number, so ttyS2 comes before ttyS10 whatever the locale.
bool naturallyBefore(const QString& a, const QString& b) {
    qsizetype i = 0;
    qsizetype j = 0;
    while (i < a.size() && j < b.size()) {
        if (a.at(i).isDigit() && b.at(j).isDigit()) {
            const qsizetype si = i;
            const qsizetype sj = j;
            while (i < a.size() && a.at(i).isDigit()) {
                ++i;
            }
            while (j < b.size() && b.at(j).isDigit()) {
                ++j;
            }
            const qulonglong x = a.mid(si, i - si).toULongLong();
            const qulonglong y = b.mid(sj, j - sj).toULongLong();
            if (x != y) {
                return x < y;
            }
        } else if (a.at(i) != b.at(j)) {
            return a.at(i) < b.at(j);
        } else {
            ++i;
            ++j;
        }
    }
    return a.size() - i < b.size() - j;
}

void sortNaturally(QList<Port>& ports) {
    std::stable_sort(ports.begin(), ports.end(), [](const Port& a, const Port& b) {
        return naturallyBefore(a.device, b.device);
    });
}

}  // namespace

QList<Port> available() {
    QList<Port> ports;
    for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) {
        ports.append({info.systemLocation(), info.description().trimmed()});
    }
    sortNaturally(ports);
    return ports;
}

QList<Port> offered(QList<Port> found, const QString& stored) {
    sortNaturally(found);
    const QString wanted = device(stored);
    const bool there = std::any_of(found.cbegin(), found.cend(),
                                   [&wanted](const Port& p) { return p.device == wanted; });
    if (!wanted.isEmpty() && !there) {
        found.prepend({wanted, kMissing});
    }
    return found;
}

QString device(const QString& stored) {
    static const QRegularExpression com(QStringLiteral("^-?\\s*COM\\s*(\\d{1,3})$"),
                                        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression bare(QStringLiteral("^tty[A-Za-z0-9._-]+$"));
    const QString text = stored.trimmed();
    if (const QRegularExpressionMatch m = com.match(text); m.hasMatch()) {
        const int number = m.captured(1).toInt();
        if (number >= 1 && number <= 256) {
            return QStringLiteral("/dev/ttyS%1").arg(number - 1);
        }
        return text;
    }
    if (bare.match(text).hasMatch()) {
        return QStringLiteral("/dev/") + text;
    }
    return text;
}

}  // namespace brimsett::modemports
