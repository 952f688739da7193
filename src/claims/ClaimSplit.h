#pragma once

#include <QList>
#include <QtGlobal>

#include <optional>

namespace brimsett {

class Database;
class Prompter;
class SqlLog;

// Splitting a pending claim so that the services billed as assistant (suffix "B") and as
// anaesthetist (suffix "C") go to the ministry as claims of their own. The part of the "B"
// items is numbered claim + 60000000, that of the "C" items claim + 70000000; the claim keeps
// the items of its lowest suffix ("A" when it has any). Every part is a copy of the claim's
// header with the same account number (so the ministry's answer for either finds both), and
// all of them carry `SplitFlag`. Items keep their ItemID, so moving them back restores the
// claim's rows; when the claim was edited since (which numbers its items 1 upward) and an
// ItemID would collide, the part's items are numbered after the claim's highest instead.
// A part number that is already taken stops the split with a DbError, nothing written.
class ClaimSplit {
public:
    static constexpr qint64 kAssistantOffset = 60000000;
    static constexpr qint64 kAnaesthesiaOffset = 70000000;

    ClaimSplit(Database& db, const SqlLog& log);

    // Splits one pending ordinary claim in one transaction; returns the parts made (none when
    // the claim is not pending, is itself a part, or holds one suffix only).
    QList<qint64> split(qint64 claimId);

    struct Reversal {
        int partsReversed = 0;
        // Parts whose claim is no longer pending (submitted, or gone): left as they are.
        QList<qint64> leftAlone;
    };
    // Asks "This will reverse (undo) all split claims within Pending Claims. Are you sure you
    // want to continue?" (title "Reverse Split"); on Yes moves the items of every pending part
    // back to its claim (offset by the part's suffix, the other offset when the part's items
    // no longer say; the claim must carry the part's account number), deletes the part and
    // clears the claim's `SplitFlag`, all in one transaction. None when the user said No.
    std::optional<Reversal> reverseAll(Prompter& prompter);

private:
    Database& m_db;
    const SqlLog& m_log;
};

}  // namespace brimsett
