#pragma once

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>

namespace brimsett {

// Builds one INSERT or UPDATE field by field. The same fields give two forms: the statement
// text with the values written in (what the SQL log records) and the statement with bound
// values (what is run), so a caller that logs never writes its fields twice.
//
// Names are not checked: they come from code, and a wrong one fails when the statement runs.
class SqlStatementBuilder {
public:
    enum class Kind { Text, Number };

    struct Bound {
        QString sql;
        QVariantList values;
    };

    // Each begin starts a new statement; fields of an earlier one are dropped.
    void beginInsert(const QString& table);
    void beginUpdate(const QString& table);

    // A null value or an empty text is NULL. Text is quoted with quoteValue (a QDate or
    // QDateTime in its stored ISO form); a number is written bare, a bool as 1 or 0. A Number
    // whose value does not read as a number is quoted like text, so that it can never become
    // part of the statement itself.
    void addField(const QString& name, const QVariant& value, Kind kind);

    // "Insert Into t (A,B) Values('x',NULL)"
    QString finishInsert() const;
    // "Update t Set A='x',B=NULL Where " + condition
    QString finishUpdate(const QString& condition) const;

    // The same statements with "?" for each value; the condition's own values follow.
    Bound boundInsert() const;
    Bound boundUpdate(const QString& condition, const QVariantList& conditionValues = {}) const;

private:
    struct Field {
        QString name;
        QString text;    // as written into the statement text
        QVariant value;  // as bound; null for NULL
    };
    void begin(QString head);

    QString m_head;
    QList<Field> m_fields;
};

}  // namespace brimsett
