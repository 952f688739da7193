#include "ministry/BatchReports.h"

#include "foundation/DateText.h"
#include "ministry/ClaimFileRecords.h"

namespace brimsett::batchreports {

namespace {

using reports::Report;
using reports::ReportColumn;
using reports::ReportTable;

QString dateLine(const QDate& printed) {
    return QStringLiteral("Date: ") + datetext::slashed(printed);
}

QString patientName(const ClaimRecord& claim, bool lastNameFirst) {
    const QString first = claim.fName.trimmed();
    const QString last = claim.lName.trimmed();
    if (first.isEmpty() || last.isEmpty()) {
        return first.isEmpty() ? last : first;
    }
    return lastNameFirst ? last + QStringLiteral(", ") + first : first + QLatin1Char(' ') + last;
}

QString healthNumber(const ClaimRecord& claim) {
    const QString version = claim.versionCode.trimmed();
    return version.isEmpty() ? claim.healthNum.trimmed()
                             : claim.healthNum.trimmed() + QLatin1Char(' ') + version;
}

QString counted(int n, const QString& one, const QString& many) {
    return QString::number(n) + QLatin1Char(' ') + (n == 1 ? one : many);
}

}  // namespace

Report submissionSummary(const QString& fileName, const std::vector<BatchRow>& batches,
                         const QDate& printed, const MoneyFormat& money) {
    Report report(QStringLiteral("Submission Summary"));
    report.addHeading(dateLine(printed));
    report.addHeading(QStringLiteral("File Name: ") + fileName);

    ReportTable table;
    table.columns = {{QStringLiteral("Doctor"), Qt::AlignLeft},
                     {QStringLiteral("Batch ID"), Qt::AlignLeft},
                     {QStringLiteral("No. of Claims"), Qt::AlignRight},
                     {QStringLiteral("No. of Records"), Qt::AlignRight},
                     {QStringLiteral("Total"), Qt::AlignRight}};
    int claims = 0;
    int records = 0;
    Money total;
    for (const BatchRow& b : batches) {
        table.rows << QStringList{b.doctorText(), b.batchId, QString::number(b.claims),
                                  QString::number(b.records), b.total.currency(money)};
        claims += b.claims;
        records += b.records;
        total += b.total;
    }
    table.totals << QStringList{QStringLiteral("Total"),
                                counted(static_cast<int>(batches.size()), QStringLiteral("batch"),
                                        QStringLiteral("batches")),
                                QString::number(claims), QString::number(records),
                                total.currency(money)};
    report.addTable(table);
    return report;
}

Report submissionSummary(BatchRegister& batches, const QString& fileName, const QDate& printed,
                         const MoneyFormat& money) {
    return submissionSummary(fileName, batches.ofFile(fileName), printed, money);
}

Report claimsSubmitted(const BatchRow& batch, const std::vector<ClaimRecord>& claims,
                       const QDate& printed, const MoneyFormat& money, bool lastNameFirst) {
    Report report(QStringLiteral("Claims submitted in file ") + batch.fileName);
    report.setLandscape(true);
    report.addHeading(dateLine(printed));
    report.addHeading(QStringLiteral("Batch ID: ") + batch.batchId +
                      QStringLiteral("    Doctor: ") + batch.doctorText());

    ReportTable table;
    table.columns = {{QStringLiteral("Account"), Qt::AlignLeft},
                     {QStringLiteral("Patient"), Qt::AlignLeft},
                     {QStringLiteral("Health Number"), Qt::AlignLeft},
                     {QStringLiteral("Service Code"), Qt::AlignLeft},
                     {QStringLiteral("Diagnosis"), Qt::AlignLeft},
                     {QStringLiteral("No. of Services"), Qt::AlignRight},
                     {QStringLiteral("Fee"), Qt::AlignRight},
                     {QStringLiteral("Service Date"), Qt::AlignRight}};
    int claimCount = 0;
    int itemCount = 0;
    Money total;
    for (const ClaimRecord& claim : claims) {
        if (!claimfile::goesIntoFile(claim) || claim.items.isEmpty()) {
            continue;
        }
        ++claimCount;
        table.groupStarts << static_cast<int>(table.rows.size());
        const QStringList header{claim.acctNum, patientName(claim, lastNameFirst),
                                 healthNumber(claim)};
        bool first = true;
        for (const ItemRecord& item : claim.items) {
            if (item.serviceCode.trimmed().isEmpty()) {
                continue;  // the file skips it
            }
            ++itemCount;
            if (item.feeSubm) {
                total += *item.feeSubm;
            }
            QStringList row = first ? header : QStringList{QString(), QString(), QString()};
            row << item.serviceCode << item.diagCode
                << QString::number(item.numServ > 0 ? item.numServ : 1)
                << (item.feeSubm ? item.feeSubm->currency(money) : QString())
                << datetext::slashed(item.serviceDate);
            table.rows << row;
            first = false;
        }
        if (first) {
            table.rows << header;  // the claim header went out without an item
        }
    }
    table.totals << QStringList{
        QStringLiteral("Total"),
        counted(claimCount, QStringLiteral("claim"), QStringLiteral("claims")) +
            QStringLiteral(", ") +
            counted(itemCount, QStringLiteral("item"), QStringLiteral("items")),
        QString(),
        QString(),
        QString(),
        QString(),
        total.currency(money),
        QString()};
    report.addTable(table);
    return report;
}

std::optional<Report> claimsSubmitted(BatchRegister& batches, const QString& batchId,
                                      const QDate& printed, const MoneyFormat& money,
                                      bool lastNameFirst) {
    const std::optional<BatchRow> batch = batches.find(batchId);
    if (!batch) {
        return std::nullopt;
    }
    return claimsSubmitted(*batch, batches.claimsOf(batchId), printed, money, lastNameFirst);
}

}  // namespace brimsett::batchreports
