#pragma once

#include "foundation/ActionRegistry.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/OfficePaths.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QStringView>

#include <array>

class QLocalServer;
class QLocalSocket;
class QTimer;

namespace brimsett {

// The words sibling programs on this computer send; later screens register a handler for
// each through ActionRegistry::setCommand. "BACKUP" is answered by the receiver itself.
inline constexpr std::array<QStringView, 13> kReceiverWords{u"PATIENTFROMAPP",
                                                            u"PATIENT",
                                                            u"BACKUP",
                                                            u"DOCTOR",
                                                            u"APPDOCTOR",
                                                            u"FINDAPPOINTMENT",
                                                            u"FROMAPPAPPOINTMENT",
                                                            u"SWIPE",
                                                            u"NOTPROVIDER",
                                                            u"VPAT",
                                                            u"VDOC",
                                                            u"VAPP",
                                                            u"VSWIPE"};

// The hidden receiver through which sibling programs ask this program to open a record or to
// make a backup. One local socket per office data folder, so two offices on one computer
// never meet, and only the user who runs the program may connect.
//
// Protocol: a client sends one line of UTF-8 ended by "\n" (a trailing "\r" is ignored): a
// command word, case-insensitive, then its arguments. The receiver answers one line ended by
// "\n" and closes the connection; anything after the first line is ignored, and a line cut
// off by the client disconnecting is dropped unrun. A client that sends no line within the
// idle time, or more than 64 KiB without a line end, is closed unanswered. Clients are served
// as their data arrives, so none of them can hold up another or the screens.
//   "BACKUP"            -> "BACKUPDONE!", or "BACKUPFAILED " + reason
//   a registered word   -> the handler's answer, by convention "OK" when it did its work;
//                          a handler that throws gives the word + "FAILED " + reason
//   any other word      -> "UNKNOWN " + the word as sent ("UNKNOWN" for an empty line)
// Line breaks inside an answer are sent as spaces so the answer stays one line.
class CommandReceiver : public QObject {
    Q_OBJECT
public:
    CommandReceiver(Database& db, OfficePaths paths, Clock& clock, ActionRegistry& registry,
                    QObject* parent = nullptr);
    ~CommandReceiver() override;

    // The socket's path: "brimsett-" and 16 hex digits of the SHA-1 of the canonical office
    // folder, in this user's private runtime folder. Empty, with the reason in problem, when
    // there is no folder that only this user can write to.
    static QString serverName(const OfficePaths& paths, QString* problem = nullptr);

    // Takes over a socket left by a program that ended without closing it. Refuses, with the
    // reason in error, when another running program already receives for this office folder.
    bool listen(QString* error);
    bool isListening() const;
    // Where the socket lives on disk; empty when not listening.
    QString fullServerName() const;
    void close();

    // A connection that has not sent its line within this time is closed (default 10 s).
    void setIdleTimeout(int ms) { m_idleTimeoutMs = ms; }

    // The answer to one command line, as a client would receive it (without the "\n").
    QString answer(const QString& line);

signals:
    void commandAnswered(const QString& line, const QString& answer);

private:
    void accept();
    void readFrom(QLocalSocket* socket);
    void drop(QLocalSocket* socket);

    Database& m_db;
    OfficePaths m_paths;
    Clock& m_clock;
    ActionRegistry& m_registry;
    QLocalServer* m_server = nullptr;
    QHash<QLocalSocket*, QByteArray> m_pending;
    int m_idleTimeoutMs = 10000;
};

}  // namespace brimsett
