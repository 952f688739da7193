#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace brimsett {

// A column of the server's table as the copy fills it.
struct TargetColumn {
    enum class Kind { Integer, Real, Date, Moment, Text, Other };
    Kind kind = Kind::Other;
    qint64 minimum = 0;  // for integers
    qint64 maximum = 0;
    int length = -1;        // for text: the most characters the column holds, -1 for any
    bool required = false;  // NOT NULL

    // From the server's own description (information_schema's data_type and length).
    static TargetColumn of(const QString& dataType, const QVariant& maxLength);
};

// The office file's value as the server's column takes it; no value and `problem` saying
// why ("'2026-13-01' is not a date") when it cannot hold it. Empty text in a column of
// numbers or dates is NULL, as the program reads both alike.
std::optional<QVariant> convertForServer(const QVariant& value, const TargetColumn& column,
                                         QString* problem);

}  // namespace brimsett
