#include "ministry/EdtParams.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"
#include "ministry/EdtHostSettings.h"
#include "ministry/EdtPasswordSeal.h"

namespace brimsett {

namespace {

constexpr int kValueLength = 60;  // ParamValue Text(60)
const QString kGeneralWhere = QStringLiteral("Length(ParamName)=1");

QString doctorKey(const QString& doctorId) {
    return doctorId.trimmed().toUpper();
}
QString userKey(const QString& id) {
    return id + QLatin1Char('1');
}
QString passwordKey(const QString& id) {
    return id + QLatin1Char('2');
}
QString markerKey(const QString& id) {
    return id + QLatin1Char('3');
}
QString modeKey(const QString& id) {
    return QStringLiteral("MODE") + id;
}
QString changedKey(const QString& id) {
    return QLatin1Char('-') + id;
}

// "mode,YYYY/MM/DD": the mode, and the date when the text after the last comma is one.
std::pair<QString, QDate> splitMode(const QString& stored) {
    const qsizetype comma = stored.lastIndexOf(QLatin1Char(','));
    const QDate day = comma < 0 ? QDate() : datetext::fromSlashed(stored.mid(comma + 1).trimmed());
    return day.isValid() ? std::pair{stored.left(comma), day} : std::pair{stored, QDate()};
}

}  // namespace

EdtParams::EdtParams(Database& db, Prompter& prompter, const Clock& clock, const SqlLog& log,
                     QString keyFile)
    : m_db(db), m_prompter(prompter), m_clock(clock), m_log(log), m_keyFile(std::move(keyFile)) {}

QMap<QChar, QString> EdtParams::general() {
    QSqlQuery q = m_db.exec(QStringLiteral("Select ParamName,ParamValue From edtparams Where ") +
                                kGeneralWhere + QStringLiteral(" Order By ParamName"),
                            {}, QStringLiteral("reading the EDT settings"));
    QMap<QChar, QString> values;
    while (q.next()) {
        values.insert(q.value(0).toString().at(0), q.value(1).toString());
    }
    return values;
}

QMap<QString, QString> EdtParams::readRows(const QStringList& names) {
    QStringList marks;
    QVariantList values;
    for (const QString& name : names) {
        marks << QStringLiteral("?");
        values << name;
    }
    QSqlQuery q = m_db.exec(QStringLiteral("Select ParamName,ParamValue From edtparams"
                                           " Where ParamName In (") +
                                marks.join(QLatin1Char(',')) + QLatin1Char(')'),
                            values, QStringLiteral("reading the EDT settings"));
    QMap<QString, QString> rows;
    while (q.next()) {
        rows.insert(q.value(0).toString(), q.value(1).toString());
    }
    return rows;
}

EdtLogin EdtParams::login(const QString& doctorId) {
    const QString id = doctorKey(doctorId);
    const QMap<QString, QString> rows =
        readRows({userKey(id), passwordKey(id), markerKey(id), modeKey(id), changedKey(id)});
    EdtLogin login;
    login.userId = rows.value(userKey(id));
    const QString stored = rows.value(passwordKey(id));
    login.hasPassword = !stored.isEmpty();
    if (login.hasPassword) {
        EdtPasswordSeal seal(m_keyFile);
        login.password = seal.open(stored);
        login.passwordProblem = seal.problem();
    } else {
        login.password = QString();
    }
    login.changeMarker = rows.value(markerKey(id));
    login.passwordChanged = datetext::fromSlashed(rows.value(changedKey(id)).trimmed());
    std::tie(login.mode, login.modeChanged) = splitMode(rows.value(modeKey(id)));
    return login;
}

QString EdtParams::userId(const QString& doctorId) {
    const QString id = doctorKey(doctorId);
    return readRows({userKey(id)}).value(userKey(id)).trimmed();
}

std::optional<int> EdtParams::readTimeOut(const QString& typed) {
    bool ok = false;
    const int seconds = typed.trimmed().toInt(&ok);
    if (!ok || seconds < 30 || seconds > 120) {
        return std::nullopt;
    }
    return seconds;
}

QString EdtParams::userIdProblem(const QString& userId) {
    static const QString refused = QStringLiteral("\\/:*?\"<>|");
    for (const QChar c : userId) {
        if (c.isSpace() || c.category() == QChar::Other_Control || refused.contains(c)) {
            return QStringLiteral(
                       "The User ID %1 cannot be used: it may hold no blanks and none "
                       "of \\ / : * ? \" < > |.")
                .arg(quotedInMessage(userId));
        }
    }
    if (userId.size() > kValueLength) {
        return QStringLiteral("The User ID can be at most %1 characters.").arg(kValueLength);
    }
    return {};
}

std::optional<QList<EdtParams::Row>> EdtParams::loginRows(const EdtSetupChange& change) {
    const QString id = doctorKey(change.doctorId);
    const QMap<QString, QString> stored =
        readRows({userKey(id), passwordKey(id), markerKey(id), modeKey(id), changedKey(id)});
    QList<Row> rows;
    const auto want = [&](const QString& name, const QString& value) {
        if (stored.value(name) != value) {
            rows.append({name, value});
        }
    };

    const QString user = change.userId.trimmed();
    if (const QString problem = userIdProblem(user); !problem.isEmpty()) {
        m_prompter.error({problem});
        return std::nullopt;
    }
    want(userKey(id), user);

    EdtPasswordSeal seal(m_keyFile);
    const QString storedPassword = stored.value(passwordKey(id));
    const std::optional<QString> before = seal.open(storedPassword);
    const bool changed = change.password && (!before || *before != *change.password);
    if (changed && change.password->isEmpty()) {
        want(passwordKey(id), QString());
    } else if (changed ||
               (!storedPassword.isEmpty() && !EdtPasswordSeal::isSealed(storedPassword))) {
        // A new password, or one kept in plain text by an older version: sealed now.
        const std::optional<QString> sealed = seal.seal(changed ? *change.password : *before);
        if (!sealed) {
            m_prompter.error({QStringLiteral("The password was not saved."), seal.problem()});
            return std::nullopt;
        }
        want(passwordKey(id), *sealed);
    }
    if (changed && !change.password->isEmpty()) {
        want(markerKey(id), QStringLiteral("1"));
        want(changedKey(id), datetext::slashed(m_clock.today()));
    }

    const QString mode = change.mode.trimmed();
    const int room = kValueLength - 11;  // "," and the date
    if (mode.size() > room) {
        m_prompter.error({QStringLiteral("The mode can be at most %1 characters.").arg(room)});
        return std::nullopt;
    }
    if (mode != splitMode(stored.value(modeKey(id))).first) {
        want(modeKey(id), mode.isEmpty()
                              ? QString()
                              : mode + QLatin1Char(',') + datetext::slashed(m_clock.today()));
    }
    return rows;
}

bool EdtParams::save(const EdtSetupChange& change) {
    try {
        QList<Row> rows;
        bool replaceGeneral = false;
        std::optional<QMap<QChar, QString>> general;
        if (change.general) {
            if (change.general->contains(kTimeOut) &&
                !readTimeOut(change.general->value(kTimeOut))) {
                m_prompter.error(timeOutMessage());
                return false;
            }
            general = sealedGeneral(*change.general);
            if (!general) {
                return false;
            }
            for (auto it = general->cbegin(); it != general->cend(); ++it) {
                if (it.value().trimmed().size() > kValueLength) {
                    m_prompter.error({QStringLiteral("A setting can be at most %1 characters.")
                                          .arg(kValueLength)});
                    return false;
                }
                if (!it.value().trimmed().isEmpty()) {
                    rows.append({QString(it.key()), it.value().trimmed()});
                }
            }
            QMap<QChar, QString> wanted;
            for (const Row& r : std::as_const(rows)) {
                wanted.insert(r.name.at(0), r.value);
            }
            replaceGeneral = wanted != this->general();
            if (!replaceGeneral) {
                rows.clear();
            }
        }
        if (!change.doctorId.trimmed().isEmpty()) {
            const std::optional<QList<Row>> login = loginRows(change);
            if (!login) {
                return false;
            }
            rows += *login;
        }
        write(rows, replaceGeneral);
        return true;
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("The EDT settings were not saved; nothing was changed."), e.message()});
        return false;
    }
}

void EdtParams::write(const QList<Row>& rows, bool replaceGeneral) {
    if (rows.isEmpty() && !replaceGeneral) {
        return;
    }
    const QString doing = QStringLiteral("saving the EDT settings");
    QStringList logged;
    {
        Transaction transaction(m_db, doing);
        if (replaceGeneral) {
            const QString statement =
                QStringLiteral("Delete From edtparams Where ") + kGeneralWhere;
            m_db.exec(statement, {}, doing);
            logged << statement;
        }
        for (const Row& r : rows) {
            if (!(replaceGeneral && r.name.size() == 1)) {
                m_db.exec(QStringLiteral("Delete From edtparams Where ParamName=?"), {r.name},
                          doing);
                logged << QStringLiteral("Delete From edtparams Where ParamName=") +
                              sqltext::quoteValue(r.name);
            }
            if (r.value.isEmpty()) {
                continue;
            }
            SqlStatementBuilder insert;
            insert.beginInsert(QStringLiteral("edtparams"));
            insert.addField(QStringLiteral("ParamName"), r.name, SqlStatementBuilder::Kind::Text);
            insert.addField(QStringLiteral("ParamValue"), r.value, SqlStatementBuilder::Kind::Text);
            const SqlStatementBuilder::Bound bound = insert.boundInsert();
            m_db.exec(bound.sql, bound.values, doing);
            logged << insert.finishInsert();
        }
        transaction.commit();
    }
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
}

std::optional<QMap<QChar, QString>> EdtParams::sealedGeneral(QMap<QChar, QString> general) {
    for (const edthost::Setting& s : edthost::settings()) {
        const QString typed = general.value(s.key);
        if (!s.secret || typed.isEmpty() || EdtPasswordSeal::isSealed(typed)) {
            continue;
        }
        // The same password as stored keeps its stored form, so saving changes nothing.
        const QString stored = this->general().value(s.key);
        EdtPasswordSeal seal(m_keyFile);
        if (!stored.isEmpty() && seal.open(stored) == typed) {
            general.insert(s.key, stored);
            continue;
        }
        const std::optional<QString> sealed = seal.seal(typed);
        if (!sealed) {
            m_prompter.error(
                {QStringLiteral("The %1 was not saved.").arg(s.label), seal.problem()});
            return std::nullopt;
        }
        general.insert(s.key, *sealed);
    }
    return general;
}

std::optional<QString> EdtParams::generalSecret(QChar key, QString* problem) {
    const QString stored = general().value(key);
    if (stored.isEmpty()) {
        return QString();
    }
    EdtPasswordSeal seal(m_keyFile);
    std::optional<QString> opened = seal.open(stored);
    if (problem != nullptr) {
        *problem = seal.problem();
    }
    return opened;
}

bool EdtParams::storeNewPassword(const QString& doctorId, const QString& password) {
    const QString id = doctorKey(doctorId);
    EdtPasswordSeal seal(m_keyFile);
    const std::optional<QString> sealed = seal.seal(password);
    if (!sealed) {
        m_prompter.error({QStringLiteral("The new password was not saved."), seal.problem()});
        return false;
    }
    const QString day = datetext::slashed(m_clock.today());
    try {
        write({{passwordKey(id), *sealed}, {changedKey(id), day}, {markerKey(id), QString()}},
              false);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The new password was not saved."), e.message()});
        return false;
    }
    return true;
}

void EdtParams::clearChangeMarker(const QString& doctorId) {
    const QString name = markerKey(doctorKey(doctorId));
    const QString doing = QStringLiteral("clearing the EDT password marker");
    {
        Transaction transaction(m_db, doing);
        m_db.exec(QStringLiteral("Update edtparams Set ParamValue='' Where ParamName=?"), {name},
                  doing);
        transaction.commit();
    }
    m_log.write(QStringLiteral("Update edtparams Set ParamValue='' Where ParamName=") +
                sqltext::quoteValue(name));
}

}  // namespace brimsett
