#pragma once

#include "foundation/Money.h"

#include <QByteArray>
#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace brimsett::received {

// What the ministry sends back, told apart by the first record's first two characters.
enum class FileKind { Unknown, BatchEdit, ErrorReport, Remittance };
FileKind kindOf(const QString& firstLine);  // "HB", "HX", "HR"

// One fault found while reading a file: a row of the error list.
struct LineError {
    int line = 0;  // 1-based
    QString error;
    QString value;
    QString expected;
    bool operator==(const LineError&) const = default;
};
// "Line #", "Error", "Value", "Expected"
QStringList errorColumns();
QStringList cellsOf(const LineError& error);

// The records of a received file. Records end with CR LF, a lone LF or a lone CR; a Ctrl-Z
// ends the file (what follows it is not read); a last line left empty by the final line
// break is no record. Bytes are read as Latin-1, one character per position.
QStringList splitLines(const QByteArray& bytes);

// Lines of a file too long to be any record, kept only in part: the whole length of each by
// its index (from 0). Such a line is one "Incorrect record length" row, never read as a record.
using CutLines = QHash<int, qint64>;
// A record is at most 132 characters (a batch edit's); a line is kept to this many.
inline constexpr qsizetype kLongestLineKept = 256;
// Lists line `index` when it was cut; true when it was (and is to be skipped).
bool listedAsCut(const CutLines& cut, int index, int length, QList<LineError>& errors);

// Readers report every so many lines and at the end; the screen shows progressText.
using Progress = std::function<void(int linesRead, int totalLines)>;
inline constexpr int kProgressEvery = 50;
// "n Lines Read (p% done)"
QString progressText(int linesRead, int totalLines);

// An unsigned amount: digits only, the last two the cents. None for anything else (blanks,
// letters, a sign, an empty field).
std::optional<Money> amountOf(const QString& digits);
// The sign position of an amount: a space (or nothing, on a short line) is positive, "-"
// negative; anything else is none.
std::optional<int> signOf(const QString& sign);

// "YYYYMMDD", or "YYMMDD" for the older layouts (years 00-49 are 2000-2049, 50-99 are
// 1950-1999). Invalid for anything that is not a calendar date in one of the two forms.
QDate dateOf(const QString& digits);

// The error codes of positions 65-79 of an error report record: the non-blank
// three-character groups joined with ",", at most five codes (19 characters).
QString errorCodesOf(const QString& line);

// "Incorrect record length" when the line is not `length` characters long; true when it is.
bool checkLength(const QString& line, int lineNumber, int length, QList<LineError>& errors);

}  // namespace brimsett::received
