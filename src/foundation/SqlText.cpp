#include "foundation/SqlText.h"

#include "foundation/Dialect.h"

#include <stdexcept>

namespace brimsett::sqltext {

namespace {

// The comparison a typed text begins with, longest first so that ">=" is not read as ">".
QString comparisonPrefix(const QString& typed) {
    for (const char* op : {">=", "<=", ">", "<"}) {
        if (typed.startsWith(QLatin1String(op))) {
            return QString::fromLatin1(op);
        }
    }
    return {};
}

bool hasWildcard(const QString& typed) {
    return typed.contains(QLatin1Char('*')) || typed.contains(QLatin1Char('?'));
}

// The LIKE pattern of a typed text: the user's own %, _ and \ escaped, the old wildcards
// and brackets turned into the engine's.
QString likePattern(const QString& typed) {
    QString pattern;
    pattern.reserve(typed.size() + 4);
    for (const QChar c : typed) {
        switch (c.unicode()) {
            case '%':
            case '_':
            case '\\':
                pattern += QLatin1Char('\\');
                pattern += c;
                break;
            case '*':
                pattern += QLatin1Char('%');
                break;
            case '?':
            case '[':
            case ']':
                pattern += QLatin1Char('_');
                break;
            default:
                pattern += c;
        }
    }
    return pattern;
}

bool isQualifiedName(const QString& name) {
    const qsizetype dot = name.indexOf(QLatin1Char('.'));
    if (dot < 0) {
        return isPlainName(name);
    }
    return isPlainName(name.left(dot)) && isPlainName(name.mid(dot + 1));
}

}  // namespace

QString criterionOperator(const QString& typed) {
    if (!comparisonPrefix(typed).isEmpty()) {
        return {};
    }
    return hasWildcard(typed) ? QStringLiteral(" LIKE ") : QStringLiteral("=");
}

QString criterionValue(const QString& typed) {
    QString value = typed;
    value.replace(QLatin1Char('\''), QStringLiteral("''"));
    value.replace(QLatin1Char('|'), QStringLiteral("'&chr(124)&'"));
    value.replace(QLatin1Char('['), QStringLiteral("'&chr(91)&'"));
    value.replace(QLatin1Char(']'), QStringLiteral("'&chr(93)&'"));
    return value.mid(comparisonPrefix(typed).size());
}

QString cleanPattern(const QString& pattern) {
    QString cleaned = pattern;
    cleaned.replace(QLatin1Char('['), QLatin1Char('?'));
    cleaned.replace(QLatin1Char(']'), QLatin1Char('?'));
    return cleaned;
}

QString whereClause(const QString& field, const QString& typed) {
    const QString op = criterionOperator(typed);
    const QString text = op == QLatin1String(" LIKE ") ? cleanPattern(typed) : typed;
    const QString written = op.isEmpty() ? comparisonPrefix(typed) : op;
    return QStringLiteral(" Where ") + field + written + QLatin1Char('\'') + criterionValue(text) +
           QLatin1Char('\'');
}

QString quoteValue(const QString& value) {
    QString inner = value;
    inner.replace(QLatin1Char('\''), QStringLiteral("''"));
    inner.replace(QLatin1Char('|'), QStringLiteral("'+Chr(124)+'"));
    inner.replace(QLatin1Char('\r'), QStringLiteral("'+Chr(13)+'"));
    inner.replace(QLatin1Char('\n'), QStringLiteral("'+Chr(10)+'"));
    return QLatin1Char('\'') + inner + QLatin1Char('\'');
}

bool isPlainName(const QString& name) {
    if (name.isEmpty()) {
        return false;
    }
    for (qsizetype i = 0; i < name.size(); ++i) {
        const char16_t c = name.at(i).unicode();
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
        const bool digit = c >= '0' && c <= '9';
        if (!letter && !(digit && i > 0)) {
            return false;
        }
    }
    return true;
}

LikeCriterion likeCriterion(const Dialect& dialect, const QString& column, const QString& typed,
                            bool wholeText) {
    if (!isQualifiedName(column)) {
        throw std::invalid_argument("search column is not a plain name: " + column.toStdString());
    }
    const QString prefix = comparisonPrefix(typed);
    if (!prefix.isEmpty()) {
        const QString rest = typed.mid(prefix.size()).trimmed();
        return {QLatin1Char(' ') + column + prefix + QLatin1Char('?'), {rest}};
    }
    const bool beginning = !wholeText && !hasWildcard(typed);
    return patternCriterion(dialect, column, beginning ? typed + QLatin1Char('*') : typed);
}

LikeCriterion patternCriterion(const Dialect& dialect, const QString& column,
                               const QString& pattern) {
    if (!isQualifiedName(column)) {
        throw std::invalid_argument("search column is not a plain name: " + column.toStdString());
    }
    return {QLatin1Char(' ') + column + dialect.caseInsensitiveLike() + QLatin1Char('?') +
                dialect.likeEscape(),
            {likePattern(pattern)}};
}

LikeCriterion lowerPrefixRange(const QString& column, const QString& pattern) {
    if (!isQualifiedName(column)) {
        throw std::invalid_argument("search column is not a plain name: " + column.toStdString());
    }
    QString low;
    for (const QChar c : pattern) {
        const char16_t u = c.unicode();
        if (u == '*' || u == '?' || u == '[' || u == ']') {
            break;
        }
        if (u >= 0x7f || u < 0x20) {
            return {};
        }
        low += u >= 'A' && u <= 'Z' ? QChar(u + ('a' - 'A')) : c;
    }
    if (low.isEmpty()) {
        return {};
    }
    QString high = low;
    high.back() = QChar(high.back().unicode() + 1);
    const QString lower = QStringLiteral(" Lower(") + column + QLatin1Char(')');
    return {lower + QStringLiteral(">=? And") + lower + QStringLiteral("<?"), {low, high}};
}

}  // namespace brimsett::sqltext
