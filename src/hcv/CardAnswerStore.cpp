#include "hcv/CardAnswerStore.h"

#include "foundation/Database.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "hcv/ResponseCodes.h"

#include <QSqlQuery>

namespace brimsett::hcv {

namespace {

using Kind = SqlStatementBuilder::Kind;

// An answer's fields are cut from fixed positions, so a short name field arrives padded.
QString withoutTrailingBlanks(const QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1) == QLatin1Char(' ')) {
        --end;
    }
    return text.left(end);
}

}  // namespace

std::optional<qint64> patientOfHealthNumber(Database& db, const QString& healthNum) {
    const QString number = withoutTrailingBlanks(healthNum);
    if (number.isEmpty()) {
        return std::nullopt;
    }
    const QVariant id =
        db.scalar(QStringLiteral("Select Min(PatientID) From patients Where HealthNum=?"), {number},
                  QStringLiteral("finding the patient of a health card"));
    if (id.isNull()) {
        return std::nullopt;
    }
    return id.toLongLong();
}

QString storeAnswerUnlogged(Database& db, qint64 patientId, const CardAnswer& answer) {
    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("patients"));
    b.addField(QStringLiteral("Response"), answer.code, Kind::Text);
    b.addField(QStringLiteral("Status"), statusClass(answer.code), Kind::Number);
    b.addField(QStringLiteral("HNCheckDate"), answer.checkedAt, Kind::Text);
    if (answer.hasDetails) {
        b.addField(QStringLiteral("FName"), answer.firstName, Kind::Text);
        b.addField(QStringLiteral("LName"), answer.lastName, Kind::Text);
        b.addField(QStringLiteral("Sex"), answer.sex, Kind::Text);
        if (answer.dob.isValid()) {
            b.addField(QStringLiteral("DOB"), answer.dob, Kind::Text);
        }
    }
    {
        Transaction t(db, QStringLiteral("storing the card check of patient %1").arg(patientId));
        const auto bound = b.boundUpdate(QStringLiteral("PatientID=?"), {patientId});
        db.exec(bound.sql, bound.values,
                QStringLiteral("storing the card check of patient %1").arg(patientId));
        t.commit();
    }
    return b.finishUpdate(QStringLiteral("PatientID=") + QString::number(patientId));
}

void storeAnswer(Database& db, const SqlLog& log, qint64 patientId, const CardAnswer& answer) {
    log.write(storeAnswerUnlogged(db, patientId, answer));
}

}  // namespace brimsett::hcv
