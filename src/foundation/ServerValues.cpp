#include "foundation/ServerValues.h"

#include <QDate>
#include <QDateTime>

#include <cmath>
#include <limits>

namespace brimsett {

namespace {

constexpr int kShownCharacters = 40;

QString shown(const QString& text) {
    return text.size() > kShownCharacters ? text.left(kShownCharacters) + QStringLiteral("...")
                                          : text;
}

std::optional<QVariant> refuse(QString* problem, const QString& text) {
    if (problem != nullptr) {
        *problem = text;
    }
    return std::nullopt;
}

}  // namespace

TargetColumn TargetColumn::of(const QString& dataType, const QVariant& maxLength) {
    const QString type = dataType.toLower();
    TargetColumn column;
    if (type == QLatin1String("smallint")) {
        column = {Kind::Integer, std::numeric_limits<qint16>::min(),
                  std::numeric_limits<qint16>::max()};
    } else if (type == QLatin1String("integer")) {
        column = {Kind::Integer, std::numeric_limits<qint32>::min(),
                  std::numeric_limits<qint32>::max()};
    } else if (type == QLatin1String("bigint")) {
        column = {Kind::Integer, std::numeric_limits<qint64>::min(),
                  std::numeric_limits<qint64>::max()};
    } else if (type == QLatin1String("double precision") || type == QLatin1String("real")) {
        column.kind = Kind::Real;
    } else if (type == QLatin1String("date")) {
        column.kind = Kind::Date;
    } else if (type.startsWith(QLatin1String("timestamp"))) {
        column.kind = Kind::Moment;
    } else if (type == QLatin1String("character varying") || type == QLatin1String("character") ||
               type == QLatin1String("text")) {
        column.kind = Kind::Text;
        column.length = maxLength.isNull() ? -1 : maxLength.toInt();
    }
    return column;
}

std::optional<QVariant> convertForServer(const QVariant& value, const TargetColumn& column,
                                         QString* problem) {
    const bool isNull = !value.isValid() || value.isNull();
    const int type = isNull ? QMetaType::UnknownType : value.typeId();
    const bool isText = type == QMetaType::QString;
    const QString text = isText ? value.toString().trimmed() : QString();
    const QString quoted = QLatin1Char('\'') + shown(value.toString()) + QLatin1Char('\'');
    if (isNull || (isText && text.isEmpty() && column.kind != TargetColumn::Kind::Text &&
                   column.kind != TargetColumn::Kind::Other)) {
        // An old file may lack a NOT NULL the layout has; the row is named rather than the
        // server's constraint.
        if (column.required) {
            return refuse(problem, QStringLiteral("no value, and the server's column needs one"));
        }
        return QVariant();
    }
    switch (column.kind) {
        case TargetColumn::Kind::Integer: {
            qint64 number = 0;
            bool ok = true;
            if (isText) {
                number = text.toLongLong(&ok);
            } else if (type == QMetaType::Double || type == QMetaType::Float) {
                const double real = value.toDouble();
                ok = std::isfinite(real) && real == std::trunc(real) && std::fabs(real) < 9e18;
                number = ok ? qint64(real) : 0;
            } else if (type == QMetaType::QByteArray) {
                ok = false;
            } else {
                number = value.toLongLong(&ok);
            }
            if (!ok) {
                return refuse(problem, quoted + QStringLiteral(" is not a whole number"));
            }
            if (number < column.minimum || number > column.maximum) {
                return refuse(problem, quoted + QStringLiteral(" does not fit: the server's "
                                                               "column holds %1 to %2")
                                                    .arg(column.minimum)
                                                    .arg(column.maximum));
            }
            return QVariant::fromValue<qlonglong>(number);
        }
        case TargetColumn::Kind::Real: {
            bool ok = type != QMetaType::QByteArray;
            const double real = isText ? text.toDouble(&ok) : value.toDouble();
            if (!ok || !std::isfinite(real)) {
                return refuse(problem, quoted + QStringLiteral(" is not a number"));
            }
            return real;
        }
        case TargetColumn::Kind::Date:
        case TargetColumn::Kind::Moment: {
            const bool moment = column.kind == TargetColumn::Kind::Moment;
            if (type == QMetaType::QDate || type == QMetaType::QDateTime) {
                return value;
            }
            // "YYYY-MM-DD", then for a moment " HH:MM[:SS]" (or "T..."); a date column takes
            // a time only when it is midnight, which says nothing.
            const QDate date =
                isText ? QDate::fromString(text.left(10), QStringLiteral("yyyy-MM-dd")) : QDate();
            QTime time(0, 0);
            const QString rest = text.mid(10);
            if (date.isValid() && !rest.isEmpty()) {
                const bool separated =
                    rest.startsWith(QLatin1Char(' ')) || rest.startsWith(QLatin1Char('T'));
                time = separated ? QTime::fromString(rest.mid(1), Qt::ISODateWithMs) : QTime();
            }
            if (!date.isValid() || !time.isValid()) {
                return refuse(problem, quoted + (moment ? QStringLiteral(" is not a date and time")
                                                        : QStringLiteral(" is not a date")));
            }
            if (!moment) {
                if (time != QTime(0, 0)) {
                    return refuse(problem, quoted + QStringLiteral(" has a time of day; the "
                                                                   "server's column keeps the "
                                                                   "date only"));
                }
                return date;
            }
            return QDateTime(date, QTime(time.hour(), time.minute(), time.second()), Qt::UTC);
        }
        case TargetColumn::Kind::Text: {
            if (type == QMetaType::QByteArray) {
                return refuse(problem, QStringLiteral("binary data is not text"));
            }
            const QString whole = value.toString();
            if (whole.contains(QChar(0))) {
                return refuse(problem, QStringLiteral("the text holds a NUL character, which the "
                                                      "server does not store"));
            }
            const qsizetype length =
                whole.size() > column.length ? whole.toUcs4().size() : whole.size();
            if (column.length >= 0 && length > column.length) {
                return refuse(problem, quoted + QStringLiteral(" is %1 characters long; the "
                                                               "server's column holds %2")
                                                    .arg(length)
                                                    .arg(column.length));
            }
            return whole;
        }
        case TargetColumn::Kind::Other:
            break;
    }
    return value;
}

}  // namespace brimsett
