#include "claims/ClaimFieldForms.h"
#include "ministry/BatchEdit.h"
#include "ministry/FixedWidth.h"

#include <algorithm>

namespace brimsett::batchedit {

namespace {

using fixedwidth::take;

// The older layout writes the batch create date with six digits; every field after it
// stands two positions further left. The fields before it (batch and operator numbers)
// are read at the same positions in both layouts.
int shiftOf(bool v03) {
    return v03 ? 0 : -2;
}

constexpr int kProviderPos = 57;
constexpr int kMessagePos = 82;
constexpr int kMessageLength = 40;

// A count of the record: its number ("00009" shows as "9"); text that is not a number
// shows as it stands.
QString countOf(const QString& field) {
    const QString text = field.trimmed();
    const bool digits = !text.isEmpty() &&
                        std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
    return digits ? QString::number(text.toLongLong()) : text;
}

Row rowOf(const QString& line, int number) {
    Row row;
    row.line = number;
    row.v03 = take(line, 4, 3) == QLatin1String("V03");
    const int shift = shiftOf(row.v03);
    row.batchNumber = take(line, 7, 5).trimmed();
    row.operatorNumber = take(line, 12, 6).trimmed();
    row.createDate = take(line, 18, row.v03 ? 8 : 6).trimmed();
    row.sequence = take(line, 26 + shift, 4).trimmed();
    row.microStart = take(line, 30 + shift, 11).trimmed();
    row.microEnd = take(line, 41 + shift, 5).trimmed();
    row.microType = take(line, 46 + shift, 7).trimmed();
    row.group = take(line, 53 + shift, 4).trimmed();
    row.provider = take(line, kProviderPos + shift, 6).trimmed();
    row.claims = countOf(take(line, 63 + shift, 5));
    row.records = countOf(take(line, 68 + shift, 6));
    row.processDate = take(line, 74 + shift, 8).trimmed();
    if (row.processDate.isEmpty()) {
        row.processDate = QStringLiteral("n/a");
    }
    const QString message = take(line, kMessagePos + shift, kMessageLength);
    // The ministry marks a rejected batch by an "R" in the message's last position, whatever
    // the text before it says.
    row.rejected = message.size() == kMessageLength && message.back() == QLatin1Char('R');
    row.message = row.rejected ? QStringLiteral("(Rejected) ") + message.left(39).trimmed()
                               : message.trimmed();
    return row;
}

}  // namespace

QStringList Row::cells() const {
    return {batchNumber, operatorNumber, createDate, sequence, microStart,  microEnd, microType,
            group,       provider,       claims,     records,  processDate, message};
}

QStringList columns() {
    return {QStringLiteral("Batch Number"),      QStringLiteral("Operator Number"),
            QStringLiteral("Batch Create Date"), QStringLiteral("Batch Sequence Number"),
            QStringLiteral("Micro Start"),       QStringLiteral("Micro End"),
            QStringLiteral("Micro Type"),        QStringLiteral("Group Number"),
            QStringLiteral("Provider Number"),   QStringLiteral("Number of Claims"),
            QStringLiteral("Number of Records"), QStringLiteral("Batch Process Date"),
            QStringLiteral("Edit Message")};
}

bool firstRecordValid(const QString& line) {
    const QString version = take(line, 4, 3);
    const bool v03 = version == QLatin1String("V03");
    return take(line, 1, 3) == QLatin1String("HB1") && (v03 || version == QLatin1String("V02")) &&
           claimform::isProviderNumber(take(line, kProviderPos + shiftOf(v03), 6));
}

Report read(const QStringList& lines, const received::Progress& progress,
            const received::CutLines& cut) {
    Report report;
    report.lineCount = static_cast<int>(lines.size());
    for (int i = 0; i < report.lineCount; ++i) {
        if (progress && i > 0 && i % received::kProgressEvery == 0) {
            progress(i, report.lineCount);
        }
        if (received::listedAsCut(cut, i, kRecordLength, report.errors)) {
            continue;
        }
        const QString& line = lines.at(i);
        const int number = i + 1;
        const bool fullLength = received::checkLength(line, number, kRecordLength, report.errors);
        if (take(line, 1, 2) != QLatin1String("HB")) {
            report.errors << received::LineError{number,
                                                 QStringLiteral("Invalid Transaction Identifier"),
                                                 take(line, 1, 2), QStringLiteral("HB")};
            continue;
        }
        if (take(line, 3, 1) != QLatin1String("1")) {
            report.errors << received::LineError{number, QStringLiteral("Invalid Record Type"),
                                                 take(line, 3, 1), QStringLiteral("1")};
            continue;
        }
        // A record of another length is still a batch when it holds every field up to its
        // edit message (a lost tail of blanks, say); a shorter one is only listed.
        const bool v03 = take(line, 4, 3) == QLatin1String("V03");
        if (fullLength || line.size() >= kMessagePos + shiftOf(v03)) {
            report.rows << rowOf(line, number);
        }
    }
    if (progress) {
        progress(report.lineCount, report.lineCount);
    }
    return report;
}

}  // namespace brimsett::batchedit
