#pragma once

#include "ministry/EdtEvents.h"

#include <QChar>
#include <QFile>
#include <QMap>
#include <QString>
#include <QStringList>

namespace brimsett {

class Clock;

// The dial-up session's log "EDT-LOG.HTM" in the office folder, made anew by each session: the
// title with the date, "Start: ", the general settings, one coloured row per event and
// "Finish: ". Each row reaches the file as it happens, so a log read while the session runs,
// or after the program was killed, holds every event so far; browsers and Qt's rich text show
// the unclosed table as it is. The file is the owner's only. A password never reaches it:
// sealed settings are hidden and the texts given to conceal() are masked in every row.
class EdtLog {
public:
    static inline const QString kFileName = QStringLiteral("EDT-LOG.HTM");
    // One row holds a full host screen (80 by 24 and its line ends); longer texts go on in the
    // next rows, and an endless stream stops after kRowsPerEvent of them.
    static constexpr int kRowLength = 2000;
    static constexpr int kRowsPerEvent = 32;
    static inline const QString kMask = QStringLiteral("********");

    EdtLog(QString path, const Clock& clock);
    ~EdtLog();  // a log still open is finished
    EdtLog(const EdtLog&) = delete;
    EdtLog& operator=(const EdtLog&) = delete;

    // Replaces the file with the head of a new log. False when it cannot be written
    // (problem() says why); the session may go on without it.
    bool start(const QMap<QChar, QString>& general);
    void add(EdtEvent kind, const QString& text);
    // "Finish: " and the closing tags; later events are dropped.
    void finish();
    // A text (a password) shown as kMask wherever it appears from now on.
    void conceal(const QString& secret);
    // The log as a session's event sink; this log must outlive it.
    EdtEventSink sink();

    QString path() const { return m_file.fileName(); }
    QString problem() const { return m_problem; }

    static QString kindName(EdtEvent kind);
    static QString colour(EdtEvent kind);
    // The text as HTML: escaped, control characters shown by name ("<CR>"), line ends kept as
    // line breaks and runs of blanks kept.
    static QString visibleHtml(const QString& text);

private:
    void write(const QString& html);
    QString masked(QString text) const;
    QString time() const;

    QFile m_file;
    const Clock& m_clock;
    QStringList m_secrets;
    QString m_problem;
    bool m_open = false;
};

}  // namespace brimsett
