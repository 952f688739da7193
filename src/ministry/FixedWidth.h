#pragma once

#include <QString>
#include <QStringList>

#include <initializer_list>

namespace brimsett::fixedwidth {

// The ministry's files are records of positional fields. Writers build a record from its
// fields in order; readers take fields by their 1-based position and length.

// A value cut or space-padded to exactly `width` characters.
QString fit(const QString& value, int width);

// Digits of a whole number zero-filled to `width` ("0000" style); a negative number keeps
// its "-" in front and a number wider than `width` is written whole, as the old format
// function did, so an overflow shows instead of being cut.
QString zeroFilled(qint64 number, int width);

// One field of a record being written: a value fitted to its width, or, with `asIs`, a
// value written exactly as given (for the few fields the layout lets overflow).
struct Field {
    QString value;
    int width = 0;
    bool asIs = false;
};
Field fixed(const QString& value, int width);
Field asIs(const QString& value);
Field blank(int width);

// The fields joined in order.
QString record(std::initializer_list<Field> fields);

// The text at 1-based position `pos` of length `length`; shorter (or empty) when the line
// ends before, never an error: a reader decides itself what a short line means.
QString take(const QString& line, int pos, int length);

}  // namespace brimsett::fixedwidth
