#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QIODevice;

namespace brimsett {

// Writes fixed-width records: each padded with blanks to its length (a longer record is
// written whole) and ended with CR LF. Counts the records of the current batch and reports
// the count after every 32nd, so a screen can show "n Records" and repaint.
class RecordWriter {
public:
    explicit RecordWriter(int recordLength);

    void setProgress(std::function<void(int)> progress) { m_progress = std::move(progress); }

    // Adds one record; a trailing CR LF on the text is dropped first.
    void write(const QString& record);
    // Starts counting a new batch.
    void startBatch() { m_count = 0; }
    int count() const { return m_count; }

    // The records written since the last take, as bytes for the file (Latin-1: the format is
    // one byte per character).
    QByteArray take();

private:
    int m_length;
    int m_count = 0;
    QByteArray m_buffer;
    std::function<void(int)> m_progress;
};

}  // namespace brimsett
