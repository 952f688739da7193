#include "foundation/DateText.h"
#include "ministry/AnswerDoctor.h"
#include "ministry/AnswerReports.h"
#include "ministry/ErrorReport.h"

namespace brimsett::answerreports {

namespace {

using reports::Report;
using reports::ReportTable;
using namespace errorreport;

QString nameOf(const Claim& claim) {
    if (!claim.patientName.isEmpty()) {
        return claim.patientName;
    }
    if (claim.lastName.isEmpty() || claim.firstName.isEmpty()) {
        return claim.lastName + claim.firstName;
    }
    return claim.lastName + QStringLiteral(", ") + claim.firstName;
}

QDate birthDateOf(const Claim& claim) {
    return claim.patientBirthDate.isValid() ? claim.patientBirthDate : claim.birthDate;
}

// A reciprocal claim carries the other province's registration number instead.
QString healthNumberOf(const Claim& claim) {
    const QString number = claim.reciprocal ? claim.regNum : claim.healthNum;
    return claim.versionCode.isEmpty() ? number : number + QLatin1Char(' ') + claim.versionCode;
}

QString serviceDateOf(const Item& item) {
    return item.serviceDate.isValid() ? datetext::slashed(item.serviceDate) : item.serviceDateText;
}

QString amountOf(const Item& item, const MoneyFormat& money) {
    return item.fee ? item.fee->currency(money) : QString();
}

QString messageOf(const Item& item) {
    if (item.outcome != ItemOutcome::Unknown) {
        return {};
    }
    return QStringLiteral("Unknown item - Serv.Code: ") + item.serviceCode +
           QStringLiteral(" Diag.Code: ") + item.diagCode + QStringLiteral(" Serv.Date: ") +
           serviceDateOf(item);
}

// A two-line cell; the second line stays second even under an empty first.
QString lines(const QString& first, const QString& second) {
    return second.isEmpty() ? first : first + QLatin1Char('\n') + second;
}

}  // namespace

QStringList errorGridColumns() {
    return {
        QStringLiteral("Doctor"),     QStringLiteral("Account"),    QStringLiteral("Health Num."),
        QStringLiteral("Name"),       QStringLiteral("Claim Type"), QStringLiteral("Serv.Code"),
        QStringLiteral("Diag.Code"),  QStringLiteral("Serv.Date"),  QStringLiteral("Amount"),
        QStringLiteral("Expl. Code"), QStringLiteral("Errors"),     QStringLiteral("Ref.Doc."),
        QStringLiteral("Fac.Num."),   QStringLiteral("Admit D."),   QStringLiteral("Ref.Lab."),
        QStringLiteral("Location"),   QStringLiteral("Message")};
}

QList<QStringList> errorGridRows(const ErrorReport& report, const MoneyFormat& money) {
    QList<QStringList> rows;
    for (const ProviderSection& section : report.providers) {
        const QString doctor = section.doctorName.isEmpty() ? section.provider : section.doctorName;
        for (const Claim& claim : section.claims) {
            rows << QStringList{doctor,
                                claim.acctNum,
                                healthNumberOf(claim),
                                nameOf(claim),
                                claim.payProg,
                                QString(),
                                QString(),
                                QString(),
                                QString(),
                                QString(),
                                claim.errors,
                                claim.refDoc,
                                claim.facilityNum,
                                datetext::slashed(claim.admitDate),
                                claim.refLab,
                                claim.location,
                                QString()};
            // Items name their claim by account, so a sorted grid still tells whose they are.
            for (const Item& item : claim.items) {
                rows << QStringList{doctor,        claim.acctNum,       QString(),
                                    QString(),     QString(),           item.serviceCode,
                                    item.diagCode, serviceDateOf(item), amountOf(item, money),
                                    item.explCode, item.errors,         QString(),
                                    QString(),     QString(),           QString(),
                                    QString(),     messageOf(item)};
            }
        }
    }
    return rows;
}

Report errorReportPrintout(const ErrorReport& report, const QString& fileName, const QDate& printed,
                           const MoneyFormat& money) {
    Report printout(QStringLiteral("EDT Error Report - File Name: ") + fileName +
                    QStringLiteral(" - Print Date: ") + datetext::slashed(printed));
    for (const ProviderSection& section : report.providers) {
        const QString name = section.doctorName.isEmpty()
                                 ? answerdoctor::nameOf(std::nullopt, section.provider)
                                 : section.doctorName;
        printout.addParagraph(QStringLiteral("*** Claims for: ") + name + QStringLiteral(" ***"));
        ReportTable table;
        table.columns = {{QStringLiteral("Acct/HIN")},    {QStringLiteral("Name/DOB")},
                         {QStringLiteral("Ch.To")},       {QStringLiteral("SC/DC")},
                         {QStringLiteral("Ref.Doc/Fac")}, {QStringLiteral("Date/Amt")},
                         {QStringLiteral("Errors")}};
        for (const Claim& claim : section.claims) {
            table.groupStarts << static_cast<int>(table.rows.size());
            table.rows << QStringList{lines(claim.acctNum, healthNumberOf(claim)),
                                      lines(nameOf(claim), datetext::slashed(birthDateOf(claim))),
                                      claim.payProg,
                                      QString(),
                                      lines(claim.refDoc, claim.facilityNum),
                                      datetext::slashed(claim.admitDate),
                                      claim.errors};
            for (const Item& item : claim.items) {
                QStringList errors{item.errors};
                if (!item.explCode.isEmpty()) {
                    errors << QStringLiteral("Expl. ") + item.explCode;
                }
                if (item.outcome == ItemOutcome::Unknown) {
                    errors << QStringLiteral("Unknown item");
                }
                errors.removeAll(QString());
                table.rows << QStringList{QString(),
                                          QString(),
                                          QString(),
                                          lines(item.serviceCode, item.diagCode),
                                          QString(),
                                          lines(serviceDateOf(item), amountOf(item, money)),
                                          errors.join(QLatin1Char('\n'))};
            }
        }
        printout.addTable(table);
    }
    printout.addParagraph(QStringLiteral("Total Items: ") + QString::number(report.itemCount()));
    if (!report.messages.isEmpty()) {
        ReportTable messages;
        messages.columns = {{QStringLiteral("See Messages")}};
        for (const Message& m : report.messages) {
            messages.rows << QStringList{m.code + QStringLiteral(" - ") + m.text};
        }
        printout.addTable(messages);
    }
    return printout;
}

}  // namespace brimsett::answerreports
