#pragma once

#include <QDate>
#include <QMap>
#include <QString>
#include <QStringList>

#include <optional>

namespace brimsett {

class Clock;
class Database;
class Prompter;
class SqlLog;

// One doctor's transfer login as `edtparams` holds it.
struct EdtLogin {
    QString userId;  // key id + "1"
    bool hasPassword = false;
    // The password (id + "2"), when it can be read on this computer.
    std::optional<QString> password;
    QString passwordProblem;  // why it cannot be read
    QString changeMarker;     // id + "3"
    QDate passwordChanged;    // "-" + id
    QString mode;             // "MODE" + id: the mode ...
    QDate modeChanged;        // ... and the date it was last changed
};

// What the setup screen saves in one go: the general settings and one doctor's login.
struct EdtSetupChange {
    std::optional<QMap<QChar, QString>> general;  // none: left as stored
    QString doctorId;                             // empty: no login saved
    QString userId;
    std::optional<QString> password;  // none: left as stored; empty: removed
    QString mode;
};

// The electronic-transfer settings kept in `edtparams` (name and value pairs): the general
// dial-up settings under single-character names, and per doctor the login (id + "1" user,
// id + "2" password, id + "3" change marker), "MODE" + id ("mode,YYYY/MM/DD") and "-" + id
// (the date of the last password change, "YYYY/MM/DD"). Passwords are sealed with
// EdtPasswordSeal's key file. Each save is one transaction, logged after the commit.
class EdtParams {
public:
    // The general settings the setup screen edits; others found are kept as they are.
    static constexpr QChar kPhone = QLatin1Char('N');
    static constexpr QChar kPort = QLatin1Char('P');
    static constexpr QChar kSpeed = QLatin1Char('S');
    static constexpr QChar kTimeOut = QLatin1Char('T');
    static constexpr int kDefaultTimeOut = 60;
    static QStringList lineSpeeds() { return {"57600,n,8,1", "9600,n,8,1"}; }

    EdtParams(Database& db, Prompter& prompter, const Clock& clock, const SqlLog& log,
              QString keyFile);

    QMap<QChar, QString> general();
    EdtLogin login(const QString& doctorId);
    // The doctor's transfer user id; empty when none is set.
    QString userId(const QString& doctorId);

    // Checks, then writes only what differs from the stored values. False when refused or
    // the database refused (the prompter was told; nothing was changed).
    bool save(const EdtSetupChange& change);

    // The dial-up session clears the marker once the host took the new password.
    void clearChangeMarker(const QString& doctorId);
    // A new password the host took: stored sealed, its change date today and the marker
    // cleared, in one transaction. False when it could not be kept (the prompter was told).
    bool storeNewPassword(const QString& doctorId, const QString& password);
    // The general setting `key` kept sealed (the network's password), opened. None when it
    // cannot be read here (`problem` says why); empty when none is stored.
    std::optional<QString> generalSecret(QChar key, QString* problem = nullptr);

    // The time-out in seconds, 30 to 120; none for anything else.
    static std::optional<int> readTimeOut(const QString& typed);
    static QStringList timeOutMessage() {
        return {QStringLiteral("Invalid number for number of seconds."),
                QStringLiteral("Number of seconds must be between 30-120.")};
    }
    // A user id becomes part of the request file's name ("R" + id + ".txt"), so it may hold
    // no blanks and none of the characters file names cannot hold. Empty when it fits,
    // otherwise the problem.
    static QString userIdProblem(const QString& userId);

private:
    struct Row {
        QString name;
        QString value;  // empty: no row
    };
    QMap<QString, QString> readRows(const QStringList& names);
    std::optional<QList<Row>> loginRows(const EdtSetupChange& change);
    // The general settings with their secrets sealed; none when one cannot be.
    std::optional<QMap<QChar, QString>> sealedGeneral(QMap<QChar, QString> general);
    void write(const QList<Row>& rows, bool replaceGeneral);

    Database& m_db;
    Prompter& m_prompter;
    const Clock& m_clock;
    const SqlLog& m_log;
    QString m_keyFile;
};

}  // namespace brimsett
