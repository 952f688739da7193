#include "foundation/BoundedLines.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace brimsett::boundedlines {

Splitter::Splitter(qsizetype maxLineLength) : m_maxLineLength(maxLineLength) {}

void Splitter::endLine() {
    m_lines << Line{QString::fromLatin1(m_current), m_currentLength};
    m_current.clear();
    m_currentLength = 0;
}

bool Splitter::feed(QByteArrayView bytes) {
    const qsizetype size = bytes.size();
    qsizetype i = 0;
    while (i < size && !m_ended) {
        const char c = bytes.at(i);
        if (c == '\x1a') {
            m_ended = true;
            break;
        }
        if (c == '\n' || c == '\r') {
            // The LF of a CR LF pair ends nothing more.
            if (!(c == '\n' && m_afterCr)) {
                endLine();
            }
            m_afterCr = c == '\r';
            ++i;
            continue;
        }
        m_afterCr = false;
        // A run of ordinary characters: kept up to the bound, counted whole.
        qsizetype end = i;
        while (end < size && bytes.at(end) != '\n' && bytes.at(end) != '\r' &&
               bytes.at(end) != '\x1a') {
            ++end;
        }
        const qsizetype room = std::max<qsizetype>(0, m_maxLineLength - m_current.size());
        m_current.append(bytes.sliced(i, std::min(room, end - i)));
        m_currentLength += end - i;
        i = end;
    }
    return !m_ended;
}

QList<Line> Splitter::finish() {
    if (m_currentLength > 0) {
        endLine();
    }
    return std::move(m_lines);
}

QList<Line> split(QByteArrayView bytes, qsizetype maxLineLength) {
    Splitter splitter(maxLineLength);
    splitter.feed(bytes);
    return splitter.finish();
}

namespace {

Result refused(Result::Status status, const QString& reason) {
    Result result;
    result.status = status;
    result.reason = reason;
    return result;
}

Result tooLarge(const QString& shown, const Limits& limits) {
    constexpr qint64 kKB = 1024;
    const QString size = limits.maxBytes >= kKB * kKB
                             ? QStringLiteral("%1 MB").arg(limits.maxBytes / (kKB * kKB))
                             : QStringLiteral("%1 KB").arg(limits.maxBytes / kKB);
    return refused(Result::Status::TooLarge,
                   QStringLiteral("%1 is larger than %2, more than %3 ever is; it was not read.")
                       .arg(shown, size, limits.kind));
}

Result tooManyLines(const QString& shown, const Limits& limits) {
    return refused(Result::Status::TooManyLines,
                   QStringLiteral("%1 has more than %2 lines, more than %3 ever has; it was not "
                                  "read.")
                       .arg(shown)
                       .arg(limits.maxLines)
                       .arg(limits.kind));
}

}  // namespace

Result readFile(const QString& path, const Limits& limits) {
    const QString shown = QDir::toNativeSeparators(path);
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        return refused(Result::Status::NotRegularFile,
                       QStringLiteral("%1 is not a regular file (a folder, a device or a pipe); "
                                      "it was not read.")
                           .arg(shown));
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return refused(Result::Status::NotOpened, file.errorString());
    }
    if (file.size() > limits.maxBytes) {
        return tooLarge(shown, limits);
    }
    Splitter splitter(limits.maxLineLength);
    std::array<char, 64 * 1024> buffer;
    qint64 total = 0;
    for (;;) {
        const qint64 got = file.read(buffer.data(), qint64(buffer.size()));
        if (got < 0) {
            return refused(Result::Status::ReadFailed, file.errorString());
        }
        if (got == 0) {
            break;
        }
        // The file may grow while it is read: the count, not the size seen first, decides.
        total += got;
        if (total > limits.maxBytes) {
            return tooLarge(shown, limits);
        }
        const bool more = splitter.feed(QByteArrayView(buffer.data(), got));
        if (splitter.lineCount() > limits.maxLines) {
            return tooManyLines(shown, limits);
        }
        if (!more) {
            break;
        }
    }
    Result result;
    result.lines = splitter.finish();
    if (result.lines.size() > limits.maxLines) {
        return tooManyLines(shown, limits);
    }
    result.status = Result::Status::Read;
    return result;
}

}  // namespace brimsett::boundedlines
