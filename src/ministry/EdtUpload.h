#pragma once

#include "ministry/EdtEvents.h"
#include "ministry/EdtHostMenu.h"

#include <QString>
#include <QStringList>

namespace brimsett {

class Clock;
class Database;
class EdtFileTransfer;
class ModemSession;
class Prompter;
class SqlLog;

// Sends a doctor's unsubmitted claim files to the ministry host once the session is logged on
// and the host's main menu was seen (where the logon leaves it). Each file: the upload function
// chosen, the host's go-ahead awaited, the file sent, the host's confirmation awaited, and
// only then its batches get their `SubmitDate` (one transaction per file). Every step goes to
// the session's events.
class EdtUpload {
public:
    static inline const QString kGoAhead = QStringLiteral("PLEASE BEGIN;YOUR UPLOAD;UPLOAD NOW");
    static inline const QString kConfirmed = QStringLiteral("TRANSFER SUCCESSFUL");

    struct Result {
        int sent = 0;
        int files = 0;
        bool lineLost = false;
        QStringList summary;
    };

    EdtUpload(Database& db, Prompter& prompter, const Clock& clock, const SqlLog& log,
              ModemSession& session, EdtEventSink sink, EdtFileTransfer& transfer,
              QString officeFolder, int timeOutSeconds, int baud, EdtHostMenu menu = {});

    // The files of the doctor's billing number (group, provider and specialty) with a batch
    // not yet submitted, by name.
    QStringList unsubmitted(const QString& doctorId);

    // Uploads them all; the summary is told as the last step too.
    Result run(const QString& doctorId);

private:
    enum class Sent { Yes, No, Stop };
    Sent upload(const QString& name, bool& atMenu);
    void error(const QString& text) const;

    Database& m_db;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    ModemSession& m_session;
    EdtEventSink m_sink;
    EdtFileTransfer& m_transfer;
    QString m_office;
    int m_timeOut;
    int m_baud;
    EdtHostMenu m_menu;
};

}  // namespace brimsett
