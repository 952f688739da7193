#include "hcv/SwipeMatch.h"

#include "appointments/AppointmentTime.h"
#include "foundation/AppSettings.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "foundation/SqlText.h"
#include "hcv/CardAnswerStore.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett::hcv {

namespace {

using Kind = SqlStatementBuilder::Kind;

constexpr int kNoNameReplaceSwitch = 21;

QString idText(qint64 id) {
    return QStringLiteral("(ID: ") + QString::number(id) + QLatin1Char(')');
}

// Dates are compared as "YYYYMMDD", whatever form they were written in.
QString compared(const QString& slashedDate) {
    return QString(slashedDate).remove(QLatin1Char('/'));
}

QString lastFirst(const QString& last, const QString& first) {
    if (last.isEmpty() || first.isEmpty()) {
        return last + first;
    }
    return last + QStringLiteral(", ") + first;
}

std::optional<PatientEntry> loadPatient(Database& db, qint64 id) {
    QSqlQuery q = db.exec(QStringLiteral("Select * From patients Where PatientID=?"), {id},
                          QStringLiteral("reading patient %1").arg(id));
    if (!q.next()) {
        return std::nullopt;
    }
    return PatientEntry::fromRecord(q.record());
}

// Runs the update in a transaction of its own and logs it once committed.
void writePatient(Database& db, const SqlLog& log, qint64 id, const SqlStatementBuilder& b,
                  const QString& doing) {
    {
        Transaction t(db, doing);
        const auto bound = b.boundUpdate(QStringLiteral("PatientID=?"), {id});
        db.exec(bound.sql, bound.values, doing);
        t.commit();
    }
    log.write(b.finishUpdate(QStringLiteral("PatientID=") + QString::number(id)));
}

void addDate(SqlStatementBuilder& b, const QString& column, const QString& slashedDate) {
    b.addField(column, datetext::fromSlashed(slashedDate), Kind::Text);
}

struct Candidate {
    qint64 id = 0;
    QString name;  // "Last, First"
    QString dob;   // "YYYY/MM/DD"
};

}  // namespace

SwipeMatch::SwipeMatch(Database& db, const AppSettings& settings, Prompter& prompter,
                       const Clock& clock, const SqlLog& log, bool pollingOn,
                       RequestCheck requestCheck)
    : m_db(db),
      m_settings(settings),
      m_prompter(prompter),
      m_clock(clock),
      m_log(log),
      m_pollingOn(pollingOn),
      m_requestCheck(std::move(requestCheck)) {}

SwipeOutcome SwipeMatch::match(const SwipedCard& card) {
    SwipeOutcome outcome;
    outcome.patientId = patientOfHealthNumber(m_db, card.healthNum);
    if (outcome.patientId) {
        outcome.lines << QStringLiteral("This patient is already in the database. ") +
                             idText(*outcome.patientId);
        if (const QString updated = bringUpToDate(*outcome.patientId, card); !updated.isEmpty()) {
            outcome.lines << updated;
        }
    } else {
        outcome.lines << QStringLiteral("New patient (not in database).");
        outcome.patientId = offerCandidates(card);
        if (outcome.patientId) {
            outcome.lines << QStringLiteral("The card was written into this patient's record. ") +
                                 idText(*outcome.patientId);
        } else {
            outcome.lines << QStringLiteral("No Patient with this Health Card Number was found.");
        }
    }
    outcome.appointmentLine = appointmentToday(outcome.patientId, card);
    // Asked once the patient is known, so an answer finds the patient it belongs to.
    if (m_pollingOn && m_requestCheck) {
        m_requestCheck(card.healthNum, card.versionCode);
        outcome.checkRequested = true;
    }
    return outcome;
}

QString SwipeMatch::bringUpToDate(qint64 id, const SwipedCard& card) {
    const std::optional<PatientEntry> stored = loadPatient(m_db, id);
    if (!stored) {
        return {};
    }
    // A value the stripe did not give (a damaged or short swipe) never clears a stored one.
    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("patients"));
    QString listed;
    if (!card.versionCode.isEmpty() && card.versionCode != stored->versionCode.trimmed()) {
        b.addField(QStringLiteral("VersionCode"), card.versionCode, Kind::Text);
        listed += QStringLiteral("Version code, ");
    }
    if (!card.expiry.isEmpty() && compared(card.expiry) != compared(stored->expYear)) {
        addDate(b, QStringLiteral("ExpYear"), card.expiry);
        listed += QStringLiteral("Expity Date, ");
    }
    if (!card.dob.isEmpty() && compared(card.dob) != compared(stored->dob)) {
        addDate(b, QStringLiteral("DOB"), card.dob);
        listed += QStringLiteral("Date of birth, ");
    }
    if (listed.isEmpty()) {
        return {};
    }
    writePatient(m_db, m_log, id, b,
                 QStringLiteral("updating patient %1 from a swiped card").arg(id));
    return listed + QStringLiteral(" updated. ") + idText(id);
}

std::optional<qint64> SwipeMatch::offerCandidates(const SwipedCard& card) {
    // The card's names in either order, anywhere in the register's names, among patients
    // without a number: a name typed the other way round at the desk is still offered.
    // Without a last name every patient would match.
    if (card.lastName.isEmpty()) {
        return std::nullopt;
    }
    const Dialect& dialect = m_db.dialect();
    const auto contains = [](const QString& part) {
        return QLatin1Char('*') + part + QLatin1Char('*');
    };
    const sqltext::LikeCriterion f1 =
        sqltext::patternCriterion(dialect, QStringLiteral("FName"), contains(card.firstName));
    const sqltext::LikeCriterion l1 =
        sqltext::patternCriterion(dialect, QStringLiteral("LName"), contains(card.lastName));
    const sqltext::LikeCriterion f2 =
        sqltext::patternCriterion(dialect, QStringLiteral("FName"), contains(card.lastName));
    const sqltext::LikeCriterion l2 =
        sqltext::patternCriterion(dialect, QStringLiteral("LName"), contains(card.firstName));
    const QString sql = QStringLiteral(
                            "Select PatientID, FName, LName, DOB From patients"
                            " Where ((") +
                        f1.sql + QStringLiteral(" And ") + l1.sql + QStringLiteral(") Or (") +
                        f2.sql + QStringLiteral(" And ") + l2.sql +
                        QStringLiteral(
                            ")) And (HealthNum Is Null Or HealthNum='')"
                            " Order By PatientID");
    QList<Candidate> candidates;
    {
        QSqlQuery q = m_db.exec(sql, f1.values + l1.values + f2.values + l2.values,
                                QStringLiteral("finding patients named as on the card"));
        while (q.next()) {
            const QSqlRecord r = q.record();
            candidates.append({recordvalue::of(r, "PatientID").toLongLong(),
                               lastFirst(recordvalue::textOf(r, "LName").trimmed(),
                                         recordvalue::textOf(r, "FName").trimmed()),
                               dateTextOf(recordvalue::of(r, "DOB"))});
        }
    }
    const QString cardName = lastFirst(card.lastName, card.firstName);
    for (const Candidate& c : candidates) {
        const Answer answer = m_prompter.ask(
            QStringLiteral("Possible Existing Patient"),
            {QStringLiteral("Click 'Yes' to accept the following patient."),
             QStringLiteral("Click 'No' to reject the following patient."),
             QStringLiteral("Click 'Cancel' if this is a new patient."), QString(),
             QStringLiteral("This existing patient record"),
             QStringLiteral("from the database may be a match:"), QString(),
             QStringLiteral("Name on card/name in database:"),
             QLatin1Char('[') + cardName + QStringLiteral("] [") + c.name + QLatin1Char(']'),
             QStringLiteral("DOB on card/DOB in database:"),
             QLatin1Char('[') + card.dob + QStringLiteral("] [") + c.dob + QLatin1Char(']'),
             QString(), QStringLiteral("Is this the same patient?")},
            Icon::Question, Buttons::YesNoCancel, Answer::No);
        if (answer == Answer::Cancel) {
            return std::nullopt;
        }
        if (answer == Answer::Yes) {
            return takeCard(c.id, card) ? std::optional<qint64>(c.id) : std::nullopt;
        }
    }
    return std::nullopt;
}

bool SwipeMatch::takeCard(qint64 id, const SwipedCard& card) {
    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("patients"));
    if (!m_settings.option[kNoNameReplaceSwitch]) {
        b.addField(QStringLiteral("FName"), card.firstName, Kind::Text);
        b.addField(QStringLiteral("LName"), card.lastName, Kind::Text);
    }
    b.addField(QStringLiteral("HealthNum"), card.healthNum, Kind::Text);
    b.addField(QStringLiteral("VersionCode"), card.versionCode, Kind::Text);
    addDate(b, QStringLiteral("ExpYear"), card.expiry);
    addDate(b, QStringLiteral("DOB"), card.dob);
    const QString doing = QStringLiteral("writing a swiped card into patient %1").arg(id);
    {
        Transaction t(m_db, doing);
        // Looked at again under the write lock: another computer may have given the number
        // to a patient since the search, and two patients must not share it.
        if (const std::optional<qint64> other = patientOfHealthNumber(m_db, card.healthNum);
            other && *other != id) {
            m_prompter.tell(QStringLiteral("Possible Existing Patient"),
                            {QStringLiteral("This health card number was given to patient %1 "
                                            "meanwhile.")
                                 .arg(*other),
                             QStringLiteral("Nothing was changed.")},
                            Icon::Warning);
            return false;
        }
        const auto bound = b.boundUpdate(QStringLiteral("PatientID=?"), {id});
        m_db.exec(bound.sql, bound.values, doing);
        t.commit();
    }
    m_log.write(b.finishUpdate(QStringLiteral("PatientID=") + QString::number(id)));
    return true;
}

QString SwipeMatch::appointmentToday(const std::optional<qint64>& patientId,
                                     const SwipedCard& card) {
    // A cancelled visit is not coming: it is not the appointment the desk is told about.
    QString sql = QStringLiteral("Select AppTime, DoctorID From appointments Where ");
    QVariantList values;
    if (patientId) {
        sql += QStringLiteral("PatientID=?");
        values << *patientId;
    } else {
        sql += QStringLiteral("Lower(PatientName)=Lower(?)");
        values << lastFirst(card.lastName, card.firstName);
    }
    sql += QStringLiteral(
        " And AppDate=? And Coalesce(Status,0)<>? And Coalesce(Deleted,0)=0"
        " Order By AppTime, AppID");
    values << m_clock.today() << appointments::kStatusCancelled;
    int time = 0;
    QString doctorId;
    {
        QSqlQuery q = m_db.exec(sql, values, QStringLiteral("finding today's appointment"));
        if (!q.next()) {
            return QStringLiteral("No appointment for today.");
        }
        time = q.value(0).toInt();
        doctorId = q.value(1).toString();
    }
    QString doctor;
    {
        QSqlQuery q = m_db.exec(QStringLiteral("Select FName, LName From Doctors Where DoctorID=?"),
                                {doctorId}, QStringLiteral("reading the appointment's doctor"));
        if (q.next()) {
            doctor = (q.value(0).toString().trimmed() + QLatin1Char(' ') +
                      q.value(1).toString().trimmed())
                         .trimmed();
        }
    }
    if (doctor.isEmpty()) {
        doctor = doctorId;
    }
    return QStringLiteral("Has an appointment for today at ") +
           appointments::TimeText(time).trimmed() + QStringLiteral(" with ") + doctor +
           QLatin1Char('.');
}

}  // namespace brimsett::hcv
