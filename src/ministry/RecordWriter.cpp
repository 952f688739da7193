#include "ministry/RecordWriter.h"

namespace brimsett {

RecordWriter::RecordWriter(int recordLength) : m_length(recordLength) {}

void RecordWriter::write(const QString& record) {
    QString text = record;
    if (text.endsWith(QLatin1String("\r\n"))) {
        text.chop(2);
    }
    if (text.size() < m_length) {
        text = text.leftJustified(m_length, QLatin1Char(' '));
    }
    m_buffer += text.toLatin1();
    m_buffer += "\r\n";
    ++m_count;
    if (m_count % 32 == 0 && m_progress) {
        m_progress(m_count);
    }
}

QByteArray RecordWriter::take() {
    QByteArray out;
    out.swap(m_buffer);
    return out;
}

}  // namespace brimsett
