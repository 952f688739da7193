#include "foundation/DateText.h"

#include <QLocale>
#include <QRegularExpression>

namespace brimsett::datetext {

namespace {

QDate strict(const QString& text, const QRegularExpression& form) {
    const auto m = form.match(text);
    if (!m.hasMatch()) {
        return {};
    }
    return QDate(m.captured(1).toInt(), m.captured(2).toInt(), m.captured(3).toInt());
}

}  // namespace

QString yyyymmdd(const QDate& date) {
    return date.isValid() ? date.toString(QStringLiteral("yyyyMMdd")) : QString();
}

QString slashed(const QDate& date) {
    return date.isValid() ? date.toString(QStringLiteral("yyyy/MM/dd")) : QString();
}

QString longDate(const QDate& date) {
    return date.isValid() ? QLocale(QLocale::English, QLocale::Canada)
                                .toString(date, QStringLiteral("dddd, MMMM d, yyyy"))
                          : QString();
}

QString stamp(const QDateTime& moment) {
    return moment.toString(QStringLiteral("yyyyMMdd-HHmmss"));
}

QDate fromYyyymmdd(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(\\d{4})(\\d{2})(\\d{2})$"));
    return strict(text, form);
}

QDate fromSlashed(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(\\d{4})/(\\d{2})/(\\d{2})$"));
    return strict(text, form);
}

int fullYear(int twoDigitYear) {
    return twoDigitYear + (twoDigitYear < 30 ? 2000 : 1900);
}

QDate fromYymmdd(const QString& text) {
    static const QRegularExpression form(QStringLiteral("^(\\d{2})(\\d{2})(\\d{2})$"));
    const auto m = form.match(text);
    if (!m.hasMatch()) {
        return {};
    }
    return QDate(fullYear(m.captured(1).toInt()), m.captured(2).toInt(), m.captured(3).toInt());
}

QString isoDate(const QDate& date) {
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

QString isoDateTime(const QDateTime& moment) {
    return moment.isValid() ? moment.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString();
}

}  // namespace brimsett::datetext
