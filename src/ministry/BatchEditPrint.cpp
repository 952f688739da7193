#include "foundation/DateText.h"
#include "ministry/AnswerReports.h"
#include "ministry/BatchEdit.h"

namespace brimsett::answerreports {

reports::Report batchEditPrintout(const batchedit::Report& report, const QString& fileName,
                                  const QDate& printed) {
    const int total = static_cast<int>(report.rows.size());
    reports::Report printout(QStringLiteral("Batch Edit Report (File: ") + fileName +
                             QStringLiteral(") - Print Date: ") + datetext::slashed(printed));
    const QStringList columns = batchedit::columns();
    for (int n = 0; n < total; ++n) {
        // A page per record, reading down: the grid's captions beside its values.
        reports::ReportTable table;
        table.columns = {
            {QStringLiteral("Record %1 out of %2").arg(n + 1).arg(total), Qt::AlignLeft, 1},
            {QString(), Qt::AlignLeft, 2}};
        table.startsPage = n > 0;
        const QStringList cells = report.rows.at(n).cells();
        for (int c = 0; c < columns.size(); ++c) {
            table.rows << QStringList{columns.at(c), c < cells.size() ? cells.at(c) : QString()};
        }
        printout.addTable(table);
    }
    return printout;
}

}  // namespace brimsett::answerreports
