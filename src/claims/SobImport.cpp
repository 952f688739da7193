#include "claims/SobImport.h"

#include "claims/ServiceCodeRows.h"
#include "claims/SobLine.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"

#include <QFile>

namespace brimsett {

namespace {

const QString kCountTitle = QStringLiteral("Update Fee Schedules");
// A file with many bad lines is listed in part; Result::lineErrors keeps them all.
constexpr int kListedBadLines = 30;
constexpr int kProgressEvery = 250;

// The file's lines without their CR, LF or CR LF. Empty lines and a Ctrl-Z end marker at the
// end of the file are no lines.
QStringList linesOf(const QByteArray& bytes) {
    QString text = QString::fromLatin1(bytes);
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QStringList lines = text.split(QLatin1Char('\n'));
    const auto dropEmptyTail = [&lines] {
        while (!lines.isEmpty() && lines.last().isEmpty()) {
            lines.removeLast();
        }
    };
    dropEmptyTail();
    if (!lines.isEmpty() && lines.last().endsWith(QChar(0x1A))) {
        lines.last().chop(1);
        dropEmptyTail();
    }
    return lines;
}

}  // namespace

SobImport::SobImport(Database& db, Prompter& prompter, const SqlLog& log)
    : m_db(db), m_prompter(prompter), m_log(log) {}

SobImport::Result SobImport::run(const QString& fileName) {
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        m_prompter.error({QStringLiteral("The OHIP Schedule of Benefits file"),
                          QStringLiteral("could not be opened: ") + fileName, file.errorString()});
        return {};
    }
    const QStringList lines = linesOf(file.readAll());
    file.close();
    const std::optional<sob::Layout> layout =
        lines.isEmpty() ? std::nullopt : sob::layoutOf(lines.first().size());
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
            const auto read = sob::readLine(lines.at(i), *layout);
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
