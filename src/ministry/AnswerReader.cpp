#include "ministry/AnswerReader.h"

#include "foundation/BoundedLines.h"
#include "foundation/DbError.h"
#include "foundation/Prompter.h"
#include "ministry/FixedWidth.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace brimsett {

using received::FileKind;

const QList<received::LineError>& ReceivedAnswer::errors() const {
    return std::visit([](const auto& c) -> const QList<received::LineError>& { return c.errors; },
                      content);
}

namespace {

using fixedwidth::take;

// The provider and report date of a first record, where each kind keeps them.
void describeFirstRecord(const QString& line, WaitingFile& file, Database* db) {
    const bool v03 = take(line, 4, 3) == QLatin1String("V03");
    switch (received::kindOf(line)) {
        case FileKind::Remittance:
            file.provider = take(line, v03 ? 12 : 9, 6).trimmed();
            file.date = received::dateOf(v03 ? take(line, 22, 8) : take(line, 19, 6));
            break;
        case FileKind::ErrorReport: {
            const auto placements = errorreport::placementsOf(line);
            const auto billing = errorreport::chooseBillingNumber(
                placements, db ? errorreport::officeDoctors(*db) : errorreport::DoctorTest());
            file.provider = billing ? billing->provider : placements.back().provider;
            // The process date follows the specialty after a three-digit station number.
            const bool layoutPlacement = billing && *billing == placements.front();
            for (const int at : layoutPlacement ? std::array{36, 39} : std::array{39, 36}) {
                file.date = received::dateOf(take(line, at, 8));
                if (file.date.isValid()) {
                    break;
                }
            }
            break;
        }
        case FileKind::BatchEdit:
            file.provider = take(line, v03 ? 57 : 55, 6).trimmed();
            file.date = received::dateOf(take(line, v03 ? 74 : 72, 8));
            break;
        case FileKind::Unknown:
            break;
    }
}

// A large group's monthly remittance is a few megabytes of 79-character records; ten times
// that is still far from what a mistaken choice (a device, a disk image) would feed in.
const boundedlines::Limits kAnswerLimits{32 * 1024 * 1024, 400'000, received::kLongestLineKept,
                                         QStringLiteral("an answer from the ministry")};

QStringList notAnswerFile(const QString& fileName) {
    return {QStringLiteral("This file does not appear"), QStringLiteral("to be a valid OHIP file."),
            QStringLiteral("(File name: %1)").arg(fileName)};
}

}  // namespace

QList<WaitingFile> waitingFiles(const QString& folder, Database* db) {
    QList<WaitingFile> files;
    const QFileInfoList entries =
        QDir(folder).entryInfoList(QDir::Files | QDir::Readable, QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& info : entries) {
        QFile file(info.absoluteFilePath());
        if (!file.open(QIODevice::ReadOnly)) {
            continue;
        }
        // A first record is 79 or 132 characters; more is never needed to describe the file.
        const QStringList first = received::splitLines(file.read(256));
        if (first.isEmpty() || received::kindOf(first.first()) == FileKind::Unknown) {
            continue;
        }
        WaitingFile waiting{info.absoluteFilePath(), info.fileName(), {}, {}};
        describeFirstRecord(first.first(), waiting, db);
        files << waiting;
    }
    return files;
}

std::optional<ReceivedAnswer> readAnswer(Database& db, const SqlLog& log, Prompter& prompter,
                                         const QString& path, const ReadOptions& options,
                                         const received::Progress& progress) {
    const QString fileName = QFileInfo(path).fileName();
    boundedlines::Result file = boundedlines::readFile(path, kAnswerLimits);
    switch (file.status) {
        case boundedlines::Result::Status::Read:
            break;
        case boundedlines::Result::Status::NotOpened:
            prompter.error({QStringLiteral("Could not open file ") + fileName});
            return std::nullopt;
        case boundedlines::Result::Status::ReadFailed:
            // Opened but not read through (a damaged disk, a share gone): nothing half read.
            prompter.error({QStringLiteral("Could not open file ") + fileName, file.reason});
            return std::nullopt;
        case boundedlines::Result::Status::NotRegularFile:
        case boundedlines::Result::Status::TooLarge:
        case boundedlines::Result::Status::TooManyLines:
            prompter.error({file.reason});
            return std::nullopt;
    }
    QStringList lines;
    received::CutLines cut;
    lines.reserve(file.lines.size());
    for (boundedlines::Line& line : file.lines) {
        if (line.isCut()) {
            cut.insert(int(lines.size()), line.length);
        }
        lines << std::move(line.text);
    }
    file.lines.clear();
    const FileKind kind = lines.isEmpty() ? FileKind::Unknown : received::kindOf(lines.first());

    ReceivedAnswer answer;
    answer.path = path;
    answer.fileName = fileName;
    answer.kind = kind;
    try {
        switch (kind) {
            case FileKind::Unknown:
                prompter.error(notAnswerFile(fileName));
                return std::nullopt;
            case FileKind::BatchEdit:
                if (!batchedit::firstRecordValid(lines.first())) {
                    prompter.tell(QStringLiteral("OHIP Batch Edit File"),
                                  {QStringLiteral("This file does not appear to be a valid OHIP "
                                                  "file.")},
                                  Icon::Critical);
                    return std::nullopt;
                }
                answer.content = batchedit::read(lines, progress, cut);
                break;
            case FileKind::ErrorReport: {
                if (!errorreport::firstRecordValid(lines.first())) {
                    prompter.tell(QStringLiteral("OHIP EDT Error Report File"),
                                  {QStringLiteral("This file does not appear to be a valid OHIP "
                                                  "file.")},
                                  Icon::Critical);
                    return std::nullopt;
                }
                errorreport::ErrorReport report = errorreport::read(lines, progress, cut);
                errorreport::lookUp(db, log, report, options.reconcile,
                                    options.remittance.autoSplit);
                answer.reconciled = options.reconcile;
                answer.content = std::move(report);
                break;
            }
            case FileKind::Remittance: {
                remittance::Remittance remittance = remittance::read(lines, progress, cut);
                if (options.reconcile) {
                    answer.counts = remittance::reconcile(
                        db, log, remittance, remittance.reference(fileName), options.remittance);
                    answer.reconciled = true;
                }
                answer.content = std::move(remittance);
                break;
            }
        }
    } catch (const DbError& e) {
        // The file's one transaction has been rolled back: nothing of it was written.
        prompter.error(
            {QStringLiteral("The file %1 was not reconciled; nothing was changed.").arg(fileName),
             e.message()});
        return std::nullopt;
    }
    return answer;
}

}  // namespace brimsett
