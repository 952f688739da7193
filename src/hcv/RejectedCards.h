#pragma once

#include "reports/Report.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {
class Database;
}

namespace brimsett::hcv {

struct RejectedCard {
    qint64 patientId = 0;
    QString name;        // LName + ", " + FName
    QString healthCard;  // HealthNum + " " + VersionCode
    QString dob;         // "YYYY/MM/DD"
    QString hPhone;
    QString wPhone;
    QString code;  // Response
};

// The patients with appointments on the day with any of the doctors whose stored `Status`
// isRejected(), each once, in patient-id order. Cancelled (deleted) appointments count too:
// the card was still wrong.
QList<RejectedCard> rejectedCards(Database& db, const QDate& day, const QStringList& doctorIds);

// "Rejected Patient HCN Validation List for " + doctors + " (" + day "YYYY/MM/DD" + ") -
// Print Date: " + print date, the columns "ID", "Name", "Health Card No.", "D.O.B",
// "Home Phone", "Work Phone", "Code", then n + " patients." and the "Legend".
reports::Report rejectedCardsReport(const QList<RejectedCard>& cards, const QDate& day,
                                    const QStringList& doctorIds, const QDate& printDate);

}  // namespace brimsett::hcv
