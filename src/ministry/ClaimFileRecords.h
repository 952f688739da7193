#pragma once

#include "claims/ClaimRecord.h"

#include <QDate>
#include <QString>

// The records of the ministry's claim file, each built as a table of fields. The record
// writer pads them to 79 characters; a record may come out longer (a fee of 10,000.00 or
// more overflows its field, as the ministry's format has it), and is then written whole.
namespace brimsett::claimfile {

inline constexpr int kRecordLength = 79;

// Claims billed to the patient ("Direct") or a payer ("Third Party") have no record in the
// file even when a batch takes them along.
bool goesIntoFile(const ClaimRecord& claim);

// "HEB": the batch header. Its sequence is always "0001", whatever number the batch gets in
// the office's own list.
QString batchHeader(const QString& mohOffice, const QDate& today, const QString& groupNum,
                    const QString& providerNum, const QString& specCode);

// "HEH": one per claim with items. Reciprocal ("RMB") claims leave the health number and
// version code blank here and carry them in the "HER" record.
QString claimHeader(const ClaimRecord& claim);

// "HER": follows the claim header of a reciprocal claim.
QString reciprocalHeader(const ClaimRecord& claim);

// "HET": one item per record; the room for a second item stays blank.
QString itemRecord(const ItemRecord& item);

// "HEE": the batch trailer with the counts of claim headers, reciprocal headers and items.
QString batchTrailer(int claims, int reciprocal, int items);

// The field forms used above.
QString accountField(const QString& acctNum);  // 8 characters
// The other way: every `AcctNum` a claim may be stored under for the ministry to answer with
// this field. Numbers went out zero-filled, so "00001234" may be stored as "1234" or with
// any zeros up to eight digits; any other text went out as it stands. None for a blank field.
QStringList accountForms(const QString& field);
QString feeField(const std::optional<Money>& fee);  // dollars "0000" + cents "00"
QString nameField(const QString& name, int width);  // "A".."Z" only, in capitals
QString payeeOf(const QString& payProg);            // "P" or "S"

}  // namespace brimsett::claimfile
