#include "claims/PendingClaims.h"

#include "claims/ClaimRecord.h"
#include "claims/ClaimStore.h"
#include "foundation/AppSettings.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "patients/PatientEntry.h"

#include <QSqlQuery>

namespace brimsett {

namespace {

// Switch 8: "Use "LastName, FirstName" order on screen".
constexpr int kLastNameFirstSwitch = 8;

const QString kTitle = QStringLiteral("Delete Claim");

struct Condition {
    QString sql;
    QVariantList values;
};

// The pending items, of one provider or of all; the joins and the filter every query shares.
Condition pendingItems(const QString& doctorId) {
    Condition c{QStringLiteral(" From items I Join claims C On I.ClaimID=C.ClaimID"
                               " Where C.BatchID=?"),
                {kPendingBatch}};
    const QString doctor = doctorId.trimmed().toUpper();
    if (!doctor.isEmpty()) {
        c.sql += QStringLiteral(" And Upper(Trim(C.DoctorID))=?");
        c.values << doctor;
    }
    return c;
}

QString patientColumn(bool lastNameFirst) {
    return lastNameFirst
               ? QStringLiteral("Trim(Coalesce(C.LName,'') || ', ' || Coalesce(C.FName,''))")
               : QStringLiteral("Trim(Coalesce(C.FName,'') || ' ' || Coalesce(C.LName,''))");
}

// Every order ends with the claim and its items, so that the lines of a claim stay together;
// the parts of a split claim share its account and follow it.
QString orderBy(PendingOrder order, const QString& patient) {
    const QString claimThenItem = QStringLiteral("C.AcctNum, I.ClaimID, I.ItemID");
    switch (order) {
        case PendingOrder::Patient:
            return QStringLiteral("Upper(") + patient + QStringLiteral("), C.PatientID, ") +
                   claimThenItem;
        case PendingOrder::ServiceDate: {
            // A claim goes by its earliest service, not split over its items' dates; claims
            // without a date come first on every engine.
            const QString first = QStringLiteral(
                "(Select Min(S.ServiceDate) From items S Where S.ClaimID=I.ClaimID)");
            return first + QStringLiteral(" Is Null Desc, ") + first + QStringLiteral(", ") +
                   claimThenItem;
        }
        case PendingOrder::Doctor:
            return QStringLiteral("Upper(C.DoctorID), ") + claimThenItem;
        case PendingOrder::Account:
            break;
    }
    return claimThenItem;
}

// The patient as the register would name them, without a stray comma for a missing part.
QString nameOf(const ClaimRecord& claim, bool lastNameFirst) {
    PatientEntry patient;
    patient.lName = claim.lName;
    patient.fName = claim.fName;
    return patient.displayName(lastNameFirst);
}

}  // namespace

PendingClaims::PendingClaims(Database& db, const AppSettings& settings)
    : m_db(db), m_settings(settings) {}

QList<PendingLine> PendingClaims::lines(const QString& doctorId, PendingOrder order) {
    const QString patient = patientColumn(m_settings.option[kLastNameFirstSwitch]);
    const Condition where = pendingItems(doctorId);
    QSqlQuery q =
        m_db.exec(QStringLiteral("Select C.DoctorID, C.AcctNum, C.PatientID, ") + patient +
                      QStringLiteral(", C.PayProg, I.ServiceCode, I.DiagCode, I.NumServ, I.FeeSubm,"
                                     " I.ServiceDate, I.ClaimID, I.ItemID") +
                      where.sql + QStringLiteral(" Order By ") + orderBy(order, patient),
                  where.values, QStringLiteral("reading the pending claims"));
    QList<PendingLine> list;
    while (q.next()) {
        PendingLine line;
        line.doc = q.value(0).toString();
        line.account = q.value(1).toString();
        line.patientId = q.value(2).toLongLong();
        line.patient = q.value(3).toString();
        line.chargeTo = q.value(4).toString();
        line.service = q.value(5).toString();
        line.diag = q.value(6).toString();
        line.numServ = q.value(7).toInt();
        line.fee = Money::fromVariant(q.value(8));
        line.serviceDate = readTypedDate(dateTextOf(q.value(9)));
        line.claimId = q.value(10).toLongLong();
        line.itemId = q.value(11).toInt();
        list << line;
    }
    return list;
}

QString PendingClaims::totalLine(const QString& doctorId, const MoneyFormat& money) {
    const Condition where = pendingItems(doctorId);
    QSqlQuery q = m_db.exec(QStringLiteral("Select Sum(I.FeeSubm), Count(I.FeeSubm)") + where.sql,
                            where.values, QStringLiteral("totalling the pending claims"));
    q.next();
    const Money sum = Money::fromVariant(q.value(0)).value_or(Money());
    return QStringLiteral("Total Pending ") + sum.currency(money) + QLatin1Char(' ') +
           QString::number(q.value(1).toLongLong()) + QStringLiteral(" items.");
}

bool PendingClaims::deleteClaim(qint64 claimId, Prompter& prompter, const Clock& clock,
                                const SqlLog& log) {
    const bool lastNameFirst = m_settings.option[kLastNameFirstSwitch];
    ClaimStore store(m_db, clock, log);
    const auto notPending = [&](const std::optional<ClaimRecord>& claim) {
        if (claim && claim->isPending()) {
            return false;
        }
        prompter.tell(kTitle,
                      claim ? QStringList{QStringLiteral("Account ") + claim->acctNum +
                                              QStringLiteral(" (") + nameOf(*claim, lastNameFirst) +
                                              QStringLiteral(") is no longer pending."),
                                          QStringLiteral("It was not deleted.")}
                            : QStringList{QStringLiteral("This claim is no longer in Brimsett.")},
                      Icon::Information);
        return true;
    };
    const std::optional<ClaimRecord> claim = store.load(claimId);
    if (notPending(claim)) {
        return false;
    }
    if (!prompter.confirm(
            kTitle, {QStringLiteral("This will permanently delete account ") + claim->acctNum +
                         QStringLiteral(" (") + nameOf(*claim, lastNameFirst) + QLatin1Char(')'),
                     QStringLiteral("and its %1 item(s).").arg(claim->items.size()), QString(),
                     QStringLiteral("Are you sure?")})) {
        return false;
    }
    QStringList logLines;
    std::optional<ClaimRecord> current;
    {
        Transaction tx(m_db, QStringLiteral("deleting claim %1").arg(claimId));
        // Another computer may have put it into a batch while the question was open.
        current = store.load(claimId);
        if (current && current->isPending()) {
            store.remove(claimId, logLines);
            tx.commit();
        }
    }
    if (notPending(current)) {
        return false;
    }
    for (const QString& line : std::as_const(logLines)) {
        log.write(line);
    }
    return true;
}

}  // namespace brimsett
