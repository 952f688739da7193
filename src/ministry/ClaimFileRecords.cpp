#include "ministry/ClaimFileRecords.h"

#include "claims/PayProgram.h"
#include "foundation/DateText.h"
#include "ministry/FixedWidth.h"

#include <algorithm>
#include <cstdlib>

namespace brimsett::claimfile {

using fixedwidth::blank;
using fixedwidth::fixed;

namespace {

const QLatin1String kRmb("RMB");

bool isReciprocal(const ClaimRecord& claim) {
    return claim.payProg.startsWith(kRmb);
}

// A date field: "YYYYMMDD", or blanks when there is no date.
fixedwidth::Field dateField(const QDate& date) {
    return fixed(datetext::yyyymmdd(date), 8);
}

bool allDigits(const QString& text) {
    if (text.isEmpty()) {
        return false;
    }
    for (const QChar c : text) {
        if (!c.isDigit()) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool goesIntoFile(const ClaimRecord& claim) {
    const QString program = claim.payProg.trimmed().toUpper();
    return !program.startsWith(QLatin1Char('D')) && !program.startsWith(QLatin1Char('T'));
}

QString accountField(const QString& acctNum) {
    const QString trimmed = acctNum.trimmed();
    // Numbers are zero-filled on the left; anything else (accounts typed by other programs)
    // goes as it stands.
    if (allDigits(trimmed) && trimmed.size() <= 8) {
        return trimmed.rightJustified(8, QLatin1Char('0'));
    }
    return fixedwidth::fit(acctNum, 8);
}

QStringList accountForms(const QString& field) {
    const QString account = field.trimmed();
    if (account.isEmpty()) {
        return {};
    }
    if (!allDigits(account)) {
        return {account};
    }
    QString core = account;
    while (core.size() > 1 && core.startsWith(QLatin1Char('0'))) {
        core.remove(0, 1);
    }
    QStringList forms;
    for (qsizetype width = core.size(); width <= std::max<qsizetype>(8, account.size()); ++width) {
        forms << core.rightJustified(width, QLatin1Char('0'));
    }
    return forms;
}

QString feeField(const std::optional<Money>& fee) {
    if (!fee) {
        return QStringLiteral("000000");
    }
    const std::int64_t cents = fee->roundedCents();
    return fixedwidth::zeroFilled(cents / 100, 4) +
           fixedwidth::zeroFilled(std::llabs(cents % 100), 2);
}

QString nameField(const QString& name, int width) {
    QString kept;
    for (const QChar c : name.trimmed().toUpper()) {
        if (c >= QLatin1Char('A') && c <= QLatin1Char('Z')) {
            kept += c;
        }
    }
    return fixedwidth::fit(kept, width);
}

QString payeeOf(const QString& payProg) {
    if (payprog::claimType(payProg) == QLatin1Char('H') && payProg.endsWith(QLatin1Char('S'))) {
        return QStringLiteral("S");
    }
    return QStringLiteral("P");
}

QString batchHeader(const QString& mohOffice, const QDate& today, const QString& groupNum,
                    const QString& providerNum, const QString& specCode) {
    return fixedwidth::record({fixed(QStringLiteral("HEB"), 3), fixed(QStringLiteral("V03"), 3),
                               fixed(mohOffice, 1), dateField(today),
                               fixed(QStringLiteral("0001"), 4), blank(6), fixed(groupNum, 4),
                               fixed(providerNum, 6), fixed(specCode, 2), blank(42)});
}

QString claimHeader(const ClaimRecord& claim) {
    const bool rmb = isReciprocal(claim);
    return fixedwidth::record(
        {fixed(QStringLiteral("HEH"), 3), fixed(rmb ? QString() : claim.healthNum, 10),
         fixed(rmb ? QString() : claim.versionCode, 2), dateField(claim.dob),
         fixed(accountField(claim.acctNum), 8), fixed(claim.payProg.left(3), 3),
         fixed(payeeOf(claim.payProg), 1), fixed(claim.refDoc, 6), fixed(claim.facilityNum, 4),
         dateField(claim.admitDate), fixed(claim.refLab, 4),
         fixed(claim.manualReview ? QStringLiteral("Y") : QString(), 1), fixed(claim.sli, 4)});
}

QString reciprocalHeader(const ClaimRecord& claim) {
    QString sex;
    if (claim.sex == QLatin1String("M")) {
        sex = QStringLiteral("1");
    } else if (claim.sex == QLatin1String("F")) {
        sex = QStringLiteral("2");
    }
    return fixedwidth::record({fixed(QStringLiteral("HER"), 3), fixed(claim.healthNum, 12),
                               fixed(nameField(claim.lName, 9), 9),
                               fixed(nameField(claim.fName, 5), 5), fixed(sex, 1),
                               fixed(claim.province, 2), blank(47)});
}

QString itemRecord(const ItemRecord& item) {
    // A stored count of 0 reads as no count: one service is claimed.
    const int services = item.numServ > 0 ? item.numServ : 1;
    return fixedwidth::record({fixed(QStringLiteral("HET"), 3), fixed(item.serviceCode, 5),
                               blank(2), fixedwidth::asIs(feeField(item.feeSubm)),
                               fixedwidth::asIs(fixedwidth::zeroFilled(services, 2)),
                               dateField(item.serviceDate), fixed(item.diagCode, 4), blank(11)});
}

QString batchTrailer(int claims, int reciprocal, int items) {
    return fixedwidth::record({fixed(QStringLiteral("HEE"), 3),
                               fixed(fixedwidth::zeroFilled(claims, 4), 4),
                               fixed(fixedwidth::zeroFilled(reciprocal, 4), 4),
                               fixed(fixedwidth::zeroFilled(items, 5), 5), blank(63)});
}

}  // namespace brimsett::claimfile
