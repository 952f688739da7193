#pragma once

#include "ministry/ReceivedFile.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace brimsett {

// The ministry's batch edit report: one record per batch received, accepted or rejected,
// with its counts. Real records are 132 characters long.
namespace batchedit {

inline constexpr int kRecordLength = 132;

// One "HB1" record as the grid shows it, the texts trimmed and dates as the file has them.
struct Row {
    int line = 0;
    bool v03 = true;
    QString batchNumber;
    QString operatorNumber;
    QString createDate;
    QString sequence;
    QString microStart;
    QString microEnd;
    QString microType;
    QString group;
    QString provider;
    QString claims;
    QString records;
    QString processDate;  // "n/a" when absent
    QString message;      // "(Rejected) ..." when the 40th character of the message is "R"
    bool rejected = false;

    QStringList cells() const;  // in the order of columns()
};
// "Batch Number", "Operator Number", "Batch Create Date", "Batch Sequence Number",
// "Micro Start", "Micro End", "Micro Type", "Group Number", "Provider Number",
// "Number of Claims", "Number of Records", "Batch Process Date", "Edit Message"
QStringList columns();

struct Report {
    QList<Row> rows;
    QList<received::LineError> errors;
    int lineCount = 0;
};

// Whether the first record is a batch edit record this program can read ("V03" or "V02"
// with a valid provider number); otherwise "This file does not appear to be a valid OHIP
// file." with the title "OHIP Batch Edit File".
bool firstRecordValid(const QString& line);

// Reads every line; never stops on a fault, which goes to `errors` instead. A line in `cut`
// is one fault and no record.
Report read(const QStringList& lines, const received::Progress& progress = {},
            const received::CutLines& cut = {});

}  // namespace batchedit
}  // namespace brimsett
