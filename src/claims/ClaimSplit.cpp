#include "claims/ClaimSplit.h"

#include "claims/ClaimStore.h"
#include "foundation/Clock.h"
#include "foundation/Database.h"
#include "foundation/Prompter.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"

#include <QMap>
#include <QSet>
#include <QSqlQuery>

#include <utility>

namespace brimsett {

namespace {

using Column = std::pair<const char*, qint64>;

// "A", "B" or "C" of an item's code; null for any other code.
QChar suffixOf(const ItemRecord& item) {
    const QString code = item.serviceCode.trimmed().toUpper();
    const QChar last = code.size() == 5 ? code.back() : QChar();
    return last == QLatin1Char('A') || last == QLatin1Char('B') || last == QLatin1Char('C')
               ? last
               : QChar();
}

// How far above its claim the part of a suffix is numbered; 0 for the suffixes that stay.
qint64 offsetFor(QChar suffix) {
    return suffix == QLatin1Char('B')   ? ClaimSplit::kAssistantOffset
           : suffix == QLatin1Char('C') ? ClaimSplit::kAnaesthesiaOffset
                                        : 0;
}

// Runs "Update table Set ... Where a=? And b=?" with bound numbers and keeps the text form
// for the log.
void update(Database& db, const QString& table, std::initializer_list<Column> set,
            std::initializer_list<Column> where, QStringList& logLines) {
    SqlStatementBuilder b;
    b.beginUpdate(table);
    for (const auto& [name, value] : set) {
        b.addField(QLatin1String(name), value, SqlStatementBuilder::Kind::Number);
    }
    QStringList bound;
    QStringList written;
    QVariantList values;
    for (const auto& [name, value] : where) {
        bound << QLatin1String(name) + QStringLiteral("=?");
        written << QLatin1String(name) + QLatin1Char('=') + QString::number(value);
        values << value;
    }
    const SqlStatementBuilder::Bound statement =
        b.boundUpdate(bound.join(QLatin1String(" And ")), values);
    db.exec(statement.sql, statement.values, QStringLiteral("updating table ") + table);
    logLines << b.finishUpdate(written.join(QLatin1String(" And ")));
}

// The claim a part came from: the offset of the part's suffix first, the other one when the
// part was edited since; the claim must carry the part's account number.
std::optional<ClaimRecord> ownerOf(ClaimStore& store, const ClaimRecord& part) {
    qint64 first = ClaimSplit::kAssistantOffset;
    for (const ItemRecord& item : part.items) {
        if (const qint64 offset = offsetFor(suffixOf(item))) {
            first = offset;
            break;
        }
    }
    const qint64 second = first == ClaimSplit::kAssistantOffset ? ClaimSplit::kAnaesthesiaOffset
                                                                : ClaimSplit::kAssistantOffset;
    for (const qint64 offset : {first, second}) {
        std::optional<ClaimRecord> claim = store.load(part.claimId - offset);
        if (claim && claim->acctNum == part.acctNum) {
            return claim;
        }
    }
    return std::nullopt;
}

void writeLog(const SqlLog& log, const QStringList& lines) {
    for (const QString& line : lines) {
        log.write(line);
    }
}

}  // namespace

ClaimSplit::ClaimSplit(Database& db, const SqlLog& log) : m_db(db), m_log(log) {}

QList<qint64> ClaimSplit::split(qint64 claimId) {
    const SystemClock clock;  // reading and writing as given take no time from it
    QList<qint64> parts;
    QStringList logLines;
    {
        Transaction tx(m_db, QStringLiteral("splitting claim %1").arg(claimId));
        ClaimStore store(m_db, clock, m_log);
        const std::optional<ClaimRecord> claim = store.load(claimId);
        if (!claim || !claim->isPending() || claimId < kFirstClaimId ||
            claimId >= kFirstSplitClaimId) {
            return {};
        }
        QMap<QChar, QList<int>> itemsBySuffix;  // 'A' < 'B' < 'C'
        for (const ItemRecord& item : claim->items) {
            if (const QChar suffix = suffixOf(item); !suffix.isNull()) {
                itemsBySuffix[suffix] << item.itemId;
            }
        }
        if (itemsBySuffix.size() < 2) {
            return {};
        }
        // The claim keeps its lowest suffix; each other one moves to its part.
        for (auto it = std::next(itemsBySuffix.cbegin()); it != itemsBySuffix.cend(); ++it) {
            const qint64 partId = claimId + offsetFor(it.key());
            if (store.load(partId)) {
                throw DbError(
                    QStringLiteral("splitting claim %1").arg(claimId), QString(),
                    QStringLiteral("claim %1 already exists; reverse the split first").arg(partId));
            }
            ClaimRecord part = *claim;
            part.claimId = partId;
            part.splitFlag = true;
            part.items.clear();  // they move over with their own ItemIDs
            store.write(part, logLines);
            for (const int itemId : it.value()) {
                update(m_db, QStringLiteral("items"), {{"ClaimID", partId}},
                       {{"ClaimID", claimId}, {"ItemID", itemId}}, logLines);
            }
            parts << partId;
        }
        update(m_db, QStringLiteral("claims"), {{"SplitFlag", 1}}, {{"ClaimID", claimId}},
               logLines);
        tx.commit();
    }
    writeLog(m_log, logLines);
    return parts;
}

std::optional<ClaimSplit::Reversal> ClaimSplit::reverseAll(Prompter& prompter) {
    if (!prompter.confirm(QStringLiteral("Reverse Split"),
                          {QStringLiteral("This will reverse (undo) all split claims within "
                                          "Pending Claims. Are you sure you want to continue?")})) {
        return std::nullopt;
    }
    const SystemClock clock;
    Reversal result;
    QStringList logLines;
    {
        Transaction tx(m_db, QStringLiteral("reversing split claims"));
        ClaimStore store(m_db, clock, m_log);
        QSqlQuery q = m_db.exec(QStringLiteral("Select ClaimID From claims Where BatchID=? And"
                                               " ClaimID >= ? Order By ClaimID"),
                                {kPendingBatch, kFirstSplitClaimId},
                                QStringLiteral("reading the pending split claims"));
        QList<qint64> partIds;
        while (q.next()) {
            partIds << q.value(0).toLongLong();
        }
        QSet<qint64> cleared;
        for (const qint64 partId : std::as_const(partIds)) {
            const std::optional<ClaimRecord> part = store.load(partId);
            const std::optional<ClaimRecord> claim = part ? ownerOf(store, *part) : std::nullopt;
            if (!claim || !claim->isPending()) {
                result.leftAlone << partId;
                continue;
            }
            QSet<int> taken;
            int highest = 0;
            for (const ItemRecord& item : claim->items) {
                taken << item.itemId;
                highest = qMax(highest, item.itemId);
            }
            const bool collides =
                std::any_of(part->items.cbegin(), part->items.cend(),
                            [&](const ItemRecord& i) { return taken.contains(i.itemId); });
            if (!collides) {
                update(m_db, QStringLiteral("items"), {{"ClaimID", claim->claimId}},
                       {{"ClaimID", partId}}, logLines);
            } else {
                // The claim was edited after the split and renumbered its items: the moved
                // ones follow its last.
                for (const ItemRecord& item : part->items) {
                    update(m_db, QStringLiteral("items"),
                           {{"ClaimID", claim->claimId}, {"ItemID", ++highest}},
                           {{"ClaimID", partId}, {"ItemID", item.itemId}}, logLines);
                }
            }
            store.remove(partId, logLines);
            if (!cleared.contains(claim->claimId)) {
                update(m_db, QStringLiteral("claims"), {{"SplitFlag", 0}},
                       {{"ClaimID", claim->claimId}}, logLines);
                cleared << claim->claimId;
            }
            ++result.partsReversed;
        }
        tx.commit();
    }
    writeLog(m_log, logLines);
    return result;
}

}  // namespace brimsett
