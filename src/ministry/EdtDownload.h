#pragma once

#include "ministry/EdtEvents.h"
#include "ministry/EdtHostMenu.h"

#include <QString>
#include <QStringList>

namespace brimsett {

class Clock;
class EdtFileTransfer;
class ModemSession;

// Fetches the ministry's waiting files once the session is logged on and the host shows its
// main menu: the download function chosen, the host's list awaited and every file on it
// asked for; each arrives between "*** Download Started" and "*** Download Finished - " and
// is moved whole into the office's "Download" folder.
class EdtDownload {
public:
    static inline const QString kList = QStringLiteral("file(s) you wish;for DOWNLOAD or");
    static inline const QString kStarted = QStringLiteral("*** Download Started");
    static inline const QString kFinished = QStringLiteral("*** Download Finished - ");

    struct Result {
        bool ok = false;      // the host's list was read and nothing failed
        QStringList files;    // the names now in "Download"
        QStringList message;  // the closing sentences, also told as steps or errors
    };

    EdtDownload(ModemSession& session, EdtEventSink sink, EdtFileTransfer& transfer,
                const Clock& clock, QString officeFolder, int timeOutSeconds,
                EdtHostMenu menu = {});

    Result run();

private:
    Result failed(QStringList message, QStringList files = {}) const;

    ModemSession& m_session;
    EdtEventSink m_sink;
    EdtFileTransfer& m_transfer;
    const Clock& m_clock;
    QString m_office;
    int m_timeOut;
    EdtHostMenu m_menu;
};

}  // namespace brimsett
