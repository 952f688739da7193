#include "foundation/SqlStatementBuilder.h"

#include "foundation/DateText.h"
#include "foundation/SqlText.h"

#include <QDate>
#include <QDateTime>

#include <cmath>

namespace brimsett {

namespace {

const QString kNull = QStringLiteral("NULL");

bool isNumericType(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
        case QMetaType::Double:
        case QMetaType::Float:
        case QMetaType::Short:
        case QMetaType::UShort:
            return true;
        default:
            return false;
    }
}

// Text as stored: dates in their ISO form, everything else as Qt writes it.
QString textOf(const QVariant& value) {
    if (value.typeId() == QMetaType::QDate) {
        return datetext::isoDate(value.toDate());
    }
    if (value.typeId() == QMetaType::QDateTime) {
        return datetext::isoDateTime(value.toDateTime());
    }
    return value.toString();
}

bool readsAsNumber(const QString& text) {
    bool ok = false;
    const double v = text.trimmed().toDouble(&ok);
    return ok && std::isfinite(v);
}

}  // namespace

void SqlStatementBuilder::begin(QString head) {
    m_head = std::move(head);
    m_fields.clear();
}

void SqlStatementBuilder::beginInsert(const QString& table) {
    begin(QStringLiteral("Insert Into ") + table);
}

void SqlStatementBuilder::beginUpdate(const QString& table) {
    begin(QStringLiteral("Update ") + table + QStringLiteral(" Set "));
}

void SqlStatementBuilder::addField(const QString& name, const QVariant& value, Kind kind) {
    if (value.isNull() || !value.isValid()) {
        m_fields.append({name, kNull, QVariant()});
        return;
    }
    if (kind == Kind::Number && value.typeId() == QMetaType::Bool) {
        const int flag = value.toBool() ? 1 : 0;
        m_fields.append({name, QString::number(flag), flag});
        return;
    }
    const QString text = textOf(value);
    if (text.isEmpty()) {
        m_fields.append({name, kNull, QVariant()});
        return;
    }
    if (kind == Kind::Number && (isNumericType(value) || readsAsNumber(text))) {
        m_fields.append(
            {name, text.trimmed(), isNumericType(value) ? value : QVariant(text.trimmed())});
        return;
    }
    m_fields.append({name, sqltext::quoteValue(text), text});
}

QString SqlStatementBuilder::finishInsert() const {
    QStringList names;
    QStringList texts;
    for (const Field& f : m_fields) {
        names << f.name;
        texts << f.text;
    }
    return m_head + QStringLiteral(" (") + names.join(QLatin1Char(',')) +
           QStringLiteral(") Values(") + texts.join(QLatin1Char(',')) + QLatin1Char(')');
}

QString SqlStatementBuilder::finishUpdate(const QString& condition) const {
    QStringList assignments;
    for (const Field& f : m_fields) {
        assignments << f.name + QLatin1Char('=') + f.text;
    }
    return m_head + assignments.join(QLatin1Char(',')) + QStringLiteral(" Where ") + condition;
}

SqlStatementBuilder::Bound SqlStatementBuilder::boundInsert() const {
    Bound b;
    QStringList names;
    QStringList marks;
    for (const Field& f : m_fields) {
        names << f.name;
        marks << QStringLiteral("?");
        b.values << f.value;
    }
    b.sql = m_head + QStringLiteral(" (") + names.join(QLatin1Char(',')) +
            QStringLiteral(") Values(") + marks.join(QLatin1Char(',')) + QLatin1Char(')');
    return b;
}

SqlStatementBuilder::Bound SqlStatementBuilder::boundUpdate(
    const QString& condition, const QVariantList& conditionValues) const {
    Bound b;
    QStringList assignments;
    for (const Field& f : m_fields) {
        assignments << f.name + QStringLiteral("=?");
        b.values << f.value;
    }
    b.values << conditionValues;
    b.sql = m_head + assignments.join(QLatin1Char(',')) + QStringLiteral(" Where ") + condition;
    return b;
}

}  // namespace brimsett
