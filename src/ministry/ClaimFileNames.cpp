#include "ministry/ClaimFileNames.h"

#include "foundation/Database.h"
#include "foundation/SettingsStore.h"
#include "ministry/BatchNumbers.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace brimsett::claimfilenames {

namespace {

const QString kGeneral = QStringLiteral("General");
const QString kCounterKey = QStringLiteral("DiskIDCounter");
constexpr int kExtensions = 1000;

int extensionOf(const QString& name) {
    return name.right(3).toInt();
}

}  // namespace

bool nameInBatches(Database& db, const QString& name) {
    return db.scalar(QStringLiteral("Select Count(*) From batches Where Upper(FileName)=?"),
                     {name.toUpper()}, QStringLiteral("reading the claim files made"))
               .toInt() > 0;
}

bool isClaimFileName(const QString& name) {
    static const QRegularExpression pattern(QStringLiteral("^H[A-L][A-Za-z0-9]+\\.[0-9]{3}$"));
    return pattern.match(name).hasMatch();
}

int counterWithExtension(int near, int extension) {
    int counter = near - near % kExtensions + extension;
    if (counter > near + kExtensions / 2) {
        counter -= kExtensions;
    } else if (counter < near - kExtensions / 2) {
        counter += kExtensions;
    }
    return std::max(counter, 0);
}

Taken take(Database& db, SettingsStore& store, const QString& folder, const QDate& today,
           const QString& stem) {
    store.sync();  // another program may have saved a later count since this one read it
    const int setting = store.readNumber(kGeneral, kCounterKey);
    int newest = setting;

    const QString lastBatchFile =
        db.scalar(QStringLiteral("Select FileName From batches Where BatchID="
                                 "(Select Max(BatchID) From batches)"),
                  {}, QStringLiteral("reading the claim files made"))
            .toString();
    if (isClaimFileName(lastBatchFile)) {
        newest = std::max(newest, counterWithExtension(setting, extensionOf(lastBatchFile)));
    }
    QFileInfo newestFile;
    const QFileInfoList files =
        QDir(folder).entryInfoList({QStringLiteral("H*")}, QDir::Files, QDir::Time);
    for (const QFileInfo& info : files) {
        if (isClaimFileName(info.fileName())) {
            newestFile = info;
            break;
        }
    }
    if (newestFile.exists()) {
        newest =
            std::max(newest, counterWithExtension(setting, extensionOf(newestFile.fileName())));
    }

    for (int counter = newest + 1; counter <= newest + kExtensions; ++counter) {
        const QString name = batchnumbers::claimFileName(today, stem, counter);
        if (QFileInfo::exists(folder + name) || nameInBatches(db, name)) {
            continue;
        }
        store.saveNumber(kGeneral, kCounterKey, counter);
        if (!store.sync()) {
            throw DbError(
                QStringLiteral("saving the claim file counter"), {},
                QStringLiteral("the settings file %1 cannot be written").arg(store.path()));
        }
        return {name, counter};
    }
    throw DbError(QStringLiteral("naming the claim file"), {},
                  QStringLiteral("all %1 names of this month for %2 are in use in %3")
                      .arg(kExtensions)
                      .arg(stem, QDir::toNativeSeparators(folder)));
}

void giveBack(SettingsStore& store, int counter) {
    store.sync();
    if (store.readNumber(kGeneral, kCounterKey) == counter) {
        store.saveNumber(kGeneral, kCounterKey, counter - 1);
        store.sync();
    }
}

}  // namespace brimsett::claimfilenames
