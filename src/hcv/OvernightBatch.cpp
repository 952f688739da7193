#include "hcv/OvernightBatch.h"

#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SettingsStore.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlText.h"
#include "hcv/OvernightFiles.h"
#include "ministry/EdtParams.h"
#include "ministry/EdtPasswordSeal.h"
#include "ministry/TransferFiles.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

namespace brimsett::hcv {

namespace {

const QString kCrLf = QStringLiteral("\r\n");

// Blank-padded to the width, or cut to it.
QString fitted(const QString& text, int width) {
    return text.leftJustified(width, QLatin1Char(' '), true);
}

QStringList doctorNotFound() {
    return {QStringLiteral("Doctor Not Found."),
            QStringLiteral("Please check that the Doctor ID is correct.")};
}

}  // namespace

OvernightBatch::OvernightBatch(Database& db, SettingsStore& store, const Clock& clock,
                               Prompter& prompter, const SqlLog& log, QString officeFolder)
    : m_db(db),
      m_store(store),
      m_clock(clock),
      m_prompter(prompter),
      m_log(log),
      m_office(std::move(officeFolder)) {}

QString OvernightBatch::obecLine(const QString& healthNum, const QVariant& versionCode) {
    const QString version = versionCode.isNull() ? QString() : versionCode.toString();
    // The ministry's readers have always been given one blank for a card without a version.
    return QStringLiteral("OBEC01") + fitted(healthNum, 10) +
           (version.isEmpty() ? QStringLiteral(" ") : fitted(version, 2)) + kCrLf;
}

QString OvernightBatch::cardRecord(const QString& healthNum, const QString& versionCode,
                                   const QString& providerNum, const QString& facilityNum,
                                   const QString& userId) {
    return QStringLiteral("RPVR0300 ") + fitted(healthNum, 10) + fitted(versionCode, 2) +
           fitted(providerNum, 6) + fitted(facilityNum, 4) + fitted(userId, 8) +
           QStringLiteral("HCNP") + kCrLf;
}

std::optional<PreparedBatch> OvernightBatch::prepareDay(const QString& doctorId,
                                                        const QString& typedDate) {
    const QString doctor = doctorId.trimmed();
    if (doctor.isEmpty()) {
        m_prompter.error({QStringLiteral("Please select a doctor.")});
        return std::nullopt;
    }
    const QDate day = readTypedDate(typedDate);
    if (!day.isValid()) {
        m_prompter.error({quotedInMessage(typedDate) + QStringLiteral(" is not a valid date.")});
        return std::nullopt;
    }
    PreparedBatch batch{datetext::yyyymmdd(day), kDayFile, m_office + kDayFile, {}};
    QString text;
    try {
        if (m_db.scalar(QStringLiteral("Select DoctorID From doctors Where DoctorID=?"), {doctor},
                        QStringLiteral("finding doctor ") + doctor)
                .isNull()) {
            m_prompter.error(doctorNotFound());
            return std::nullopt;
        }
        // Every appointment of the day counts, a cancelled one too: its card is as worth
        // checking as it was when it was booked.
        QSqlQuery q = m_db.exec(
            QStringLiteral("Select P.PatientID, P.HealthNum, P.VersionCode From patients P"
                           " Where P.PatientID In (Select A.PatientID From appointments A"
                           " Where A.DoctorID=? And A.AppDate=?) Order By P.PatientID"),
            {doctor, day},
            QStringLiteral("reading the patients of %1 on %2").arg(doctor, datetext::slashed(day)));
        while (q.next()) {
            const QVariant version = q.value(2);
            batch.cards << OvernightCard{kDayFile, doctor, q.value(0).toLongLong(),
                                         q.value(1).toString(),
                                         version.isNull() ? QString() : version.toString()};
            text += obecLine(q.value(1).toString(), version);
        }
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("Nothing was prepared."), e.message()});
        return std::nullopt;
    }
    if (batch.cards.isEmpty()) {
        m_prompter.error({QStringLiteral("No patient to submit.")});
        return std::nullopt;
    }
    if (!overnightfiles::write(m_db, m_store, m_prompter, m_log, m_office, batch,
                               text.toLatin1())) {
        return std::nullopt;
    }
    return batch;
}

std::optional<PreparedBatch> OvernightBatch::prepareCard(const QString& doctorId,
                                                         const QString& healthNum,
                                                         const QString& versionCode) {
    const QString doctor = doctorId.trimmed();
    if (doctor.isEmpty()) {
        m_prompter.error({QStringLiteral("Please select a doctor.")});
        return std::nullopt;
    }
    const QString number = healthNum.trimmed();
    const QString version = versionCode.trimmed().toUpper();
    if (number.isEmpty()) {
        m_prompter.error({QStringLiteral("Please enter the health number.")});
        return std::nullopt;
    }
    PreparedBatch batch{datetext::yyyymmdd(m_clock.today()),
                        kCardFile,
                        m_office + kCardFile,
                        {OvernightCard{kCardFile, doctor, 0, number, version}}};
    QString record;
    try {
        QSqlQuery q = m_db.exec(
            QStringLiteral("Select ProviderNum, FacilityNum From doctors Where DoctorID=?"),
            {doctor}, QStringLiteral("finding doctor ") + doctor);
        if (!q.next()) {
            m_prompter.error(doctorNotFound());
            return std::nullopt;
        }
        const QString provider = q.value(0).toString();
        const QString facility = q.value(1).toString();
        const QString userId =
            EdtParams(m_db, m_prompter, m_clock, m_log, m_office + EdtPasswordSeal::kKeyFileName)
                .userId(doctor);
        // The record names the login the answer goes back to; without one nobody gets it.
        if (userId.isEmpty()) {
            m_prompter.error({QStringLiteral("EDT setup incomplete for this Provider.")});
            return std::nullopt;
        }
        record = cardRecord(number, version, provider, facility, userId);
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("Nothing was prepared."), e.message()});
        return std::nullopt;
    }
    if (!overnightfiles::write(m_db, m_store, m_prompter, m_log, m_office, batch,
                               record.toLatin1())) {
        return std::nullopt;
    }
    return batch;
}

}  // namespace brimsett::hcv
