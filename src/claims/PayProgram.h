#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

// The payment programs a claim is billed under. `PayProg` holds the stored form; lists use
// the index, grid columns the short form. A stored text other than the first five counts as
// "Third Party" (index 5).
namespace brimsett::payprog {

enum Index { HcpP = 0, HcpS = 1, Rmb = 2, Wcb = 3, Direct = 4, ThirdParty = 5 };

// "HCP - P", "HCP - S", "RMB", "WCB", "Direct", "Third Party", in index order.
const QStringList& storedForms();

int indexOf(const QString& stored);
QString storedForm(int index);  // index outside 0..5 reads as 5
QString shortForm(int index);   // "HCP-P", "HCP-S", "RMB", "WCB", "Direct", "3rd.P."

// The claim type letter the checks and the claim writer go by: "H" (either HCP program),
// "R", "W", "D" or "T"; a null QChar for an empty program (none chosen yet).
QChar claimType(const QString& stored);

// Claims to the ministry (types H, R and W) wait in the pending batch; direct and third-party
// claims never enter a ministry batch.
bool goesToMinistry(const QString& stored);

}  // namespace brimsett::payprog
