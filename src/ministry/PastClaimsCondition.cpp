#include "claims/ClaimRecord.h"
#include "claims/ClaimStore.h"
#include "claims/DiagnosticCodes.h"
#include "claims/PayProgram.h"
#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/Prompter.h"
#include "foundation/SqlText.h"
#include "ministry/PastClaims.h"

namespace brimsett::pastclaims {

namespace {

// Collects each filter's part; the parts are joined with " And ".
struct Parts {
    QStringList sql;
    QVariantList values;

    void add(const QString& part, const QVariantList& partValues = {}) {
        sql << part.trimmed();
        values << partValues;
    }
    // The shared claim searches begin " And (".
    void addSearch(const claimsearch::Condition& c) {
        QString part = c.sql.trimmed();
        if (part.startsWith(QLatin1String("And "), Qt::CaseInsensitive)) {
            part = part.mid(4);
        }
        add(part, c.values);
    }
    void addPattern(const sqltext::LikeCriterion& c) { add(c.sql, c.values); }
};

// The doctor as stored, found whatever the case of what was typed; empty when unknown.
QString storedDoctor(Database& db, const QString& typed) {
    return db
        .scalar(QStringLiteral("Select DoctorID From doctors Where Upper(Trim(DoctorID))=?"),
                {typed.toUpper()}, QStringLiteral("Past Claims: looking for the doctor"))
        .toString();
}

void addDoctor(Database& db, const Filters& f, Parts& parts, QStringList& problems) {
    const QString typed = f.doctorId.trimmed();
    if (typed.isEmpty()) {
        return;
    }
    const QString doctor = storedDoctor(db, typed);
    if (doctor.isEmpty()) {
        problems << quotedInMessage(typed) + QStringLiteral(" is not a valid doctor.");
        return;
    }
    // The doctor's claim numbers come from the doctor's index alone: a server would otherwise
    // read every page of the claims (each page holds every doctor's) before a period of
    // service narrows them.
    const QString doctors =
        f.includeNoDoctor ? QStringLiteral("D.DoctorID=? Or D.DoctorID Is Null Or D.DoctorID=''")
                          : QStringLiteral("D.DoctorID=?");
    parts.add(QStringLiteral("C.ClaimID In (Select D.ClaimID From claims D Where ") + doctors +
                  QLatin1Char(')'),
              {doctor});
}

void addProgram(const Filters& f, Parts& parts, QStringList& problems) {
    const QString program = f.payProg.trimmed();
    if (program.isEmpty()) {
        return;
    }
    parts.add(QStringLiteral("C.PayProg=?"), {program});
    if (program != payprog::storedForm(payprog::ThirdParty)) {
        return;
    }
    bool number = false;
    const qint64 payer = f.thirdPartyId.trimmed().toLongLong(&number);
    if (!number) {
        problems << QStringLiteral("Please select a Third Party");
        return;
    }
    parts.add(QStringLiteral("C.ThirdPartyID=?"), {payer});
}

// A date bound: empty is none; anything but "YYYY/MM/DD" is refused.
std::optional<QDate> readBound(const QString& typed, bool& bad) {
    const QString text = typed.trimmed();
    if (text.isEmpty()) {
        return std::nullopt;
    }
    const QDate date = datetext::fromSlashed(text);
    bad = !date.isValid();
    return date;
}

void addDates(const Filters& f, Parts& parts, QStringList& problems) {
    bool badStart = false;
    bool badEnd = false;
    const std::optional<QDate> start = readBound(f.from, badStart);
    const std::optional<QDate> end = readBound(f.to, badEnd);
    if (badStart) {
        problems << QStringLiteral("Invalid Start Date.");
    }
    if (badEnd) {
        problems << QStringLiteral("Invalid End Date.");
    }
    const bool billed = f.dateBasis == DateBasis::BilledDate;
    const QString column =
        billed ? QStringLiteral("C.DateCreated") : QStringLiteral("I.ServiceDate");
    if (start && !badStart) {
        parts.add(column + QStringLiteral(">=?"), {*start});
    }
    if (end && !badEnd) {
        // Before the next day: the day a claim was made is a moment of that day (and a date
        // copied from an older database may carry a time), so the whole end day counts.
        parts.add(column + QStringLiteral("<?"), {end->addDays(1)});
    }
}

void addStatus(StatusFilter status, Parts& parts) {
    switch (status) {
        case StatusFilter::All:
            return;
        case StatusFilter::Pending:
            parts.add(QStringLiteral("C.BatchID=?"), {kPendingBatch});
            return;
        case StatusFilter::Submitted:
            parts.add(QStringLiteral("I.Status=? And C.BatchID<>?"),
                      {static_cast<int>(ItemStatus::Unanswered), kPendingBatch});
            return;
        case StatusFilter::Rejected:
            parts.add(QStringLiteral("I.Status=?"), {static_cast<int>(ItemStatus::Rejected)});
            return;
        case StatusFilter::RejectedClosed:
            parts.add(QStringLiteral("I.Status=?"), {static_cast<int>(ItemStatus::RejectedClosed)});
            return;
        case StatusFilter::Paid:
            parts.add(QStringLiteral("I.Status=?"), {static_cast<int>(ItemStatus::Paid)});
            return;
    }
}

}  // namespace

bool invoiceOnFile(Database& db, const QString& invoiceNum) {
    return db.scalar(QStringLiteral("Select Count(*) From Invoices Where InvoiceNum=?"),
                     {invoiceNum.trimmed()}, QStringLiteral("Past Claims: looking for the invoice"))
               .toLongLong() > 0;
}

QString invoiceNotFound(const QString& invoiceNum) {
    return QStringLiteral("Invoice ") + invoiceNum.trimmed() + QStringLiteral(" was not found.");
}

Condition buildCondition(Database& db, const Filters& f) {
    Parts parts;
    QStringList problems;
    const Dialect& dialect = db.dialect();

    addDoctor(db, f, parts, problems);
    addProgram(f, parts, problems);
    addDates(f, parts, problems);

    const QString diag = f.diagCode.trimmed();
    if (!diag.isEmpty()) {
        if (diagcodes::isValid(db, diag,
                               QStringLiteral("Past Claims: looking for the diagnostic code"))) {
            parts.add(QStringLiteral("I.DiagCode=?"), {diag});
        } else {
            problems << QStringLiteral("Invalid diagnostic code.");
        }
    }

    const QString service = f.servicePrefix.trimmed();
    if (!service.isEmpty()) {
        const QString pattern = service + QLatin1Char('*');
        // The range lets an index on the code's lower case find the beginning; the pattern
        // decides.
        const sqltext::LikeCriterion range =
            sqltext::lowerPrefixRange(QStringLiteral("I.ServiceCode"), pattern);
        if (!range.sql.isEmpty()) {
            parts.addPattern(range);
        }
        parts.addPattern(
            sqltext::patternCriterion(dialect, QStringLiteral("I.ServiceCode"), pattern));
    }

    const QString invoice = f.invoiceNum.trimmed();
    if (!invoice.isEmpty()) {
        if (invoiceOnFile(db, invoice)) {
            parts.addSearch(claimsearch::invoiceCondition(invoice));
        } else {
            problems << invoiceNotFound(invoice);
        }
    }

    addStatus(f.status, parts);

    const QString batch = f.batchId.trimmed();
    if (!batch.isEmpty()) {
        parts.addSearch(claimsearch::batchCondition(batch));
    }

    const QString ra = f.ra.trimmed();
    if (!ra.isEmpty()) {
        const sqltext::LikeCriterion within = sqltext::patternCriterion(
            dialect, QStringLiteral("C.RA"), QLatin1Char('*') + ra + QLatin1Char('*'));
        parts.add(QStringLiteral("(C.RA=? Or") + within.sql + QLatin1Char(')'),
                  QVariantList{ra} + within.values);
    }

    const QString facility = f.facility.trimmed();
    if (!facility.isEmpty()) {
        parts.add(QStringLiteral("I.facility=?"), {facility});
    }

    Condition c;
    c.problems = problems;
    if (problems.isEmpty()) {
        c.sql = parts.sql.join(QStringLiteral(" And "));
        c.values = parts.values;
    }
    return c;
}

}  // namespace brimsett::pastclaims
