#include "hcv/OvernightAnswers.h"

#include "foundation/Database.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"
#include "hcv/CardAnswerStore.h"
#include "hcv/ResponseCodes.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSqlQuery>

namespace brimsett::hcv {

namespace {

// Field i of the fixed layout: 1-based start and width.
QString field(const QString& line, int start, int width) {
    return line.mid(start - 1, width);
}

bool tenDigits(const QString& text) {
    if (text.size() != 10) {
        return false;
    }
    for (const QChar c : text) {
        if (c < QLatin1Char('0') || c > QLatin1Char('9')) {
            return false;
        }
    }
    return true;
}

}  // namespace

std::optional<OvernightAnswer> parseOvernightLine(const QString& line) {
    OvernightAnswer a;
    a.healthNum = field(line, 1, 10);
    a.code = field(line, 13, 2);
    if (line.size() < 14 || !tenDigits(a.healthNum)) {
        return std::nullopt;
    }
    a.versionCode = field(line, 11, 2).trimmed();
    a.sex = field(line, 19, 1).trimmed();
    a.dob = datetext::fromYyyymmdd(field(line, 20, 8));
    a.expiry = datetext::fromYyyymmdd(field(line, 28, 8));
    a.lastName = field(line, 36, 30).trimmed();
    a.firstName = field(line, 66, 20).trimmed();
    a.secondName = field(line, 86, 20).trimmed();
    return a;
}

OvernightResult applyOvernightFile(Database& db, const SqlLog& log, const QString& path) {
    OvernightResult result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        result.problem = QStringLiteral("%1 could not be read: %2").arg(path, file.errorString());
        return result;
    }
    const QString text = QString::fromLatin1(file.readAll());
    file.close();
    // The answers are as old as the file the ministry made, not as the moment it was read.
    const QDateTime checkedAt = QFileInfo(path).lastModified();
    static const QRegularExpression lineBreak(QStringLiteral("[\r\n]"));
    QStringList logged;
    try {
        Transaction t(db, QStringLiteral("storing the answers of ") + path);
        for (const QString& line : text.split(lineBreak, Qt::SkipEmptyParts)) {
            if (line.trimmed().isEmpty()) {
                continue;
            }
            const std::optional<OvernightAnswer> answer = parseOvernightLine(line);
            if (!answer) {
                ++result.skippedLines;
                continue;
            }
            AppliedOvernight applied{*answer,
                                     patientOfHealthNumber(db, answer->healthNum),
                                     statusClass(answer->code),
                                     ResponseMessage(answer->code),
                                     {}};
            if (applied.patientId) {
                logged << storeAnswerUnlogged(
                    db, *applied.patientId,
                    CardAnswer{answer->code, checkedAt, answer->hasDetails(), answer->firstName,
                               answer->lastName, answer->sex, answer->dob});
                QSqlQuery q =
                    db.exec(QStringLiteral("Select LName, FName From patients Where PatientID=?"),
                            {*applied.patientId}, QStringLiteral("reading the answered patient"));
                if (q.next()) {
                    applied.name =
                        q.value(0).toString() + QStringLiteral(", ") + q.value(1).toString();
                }
            }
            result.cards << applied;
        }
        t.commit();
    } catch (const DbError& e) {
        result.cards.clear();
        result.problem = QStringLiteral("Nothing was stored: ") + e.message();
        return result;
    }
    // Only a committed file goes to the other computers.
    for (const QString& statement : logged) {
        log.write(statement);
    }
    return result;
}

reports::Report overnightFailureReport(const OvernightResult& result, const QString& fileName,
                                       const QDate& printDate) {
    reports::Report report(QStringLiteral("Overnight Health Card Validation - Failed Cards"));
    report.addHeading(QStringLiteral("File: ") + fileName);
    report.addHeading(QStringLiteral("Print Date: ") + datetext::slashed(printDate));
    reports::ReportTable table;
    table.columns = {{QStringLiteral("ID"), Qt::AlignRight},
                     {QStringLiteral("Name")},
                     {QStringLiteral("Health Card No.")},
                     {QStringLiteral("Code")},
                     {QStringLiteral("Message")}};
    for (const AppliedOvernight& card : result.cards) {
        if (card.patientId && !isRejected(card.status)) {
            continue;
        }
        QString name = card.name;
        if (!card.patientId && card.answer.hasDetails()) {
            name = card.answer.lastName + QStringLiteral(", ") + card.answer.firstName;
        }
        table.rows << QStringList{
            card.patientId ? QString::number(*card.patientId)
                           : QStringLiteral("not in the register"),
            name, card.answer.healthNum + QLatin1Char(' ') + card.answer.versionCode,
            card.answer.code, card.message};
    }
    const qsizetype count = table.rows.size();
    report.addTable(std::move(table));
    report.addParagraph(QStringLiteral("%1 cards.").arg(count));
    if (result.skippedLines > 0) {
        report.addParagraph(
            QStringLiteral("%1 lines of the file were not answers.").arg(result.skippedLines));
    }
    return report;
}

}  // namespace brimsett::hcv
