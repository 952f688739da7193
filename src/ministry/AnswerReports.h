#pragma once

#include "foundation/Money.h"
#include "reports/Report.h"

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {

class Database;

namespace remittance {
struct Remittance;
}
namespace errorreport {
struct ErrorReport;
}
namespace batchedit {
struct Report;
}

// The printed forms of the ministry's answers, built on the shared report module.
namespace answerreports {

// "Remittance Advice for " name " (" provider ")" "  File: " file "  Printed: " date: the
// item lines with provider and page totals, "Grand Totals", "Accounting Transactions" and
// the messages. The doctor is looked up by the header's billing number.
reports::Report remittanceReport(Database& db, const remittance::Remittance& remittance,
                                 const QString& fileName, const QDate& printed,
                                 const MoneyFormat& money);

// The grid of frmViewError, one row per claim header and per item, in the columns of
// errorGridColumns(): "Doctor", "Account", "Health Num.", "Name", "Claim Type", "Serv.Code",
// "Diag.Code", "Serv.Date", "Amount", "Expl. Code", "Errors", "Ref.Doc.", "Fac.Num.",
// "Admit D.", "Ref.Lab.", "Location", "Message".
QStringList errorGridColumns();
QList<QStringList> errorGridRows(const errorreport::ErrorReport& report, const MoneyFormat& money);

// "EDT Error Report - File Name: " name " - Print Date: " date.
reports::Report errorReportPrintout(const errorreport::ErrorReport& report, const QString& fileName,
                                    const QDate& printed, const MoneyFormat& money);

// "Batch Edit Report (File: " name ") - " ... "Print Date: " date.
reports::Report batchEditPrintout(const batchedit::Report& report, const QString& fileName,
                                  const QDate& printed);

}  // namespace answerreports
}  // namespace brimsett
