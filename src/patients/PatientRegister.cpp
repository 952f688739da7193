#include "patients/PatientRegister.h"

#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/NextId.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QSqlQuery>
#include <QSqlRecord>

namespace brimsett {

namespace {

const QString kPatientsTitle = QStringLiteral("Patients");
const QString kPatientIdTitle = QStringLiteral("Patient ID");
const QString kReserved = QStringLiteral("You entered a Patient ID which is already reserved.");
constexpr int kLastNameFirstSwitch = 8;

using Kind = SqlStatementBuilder::Kind;

QVariant dateValue(const QString& typed) {
    const QDate date = readTypedDate(typed);
    return date.isValid() ? QVariant(date) : QVariant();
}

// The columns the screen edits. Codes are kept in capitals, as every other reader compares
// them; the card-validation columns and the lab link are left to their own writers.
void addEditableFields(SqlStatementBuilder& b, const PatientEntry& e) {
    b.addField(QStringLiteral("HealthNum"), e.healthNum, Kind::Text);
    b.addField(QStringLiteral("VersionCode"), e.versionCode.toUpper(), Kind::Text);
    b.addField(QStringLiteral("ExpYear"), dateValue(e.expYear), Kind::Text);
    b.addField(QStringLiteral("FName"), e.fName, Kind::Text);
    b.addField(QStringLiteral("LName"), e.lName, Kind::Text);
    b.addField(QStringLiteral("DOB"), dateValue(e.dob), Kind::Text);
    b.addField(QStringLiteral("Sex"), e.sex.toUpper(), Kind::Text);
    b.addField(QStringLiteral("Address"), e.address, Kind::Text);
    b.addField(QStringLiteral("City"), e.city, Kind::Text);
    b.addField(QStringLiteral("Province"), e.province.toUpper(), Kind::Text);
    b.addField(QStringLiteral("PostalCode"), e.postalCode, Kind::Text);
    b.addField(QStringLiteral("Country"), e.country, Kind::Text);
    b.addField(QStringLiteral("HPhone"), e.hPhone, Kind::Text);
    b.addField(QStringLiteral("WPhone"), e.wPhone, Kind::Text);
    b.addField(QStringLiteral("RefDoc"), e.refDoc, Kind::Text);
    b.addField(QStringLiteral("FamDoc"), e.famDoc, Kind::Text);
    b.addField(QStringLiteral("FacilityNum"), e.facilityNum, Kind::Text);
    b.addField(QStringLiteral("AdmitDate"), dateValue(e.admitDate), Kind::Text);
    b.addField(QStringLiteral("Notes"), e.notes, Kind::Text);
    b.addField(QStringLiteral("Flag"), e.flag, Kind::Number);
}

// Only what the screen can change decides whether there is anything to save; a card answer
// that arrived meanwhile is not a change of the user's.
bool sameEditable(const PatientEntry& stored, PatientEntry edited) {
    edited.patientId = stored.patientId;
    edited.batchId = stored.batchId;
    edited.hnCheckDate = stored.hnCheckDate;
    edited.response = stored.response;
    edited.status = stored.status;
    edited.hl7PatId = stored.hl7PatId;
    return edited == stored;
}

// A delete statement of the account, with "%1" where the patient id goes: "?" to run it,
// the id itself for the log.
const QStringList& accountDeletes() {
    static const QStringList statements = {
        QStringLiteral("Delete From items Where ClaimID In"
                       " (Select ClaimID From claims Where PatientID=%1)"),
        QStringLiteral("Delete From claims Where PatientID=%1"),
        QStringLiteral("Delete From patients Where PatientID=%1"),
    };
    return statements;
}

}  // namespace

PatientRegister::PatientRegister(Database& db, const AppSettings& settings, Prompter& prompter,
                                 const Clock& clock, const SqlLog& log)
    : m_db(db),
      m_settings(settings),
      m_prompter(prompter),
      m_log(log),
      m_validation(db, settings, prompter, clock) {}

std::optional<qint64> PatientRegister::readId(const QString& typed) {
    const QString t = typed.trimmed();
    for (const QChar c : t) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return std::nullopt;
        }
    }
    bool ok = false;
    const qint64 id = t.toLongLong(&ok);
    return ok && id > 0 ? std::optional<qint64>(id) : std::nullopt;
}

std::optional<PatientEntry> PatientRegister::load(qint64 id) {
    QSqlQuery q = m_db.exec(QStringLiteral("Select * From patients Where PatientID=?"), {id},
                            QStringLiteral("reading patient %1").arg(id));
    if (!q.next()) {
        return std::nullopt;
    }
    return PatientEntry::fromRecord(q.record());
}

bool PatientRegister::exists(qint64 id) {
    return m_db
        .scalar(QStringLiteral("Select PatientID From patients Where PatientID=?"), {id},
                QStringLiteral("looking for patient %1").arg(id))
        .isValid();
}

qint64 PatientRegister::nextId() {
    return nextPatientId(m_db, m_settings);
}

PatientRegister::SaveResult PatientRegister::saveNew(const PatientEntry& entry) {
    std::optional<qint64> typedId;
    if (!entry.patientId.trimmed().isEmpty()) {
        typedId = readId(entry.patientId);
        if (!typedId) {
            m_prompter.tell(kPatientsTitle, {QLatin1String(kInvalidNumber)}, Icon::Warning);
            return {};
        }
    }
    if (!m_validation.check(entry, std::nullopt)) {
        return {};
    }
    bool useTypedId = false;
    if (typedId) {
        if (exists(*typedId)) {
            m_prompter.tell(kPatientIdTitle, {kReserved}, Icon::Warning);
            return {};
        }
        useTypedId = m_prompter.confirm(
            kPatientIdTitle,
            {QStringLiteral("You entered a Patient ID for this patient."),
             QStringLiteral("Click Yes to use this number (") + QString::number(*typedId) +
                 QLatin1Char(')'),
             QStringLiteral("or click No to let the program find the next available ID number.")});
    }

    // The id is chosen under the write lock, so a second computer saving at the same moment
    // waits and then sees this patient's id as taken.
    QStringList refusal;
    QString refusalTitle = kPatientIdTitle;
    QString logText;
    qint64 id = 0;
    {
        Transaction t(m_db, QStringLiteral("saving a new patient"));
        if (useTypedId) {
            id = *typedId;
            if (exists(id)) {
                refusal = QStringList{kReserved};
            }
        } else {
            id = nextId();
            if (m_settings.nextIDUnder > 0 && id >= m_settings.nextIDUnder) {
                refusal = QStringList{
                    QStringLiteral("No free Patient ID is left below %1.")
                        .arg(m_settings.nextIDUnder),
                    QStringLiteral("Type a Patient ID for this patient, or raise the limit.")};
            }
        }
        if (refusal.isEmpty()) {
            refusal = duplicateUnderLock(entry, std::nullopt);
            refusalTitle = QLatin1String(PatientValidation::kErrorsTitle);
        }
        if (refusal.isEmpty()) {
            SqlStatementBuilder b;
            b.beginInsert(QStringLiteral("patients"));
            b.addField(QStringLiteral("PatientID"), id, Kind::Number);
            addEditableFields(b, entry);
            const auto bound = b.boundInsert();
            m_db.exec(bound.sql, bound.values, QStringLiteral("writing new patient %1").arg(id));
            logText = b.finishInsert();
            t.commit();
        }
    }
    if (!refusal.isEmpty()) {
        m_prompter.tell(refusalTitle, refusal, Icon::Warning);
        return {};
    }
    m_log.write(logText);
    return {Outcome::Saved, id};
}

PatientRegister::SaveResult PatientRegister::saveChanges(qint64 id, const PatientEntry& entry) {
    const std::optional<PatientEntry> stored = load(id);
    if (!stored) {
        m_prompter.tell(kPatientsTitle, {QLatin1String(kNoSuchPatient)}, Icon::Warning);
        return {};
    }
    if (sameEditable(*stored, entry)) {
        m_prompter.tell(kPatientsTitle,
                        {QStringLiteral("This patient is already saved,"),
                         QStringLiteral("and you made no changes to it.")},
                        Icon::Information);
        return {Outcome::Unchanged, id};
    }
    if (!m_validation.check(entry, id)) {
        return {};
    }
    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("patients"));
    addEditableFields(b, entry);
    bool gone = false;
    {
        Transaction t(m_db, QStringLiteral("saving patient %1").arg(id));
        const QStringList refusal = duplicateUnderLock(entry, id);
        if (!refusal.isEmpty()) {
            m_prompter.tell(QLatin1String(PatientValidation::kErrorsTitle), refusal, Icon::Warning);
            return {};
        }
        const auto bound = b.boundUpdate(QStringLiteral("PatientID=?"), {id});
        gone = m_db.exec(bound.sql, bound.values, QStringLiteral("writing patient %1").arg(id))
                   .numRowsAffected() == 0;
        if (!gone) {
            t.commit();
        }
    }
    if (gone) {
        // Deleted on another computer while it was on this screen.
        m_prompter.tell(kPatientsTitle, {QLatin1String(kNoSuchPatient)}, Icon::Warning);
        return {};
    }
    m_log.write(b.finishUpdate(QStringLiteral("PatientID=") + QString::number(id)));
    return {Outcome::Saved, id};
}

QStringList PatientRegister::duplicateUnderLock(const PatientEntry& entry,
                                                std::optional<qint64> ownId) {
    // Checked again under the write lock: another computer may have saved a patient with the
    // same number since the validation looked.
    const QStringList problems = m_validation.duplicateProblems(entry, ownId);
    if (problems.isEmpty()) {
        return {};
    }
    return QStringList{QLatin1String(PatientValidation::kErrorsHeading), QString()} + problems;
}

bool PatientRegister::deleteAccount(qint64 id) {
    const std::optional<PatientEntry> stored = load(id);
    if (!stored) {
        m_prompter.tell(kPatientsTitle, {QLatin1String(kNoSuchPatient)}, Icon::Warning);
        return false;
    }
    const qint64 claims =
        scalarLookup(m_db, QStringLiteral("Count"), QStringLiteral("*"), QStringLiteral("claims"),
                     QStringLiteral("PatientID=?"), {id})
            .toLongLong();
    const qint64 items =
        scalarLookup(m_db, QStringLiteral("Count"), QStringLiteral("*"), QStringLiteral("items"),
                     QStringLiteral("ClaimID In (Select ClaimID From claims Where PatientID=?)"),
                     {id})
            .toLongLong();
    const QString name = stored->displayName(m_settings.option[kLastNameFirstSwitch]);
    if (!m_prompter.confirm(
            QStringLiteral("Delete Account"),
            {QStringLiteral("This will permanently delete account ") + QString::number(id) +
                 (name.isEmpty() ? QString() : QStringLiteral(" (") + name + QLatin1Char(')')),
             QStringLiteral("and its %1 claim(s) with %2 item(s).").arg(claims).arg(items),
             QString(), QStringLiteral("Are you sure?")})) {
        return false;
    }
    {
        Transaction t(m_db, QStringLiteral("deleting account %1").arg(id));
        for (const QString& statement : accountDeletes()) {
            m_db.exec(statement.arg(QStringLiteral("?")), {id},
                      QStringLiteral("deleting account %1").arg(id));
        }
        t.commit();
    }
    for (const QString& statement : accountDeletes()) {
        m_log.write(statement.arg(id));
    }
    return true;
}

}  // namespace brimsett
