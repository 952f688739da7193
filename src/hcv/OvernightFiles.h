#pragma once

#include "hcv/OvernightBatch.h"

#include <QByteArray>
#include <QString>

namespace brimsett {
class Database;
class Prompter;
class SettingsStore;
class SqlLog;
}  // namespace brimsett

// The overnight files' own bookkeeping: each file of the office folder has one
// `[HN batches]` row per batch and the "Batch" creation record of its name.
namespace brimsett::hcv::overnightfiles {

inline const QString kTitle = QStringLiteral("OBEC - Overnight Health Card Validation");
inline const QString kBatchSection = QStringLiteral("Batch");

// Writes the batch's file and records it: its row (replacing one of the same batch and name,
// and the unsubmitted rows of other batches whose file this one replaces, after asking about
// those), the patients' `BatchID`, and the creation record. False when declined or failed
// (told why); then nothing is changed.
bool write(Database& db, SettingsStore& store, Prompter& prompter, const SqlLog& log,
           const QString& officeFolder, const PreparedBatch& batch, const QByteArray& bytes);

}  // namespace brimsett::hcv::overnightfiles
