#include "ministry/ReceivedFile.h"

#include "foundation/BoundedLines.h"
#include "ministry/FixedWidth.h"

#include <limits>

namespace brimsett::received {

FileKind kindOf(const QString& firstLine) {
    const QString id = firstLine.left(2);
    if (id == QLatin1String("HB")) {
        return FileKind::BatchEdit;
    }
    if (id == QLatin1String("HX")) {
        return FileKind::ErrorReport;
    }
    if (id == QLatin1String("HR")) {
        return FileKind::Remittance;
    }
    return FileKind::Unknown;
}

QStringList errorColumns() {
    return {QStringLiteral("Line #"), QStringLiteral("Error"), QStringLiteral("Value"),
            QStringLiteral("Expected")};
}

QStringList cellsOf(const LineError& error) {
    return {QString::number(error.line), error.error, error.value, error.expected};
}

QStringList splitLines(const QByteArray& bytes) {
    QStringList lines;
    for (const boundedlines::Line& line :
         boundedlines::split(bytes, std::numeric_limits<qsizetype>::max())) {
        lines << line.text;
    }
    return lines;
}

bool listedAsCut(const CutLines& cut, int index, int length, QList<LineError>& errors) {
    const auto found = cut.constFind(index);
    if (found == cut.constEnd()) {
        return false;
    }
    errors << LineError{index + 1, QStringLiteral("Incorrect record length"),
                        QString::number(*found), QString::number(length)};
    return true;
}

QString progressText(int linesRead, int totalLines) {
    const int percent =
        totalLines > 0 ? static_cast<int>(qint64(linesRead) * 100 / totalLines) : 100;
    return QStringLiteral("%1 Lines Read (%2% done)").arg(linesRead).arg(percent);
}

namespace {
bool allDigits(const QString& text) {
    if (text.isEmpty()) {
        return false;
    }
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return false;
        }
    }
    return true;
}
}  // namespace

std::optional<Money> amountOf(const QString& digits) {
    // Ministry amounts are at most eleven digits; more would not be an amount at all.
    if (!allDigits(digits) || digits.size() > 15) {
        return std::nullopt;
    }
    return Money::fromCents(digits.toLongLong());
}

std::optional<int> signOf(const QString& sign) {
    if (sign.isEmpty() || sign == QLatin1String(" ")) {
        return 1;
    }
    if (sign == QLatin1String("-")) {
        return -1;
    }
    return std::nullopt;
}

QDate dateOf(const QString& digits) {
    if (!allDigits(digits)) {
        return {};
    }
    if (digits.size() == 8) {
        return QDate(digits.left(4).toInt(), digits.mid(4, 2).toInt(), digits.mid(6, 2).toInt());
    }
    if (digits.size() == 6) {
        const int yy = digits.left(2).toInt();
        return QDate(yy < 50 ? 2000 + yy : 1900 + yy, digits.mid(2, 2).toInt(),
                     digits.mid(4, 2).toInt());
    }
    return {};
}

QString errorCodesOf(const QString& line) {
    QStringList codes;
    for (int pos = 65; pos <= 77; pos += 3) {
        const QString code = fixedwidth::take(line, pos, 3).trimmed();
        if (!code.isEmpty()) {
            codes << code;
        }
    }
    return codes.join(QLatin1Char(','));
}

bool checkLength(const QString& line, int lineNumber, int length, QList<LineError>& errors) {
    if (line.size() == length) {
        return true;
    }
    errors << LineError{lineNumber, QStringLiteral("Incorrect record length"),
                        QString::number(line.size()), QString::number(length)};
    return false;
}

}  // namespace brimsett::received
