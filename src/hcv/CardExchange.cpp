#include "hcv/CardExchange.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/FileModes.h"
#include "foundation/Prompter.h"
#include "foundation/RecordValues.h"
#include "hcv/CardAnswerStore.h"
#include "hcv/CardRequest.h"
#include "hcv/HcvSettings.h"
#include "ministry/TransferFiles.h"
#include "patients/PatientEntry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlRecord>

#include <optional>

namespace brimsett::hcv {

namespace {

const QString kTitle = QStringLiteral("TW HCV");
const QString kArchive = QStringLiteral("Archive");
// Requests written within the same second get the following seconds' names.
constexpr int kLaterNames = 60;

bool answeredToday(Database& db, qint64 patientId, const QDate& today) {
    const QVariant checked =
        db.scalar(QStringLiteral("Select HNCheckDate From patients Where PatientID=?"), {patientId},
                  QStringLiteral("reading the last card check of patient %1").arg(patientId));
    return dateTextOf(checked) == datetext::slashed(today);
}

// The answer as the patient's row now holds it.
QStringList savedAnswerLines(Database& db, qint64 patientId, const CardResponse& response) {
    QSqlQuery row =
        db.exec(QStringLiteral("Select VersionCode, LName, FName, DOB, Sex From patients"
                               " Where PatientID=?"),
                {patientId}, QStringLiteral("reading patient %1").arg(patientId));
    if (!row.next()) {
        return answerLines(response);
    }
    using recordvalue::textOf;
    const QSqlRecord r = row.record();
    return answerLines(response.healthNum, textOf(r, "VersionCode"), textOf(r, "LName"),
                       textOf(r, "FName"), readTypedDate(dateTextOf(recordvalue::of(r, "DOB"))),
                       textOf(r, "Sex"), response.code);
}

// An archived answer of the same name is an older one for the same request: the newer wins.
QString moveToArchive(const QString& from, const QString& to) {
    if (QFile::exists(to) && !QFile::remove(to)) {
        return QStringLiteral("The older answer %1 could not be replaced.").arg(to);
    }
    if (!QFile::rename(from, to)) {
        return QStringLiteral("The answer %1 could not be moved to %2.").arg(from, to);
    }
    return {};
}

}  // namespace

CardExchange::CardExchange(Database& db, const SettingsStore& store, const Clock& clock,
                           Prompter& prompter, const SqlLog& log, QString officeFolder, Hooks hooks)
    : m_db(db),
      m_store(store),
      m_clock(clock),
      m_prompter(prompter),
      m_log(log),
      m_office(std::move(officeFolder)),
      m_hooks(std::move(hooks)) {}

CardExchange::RequestResult CardExchange::RequestCardCheck(const QString& healthNum,
                                                           const QString& versionCode, bool force) {
    const HcvSettings settings = HcvSettings::read(m_store);
    RequestResult result;
    std::optional<qint64> patient;
    try {
        patient = patientOfHealthNumber(m_db, healthNum);
        result.patientFound = patient.has_value();
        if (patient && !force && answeredToday(m_db, *patient, m_clock.today())) {
            result.outcome = Outcome::AnsweredToday;
            return result;
        }
    } catch (const DbError& e) {
        m_prompter.error({e.message()});
        return result;
    }

    // A request still waiting to be carried off is never replaced by the next one.
    const QDateTime now = m_clock.now();
    QString path = requestPath(settings, m_office, requestFileName(now));
    for (int later = 1; later <= kLaterNames && QFileInfo::exists(path); ++later) {
        path = requestPath(settings, m_office, requestFileName(now.addSecs(later)));
    }
    const QString folder = QFileInfo(path).absolutePath();
    QString problem;
    if (!QDir().mkpath(folder)) {
        problem = QStringLiteral("The folder %1 could not be created.").arg(folder);
    } else {
        const QString line = requestLine(settings, healthNum, versionCode) + QStringLiteral("\r\n");
        problem = transferfiles::place(line.toLatin1(), path, folder);
    }
    if (!problem.isEmpty()) {
        m_prompter.error({problem, QStringLiteral("The card was not sent for checking.")});
        return result;
    }
    filemodes::makePrivate(path);
    result.outcome = Outcome::Written;
    result.path = path;
    m_awaiting = true;
    if (patient && m_hooks.startWait) {
        m_hooks.startWait();
    }
    return result;
}

void CardExchange::storeFrom(qint64 patientId, const CardResponse& response, const QString& path) {
    CardAnswer answer;
    answer.code = response.code;
    answer.checkedAt = QFileInfo(path).lastModified();
    answer.hasDetails = response.hasDetails;
    answer.firstName = response.firstName;
    answer.lastName = response.lastName;
    answer.sex = response.sex;
    answer.dob = response.dob;
    // Stored before the file goes: stopped in between, the next poll stores it again.
    storeAnswer(m_db, m_log, patientId, answer);
    m_toldFailures.remove(path);
    if (!QFile::remove(path)) {
        m_prompter.error(
            {QStringLiteral("The answer %1 was stored but could not be removed.").arg(path)});
    }
    m_awaiting = false;
    if (m_hooks.stopWait) {
        m_hooks.stopWait();
    }
    if (m_hooks.answerStored) {
        m_hooks.answerStored(response.healthNum.trimmed());
    }
}

QList<PolledAnswer> CardExchange::PollCardResponses() {
    QList<PolledAnswer> taken;
    if (!m_pollingOn) {
        return taken;
    }
    const HcvSettings settings = HcvSettings::read(m_store);
    const QString folder = answerFolder(settings, m_office);
    const QString archive = folder + kArchive + QLatin1Char('/');
    const QString problem = transferfiles::makeFolders(folder, {kArchive});
    if (!problem.isEmpty()) {
        // Told once, not on every tick of the poll.
        if (problem != m_folderProblem) {
            m_prompter.error({problem});
        }
        m_folderProblem = problem;
        return taken;
    }
    m_folderProblem.clear();

    const auto tell = [&](PolledAnswer::What what, const QString& name,
                          const CardResponse& response, const QStringList& lines) {
        taken.append({what, name, response, lines});
        m_prompter.tell(kTitle, lines, Icon::Information);
    };
    for (const QString& name : transferfiles::filesIn(folder)) {
        const QString path = folder + name;
        const CardResponse response = readResponseFile(path);
        if (response.installation != settings.hx) {
            continue;  // another installation's, sharing the folder
        }
        try {
            if (const auto patient = patientOfHealthNumber(m_db, response.healthNum)) {
                storeFrom(*patient, response, path);
                tell(PolledAnswer::What::Applied, name, response, answerLines(response));
            } else if (const QString moved = moveToArchive(path, archive + name); moved.isEmpty()) {
                tell(PolledAnswer::What::Archived, name, response, answerLines(response));
            } else {
                failed(path, moved);
            }
        } catch (const DbError& e) {
            failed(path, e.message());
        }
    }
    for (const QString& name : transferfiles::filesIn(archive)) {
        const QString path = archive + name;
        const CardResponse response = readResponseFile(path);
        if (response.installation != settings.hx) {
            continue;
        }
        try {
            if (const auto patient = patientOfHealthNumber(m_db, response.healthNum)) {
                storeFrom(*patient, response, path);
                tell(PolledAnswer::What::AppliedFromArchive, name, response,
                     savedAnswerLines(m_db, *patient, response));
            }
        } catch (const DbError& e) {
            failed(path, e.message());
        }
    }
    return taken;
}

void CardExchange::failed(const QString& path, const QString& problem) {
    if (!m_toldFailures.contains(path)) {
        m_toldFailures.insert(path);
        m_prompter.error({problem});
    }
}

void CardExchange::waitExpired() {
    if (m_awaiting) {
        m_prompter.tell(QStringLiteral("Brimsett"),
                        {QStringLiteral("An Error occured with your HCV service. Please call "
                                        "technical support.")},
                        Icon::Critical);
    }
    m_awaiting = false;
    if (m_hooks.stopWait) {
        m_hooks.stopWait();
    }
}

}  // namespace brimsett::hcv
