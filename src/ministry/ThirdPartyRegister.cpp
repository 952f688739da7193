#include "ministry/ThirdPartyRegister.h"

#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlRecord>

namespace brimsett {

namespace {

// The statements that delete a payer with its claims and their items, with "%1" where the
// payer's number goes: "?" to run them, the number itself for the log.
const QStringList& payerDeletes() {
    static const QStringList statements = {
        QStringLiteral("Delete From items Where ClaimID In"
                       " (Select ClaimID From claims Where ThirdPartyID=%1)"),
        QStringLiteral("Delete From claims Where ThirdPartyID=%1"),
        QStringLiteral("Delete From thirdparty Where ThirdPartyID=%1"),
    };
    return statements;
}

QString payerDoing(const QString& doing, qint64 id) {
    return doing + QStringLiteral(" third party ") + QString::number(id);
}

}  // namespace

ThirdPartyRegister::ThirdPartyRegister(Database& db, Prompter& prompter, const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_log(log) {}

QList<ThirdPartyListRow> ThirdPartyRegister::list() {
    // By name without regard to case, as the office reads it.
    QSqlQuery q = m_db.exec(QStringLiteral("Select ThirdPartyID As ID,Name,Contact From thirdparty"
                                           " Order By Lower(Coalesce(Name,'')),ThirdPartyID"),
                            {}, QStringLiteral("reading the third party payers"));
    QList<ThirdPartyListRow> rows;
    while (q.next()) {
        const QSqlRecord r = q.record();
        rows.append({recordvalue::of(r, "ID").toLongLong(), recordvalue::textOf(r, "Name"),
                     recordvalue::textOf(r, "Contact")});
    }
    return rows;
}

std::optional<ThirdParty> ThirdPartyRegister::load(qint64 id) {
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From thirdparty Where ThirdPartyID=?"), {id},
                            payerDoing(QStringLiteral("reading"), id));
    if (!q.next()) {
        return std::nullopt;
    }
    return ThirdParty::fromRecord(q.record());
}

std::optional<qint64> ThirdPartyRegister::save(const ThirdParty& typed) {
    m_badField.reset();
    const ThirdParty entry = typed.normalised();
    const Problems found = problems(entry);
    if (!found.isEmpty()) {
        m_badField = found.firstField;
        QStringList lines;
        if (!found.missing.isEmpty()) {
            lines << kMandatoryHeading << found.missing;
        }
        if (!found.faults.isEmpty()) {
            if (!lines.isEmpty()) {
                lines << QString();
            }
            lines << kProblemsHeading << found.faults;
        }
        m_prompter.tell(kErrorTitle, lines, Icon::Critical);
        return std::nullopt;
    }
    try {
        return trySave(entry);
    } catch (const DbError& e) {
        // The transaction has been rolled back.
        m_prompter.error({QStringLiteral("%1 was not saved; nothing was changed.")
                              .arg(quotedInMessage(entry.name)),
                          e.message()});
        return std::nullopt;
    }
}

std::optional<qint64> ThirdPartyRegister::trySave(const ThirdParty& entry) {
    const bool isNew = entry.thirdPartyId.isEmpty();
    SqlStatementBuilder insert;
    qint64 id = 0;
    {
        Transaction transaction(m_db, QStringLiteral("saving third party ") + entry.name);
        // Chosen inside the write transaction, so two computers never take the same number.
        id = isNew ? nextId(m_db, QStringLiteral("thirdparty"), QStringLiteral("ThirdPartyID"))
                   : entry.thirdPartyId.toLongLong();
        const QSqlQuery gone =
            m_db.exec(QStringLiteral("Delete From thirdparty Where ThirdPartyID=?"), {id},
                      payerDoing(QStringLiteral("saving"), id));
        if (!isNew && gone.numRowsAffected() == 0) {
            // Deleted on another computer, with its claims: it must not come back half-way.
            m_prompter.error(
                {QStringLiteral("Third party %1 is no longer in the database.").arg(id),
                 QStringLiteral("Nothing was saved.")});
            return std::nullopt;
        }
        insert.beginInsert(QStringLiteral("thirdparty"));
        insert.addField(QStringLiteral("ThirdPartyID"), id, SqlStatementBuilder::Kind::Number);
        for (const ThirdParty::Column& c : ThirdParty::columns()) {
            if (c.field != ThirdParty::Field::ThirdPartyID) {
                insert.addField(c.name, entry.*c.member, SqlStatementBuilder::Kind::Text);
            }
        }
        const SqlStatementBuilder::Bound bound = insert.boundInsert();
        m_db.exec(bound.sql, bound.values, payerDoing(QStringLiteral("saving"), id));
        transaction.commit();
    }
    m_log.write(payerDeletes().last().arg(id));
    m_log.write(insert.finishInsert());
    return id;
}

bool ThirdPartyRegister::remove(qint64 id) {
    try {
        return tryRemove(id);
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("Third party %1 was not deleted; nothing was changed.").arg(id),
             e.message()});
        return false;
    }
}

bool ThirdPartyRegister::tryRemove(qint64 id) {
    if (!load(id)) {
        m_prompter.error({QStringLiteral("Third party %1 is no longer in the database.").arg(id)});
        return false;
    }
    const qint64 claims =
        scalarLookup(m_db, QStringLiteral("Count"), QStringLiteral("*"), QStringLiteral("claims"),
                     QStringLiteral("ThirdPartyID=?"), {id})
            .toLongLong();
    if (!m_prompter.confirm(
            kDeleteTitle,
            {QStringLiteral("This will delete the Third Party record."),
             QString::number(claims) + QStringLiteral(" claim(s) for this Third Party will also be "
                                                      "deleted."),
             QStringLiteral("Are you sure?")})) {
        return false;
    }
    {
        Transaction transaction(m_db, payerDoing(QStringLiteral("deleting"), id));
        for (const QString& statement : payerDeletes()) {
            m_db.exec(statement.arg(QStringLiteral("?")), {id},
                      payerDoing(QStringLiteral("deleting"), id));
        }
        transaction.commit();
    }
    for (const QString& statement : payerDeletes()) {
        m_log.write(statement.arg(id));
    }
    m_prompter.tell(QStringLiteral("Done"), {QStringLiteral("Deleted successfully.")},
                    Icon::Information);
    return true;
}

std::optional<CityQuickCode> ThirdPartyRegister::cityQuickCode(const QString& code) {
    const QString key = code.trimmed().toUpper();
    if (key.isEmpty()) {
        return std::nullopt;
    }
    // Quick codes are kept in capitals; the user types them in any case.
    QSqlQuery q = m_db.exec(
        QStringLiteral("Select City, PhoneArea From quickcitycodes Where Upper(QuickCode)=?"),
        {key}, QStringLiteral("looking up city quick code ") + key);
    if (!q.next()) {
        return std::nullopt;
    }
    return CityQuickCode{recordvalue::textOf(q.record(), "City"),
                         recordvalue::textOf(q.record(), "PhoneArea")};
}

QList<ThirdPartyChoice> thirdPartyChoices(Database& db) {
    QSqlQuery q = db.exec(QStringLiteral("Select ThirdPartyID, Name From thirdparty"
                                         " Order By Lower(Coalesce(Name,'')), ThirdPartyID"),
                          {}, QStringLiteral("reading the third party payers"));
    QList<ThirdPartyChoice> choices;
    while (q.next()) {
        const qint64 id = q.value(0).toLongLong();
        choices.append({id, QString::number(id) + QStringLiteral(" - ") + q.value(1).toString()});
    }
    return choices;
}

}  // namespace brimsett
