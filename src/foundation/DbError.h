#pragma once

#include <QString>

#include <stdexcept>

namespace brimsett {

// A statement the database refused, with what was being done when it happened.
class DbError : public std::runtime_error {
public:
    DbError(QString doing, QString statement, QString engineText, QString engineCode = {})
        : std::runtime_error(compose(doing, engineText).toStdString()),
          m_doing(std::move(doing)),
          m_statement(std::move(statement)),
          m_engineText(std::move(engineText)),
          m_engineCode(std::move(engineCode)) {}

    const QString& doing() const { return m_doing; }
    const QString& statement() const { return m_statement; }
    const QString& engineText() const { return m_engineText; }
    const QString& engineCode() const { return m_engineCode; }
    // One line for people: "writing claim 10000042: UNIQUE constraint failed: ..."
    QString message() const { return compose(m_doing, m_engineText); }

private:
    static QString compose(const QString& doing, const QString& text) {
        return doing.isEmpty() ? text : doing + QStringLiteral(": ") + text;
    }
    QString m_doing;
    QString m_statement;
    QString m_engineText;
    QString m_engineCode;
};

}  // namespace brimsett
