#include "claims/PayProgram.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "ministry/PastClaims.h"
#include "patients/PatientEntry.h"

#include <QHash>
#include <QMap>
#include <QSet>
#include <QSqlQuery>

namespace brimsett::pastclaims {

namespace {

const QString kTail = QStringLiteral(",C.ClaimID Asc,I.ItemID Asc");
const QString kJoin = QStringLiteral(" From claims C Inner Join items I On I.ClaimID=C.ClaimID");

QString lastFirst(const QString& last, const QString& first) {
    if (last.isEmpty() || first.isEmpty()) {
        return last + first;
    }
    return last + QStringLiteral(", ") + first;
}

// The condition, or none after telling every problem at once.
std::optional<Condition> accepted(Database& db, Prompter& prompter, const Filters& filters) {
    Condition c = buildCondition(db, filters);
    if (!c.problems.isEmpty()) {
        prompter.tell(kTitle, c.problems, Icon::Critical);
        return std::nullopt;
    }
    return c;
}

QString whereOf(const Condition& c) {
    return c.sql.isEmpty() ? QString() : QStringLiteral(" Where ") + c.sql;
}

// Descriptions of the codes found: the schedule's by the four-character fee code, the
// office's own prices by the code as billed or by its fee code.
void describe(Database& db, QList<PastItem>& items) {
    QSet<QString> codes;
    for (const PastItem& item : items) {
        const QString code = item.serviceCode.trimmed().toUpper();
        if (!code.isEmpty()) {
            codes << code << code.left(4);
        }
    }
    if (codes.isEmpty()) {
        return;
    }
    QHash<QString, QString> schedule;
    QHash<QString, QString> direct;
    const QStringList all(codes.begin(), codes.end());
    constexpr qsizetype kChunk = 400;
    for (qsizetype at = 0; at < all.size(); at += kChunk) {
        const QStringList chunk = all.mid(at, kChunk);
        const QString marks = QStringList(chunk.size(), QStringLiteral("?")).join(QLatin1Char(','));
        const QVariantList values(chunk.begin(), chunk.end());
        for (auto [table, into] : {std::pair{QStringLiteral("servicecodes"), &schedule},
                                   std::pair{QStringLiteral("servicecodesdirect"), &direct}}) {
            QSqlQuery q = db.exec(QStringLiteral("Select ServiceCode, Description From ") + table +
                                      QStringLiteral(" Where Upper(Trim(ServiceCode)) In (") +
                                      marks + QLatin1Char(')'),
                                  values, QStringLiteral("Past Claims: reading the service codes"));
            while (q.next()) {
                into->insert(q.value(0).toString().trimmed().toUpper(),
                             q.value(1).toString().trimmed());
            }
        }
    }
    for (PastItem& item : items) {
        const QString code = item.serviceCode.trimmed().toUpper();
        if (payprog::goesToMinistry(item.payProg.trimmed())) {
            item.serviceDescription = schedule.value(code.left(4));
        } else {
            item.serviceDescription = direct.value(code, direct.value(code.left(4)));
        }
    }
}

}  // namespace

QStringList gridCaptions() {
    return {QStringLiteral("Doc."),         QStringLiteral("Account"), QStringLiteral("Pat.ID"),
            QStringLiteral("Patient Name"), QStringLiteral("Ch. To"),  QStringLiteral("Service"),
            QStringLiteral("Diag"),         QStringLiteral("Date"),    QStringLiteral("Fee"),
            QStringLiteral("Paid")};
}

QString defaultSort() {
    return QStringLiteral("LName,FName") + kTail;
}

QStringList sortKeys() {
    const QStringList first = {QStringLiteral("C.DoctorID"),  QStringLiteral("C.AcctNum"),
                               QStringLiteral("C.PatientID"), QStringLiteral("LName,FName"),
                               QStringLiteral("C.PayProg"),   QStringLiteral("I.ServiceCode"),
                               QStringLiteral("I.DiagCode"),  QStringLiteral("I.ServiceDate"),
                               QStringLiteral("I.FeeSubm"),   QStringLiteral("I.FeePaid")};
    QStringList keys;
    for (const QString& column : first) {
        keys << column + kTail;
    }
    return keys;
}

std::optional<Found> findItems(Database& db, Prompter& prompter, const Filters& filters,
                               const QString& sort) {
    if (!sortKeys().contains(sort)) {
        prompter.tell(kTitle,
                      {quotedInMessage(sort) + QStringLiteral(" is not a column to sort by.")},
                      Icon::Critical);
        return std::nullopt;
    }
    const std::optional<Condition> c = accepted(db, prompter, filters);
    if (!c) {
        return std::nullopt;
    }
    // LName and FName are the claim's own copy: the name the claim was billed under. Columns
    // are read by place: a large export reads every row.
    QSqlQuery q = db.exec(
        QStringLiteral("Select C.ClaimID, I.ItemID, C.DoctorID, C.AcctNum, C.PatientID, C.LName,"
                       " C.FName, C.PayProg, I.ServiceCode, I.DiagCode, I.ServiceDate, I.FeeSubm,"
                       " I.FeePaid, I.Status, C.BatchID, C.InvoiceNum, I.Errors") +
            kJoin + whereOf(*c) + QStringLiteral(" Order By ") + sort,
        c->values, QStringLiteral("Past Claims: finding the items"));
    Found found;
    while (q.next()) {
        PastItem p;
        p.claimId = q.value(0).toLongLong();
        p.itemId = q.value(1).toInt();
        p.doctorId = q.value(2).toString().trimmed();
        p.acctNum = q.value(3).toString();
        p.patientId = q.value(4).toLongLong();
        p.patientName = lastFirst(q.value(5).toString().trimmed(), q.value(6).toString().trimmed());
        p.payProg = q.value(7).toString();
        p.serviceCode = q.value(8).toString();
        p.diagCode = q.value(9).toString();
        p.serviceDate = readTypedDate(dateTextOf(q.value(10)));
        p.feeSubm = Money::fromVariant(q.value(11));
        p.feePaid = Money::fromVariant(q.value(12));
        p.status = q.value(13).toInt();
        p.batchId = q.value(14).toString();
        p.invoiceNum = q.value(15).toString();
        p.errors = q.value(16).toString();
        found.fee += p.feeSubm.value_or(Money());
        found.paid += p.feePaid.value_or(Money());
        found.items << p;
    }
    q.finish();
    describe(db, found.items);
    // The grid shows the short form; the stored one was needed for the descriptions.
    for (PastItem& p : found.items) {
        p.payProg = payprog::shortForm(payprog::indexOf(p.payProg.trimmed()));
    }
    return found;
}

std::optional<QList<PatientLine>> patientList(Database& db, Prompter& prompter,
                                              const Filters& filters) {
    const std::optional<Condition> c = accepted(db, prompter, filters);
    if (!c) {
        return std::nullopt;
    }
    // The register's name; a claim whose patient is no longer registered keeps its own copy.
    QSqlQuery q = db.exec(
        QStringLiteral("Select C.PatientID, Coalesce(P.LName, C.LName) As LName,"
                       " Coalesce(P.FName, C.FName) As FName, I.ServiceCode, I.ServiceDate,"
                       " I.FeeSubm, I.FeePaid") +
            kJoin + QStringLiteral(" Left Join patients P On P.PatientID=C.PatientID") +
            whereOf(*c) + QStringLiteral(" Order By 2, 3, C.PatientID, I.ServiceDate") + kTail,
        c->values, QStringLiteral("Past Claims: listing the patients"));
    QList<PatientLine> lines;
    QHash<qint64, qsizetype> lineOf;
    while (q.next()) {
        const qint64 patient = q.value(0).toLongLong();
        auto at = lineOf.find(patient);
        if (at == lineOf.end()) {
            PatientLine line;
            line.patientId = patient;
            line.name = lastFirst(q.value(1).toString().trimmed(), q.value(2).toString().trimmed());
            at = lineOf.insert(patient, lines.size());
            lines << line;
        }
        PatientLine& line = lines[*at];
        const QDate date = readTypedDate(dateTextOf(q.value(4)));
        // Rows come in service-date order: the last one read is the latest service.
        if (!line.lastDate.isValid() || date >= line.lastDate) {
            line.lastDate = date;
            line.lastService = q.value(3).toString();
        }
        line.fees += Money::fromVariant(q.value(5)).value_or(Money());
        line.paid += Money::fromVariant(q.value(6)).value_or(Money());
    }
    return lines;
}

std::optional<QList<RejectedLine>> rejectedItems(Database& db, Prompter& prompter,
                                                 const Filters& filters) {
    Filters rejected = filters;
    rejected.status = StatusFilter::Rejected;
    const std::optional<Condition> c = accepted(db, prompter, rejected);
    if (!c) {
        return std::nullopt;
    }
    QSqlQuery q = db.exec(QStringLiteral("Select I.Errors, I.FeeSubm") + kJoin + whereOf(*c),
                          c->values, QStringLiteral("Past Claims: reading the rejected items"));
    // An item holds up to five codes separated by ","; it is counted under each.
    QMap<QString, RejectedLine> byCode;
    while (q.next()) {
        const Money fee = Money::fromVariant(q.value(1)).value_or(Money());
        QStringList codes;
        for (const QString& code : q.value(0).toString().split(QLatin1Char(','))) {
            if (!code.trimmed().isEmpty() && !codes.contains(code.trimmed())) {
                codes << code.trimmed();
            }
        }
        if (codes.isEmpty()) {
            codes << QString();
        }
        for (const QString& code : codes) {
            RejectedLine& line = byCode[code];
            line.errorCode = code;
            ++line.items;
            line.fee += fee;
        }
    }
    q.finish();
    QSqlQuery texts = db.exec(QStringLiteral("Select ExplCode, Description From ExplCodes"), {},
                              QStringLiteral("Past Claims: reading the explanatory codes"));
    while (texts.next()) {
        const auto at = byCode.find(texts.value(0).toString().trimmed());
        if (at != byCode.end()) {
            at->description = texts.value(1).toString().trimmed();
        }
    }
    return byCode.values();
}

}  // namespace brimsett::pastclaims
