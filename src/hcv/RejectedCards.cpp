#include "hcv/RejectedCards.h"

#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "hcv/ResponseCodes.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

namespace brimsett::hcv {

QList<RejectedCard> rejectedCards(Database& db, const QDate& day, const QStringList& doctorIds) {
    if (doctorIds.isEmpty() || !day.isValid()) {
        return {};
    }
    QStringList marks;
    QVariantList values{day};
    for (const QString& id : doctorIds) {
        marks << QStringLiteral("?");
        values << id;
    }
    // Every appointment of the day, a cancelled one too: the card was still wrong.
    QSqlQuery q = db.exec(
        QStringLiteral("Select P.PatientID, P.LName, P.FName, P.HealthNum, P.VersionCode, P.DOB,"
                       " P.HPhone, P.WPhone, P.Response, P.Status From patients P"
                       " Where P.PatientID In (Select A.PatientID From appointments A"
                       " Where A.AppDate=? And A.DoctorID In (%1))"
                       " Order By P.PatientID")
            .arg(marks.join(QLatin1Char(','))),
        values, QStringLiteral("reading the rejected cards of %1").arg(datetext::slashed(day)));
    QList<RejectedCard> cards;
    while (q.next()) {
        if (q.value(9).isNull() || !isRejected(q.value(9).toInt())) {
            continue;
        }
        cards << RejectedCard{q.value(0).toLongLong(),
                              q.value(1).toString() + QStringLiteral(", ") + q.value(2).toString(),
                              q.value(3).toString() + QLatin1Char(' ') + q.value(4).toString(),
                              dateTextOf(q.value(5)),
                              q.value(6).toString(),
                              q.value(7).toString(),
                              q.value(8).toString()};
    }
    return cards;
}

reports::Report rejectedCardsReport(const QList<RejectedCard>& cards, const QDate& day,
                                    const QStringList& doctorIds, const QDate& printDate) {
    reports::Report report(QStringLiteral("Rejected Patient HCN Validation List for ") +
                           doctorIds.join(QStringLiteral(", ")) + QStringLiteral(" (") +
                           datetext::slashed(day) + QStringLiteral(") - Print Date: ") +
                           datetext::slashed(printDate));
    reports::ReportTable table;
    table.columns = {{QStringLiteral("ID"), Qt::AlignRight},
                     {QStringLiteral("Name")},
                     {QStringLiteral("Health Card No.")},
                     {QStringLiteral("D.O.B")},
                     {QStringLiteral("Home Phone")},
                     {QStringLiteral("Work Phone")},
                     {QStringLiteral("Code")}};
    for (const RejectedCard& card : cards) {
        table.rows << QStringList{QString::number(card.patientId),
                                  card.name,
                                  card.healthCard,
                                  card.dob,
                                  card.hPhone,
                                  card.wPhone,
                                  card.code};
    }
    report.addTable(std::move(table));
    report.addParagraph(QString::number(cards.size()) + QStringLiteral(" patients."));
    report.addParagraph(QStringLiteral("Legend"));
    report.addFixedPitchText(legendLines());
    report.setLandscape(true);
    return report;
}

}  // namespace brimsett::hcv
