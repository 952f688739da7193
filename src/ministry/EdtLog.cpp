#include "ministry/EdtLog.h"

#include "foundation/Clock.h"
#include "foundation/DateText.h"
#include "foundation/FileModes.h"
#include "ministry/EdtHostSettings.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"

namespace brimsett {

namespace {

constexpr EdtEvent kKinds[] = {EdtEvent::Step, EdtEvent::Sent, EdtEvent::Awaited,
                               EdtEvent::Received, EdtEvent::Error};

QString escaped(const QString& text) {
    return text.toHtmlEscaped();
}

// The general settings by the names the setup screen gives them.
QString paramName(QChar key) {
    static const QMap<QChar, QString> names{
        {EdtParams::kPhone, QStringLiteral("Telephone Number")},
        {EdtParams::kPort, QStringLiteral("Modem Port")},
        {EdtParams::kSpeed, QStringLiteral("Line Speed")},
        {EdtParams::kTimeOut, QStringLiteral("Time-out (seconds)")}};
    const QString name = names.value(key, edthost::label(key));
    return name.isEmpty() ? QString(key) : QString(key) + QStringLiteral(" (") + name + ')';
}

// Pieces of at most `length` characters, never splitting a surrogate pair.
QStringList pieces(const QString& text, int length) {
    QStringList parts;
    qsizetype at = 0;
    while (at < text.size()) {
        qsizetype end = std::min(text.size(), at + length);
        if (end < text.size() && text.at(end - 1).isHighSurrogate()) {
            --end;
        }
        parts << text.mid(at, end - at);
        at = end;
    }
    return parts.isEmpty() ? QStringList{QString()} : parts;
}

}  // namespace

EdtLog::EdtLog(QString path, const Clock& clock) : m_file(std::move(path)), m_clock(clock) {}

EdtLog::~EdtLog() {
    finish();
}

QString EdtLog::kindName(EdtEvent kind) {
    switch (kind) {
        case EdtEvent::Step:
            return QStringLiteral("Step");
        case EdtEvent::Sent:
            return QStringLiteral("Sent");
        case EdtEvent::Awaited:
            return QStringLiteral("Awaited");
        case EdtEvent::Received:
            return QStringLiteral("Received");
        case EdtEvent::Error:
            return QStringLiteral("Error");
    }
    return {};
}

QString EdtLog::colour(EdtEvent kind) {
    // Pale enough for black text on paper and screen; the error row is the only warm one.
    switch (kind) {
        case EdtEvent::Step:
            return QStringLiteral("#e8e8e8");
        case EdtEvent::Sent:
            return QStringLiteral("#cfe2ff");
        case EdtEvent::Awaited:
            return QStringLiteral("#fff3bf");
        case EdtEvent::Received:
            return QStringLiteral("#d3f9d8");
        case EdtEvent::Error:
            return QStringLiteral("#ffc9c9");
    }
    return {};
}

QString EdtLog::visibleHtml(const QString& text) {
    // The ASCII names, in grey: every font has the letters, and a "<CR>" the host sent as
    // text stays black.
    static const char* const names[32] = {"NUL", "SOH", "STX", "ETX", "EOT", "ENQ", "ACK", "BEL",
                                          "BS",  "TAB", "LF",  "VT",  "FF",  "CR",  "SO",  "SI",
                                          "DLE", "DC1", "DC2", "DC3", "DC4", "NAK", "SYN", "ETB",
                                          "CAN", "EM",  "SUB", "ESC", "FS",  "GS",  "RS",  "US"};
    const auto named = [](const char* name) {
        return QStringLiteral("<span style=\"color:#808080\">&lt;") + QLatin1String(name) +
               QStringLiteral("&gt;</span>");
    };
    QString html;
    html.reserve(text.size() + text.size() / 4);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const char16_t u = c.unicode();
        if (u < 0x20) {
            html += named(names[u]);
            // A line end shows as one, so a host's screen reads as its lines.
            const bool crlf = u == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n';
            if (((u == u'\r' && !crlf) || u == u'\n') && i + 1 < text.size()) {
                html += QStringLiteral("<br>");
            }
        } else if (u == 0x7F) {
            html += named("DEL");
        } else if (u == u' ' && i > 0 && text.at(i - 1) == QLatin1Char(' ')) {
            html += QStringLiteral("&nbsp;");  // a host's screen lines up its columns
        } else {
            html += escaped(QString(c));
        }
    }
    return html;
}

QString EdtLog::time() const {
    return m_clock.now().time().toString(QStringLiteral("HH:mm:ss"));
}

QString EdtLog::masked(QString text) const {
    for (const QString& secret : m_secrets) {
        text.replace(secret, kMask);
    }
    return text;
}

void EdtLog::conceal(const QString& secret) {
    if (!secret.isEmpty() && !m_secrets.contains(secret)) {
        m_secrets << secret;
        // The longest first, so a password holding another leaves no part of itself.
        std::sort(m_secrets.begin(), m_secrets.end(),
                  [](const QString& a, const QString& b) { return a.size() > b.size(); });
    }
}

void EdtLog::write(const QString& html) {
    if (!m_open) {
        return;
    }
    const QByteArray bytes = html.toUtf8();
    if (m_file.write(bytes) != bytes.size() || !m_file.flush()) {
        m_problem = m_file.errorString();
        m_file.close();
        m_open = false;
    }
}

bool EdtLog::start(const QMap<QChar, QString>& general) {
    finish();
    m_problem.clear();
    // Made anew rather than truncated, so an older file's wider access goes with it.
    QFile::remove(m_file.fileName());
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Truncate,
                     QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        m_problem = m_file.errorString();
        return false;
    }
    filemodes::makePrivate(m_file.fileName());
    m_open = true;

    const QString title =
        escaped(QStringLiteral("Brimsett Log File - ") + datetext::longDate(m_clock.today()));
    QString head =
        QStringLiteral("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n<title>") +
        title + QStringLiteral("</title>\n</head>\n<body>\n<h2>") + title +
        QStringLiteral("</h2>\n<p>");
    for (const EdtEvent kind : kKinds) {
        head += QStringLiteral("<span style=\"background-color:%1\">&nbsp;%2&nbsp;</span> ")
                    .arg(colour(kind), kindName(kind));
    }
    head += QStringLiteral("</p>\n<p>Start: ") + time() + QStringLiteral("</p>\n");
    head += QStringLiteral(
        "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\">\n"
        "<tr><th align=\"left\">Param.</th><th align=\"left\">Value</th></tr>\n");
    for (auto it = general.cbegin(); it != general.cend(); ++it) {
        const QString value = EdtPasswordSeal::isSealed(it.value()) ? kMask : masked(it.value());
        head += QStringLiteral("<tr><td>") + escaped(paramName(it.key())) +
                QStringLiteral("</td><td>") + visibleHtml(value) + QStringLiteral("</td></tr>\n");
    }
    head += QStringLiteral(
        "</table>\n<p></p>\n"
        "<table border=\"1\" cellspacing=\"0\" cellpadding=\"3\" width=\"100%\">\n"
        "<tr><th align=\"left\" width=\"80\">Time</th><th align=\"left\" width=\"80\">Event</th>"
        "<th align=\"left\">Text</th></tr>\n");
    write(head);
    return m_open;
}

void EdtLog::add(EdtEvent kind, const QString& text) {
    if (!m_open) {
        return;
    }
    const QString logged = masked(text);
    QStringList rows = pieces(logged, kRowLength);
    if (rows.size() > kRowsPerEvent) {
        rows = rows.mid(0, kRowsPerEvent - 1);
        qsizetype shown = 0;
        for (const QString& row : std::as_const(rows)) {
            shown += row.size();
        }
        rows << QStringLiteral("(%1 more characters not logged)").arg(logged.size() - shown);
    }
    const QString cell = QStringLiteral("<td bgcolor=\"%1\"").arg(colour(kind));
    const QString label = cell + QStringLiteral(" nowrap>");
    const bool error = kind == EdtEvent::Error;
    QString html;
    for (const QString& row : std::as_const(rows)) {
        html += QStringLiteral("<tr>") + label + time() + QStringLiteral("</td>") + label +
                kindName(kind) + QStringLiteral("</td>") + cell + QLatin1Char('>') +
                (error ? QStringLiteral("<b><code>") : QStringLiteral("<code>")) +
                visibleHtml(row) +
                (error ? QStringLiteral("</code></b>") : QStringLiteral("</code>")) +
                QStringLiteral("</td></tr>\n");
    }
    write(html);
}

void EdtLog::finish() {
    write(QStringLiteral("</table>\n<p>Finish: ") + time() +
          QStringLiteral("</p>\n</body>\n</html>\n"));
    if (m_open) {
        m_file.close();
        m_open = false;
    }
}

EdtEventSink EdtLog::sink() {
    return [this](EdtEvent kind, const QString& text) { add(kind, text); };
}

}  // namespace brimsett
