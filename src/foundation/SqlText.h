#pragma once

#include <QString>
#include <QVariantList>

namespace brimsett {

class Dialect;

// Turning what a user typed into search criteria, and quoting values into statement text.
//
// Two families live here:
//  - The statement-text forms (criterionOperator, criterionValue, cleanPattern, whereClause,
//    quoteValue) write values into the text itself, in the old engine's notation. They exist
//    for texts that are an output of their own (the SQL log replayed by the other office
//    computers) and must never be run with values the user typed.
//  - likeCriterion is what every search runs: the typed text becomes a bound value.
namespace sqltext {

// " LIKE " when the text holds "*" or "?", "" when it begins with ">=", "<=", ">" or "<",
// otherwise "=". A comparison prefix wins over wildcards: after ">" the rest is compared
// as it stands, so ">Sm*" is the comparison with "Sm*", not a pattern.
QString criterionOperator(const QString& typed);

// The typed text for use between two quotes: "'" doubled, "|", "[" and "]" written as
// '&chr(124)&', '&chr(91)&' and '&chr(93)&'; then a leading comparison prefix removed.
QString criterionValue(const QString& typed);

// "[" and "]" become "?", so brackets typed into a pattern match any one character
// instead of opening a character class.
QString cleanPattern(const QString& pattern);

// " Where " + field + operator + "'" + value + "'". A pattern is cleaned of brackets
// first. A comparison prefix, which criterionOperator leaves out and criterionValue
// removes, is written back as the operator: ">=10" on Amount gives " Where Amount>='10'".
QString whereClause(const QString& field, const QString& typed);

// A complete quoted literal for statement text that is also written to the SQL log:
// "'" doubled, "|" rebuilt by the engine from '+Chr(124)+'. Line breaks become
// '+Chr(13)+' and '+Chr(10)+' so that a statement always stays on one line of the log.
QString quoteValue(const QString& value);

// True for a name that can be written into a statement as it stands: a letter or "_",
// then letters, digits and "_". Table and column names that are not bound values are
// checked with it.
bool isPlainName(const QString& name);

struct LikeCriterion {
    QString sql;          // " column LIKE ? ESCAPE '\'" (or a comparison)
    QVariantList values;  // the one bound value
};

// The search criterion for a column from what the user typed, with the typed text as a
// bound value so that nothing typed can leave its quotes:
//  - ">=", "<=", ">" or "<" at the start: that comparison with the rest of the text
//    (blanks after the operator dropped, no wildcards); the column's own ordering applies.
//  - otherwise a case-insensitive LIKE. "*" matches any text, "?" one character, and
//    "[" or "]" one character too (as cleanPattern has it). "%", "_" and "\" typed by the
//    user match only themselves.
//  - a text without "*" or "?" matches the values that begin with it, or only the whole
//    value when wholeText is set. A pattern with wildcards must match the whole value.
// An empty text matches every value that is not NULL. column must be a plain name,
// optionally qualified by a table ("p.LName"); anything else throws std::invalid_argument.
LikeCriterion likeCriterion(const Dialect& dialect, const QString& column, const QString& typed,
                            bool wholeText);

// A case-insensitive LIKE that the whole value must match, for a pattern the program built
// around a typed text (a find adding "*" at its ends): "*" and "?" are wildcards as above,
// every other character, a leading ">" or "<" too, matches only itself. column as above.
LikeCriterion patternCriterion(const Dialect& dialect, const QString& column,
                               const QString& pattern);

// The range of Lower(column) that every value matching patternCriterion's pattern lies in,
// " Lower(column)>=? And Lower(column)<?", so that an index on Lower(column) narrows a search
// by its beginning before the LIKE decides. Empty when the pattern begins with a wildcard or
// its fixed beginning is not plain ASCII: both engines fold only ASCII letters in Lower(),
// and compare its text byte by byte.
LikeCriterion lowerPrefixRange(const QString& column, const QString& pattern);

}  // namespace sqltext
}  // namespace brimsett
