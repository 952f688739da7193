#include "foundation/DateText.h"
#include "ministry/AnswerDoctor.h"
#include "ministry/AnswerReports.h"
#include "ministry/PaymentRule.h"
#include "ministry/Remittance.h"

namespace brimsett::answerreports {

namespace {

using reports::Report;
using reports::ReportColumn;
using reports::ReportTable;
using namespace remittance;

// The columns of the item lines that hold the amounts.
constexpr int kSubmittedColumn = 7;
constexpr int kPaidColumn = 8;

QString orNone(const QString& text, const char* none) {
    return text.isEmpty() ? QString::fromLatin1(none) : text;
}

QString amountText(const std::optional<Money>& amount, const MoneyFormat& money) {
    return amount ? amount->currency(money) : QString();
}

// "#,##0" with the office's grouping character.
QString countText(int count, const MoneyFormat& money) {
    QString digits = QString::number(std::abs(count));
    for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3) {
        digits.insert(at, money.group());
    }
    return count < 0 ? QLatin1Char('-') + digits : digits;
}

QString outcomeText(ItemOutcome outcome) {
    switch (outcome) {
        case ItemOutcome::Paid:
            return QStringLiteral("Paid");
        case ItemOutcome::Rejected:
            return QStringLiteral("Rejected");
        case ItemOutcome::Unmatched:
            return QStringLiteral("Not found");
        case ItemOutcome::AlreadyRead:
            return QStringLiteral("Read before");
        case ItemOutcome::NotReconciled:
            break;
    }
    return {};
}

QString patientOf(const Claim& claim) {
    if (claim.lastName.isEmpty() || claim.firstName.isEmpty()) {
        return claim.lastName + claim.firstName;
    }
    return claim.lastName + QStringLiteral(", ") + claim.firstName;
}

QString healthNumberOf(const Claim& claim) {
    return claim.versionCode.isEmpty() ? claim.healthNum
                                       : claim.healthNum + QLatin1Char(' ') + claim.versionCode;
}

// What the grand totals count: items by whether their payment settles them.
struct Tally {
    int items = 0;
    Money billed;
    Money paid;
    void add(const Item& item) {
        ++items;
        billed += item.submitted.value_or(Money());
        paid += item.paid.value_or(Money());
    }
};

class ItemLines {
public:
    ItemLines(Database& db, const Remittance& remittance, const MoneyFormat& money)
        : m_db(db), m_remittance(remittance), m_money(money) {
        m_table.columns = {{QStringLiteral("Claim Number")},
                           {QStringLiteral("Account")},
                           {QStringLiteral("Patient")},
                           {QStringLiteral("Health Number")},
                           {QStringLiteral("Service Date")},
                           {QStringLiteral("Service Code")},
                           {QStringLiteral("No."), Qt::AlignRight},
                           {QStringLiteral("Submitted"), Qt::AlignRight},
                           {QStringLiteral("Paid"), Qt::AlignRight},
                           {QStringLiteral("Expl."), Qt::AlignHCenter},
                           {QStringLiteral("Result")}};
        m_table.pageTotals.label = QStringLiteral("Page total");
        m_table.pageTotals.columns = {kSubmittedColumn, kPaidColumn};
        m_table.pageTotals.format = money;
    }

    // Each provider's claims in file order, providers in the order they first appear.
    void addAll() {
        QStringList providers;
        for (const Claim& claim : m_remittance.claims) {
            if (!providers.contains(claim.provider)) {
                providers << claim.provider;
            }
        }
        for (const QString& provider : providers) {
            Tally total;
            QString specialty;
            for (const Claim& claim : m_remittance.claims) {
                if (claim.provider == provider) {
                    specialty = specialty.isEmpty() ? claim.specialty : specialty;
                    addClaim(claim, total);
                }
            }
            addProviderTotal(provider, specialty, total);
        }
    }

    const ReportTable& table() const { return m_table; }
    const Tally& accepted() const { return m_accepted; }
    const Tally& rejected() const { return m_rejected; }

private:
    void addClaim(const Claim& claim, Tally& total) {
        m_table.groupStarts << static_cast<int>(m_table.rows.size());
        const QStringList header{claim.mohClaim, orNone(claim.acctNum, "(none)"), patientOf(claim),
                                 healthNumberOf(claim)};
        if (claim.items.isEmpty()) {
            addRow(header, {});
        }
        for (int i = 0; i < claim.items.size(); ++i) {
            const Item& item = claim.items.at(i);
            QStringList row = i == 0 ? header : QStringList(header.size(), QString());
            row << datetext::slashed(item.serviceDate) << item.serviceCode
                << QString::number(item.numServ) << amountText(item.submitted, m_money)
                << amountText(item.paid, m_money) << item.explCode << outcomeText(item.outcome);
            addRow(row, {item.submitted.value_or(Money()), item.paid.value_or(Money())});
            total.add(item);
            const bool settled = item.submitted && item.paid &&
                                 paymentrule::accepted(*item.submitted, *item.paid, item.explCode);
            (settled ? m_accepted : m_rejected).add(item);
        }
    }

    void addProviderTotal(const QString& provider, const QString& specialty, const Tally& total) {
        const auto doctor = answerdoctor::byBillingNumberOrProvider(m_db, m_remittance.header.group,
                                                                    provider, specialty);
        m_table.boldRows << static_cast<int>(m_table.rows.size());
        m_table.groupStarts << static_cast<int>(m_table.rows.size());
        addRow({QStringLiteral("Provider total"), QString(), answerdoctor::nameOf(doctor, provider),
                QString(), QString(), QString(), QString(), total.billed.currency(m_money),
                total.paid.currency(m_money)},
               {});
    }

    void addRow(const QStringList& row, const QList<Money>& amounts) {
        m_table.rows << row;
        m_table.pageTotals.amounts << amounts;
    }

    Database& m_db;
    const Remittance& m_remittance;
    const MoneyFormat& m_money;
    ReportTable m_table;
    Tally m_accepted;
    Tally m_rejected;
};

void addGrandTotals(Report& report, const ItemLines& lines, const Header& header,
                    const MoneyFormat& money) {
    ReportTable table;
    table.columns = {{QStringLiteral("Grand Totals")},
                     {QStringLiteral("Number of Items"), Qt::AlignRight},
                     {QStringLiteral("Total Billed"), Qt::AlignRight},
                     {QStringLiteral("Total Paid"), Qt::AlignRight}};
    const auto row = [&money](const QString& label, const Tally& t) {
        return QStringList{label, countText(t.items, money), t.billed.currency(money),
                           t.paid.currency(money)};
    };
    Tally all = lines.accepted();
    all.items += lines.rejected().items;
    all.billed += lines.rejected().billed;
    all.paid += lines.rejected().paid;
    table.rows << row(QStringLiteral("Accepted Claims"), lines.accepted())
               << row(QStringLiteral("Rejected Claims"), lines.rejected());
    table.totals << row(QStringLiteral("Total Claims"), all);
    report.addTable(table);
    report.addTotal(
        QStringLiteral("OHIP Amount Payable"),
        header.totalPayable ? header.totalPayable->currency(money) : QStringLiteral("(n/a)"));
    report.addTotal(QStringLiteral("OHIP Payment Date"),
                    orNone(datetext::slashed(header.paymentDate), "(n/a)"));
}

// The balance forward of every "HR6", listed only where it is not zero.
void addBalanceForward(Report& report, const QList<BalanceForward>& balances,
                       const MoneyFormat& money) {
    Money sums[4];
    for (const BalanceForward& b : balances) {
        sums[0] += b.claimsAdjustment.value_or(Money());
        sums[1] += b.advances.value_or(Money());
        sums[2] += b.reductions.value_or(Money());
        sums[3] += b.otherDeductions.value_or(Money());
    }
    const QString labels[4] = {QStringLiteral("Claims Adjustment"), QStringLiteral("Advances"),
                               QStringLiteral("Reductions"), QStringLiteral("Other Deductions")};
    ReportTable table;
    table.columns = {{QStringLiteral("Amount Brought Forward")},
                     {QStringLiteral("Amount"), Qt::AlignRight}};
    for (int i = 0; i < 4; ++i) {
        if (!sums[i].isZero()) {
            table.rows << QStringList{labels[i], sums[i].currency(money)};
        }
    }
    if (!table.rows.isEmpty()) {
        report.addTable(table);
    }
}

void addTransactions(Report& report, const QList<Transaction>& transactions,
                     const MoneyFormat& money) {
    if (transactions.isEmpty()) {
        return;
    }
    report.addParagraph(QStringLiteral("Accounting Transactions"));
    ReportTable table;
    table.columns = {{QStringLiteral("Type")},
                     {QStringLiteral("Date")},
                     {QStringLiteral("Amount"), Qt::AlignRight},
                     {QStringLiteral("Description")}};
    for (const Transaction& t : transactions) {
        QString type = transactionName(t.code);
        if (!t.indicator.isEmpty()) {
            type += QStringLiteral(" (") + t.indicator + QLatin1Char(')');
        }
        const QString date = t.date.isValid() ? datetext::slashed(t.date) : t.dateText;
        table.rows << QStringList{type, orNone(date, "(n/a)"), amountText(t.amount, money),
                                  orNone(t.message, "(no description)")};
    }
    report.addTable(table);
}

}  // namespace

Report remittanceReport(Database& db, const Remittance& remittance, const QString& fileName,
                        const QDate& printed, const MoneyFormat& money) {
    const Header& header = remittance.header;
    const auto doctor = answerdoctor::byBillingNumberOrProvider(db, header.group, header.provider,
                                                                header.specialty);
    // An unknown provider is named by the number already, with the note that says so.
    const QString payeeDoctor =
        doctor ? doctor->displayName() + QStringLiteral(" (") + header.provider + QLatin1Char(')')
               : answerdoctor::nameOf(doctor, header.provider);
    Report report(QStringLiteral("Remittance Advice for ") + payeeDoctor +
                  QStringLiteral("  File: ") + fileName + QStringLiteral("  Printed: ") +
                  datetext::slashed(printed));
    report.setLandscape(true);
    // The ministry pads names within their fields; the runs of blanks mean nothing on paper.
    report.addHeading(QStringLiteral("Payee: ") + header.payeeName.simplified());
    report.addHeading(QStringLiteral("Billing Agent: ") +
                      orNone(remittance.address.billingAgent.simplified(), "(n/a)"));
    QStringList address;
    for (const QString& line :
         {remittance.address.line1, remittance.address.line2, remittance.address.line3}) {
        if (!line.isEmpty()) {
            address << line.simplified();
        }
    }
    report.addHeading(QStringLiteral("Address: ") + address.join(QStringLiteral(", ")));
    report.addHeading(
        QStringLiteral("Group: ") + header.group + QStringLiteral("  Specialty: ") +
        header.specialty + QStringLiteral("  Payment Date: ") +
        datetext::slashed(header.paymentDate) + QStringLiteral("  Cheque Number: ") +
        (header.directDeposit() ? QStringLiteral("(Direct Bank Deposit)") : header.chequeNumber));

    ItemLines lines(db, remittance, money);
    lines.addAll();
    if (!lines.table().rows.isEmpty()) {
        report.addTable(lines.table());
    }
    addGrandTotals(report, lines, header, money);
    const QString payableProblem = remittance.payableProblem(money);
    if (!payableProblem.isEmpty()) {
        report.addParagraph(payableProblem);
    }
    addBalanceForward(report, remittance.balances, money);
    addTransactions(report, remittance.transactions, money);
    if (!remittance.messages.isEmpty()) {
        report.addParagraph(QStringLiteral("Messages"));
        report.addFixedPitchText(remittance.messages);
    }
    return report;
}

}  // namespace brimsett::answerreports
