#include "claims/ClaimRecord.h"
#include "foundation/DateText.h"
#include "ministry/PastClaims.h"
#include "reports/Report.h"

#include <QSaveFile>

#include <algorithm>

namespace brimsett::pastclaims {

namespace {

QString amount(const std::optional<Money>& value) {
    return value ? value->plain() : QString();
}

// A field never breaks its line or adds a field.
QString field(QString text) {
    text.replace(QLatin1Char(';'), QLatin1Char(','));
    text.replace(QLatin1Char('\r'), QLatin1Char(' '));
    text.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return text;
}

}  // namespace

QString exportItems(const QList<PastItem>& items, const QString& path) {
    QStringList lines;
    lines.reserve(items.size() + 1);
    lines << QStringList{QStringLiteral("Claim"),  QStringLiteral("Item"),
                         QStringLiteral("Doc."),   QStringLiteral("Account"),
                         QStringLiteral("Pat.ID"), QStringLiteral("Patient Name"),
                         QStringLiteral("Ch. To"), QStringLiteral("Service"),
                         QStringLiteral("Diag"),   QStringLiteral("Date"),
                         QStringLiteral("Fee"),    QStringLiteral("Paid"),
                         QStringLiteral("Status"), QStringLiteral("Errors"),
                         QStringLiteral("Batch"),  QStringLiteral("Invoice")}
                 .join(QLatin1Char(';'));
    for (const PastItem& i : items) {
        lines << QStringList{QString::number(i.claimId),
                             QString::number(i.itemId),
                             field(i.doctorId),
                             field(i.acctNum),
                             QString::number(i.patientId),
                             field(i.patientName),
                             field(i.payProg),
                             field(i.serviceCode.trimmed()),
                             field(i.diagCode.trimmed()),
                             datetext::slashed(i.serviceDate),
                             amount(i.feeSubm),
                             amount(i.feePaid),
                             itemStatusName(i.batchId, i.status),
                             field(i.errors.trimmed()),
                             field(i.batchId.trimmed()),
                             field(i.invoiceNum.trimmed())}
                     .join(QLatin1Char(';'));
    }
    // Written whole under a temporary name and then put in place, so a failure leaves the
    // folder as it was; the list holds patient data, so only its owner may read it.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return file.errorString();
    }
    const QByteArray text = (lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n")).toUtf8();
    if (file.write(text) != text.size()) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return reason;
    }
    if (!file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return reason;
    }
    if (!file.commit()) {
        return file.errorString();
    }
    return {};
}

QStringList patientListTotals(const QList<PatientLine>& lines, const MoneyFormat& format) {
    Money fees;
    Money paid;
    for (const PatientLine& line : lines) {
        fees += line.fees;
        paid += line.paid;
    }
    return {QString::number(lines.size()) + QStringLiteral(" unique patients found."),
            QStringLiteral("Grand Total: ") + fees.currency(format) + QStringLiteral("  Paid: ") +
                paid.currency(format)};
}

reports::Report pastClaimsReport(const Found& found, const Filters& filters,
                                 const QString& doctorName) {
    reports::Report report(kTitle);
    report.setLandscape(true);
    const QString doctor = filters.doctorId.trimmed();
    report.addHeading(QStringLiteral("Claims for ") +
                      (doctor.isEmpty()
                           ? QStringLiteral("All")
                           : (doctorName.trimmed().isEmpty() ? doctor : doctorName.trimmed())));
    // An open end of the period reads from the items found.
    QDate from = datetext::fromSlashed(filters.from.trimmed());
    QDate to = datetext::fromSlashed(filters.to.trimmed());
    for (const PastItem& i : found.items) {
        if (!i.serviceDate.isValid()) {
            continue;
        }
        if (filters.from.trimmed().isEmpty() && (!from.isValid() || i.serviceDate < from)) {
            from = i.serviceDate;
        }
        if (filters.to.trimmed().isEmpty() && (!to.isValid() || i.serviceDate > to)) {
            to = i.serviceDate;
        }
    }
    if (from.isValid() && to.isValid()) {
        report.addHeading(QStringLiteral("Claims from ") + datetext::longDate(from) +
                          QStringLiteral(" to ") + datetext::longDate(to));
    }
    const QString batch = filters.batchId.trimmed();
    report.addHeading(batch.isEmpty() ? QStringLiteral("All Batch Files")
                                      : QLatin1Char('(') + batch + QLatin1Char(')'));

    reports::ReportTable table;
    for (const QString& caption : gridCaptions()) {
        const bool money = caption == QLatin1String("Fee") || caption == QLatin1String("Paid");
        table.columns << reports::ReportColumn{caption, money ? Qt::AlignRight : Qt::AlignLeft, 0};
    }
    for (const PastItem& i : found.items) {
        table.rows << QStringList{i.doctorId,
                                  i.acctNum,
                                  QString::number(i.patientId),
                                  i.patientName,
                                  i.payProg,
                                  i.serviceCode.trimmed(),
                                  i.diagCode.trimmed(),
                                  datetext::slashed(i.serviceDate),
                                  i.feeSubm ? i.feeSubm->format() : QString(),
                                  i.feePaid ? i.feePaid->format() : QString()};
    }
    QStringList totals(table.columns.size());
    totals[0] = QStringLiteral("Total");
    totals[8] = found.fee.format();
    totals[9] = found.paid.format();
    table.totals << totals;
    report.addTable(std::move(table));
    return report;
}

}  // namespace brimsett::pastclaims
