#include "patients/ReferringDoctorRegister.h"

#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"
#include "patients/HealthNumbers.h"

#include <QSqlRecord>

namespace brimsett {

namespace {

using Field = ReferringDoctor::Field;

// The patient columns that hold a referring doctor's billing number.
const QStringList kPatientColumns = {QStringLiteral("RefDoc"), QStringLiteral("FamDoc")};

QString quoted(const QString& value) {
    return sqltext::quoteValue(value);
}

}  // namespace

ReferringDoctorRegister::ReferringDoctorRegister(Database& db, Prompter& prompter,
                                                 const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_log(log) {}

std::optional<ReferringDoctor> ReferringDoctorRegister::load(const QString& providerNum) {
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From DoctorsOther Where ProviderNum=?"),
                            {providerNum.trimmed()},
                            QStringLiteral("reading referring doctor ") + providerNum);
    if (!q.next()) {
        return std::nullopt;
    }
    return ReferringDoctor::fromRecord(q.record());
}

QList<ReferringDoctorRegister::Problem> ReferringDoctorRegister::problems(const ReferringDoctor& d,
                                                                          const QString& savedNum) {
    QList<Problem> found;
    const auto add = [&found](Field field, const QString& text) { found << Problem{field, text}; };

    if (d.providerNum.size() != 6 || !hn::allDigits(d.providerNum)) {
        add(Field::ProviderNum, QStringLiteral("Billing number must be 6 digits."));
    } else if (d.providerNum != savedNum) {
        if (const auto other = load(d.providerNum)) {
            add(Field::ProviderNum, QStringLiteral("Billing number %1 already belongs to %2.")
                                        .arg(d.providerNum, other->displayName()));
        }
    }
    if (d.lName.isEmpty()) {
        add(Field::LName, QStringLiteral("Last name is required."));
    }
    if (!d.specCode.isEmpty() && (d.specCode.size() != 2 || !hn::allDigits(d.specCode))) {
        add(Field::SpecCode, QStringLiteral("Specialty must be empty or 2 digits."));
    }
    if (!d.province.isEmpty() && (d.province.size() != 2 || !hn::allLetters(d.province))) {
        add(Field::Province, QStringLiteral("Province must be empty or 2 letters."));
    }
    for (Field field :
         {Field::Salutation, Field::FName, Field::LName, Field::Address, Field::Address2,
          Field::City, Field::PostalCode, Field::Phone, Field::Fax}) {
        const ReferringDoctor::Column& c = ReferringDoctor::column(field);
        if (d.value(field).size() > c.maxLength) {
            add(field,
                QStringLiteral("%1 can be at most %2 characters.").arg(c.label).arg(c.maxLength));
        }
    }
    return found;
}

std::optional<ReferringDoctor> ReferringDoctorRegister::save(const ReferringDoctor& typed,
                                                             const QString& savedNum) {
    m_badField.reset();
    const ReferringDoctor doctor = typed.normalised();
    try {
        return trySave(doctor, savedNum);
    } catch (const DbError& e) {
        // The transaction, if one was open, has been rolled back.
        m_prompter.error({QStringLiteral("Referring doctor %1 was not saved; nothing was changed.")
                              .arg(doctor.providerNum),
                          e.message()});
        return std::nullopt;
    }
}

std::optional<ReferringDoctor> ReferringDoctorRegister::trySave(const ReferringDoctor& doctor,
                                                                const QString& savedNum) {
    const QList<Problem> found = problems(doctor, savedNum);
    if (!found.isEmpty()) {
        m_badField = found.first().field;
        QStringList lines{kHeading};
        for (const Problem& p : found) {
            lines << p.text;
        }
        m_prompter.tell(kTitle, lines, Icon::Critical);
        return std::nullopt;
    }
    const bool isNew = savedNum.isEmpty();
    const bool renumbered = !isNew && doctor.providerNum != savedNum;
    if (renumbered &&
        !m_prompter.confirm(
            kRenumberTitle,
            {QStringLiteral("Change billing number %1 to %2?").arg(savedNum, doctor.providerNum),
             QStringLiteral("Patients with this referring or family doctor "
                            "move to the new number.")})) {
        return std::nullopt;
    }

    SqlStatementBuilder builder;
    if (isNew) {
        builder.beginInsert(QStringLiteral("DoctorsOther"));
    } else {
        builder.beginUpdate(QStringLiteral("DoctorsOther"));
    }
    for (const ReferringDoctor::Column& c : ReferringDoctor::columns()) {
        builder.addField(c.name, doctor.*c.member, SqlStatementBuilder::Kind::Text);
    }

    QStringList logged;
    {
        Transaction transaction(m_db,
                                QStringLiteral("saving referring doctor ") + doctor.providerNum);
        if (isNew) {
            const auto bound = builder.boundInsert();
            m_db.exec(bound.sql, bound.values,
                      QStringLiteral("adding referring doctor ") + doctor.providerNum);
            logged << builder.finishInsert();
        } else {
            const auto bound = builder.boundUpdate(QStringLiteral("ProviderNum=?"), {savedNum});
            const QSqlQuery q = m_db.exec(bound.sql, bound.values,
                                          QStringLiteral("saving referring doctor ") + savedNum);
            if (q.numRowsAffected() == 0) {
                m_prompter.error(
                    {QStringLiteral("Referring doctor %1 is no longer in the database.")
                         .arg(savedNum),
                     QStringLiteral("Nothing was saved.")});
                return std::nullopt;
            }
            logged << builder.finishUpdate(QStringLiteral("ProviderNum=") + quoted(savedNum));
        }
        if (renumbered) {
            for (const QString& column : kPatientColumns) {
                m_db.exec(QStringLiteral("Update Patients Set %1=? Where %1=?").arg(column),
                          {doctor.providerNum, savedNum},
                          QStringLiteral("moving the patients of referring doctor ") + savedNum);
                logged << QStringLiteral("Update Patients Set %1=%2 Where %1=%3")
                              .arg(column, quoted(doctor.providerNum), quoted(savedNum));
            }
        }
        transaction.commit();
    }
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }
    return doctor;
}

bool ReferringDoctorRegister::remove(const QString& providerNum) {
    try {
        return tryRemove(providerNum);
    } catch (const DbError& e) {
        m_prompter.error(
            {QStringLiteral("Referring doctor %1 was not deleted.").arg(providerNum), e.message()});
        return false;
    }
}

bool ReferringDoctorRegister::tryRemove(const QString& providerNum) {
    const std::optional<ReferringDoctor> doctor = load(providerNum);
    if (!doctor) {
        return false;
    }
    QString who = doctor->providerNum;
    if (!doctor->displayName().isEmpty()) {
        who += QStringLiteral(" (") + doctor->displayName() + QLatin1Char(')');
    }
    if (!m_prompter.confirm(kDeleteTitle,
                            {QStringLiteral("Delete referring doctor %1?").arg(who)})) {
        return false;
    }
    {
        Transaction transaction(m_db, QStringLiteral("deleting referring doctor ") + who);
        m_db.exec(QStringLiteral("Delete From DoctorsOther Where ProviderNum=?"),
                  {doctor->providerNum}, QStringLiteral("deleting referring doctor ") + who);
        transaction.commit();
    }
    m_log.write(QStringLiteral("Delete From DoctorsOther Where ProviderNum=") +
                quoted(doctor->providerNum));
    return true;
}

}  // namespace brimsett
