#pragma once

#include "ministry/BatchEdit.h"
#include "ministry/ErrorReport.h"
#include "ministry/ReceivedFile.h"
#include "ministry/Remittance.h"

#include <QDate>
#include <QList>
#include <QString>

#include <optional>
#include <variant>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// One file the ministry sent, read: its kind, its contents and every fault found in it.
struct ReceivedAnswer {
    QString path;
    QString fileName;
    received::FileKind kind = received::FileKind::Unknown;
    std::variant<remittance::Remittance, errorreport::ErrorReport, batchedit::Report> content;
    bool reconciled = false;
    remittance::ReconcileCounts counts;  // a remittance's, when reconciled

    const QList<received::LineError>& errors() const;
};

// A file waiting in a folder to be read: the list shows "File Name", "Provider", "Date",
// the provider and date read from its first record.
struct WaitingFile {
    QString path;
    QString fileName;
    QString provider;
    QDate date;
};
// The files of the folder whose first record is one of the ministry's answers, by name.
// With the database, an error report's provider is read where it finds a doctor of the office.
QList<WaitingFile> waitingFiles(const QString& folder, Database* db = nullptr);

struct ReadOptions {
    bool reconcile = true;
    remittance::ReconcileOptions remittance;
};

// Reads a file of any of the three kinds, and with `reconcile` writes what it answers into
// the office's claims (one transaction per file). A file that cannot be opened or is not one
// of the ministry's answers is told through the prompter and gives none; faults of single
// lines never stop the reading. A database failure is told and gives none, with nothing
// written.
std::optional<ReceivedAnswer> readAnswer(Database& db, const SqlLog& log, Prompter& prompter,
                                         const QString& path, const ReadOptions& options,
                                         const received::Progress& progress = {});

}  // namespace brimsett
