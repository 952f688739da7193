#include "claims/SobImport.h"

#include "claims/ServiceCodeRows.h"
#include "claims/SobLine.h"
#include "foundation/BoundedLines.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"

namespace brimsett {

namespace {

const QString kCountTitle = QStringLiteral("Update Fee Schedules");
// A file with many bad lines is listed in part; Result::lineErrors keeps them all.
constexpr int kListedBadLines = 30;
constexpr int kProgressEvery = 250;

// The master file of 2013 is half a megabyte of 75-character lines; a schedule many times
// larger is still far below these.
const boundedlines::Limits kSobLimits{8 * 1024 * 1024, 100'000, 256,
                                      QStringLiteral("a schedule of benefits file")};

}  // namespace

SobImport::SobImport(Database& db, Prompter& prompter, const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_log(log) {}

SobImport::Result SobImport::run(const QString& fileName) {
    boundedlines::Result file = boundedlines::readFile(fileName, kSobLimits);
    switch (file.status) {
        case boundedlines::Result::Status::Read:
            break;
        case boundedlines::Result::Status::NotOpened:
        case boundedlines::Result::Status::ReadFailed:
            m_prompter.error({QStringLiteral("The OHIP Schedule of Benefits file"),
                              QStringLiteral("could not be opened: ") + fileName, file.reason});
            return {};
        case boundedlines::Result::Status::NotRegularFile:
        case boundedlines::Result::Status::TooLarge:
        case boundedlines::Result::Status::TooManyLines:
            m_prompter.error({QStringLiteral("The OHIP Schedule of Benefits file"), file.reason});
            return {};
    }
    // Empty lines at the end are no codes.
    QList<boundedlines::Line>& lines = file.lines;
    while (!lines.isEmpty() && lines.last().length == 0) {
        lines.removeLast();
    }
    const std::optional<sob::Layout> layout =
        lines.isEmpty() ? std::nullopt : sob::layoutOf(lines.first().length);
    if (!layout) {
        m_prompter.error({QStringLiteral("The OHIP Schedule of Benefits file"),
                          QStringLiteral("is not in the expected format.")});
        return {};
    }

    Result result;
    QStringList logged;
    QStringList* const logging = m_log.isOn() ? &logged : nullptr;
    try {
        Transaction transaction(m_db, QStringLiteral("importing the schedule of benefits"));
        ServiceCodeRows rows(m_db);
        const int total = int(lines.size());
        for (int i = 0; i < total; ++i) {
            if (m_progress && i % kProgressEvery == 0 && !m_progress(i, total)) {
                return {};
            }
            const boundedlines::Line& line = lines.at(i);
            // A line cut short in reading is told by its whole length.
            const auto read =
                line.isCut()
                    ? std::variant<SobLine, QString>(sob::lengthProblem(line.length, *layout))
                    : sob::readLine(line.text, *layout);
            if (const QString* reason = std::get_if<QString>(&read)) {
                result.lineErrors << QStringLiteral("Line Number: %1 - %2").arg(i + 1).arg(*reason);
                continue;
            }
            rows.write(std::get<SobLine>(read), logging);
            ++result.processed;
        }
        if (m_progress && !m_progress(total, total)) {
            return {};
        }
        rows.flush();
        transaction.commit();
    } catch (const DbError& e) {
        m_prompter.error({QStringLiteral("The schedule of benefits was not updated; nothing was "
                                         "changed."),
                          e.message()});
        return {};
    }
    result.imported = true;
    for (const QString& statement : std::as_const(logged)) {
        m_log.write(statement);
    }

    if (!result.lineErrors.isEmpty()) {
        QStringList report{QStringLiteral("FileName: ") + fileName};
        report << result.lineErrors.mid(0, kListedBadLines);
        if (result.lineErrors.size() > kListedBadLines) {
            report << QStringLiteral("... and %1 more.")
                          .arg(result.lineErrors.size() - kListedBadLines);
        }
        report << QString()
               << QStringLiteral(
                      "These lines were skipped; the others were "
                      "imported.");
        m_prompter.tell(QStringLiteral("Error"), report, Icon::Warning);
    }
    m_prompter.tell(kCountTitle, {QStringLiteral("Processed %1 codes").arg(result.processed)},
                    Icon::Information);
    return result;
}

}  // namespace brimsett
