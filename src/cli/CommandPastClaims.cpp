#include "claims/PayProgram.h"
#include "cli/CliSession.h"
#include "foundation/DateText.h"
#include "foundation/SqlLog.h"
#include "ministry/PastClaims.h"
#include "ministry/PastClaimsChoices.h"

#include <variant>

namespace brimsett {

namespace {

using namespace pastclaims;

QString money(const std::optional<Money>& amount, const MoneyFormat& format) {
    return amount ? amount->format(format) : QString();
}

// The stored form of a program typed in either form, whatever its case; empty when none.
QString storedProgram(const QString& typed) {
    for (int i = payprog::HcpP; i <= payprog::ThirdParty; ++i) {
        if (typed.compare(payprog::storedForm(i), Qt::CaseInsensitive) == 0 ||
            typed.compare(payprog::shortForm(i), Qt::CaseInsensitive) == 0) {
            return payprog::storedForm(i);
        }
    }
    return {};
}

std::optional<StatusFilter> statusOf(const QString& typed) {
    static const QList<std::pair<QString, StatusFilter>> names{
        {QStringLiteral("pending"), StatusFilter::Pending},
        {QStringLiteral("submitted"), StatusFilter::Submitted},
        {QStringLiteral("rejected"), StatusFilter::Rejected},
        {QStringLiteral("closed"), StatusFilter::RejectedClosed},
        {QStringLiteral("paid"), StatusFilter::Paid}};
    for (const auto& [name, status] : names) {
        if (typed.compare(name, Qt::CaseInsensitive) == 0) {
            return status;
        }
    }
    return std::nullopt;
}

// A grid caption ("Patient Name") or a column ("LName", "C.DoctorID") onto its sort key; the
// keys are the only texts that reach the statement.
QString sortKeyOf(const QString& typed) {
    const QStringList captions = gridCaptions();
    const QStringList keys = sortKeys();
    for (int i = 0; i < keys.size(); ++i) {
        const QString& key = keys.at(i);
        const QString firstColumn =
            key.section(QLatin1Char(','), 0, 0).section(QLatin1Char(' '), 0, 0);
        if (typed.compare(captions.value(i), Qt::CaseInsensitive) == 0 ||
            typed.compare(key, Qt::CaseInsensitive) == 0 ||
            typed.compare(firstColumn, Qt::CaseInsensitive) == 0 ||
            typed.compare(firstColumn.section(QLatin1Char('.'), -1), Qt::CaseInsensitive) == 0) {
            return key;
        }
    }
    return {};
}

// The filters as given, or the exit status of a usage error.
std::variant<Filters, int> filtersOf(const CliArgs& args) {
    Filters f;
    f.doctorId = args.value(QStringLiteral("doctor"));
    f.thirdPartyId = args.value(QStringLiteral("third-party"));
    if (args.isSet(QStringLiteral("program"))) {
        f.payProg = storedProgram(args.value(QStringLiteral("program")).trimmed());
        if (f.payProg.isEmpty()) {
            return args.usageError(QStringLiteral("%1 is not a payment program (%2)")
                                       .arg(args.value(QStringLiteral("program")),
                                            payprog::storedForms().join(QStringLiteral(", "))));
        }
    } else if (!f.thirdPartyId.isEmpty()) {
        f.payProg = payprog::storedForm(payprog::ThirdParty);  // a payer is a third party's
    }
    f.dateBasis =
        args.isSet(QStringLiteral("by-billed")) ? DateBasis::BilledDate : DateBasis::ServiceDate;
    f.from = args.value(QStringLiteral("from"));
    f.to = args.value(QStringLiteral("to"));
    f.diagCode = args.value(QStringLiteral("diag"));
    f.servicePrefix = args.value(QStringLiteral("service"));
    f.invoiceNum = args.value(QStringLiteral("invoice"));
    if (args.isSet(QStringLiteral("status"))) {
        const std::optional<StatusFilter> status = statusOf(args.value(QStringLiteral("status")));
        if (!status) {
            return args.usageError(
                QStringLiteral("%1 is not pending, submitted, rejected, closed or paid")
                    .arg(args.value(QStringLiteral("status"))));
        }
        f.status = *status;
    }
    f.batchId = args.value(QStringLiteral("batch"));
    f.ra = args.value(QStringLiteral("ra"));
    f.facility = args.value(QStringLiteral("facility"));
    return f;
}

int printGrid(CliSession& session, const Found& found, const MoneyFormat& format) {
    QTextStream& out = session.out();
    out << gridCaptions().join(QLatin1Char('\t')) << "\n";
    for (const PastItem& i : found.items) {
        out << i.doctorId << "\t" << i.acctNum << "\t" << i.patientId << "\t" << i.patientName
            << "\t" << i.payProg << "\t" << i.serviceCode << "\t" << i.diagCode << "\t"
            << datetext::slashed(i.serviceDate) << "\t" << money(i.feeSubm, format) << "\t"
            << money(i.feePaid, format) << "\n";
    }
    // The totals stand under their columns.
    out << "Total " << found.items.size() << " items" << QString(8, QLatin1Char('\t'))
        << found.fee.format(format) << "\t" << found.paid.format(format) << "\n";
    return 0;
}

int printPatients(CliSession& session, const Filters& filters, const MoneyFormat& format) {
    const std::optional<QList<PatientLine>> lines =
        patientList(session.db(), session.prompter(), filters);
    if (!lines) {
        return 1;
    }
    QTextStream& out = session.out();
    out << "Pat.ID\tPatient Name\tLast Serv.\tDate\tPeriod Fees\tPaid\n";
    for (const PatientLine& l : *lines) {
        out << l.patientId << "\t" << l.name << "\t" << l.lastService << "\t"
            << datetext::slashed(l.lastDate) << "\t" << l.fees.format(format) << "\t"
            << l.paid.format(format) << "\n";
    }
    out << patientListTotals(*lines, format).join(QLatin1Char('\n')) << "\n";
    return 0;
}

int printRejected(CliSession& session, const Filters& filters, const MoneyFormat& format) {
    const std::optional<QList<RejectedLine>> lines =
        rejectedItems(session.db(), session.prompter(), filters);
    if (!lines) {
        return 1;
    }
    QTextStream& out = session.out();
    out << "Error Code\tItems\tFee\tErrors\n";
    for (const RejectedLine& l : *lines) {
        out << l.errorCode << "\t" << l.items << "\t" << l.fee.format(format) << "\t"
            << l.description << "\n";
    }
    return 0;
}

int pastClaims(CliSession& session, const CliArgs& args) {
    const auto given = filtersOf(args);
    if (const int* status = std::get_if<int>(&given)) {
        return *status;
    }
    Filters filters = std::get<Filters>(given);
    QString sort = defaultSort();
    if (args.isSet(QStringLiteral("sort"))) {
        sort = sortKeyOf(args.value(QStringLiteral("sort")).trimmed());
        if (sort.isEmpty()) {
            return args.usageError(QStringLiteral("%1 is not a column (%2)")
                                       .arg(args.value(QStringLiteral("sort")),
                                            gridCaptions().join(QStringLiteral(", "))));
        }
    }
    const int listings = int(args.isSet(QStringLiteral("patients"))) +
                         int(args.isSet(QStringLiteral("rejected"))) +
                         int(args.isSet(QStringLiteral("export")));
    if (listings > 1) {
        return args.usageError(QStringLiteral("--patients, --rejected and --export go alone"));
    }
    Startup::Result* opened = session.open();
    if (!opened) {
        return fail(QStringLiteral("the database is not available"));
    }
    filters.includeNoDoctor = ScreenOptions::read(session.store()).withoutDoctor;
    if (args.isSet(QStringLiteral("patients"))) {
        return printPatients(session, filters, opened->money);
    }
    if (args.isSet(QStringLiteral("rejected"))) {
        return printRejected(session, filters, opened->money);
    }
    const std::optional<Found> found = findItems(session.db(), session.prompter(), filters, sort);
    if (!found) {
        return 1;
    }
    if (!args.isSet(QStringLiteral("export"))) {
        return printGrid(session, *found, opened->money);
    }
    const QString problem = exportItems(found->items, args.value(QStringLiteral("export")));
    if (!problem.isEmpty()) {
        QTextStream(stderr) << "Error: " << problem << "\n";
        return 1;
    }
    session.out() << "Successfully saved to text file.\n";
    return 0;
}

int markPaid(CliSession& session, const CliArgs& args) {
    if (!session.open()) {
        return fail(QStringLiteral("the database is not available"));
    }
    const SqlLog log(session.paths(), session.settings().sqlLogOn());
    const std::optional<int> marked =
        markInvoicePaid(session.db(), session.prompter(), log, args.argument(0));
    if (!marked) {
        return 1;
    }
    session.out() << *marked << (*marked == 1 ? " item" : " items") << " marked paid.\n";
    return 0;
}

CliOption option(const char* name, const char* value, const char* help) {
    return {QString::fromLatin1(name), QString::fromLatin1(value), QString::fromLatin1(help)};
}

[[maybe_unused]] const bool registered =
    cli::add({
        .name = QStringLiteral("past-claims"),
        .summary = QStringLiteral("find claim items of any state, their patients or rejections"),
        .options = {option("doctor", "ID", "the doctor's claims"),
                    option("program", "PROG",
                           "the payment program: HCP - P, HCP-S, RMB, WCB, Direct, Third Party, "
                           "3rd.P. ..."),
                    option("third-party", "ID", "the third party payer (a Third Party program)"),
                    option("from", "YYYY/MM/DD", "the first day"),
                    option("to", "YYYY/MM/DD", "the last day"),
                    option("by-billed", "", "the days are those billed, not of the service"),
                    option("diag", "CODE", "the diagnostic code"),
                    option("service", "PREFIX", "service codes beginning with PREFIX"),
                    option("invoice", "N", "the claims of invoice N"),
                    option("status", "pending|submitted|rejected|closed|paid", "the items' state"),
                    option("batch", "ID", "claims sent in batch ID, now or before"),
                    option("ra", "TEXT", "claims answered by a remittance naming TEXT"),
                    option("facility", "NAME", "items of the facility"),
                    option("sort", "COLUMN", "sort by a column: its heading or its name"),
                    option("export", "FILE", "write the items to FILE, fields separated by \";\""),
                    option("patients", "", "one line per patient instead of per item"),
                    option("rejected", "", "the rejected items by error code, with its text")},
        .details = {QStringLiteral("Every filter is optional; given together, an item must pass "
                                   "them all. The items print tab-separated under a heading "
                                   "line, their totals last. \"*\" and \"?\" in a text are the "
                                   "office's wildcards."),
                    QStringLiteral("The doctor filter admits claims without a doctor when the "
                                   "office's option OptPCNoDoc is on.")},
        .run = pastClaims,
    }) &&
    cli::add({
        .name = QStringLiteral("mark-invoice-paid"),
        .summary = QStringLiteral("mark every item of an invoice's claims paid in full"),
        .arguments = {{QStringLiteral("N"), QStringLiteral("the invoice number")}},
        .details = {QStringLiteral("Each item gets status Paid and what was billed as paid, "
                                   "whatever was paid before; prints how many items.")},
        .run = markPaid,
    });

}  // namespace

}  // namespace brimsett
