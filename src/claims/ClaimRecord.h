#pragma once

#include "foundation/Money.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

class QSqlRecord;

namespace brimsett {

// The batch markers a claim's `BatchID` holds, each exactly twelve characters.
inline const QString kPendingBatch = QStringLiteral("000000000000");
inline const QString kDirectBatch = QStringLiteral(" Direct     ");
inline const QString kThirdPartyBatch = QStringLiteral(" thirdparty ");
// Held only while a batch is being prepared; no claim keeps it.
inline const QString kSelectingBatch = QStringLiteral("111111111111");

// Ordinary claims are numbered from 10000000 up to 69999999; the parts split off a claim
// from 70000000 up.
inline constexpr qint64 kFirstClaimId = 10000000;
inline constexpr qint64 kFirstSplitClaimId = 70000000;

// `Status` of an item.
enum class ItemStatus { Unanswered = 0, Rejected = 1, Paid = 2, RejectedClosed = 3 };

// The word claim lists show for an item: "Pending" while the claim's batch is the pending
// one, then "Out./Submitted", "Rejected", "Paid" or "Rejected Closed" by the item's status.
// A status outside 0..3 of a submitted claim shows empty.
QString itemStatusName(const QString& batchId, int status);

// The `BatchID` a newly written claim gets by its program: " thirdparty " for a program
// beginning with "T", " Direct     " for one beginning with "D", the pending batch otherwise.
QString batchIdForProgram(const QString& payProg);

// One `items` row.
struct ItemRecord {
    qint64 claimId = 0;
    int itemId = 0;
    QString serviceCode;
    QString diagCode;
    int numServ = 0;
    std::optional<Money> feeSubm;
    QDate serviceDate;
    std::optional<Money> feePaid;
    int status = 0;
    QString errors;
    QString orderId;
    QString orderNum;
    QString orderStatus;
    QString placerId;
    QString description1;
    QString description2;
    QString facility;

    // Columns found by name without regard to case; NULL reads as empty, 0 or no value.
    static ItemRecord fromRecord(const QSqlRecord& record);
    bool operator==(const ItemRecord&) const = default;
};

// One `claims` row with its items (in ItemID order).
struct ClaimRecord {
    qint64 claimId = 0;
    QString batchId;
    QString acctNum;
    QString doctorId;
    QString payProg;
    std::optional<qint64> thirdPartyId;
    qint64 patientId = 0;
    QString healthNum;
    QString versionCode;
    QString fName;
    QString lName;
    QDate dob;
    QString sex;
    QString province;
    QString refDoc;
    QString facilityNum;
    QDate admitDate;
    QString refLab;
    bool manualReview = false;
    QString regNum;
    QDateTime dateCreated;
    QString sli;
    bool splitFlag = false;
    bool acFlag = false;
    QString invoiceNum;
    QString mohClaim;
    QString allBatches;
    QString ra;

    QList<ItemRecord> items;

    static ClaimRecord fromRecord(const QSqlRecord& record);  // items left empty
    bool isPending() const { return batchId == kPendingBatch; }
    bool operator==(const ClaimRecord&) const = default;
};

}  // namespace brimsett
