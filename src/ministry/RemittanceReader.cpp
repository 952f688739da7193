#include "ministry/Remittance.h"

#include "claims/ClaimFieldForms.h"
#include "foundation/DateText.h"
#include "ministry/FixedWidth.h"
#include "patients/HealthNumbers.h"

#include <QHash>

#include <algorithm>

namespace brimsett::remittance {

namespace {

using fixedwidth::take;
using received::LineError;

constexpr int kRecordLength = 79;

const QString kNumeric = QStringLiteral("Numeric");
const QString kSignExpected = QStringLiteral("(Space) or - (negative sign)");

// The records in the order the ministry writes them; claim headers and their items share a
// place.
int rankOf(QChar type) {
    const int n = type.digitValue();
    return n == 5 ? 4 : n;
}

// Where the header's fields stand: the older layout has them three positions further left
// from the provider number on, and a six-digit payment date. It has no room for a group
// number before the provider number (position 0: not read); the doctor is then found by
// provider number and specialty. Signs follow their amounts.
struct HeaderLayout {
    int group, provider, specialty, office, sequence, date, dateLength, payee, total, cheque;
};
constexpr HeaderLayout kV03{8, 12, 18, 20, 21, 22, 8, 30, 60, 70};
constexpr HeaderLayout kOlder{0, 9, 15, 17, 18, 19, 6, 25, 55, 65};

// An item's fields after its service date, which is two characters shorter in the older
// layout.
struct ItemLayout {
    int dateLength, numServ, code, submitted, paid, expl;
};
constexpr ItemLayout kItemV03{8, 24, 26, 32, 38, 45};
constexpr ItemLayout kItemOlder{6, 22, 24, 30, 36, 43};

// Leading blanks lay out the ministry's tables in its messages: only the right is trimmed.
QString messageOf(QString text) {
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1).isSpace()) {
        --end;
    }
    text.truncate(end);
    return text;
}

class Reader {
public:
    Remittance read(const QStringList& lines, const received::Progress& progress,
                    const received::CutLines& cut);

private:
    void fault(const QString& error, const QString& value, const QString& expected) {
        m_r.errors << LineError{m_line, error, value, expected};
    }
    // A signed amount of `length` digits with its sign right after it; none, and a fault
    // listed, when either does not read.
    std::optional<Money> signedAmount(int pos, int length, const QString& name);
    bool recordKnown();
    void checkOrder(QChar type);

    void header();
    void addressLine();
    void claimHeader();
    void item();
    void balance();
    void transaction();

    Remittance m_r;
    QString m_text;
    int m_line = 0;
    bool m_lengthOk = true;
    bool m_inOrder = true;
    bool m_missingHeaderTold = false;
    int m_highestRank = 0;
    int m_claim = -1;  // index of the last claim header read
    bool m_claimSound = false;
};

std::optional<Money> Reader::signedAmount(int pos, int length, const QString& name) {
    const QString digits = take(m_text, pos, length);
    const QString signText = take(m_text, pos + length, 1);
    const std::optional<Money> amount = received::amountOf(digits);
    const std::optional<int> sign = received::signOf(signText);
    if (!amount) {
        fault(QStringLiteral("Invalid ") + name, digits, kNumeric);
    }
    if (!sign) {
        fault(QStringLiteral("Invalid ") + name + QStringLiteral(" Sign"), signText, kSignExpected);
    }
    if (!amount || !sign) {
        return std::nullopt;
    }
    return *sign < 0 ? -*amount : *amount;
}

bool Reader::recordKnown() {
    const QString id = m_text.left(2);
    const QString type = take(m_text, 3, 1);
    bool known = true;
    if (id != QLatin1String("HR")) {
        fault(QStringLiteral("Invalid Transaction Identifier"), id, QStringLiteral("HR"));
        known = false;
    }
    if (type.isEmpty() || type.at(0) < QLatin1Char('1') || type.at(0) > QLatin1Char('8')) {
        fault(QStringLiteral("Invalid Record Type"), type, QStringLiteral("1-8"));
        known = false;
    }
    return known;
}

void Reader::checkOrder(QChar type) {
    const QString record = QStringLiteral("HR") + type;
    m_inOrder = true;
    if (m_r.header.line == 0 && type != QLatin1Char('1')) {
        if (!m_missingHeaderTold) {
            fault(QStringLiteral("Missing file header"), record, QStringLiteral("HR1"));
            m_missingHeaderTold = true;
        }
        m_inOrder = false;
    }
    // A header out of place is told as missing or as a second one.
    const int rank = rankOf(type);
    if (rank < m_highestRank && type != QLatin1Char('1')) {
        fault(QStringLiteral("Record out of order"), record,
              QStringLiteral("HR%1 or later").arg(m_highestRank));
        m_inOrder = false;
    }
    m_highestRank = std::max(m_highestRank, rank);
}

void Reader::header() {
    if (m_r.header.line != 0) {
        fault(QStringLiteral("Unexpected file header"), QStringLiteral("HR1"),
              QStringLiteral("HR2 to HR8"));
        return;
    }
    Header& h = m_r.header;
    h.line = m_line;
    h.v03 = take(m_text, 4, 3) == QLatin1String("V03");
    const HeaderLayout& at = h.v03 ? kV03 : kOlder;
    h.group = at.group > 0 ? take(m_text, at.group, 4).trimmed() : QString();
    h.provider = take(m_text, at.provider, 6).trimmed();
    h.specialty = take(m_text, at.specialty, 2).trimmed();
    h.officeCode = take(m_text, at.office, 1).trimmed();
    h.dataSequence = take(m_text, at.sequence, 1).trimmed();
    h.payeeName = take(m_text, at.payee, 30).trimmed();
    h.chequeNumber = take(m_text, at.cheque, 8).trimmed();
    if (!claimform::isProviderNumber(h.provider)) {
        fault(QStringLiteral("Invalid Health Care Provider Number"), take(m_text, at.provider, 6),
              QStringLiteral("6 digits"));
    }
    const QString date = take(m_text, at.date, at.dateLength);
    h.paymentDate = date.size() == at.dateLength ? received::dateOf(date) : QDate();
    if (!h.paymentDate.isValid()) {
        fault(QStringLiteral("Invalid Date"), date,
              h.v03 ? QStringLiteral("YYYYMMDD") : QStringLiteral("YYMMDD"));
    }
    h.totalPayable = signedAmount(at.total, 9, QStringLiteral("Total Amount Payable"));
}

void Reader::addressLine() {
    // HR2: agent 4-33, line 1 34-58; HR3: lines 2 and 3 of 25 each. The rest is blank.
    const bool first = m_text.at(2) == QLatin1Char('2');
    Address& a = m_r.address;
    int blankFrom = 0;
    if (first) {
        a.billingAgent = take(m_text, 4, 30).trimmed();
        a.line1 = take(m_text, 34, 25).trimmed();
        blankFrom = 59;
    } else {
        a.line2 = take(m_text, 4, 25).trimmed();
        a.line3 = take(m_text, 29, 25).trimmed();
        blankFrom = 54;
    }
    const QString rest = take(m_text, blankFrom, kRecordLength - blankFrom + 1);
    if (!rest.trimmed().isEmpty()) {
        fault(QStringLiteral("Spaces expected"), rest, QStringLiteral("Spaces"));
    }
}

void Reader::claimHeader() {
    Claim c;
    c.line = m_line;
    c.mohClaim = take(m_text, 4, 11).trimmed();
    c.transactionType = take(m_text, 15, 1);
    c.provider = take(m_text, 16, 6).trimmed();
    c.specialty = take(m_text, 22, 2).trimmed();
    c.acctNum = take(m_text, 24, 8).trimmed();
    c.lastName = take(m_text, 32, 14).trimmed();
    c.firstName = take(m_text, 46, 5).trimmed();
    c.province = take(m_text, 51, 2).trimmed();
    c.healthNum = take(m_text, 53, 12).trimmed();
    c.versionCode = take(m_text, 65, 2).trimmed();
    c.payProg = take(m_text, 67, 3).trimmed();
    if (c.transactionType != QLatin1String("1") && c.transactionType != QLatin1String("2")) {
        fault(QStringLiteral("Invalid Transaction Type"), c.transactionType,
              QStringLiteral("1 or 2"));
    }
    c.transactionType = c.transactionType.trimmed();
    m_r.claims << c;
    m_claim = int(m_r.claims.size()) - 1;
    // A header of the wrong length may have its account number shifted: its items could
    // pay another patient's claim.
    m_claimSound = m_lengthOk && m_inOrder;
}

void Reader::item() {
    const bool v03 = m_r.header.line == 0 || m_r.header.v03;
    const ItemLayout& at = v03 ? kItemV03 : kItemOlder;
    Item i;
    i.line = m_line;
    i.mohClaim = take(m_text, 4, 11).trimmed();
    i.transactionType = take(m_text, 15, 1).trimmed();
    const QString date = take(m_text, 16, at.dateLength);
    i.serviceDate = date.size() == at.dateLength ? received::dateOf(date) : QDate();
    i.numServ = take(m_text, at.numServ, 2).trimmed().toInt();
    i.serviceCode = take(m_text, at.code, 5).trimmed();
    const QString submitted = take(m_text, at.submitted, 6);
    i.submitted = received::amountOf(submitted);
    i.explCode = take(m_text, at.expl, 2).trimmed();

    const bool orphan = m_claim < 0 || m_r.claims.at(m_claim).mohClaim != i.mohClaim;
    if (orphan) {
        fault(QStringLiteral("Invalid (orphaned) Claim Item Record"), i.mohClaim,
              m_claim < 0 ? QStringLiteral("Claim header (HR4) first")
                          : m_r.claims.at(m_claim).mohClaim);
    }
    if (!i.serviceDate.isValid()) {
        fault(QStringLiteral("Invalid Service Date"), date,
              v03 ? QStringLiteral("YYYYMMDD") : QStringLiteral("YYMMDD"));
    }
    const bool codeOk = claimform::isScheduleItemCode(i.serviceCode) &&
                        hn::allLettersOrDigits(QStringView(i.serviceCode).left(4));
    if (!codeOk) {
        fault(QStringLiteral("Invalid Service Code"), take(m_text, at.code, 5),
              QStringLiteral("Fee code and suffix A, B or C"));
    }
    if (!i.submitted) {
        fault(QStringLiteral("Invalid Amount Submitted"), submitted, kNumeric);
    }
    i.paid = signedAmount(at.paid, 6, QStringLiteral("Amount Paid"));
    i.usable = !orphan && m_lengthOk && m_inOrder && m_claimSound && i.serviceDate.isValid() &&
               codeOk && i.submitted && i.paid;

    if (!orphan) {
        m_r.claims[m_claim].items << i;
        return;
    }
    // An orphan is listed under a claim of its own number, never under another patient's.
    if (m_r.claims.isEmpty() || m_r.claims.last().line != 0 ||
        m_r.claims.last().mohClaim != i.mohClaim) {
        Claim holder;
        holder.mohClaim = i.mohClaim;
        holder.transactionType = i.transactionType;
        m_r.claims << holder;
    }
    m_r.claims.last().items << i;
}

void Reader::balance() {
    BalanceForward b;
    b.line = m_line;
    b.claimsAdjustment = signedAmount(4, 9, QStringLiteral("Claims Adjustment"));
    b.advances = signedAmount(14, 9, QStringLiteral("Advances"));
    b.reductions = signedAmount(24, 9, QStringLiteral("Reductions"));
    b.otherDeductions = signedAmount(34, 9, QStringLiteral("Other Deductions"));
    m_r.balances << b;
}

void Reader::transaction() {
    Transaction t;
    t.line = m_line;
    t.code = take(m_text, 4, 2).trimmed();
    t.indicator = take(m_text, 6, 1).trimmed();
    t.dateText = take(m_text, 7, 8).trimmed();
    if (!t.dateText.isEmpty()) {
        t.date = received::dateOf(t.dateText);
        if (!t.date.isValid()) {
            fault(QStringLiteral("Invalid Transaction Date"), take(m_text, 7, 8),
                  QStringLiteral("YYYYMMDD"));
        }
    }
    t.amount = signedAmount(15, 8, QStringLiteral("Transaction Amount"));
    t.message = take(m_text, 24, 50).trimmed();
    m_r.transactions << t;
}

Remittance Reader::read(const QStringList& lines, const received::Progress& progress,
                        const received::CutLines& cut) {
    const int total = int(lines.size());
    m_r.lineCount = total;
    for (int n = 0; n < total; ++n) {
        m_text = lines.at(n);
        m_line = n + 1;
        const bool cutShort = received::listedAsCut(cut, n, kRecordLength, m_r.errors);
        if (cutShort) {
            // Perhaps a claim header: the items after it must not join the claim before it.
            m_claim = -1;
        }
        m_lengthOk = !cutShort && received::checkLength(m_text, m_line, kRecordLength, m_r.errors);
        if (!cutShort && recordKnown()) {
            const QChar type = m_text.at(2);
            checkOrder(type);
            switch (type.toLatin1()) {
                case '1':
                    header();
                    break;
                case '2':
                case '3':
                    addressLine();
                    break;
                case '4':
                    claimHeader();
                    break;
                case '5':
                    item();
                    break;
                case '6':
                    balance();
                    break;
                case '7':
                    transaction();
                    break;
                default:
                    m_r.messages << messageOf(take(m_text, 4, 70));
                    break;
            }
        }
        if (progress && m_line % received::kProgressEvery == 0) {
            progress(m_line, total);
        }
    }
    if (progress && (total == 0 || total % received::kProgressEvery != 0)) {
        progress(total, total);
    }
    const std::optional<Money>& payable = m_r.header.totalPayable;
    if (m_r.header.line != 0 && payable && *payable != m_r.amountRead()) {
        m_r.errors << LineError{
            m_r.header.line, QStringLiteral("Total Amount Payable differs from the records read"),
            m_r.amountRead().currency(), payable->currency()};
    }
    return std::move(m_r);
}

}  // namespace

QString transactionName(const QString& code) {
    static const QHash<QString, QString> names{
        {QStringLiteral("10"), QStringLiteral("Advance")},
        {QStringLiteral("20"), QStringLiteral("Reduction")},
        {QStringLiteral("30"), QStringLiteral("Unused")},
        {QStringLiteral("40"), QStringLiteral("Advance Repayment")},
        {QStringLiteral("50"), QStringLiteral("Accounting Adjustment")},
        {QStringLiteral("70"), QStringLiteral("Attachments")},
    };
    return names.value(code, QStringLiteral("Unknown (") + code + QLatin1Char(')'));
}

Money Remittance::amountRead() const {
    Money sum;
    for (const Claim& claim : claims) {
        for (const Item& item : claim.items) {
            sum += item.paid.value_or(Money());
        }
    }
    for (const Transaction& t : transactions) {
        sum += t.amount.value_or(Money());
    }
    for (const BalanceForward& b : balances) {
        for (const auto& amount :
             {b.claimsAdjustment, b.advances, b.reductions, b.otherDeductions}) {
            sum += amount.value_or(Money());
        }
    }
    return sum;
}

QString Remittance::payableProblem(const MoneyFormat& money) const {
    if (header.line == 0 || !header.totalPayable) {
        return QStringLiteral(
            "This file has no OHIP Amount Payable that reads: whether it is complete cannot be "
            "told.");
    }
    const Money read = amountRead();
    if (*header.totalPayable == read) {
        return {};
    }
    return QStringLiteral(
               "The OHIP Amount Payable %1 differs from the %2 that the payments, transactions "
               "and balance forward read add up to: the file is incomplete or damaged.")
        .arg(header.totalPayable->currency(money), read.currency(money));
}

QString Remittance::reference(const QString& fileName) const {
    if (!header.paymentDate.isValid()) {
        return fileName;
    }
    return fileName + QLatin1Char(' ') + datetext::yyyymmdd(header.paymentDate);
}

Remittance read(const QStringList& lines, const received::Progress& progress,
                const received::CutLines& cut) {
    return Reader().read(lines, progress, cut);
}

}  // namespace brimsett::remittance
