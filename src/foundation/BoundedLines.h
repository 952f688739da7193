#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

// Reading a text file someone else wrote (the ministry's answers, its schedule of benefits)
// without trusting its size: the whole file, and each of its lines, stay within bounds, so a
// device, a huge file or one endless line is refused or cut instead of exhausting memory.
namespace brimsett::boundedlines {

struct Limits {
    qint64 maxBytes = 0;
    qsizetype maxLines = 0;
    // Characters kept of one line; the rest is only counted.
    qsizetype maxLineLength = 0;
    // What such a file is, for the refusals: "a file from the ministry".
    QString kind;
};

struct Line {
    QString text;       // at most maxLineLength characters, read as Latin-1
    qint64 length = 0;  // the whole line's length
    bool isCut() const { return length > text.size(); }
};

// Splits bytes given in pieces into lines. CR LF, a lone LF or a lone CR ends a line; a
// Ctrl-Z ends the text (what follows is not read); a last line left empty by the final
// line break is no line.
class Splitter {
public:
    explicit Splitter(qsizetype maxLineLength);
    // False once the text has ended (a Ctrl-Z): the rest need not be read.
    bool feed(QByteArrayView bytes);
    // The lines so far, the last one included when it had no line break.
    QList<Line> finish();
    qsizetype lineCount() const { return m_lines.size(); }

private:
    void endLine();

    qsizetype m_maxLineLength;
    QList<Line> m_lines;
    QByteArray m_current;
    qint64 m_currentLength = 0;
    bool m_afterCr = false;
    bool m_ended = false;
};

// All lines of bytes already in memory.
QList<Line> split(QByteArrayView bytes, qsizetype maxLineLength);

struct Result {
    enum class Status { Read, NotOpened, NotRegularFile, TooLarge, TooManyLines, ReadFailed };
    Status status = Status::NotOpened;
    QList<Line> lines;
    // NotOpened and ReadFailed: the system's reason. The refusals of the bounds: one
    // sentence naming the file.
    QString reason;
    bool isRead() const { return status == Status::Read; }
};

// Reads a regular file within the limits. A device, a folder or a pipe is refused before
// anything is read; a file that grows past the limits while it is read is refused too.
Result readFile(const QString& path, const Limits& limits);

}  // namespace brimsett::boundedlines
