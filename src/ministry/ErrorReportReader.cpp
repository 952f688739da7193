#include "claims/ClaimFieldForms.h"
#include "ministry/ErrorReport.h"
#include "ministry/FixedWidth.h"

#include <algorithm>

namespace brimsett::errorreport {

namespace {

using fixedwidth::take;
using received::LineError;

constexpr int kRecordLength = 79;

// Where an "HX1" holds the group (then the provider number and specialty right after it): by
// the V03 record layout, and as the ministry's own files have it (operator number 18-23
// before, station and process date after). Both are read in every layout.
constexpr std::array<int, 2> kGroupPositions = {21, 24};

// Reading one file: the faults found so far and where the claims go.
class Reader {
public:
    explicit Reader(ErrorReport& report) : m_report(report) {}

    void readLine(const QString& line, int number);

private:
    void fault(int line, const QString& error, const QString& value, const QString& expected) {
        m_report.errors << LineError{line, error, value, expected};
    }
    // A date of the current (eight digits) or older (six) layout; blank is no date and no
    // fault, anything else unreadable is listed.
    QDate dateAt(const QString& line, int number, int pos, bool v03, const QString& what);
    ProviderSection& section(const QString& line, int number);
    // Starts a claim of the current provider; the "HXT" records after it are its items.
    Claim& startClaim(const QString& line, int number);
    Claim& claim() { return m_report.providers.last().claims.last(); }

    void readHeader(const QString& line, int number);
    void readClaim(const QString& line, int number);
    void readReciprocal(const QString& line, int number);
    void readItem(const QString& line, int number);

    ErrorReport& m_report;
    // Whether an "HXT" has a claim to belong to: not before the first claim header of a
    // provider.
    bool m_inClaim = false;
    bool m_itemSeen = false;  // an "HXT" followed the current claim header
};

QDate Reader::dateAt(const QString& line, int number, int pos, bool v03, const QString& what) {
    const QString text = take(line, pos, v03 ? 8 : 6);
    if (text.trimmed().isEmpty()) {
        return {};
    }
    const QDate date = received::dateOf(text);
    if (!date.isValid()) {
        fault(number, QStringLiteral("Invalid ") + what, text.trimmed(),
              v03 ? QStringLiteral("YYYYMMDD") : QStringLiteral("YYMMDD"));
    }
    return date;
}

ProviderSection& Reader::section(const QString& line, int number) {
    if (m_report.providers.isEmpty()) {
        // Claims before any file header are still listed, under a provider left blank.
        fault(number, QStringLiteral("Claim record without a file header"), take(line, 1, 3),
              QStringLiteral("HX1 before it"));
        m_report.providers << ProviderSection{};
    }
    return m_report.providers.last();
}

Claim& Reader::startClaim(const QString& line, int number) {
    ProviderSection& provider = section(line, number);
    provider.claims << Claim{};
    provider.claims.last().line = number;
    m_inClaim = true;
    m_itemSeen = false;
    return provider.claims.last();
}

void Reader::readHeader(const QString& line, int number) {
    ProviderSection header;
    header.line = number;
    header.v03 = take(line, 4, 3) == QLatin1String("V03");
    header.placements = placementsOf(line);
    // Until the doctors are looked up, the rule without them.
    const std::optional<BillingNumber> chosen = chooseBillingNumber(header.placements);
    const BillingNumber& billing = chosen ? *chosen : header.placements.back();
    header.group = billing.group;
    header.provider = billing.provider;
    header.specialty = billing.specialty;
    if (!chosen) {
        fault(number, QStringLiteral("Invalid Health Care Provider Number"), header.provider,
              QStringLiteral("6 digits"));
    }
    m_report.providers << header;
    m_inClaim = false;
}

void Reader::readClaim(const QString& line, int number) {
    Claim& claim = startClaim(line, number);
    const bool v03 = m_report.providers.last().v03;
    // The older layout writes six-digit dates: what follows a date stands two positions
    // further left for each date before it.
    const int afterBirth = v03 ? 0 : -2;
    const int afterAdmit = v03 ? 0 : -4;
    claim.healthNum = take(line, 4, 10).trimmed();
    claim.versionCode = take(line, 14, 2).trimmed();
    claim.birthDate = dateAt(line, number, 16, v03, QStringLiteral("Birth Date"));
    claim.acctNum = take(line, 24 + afterBirth, 8).trimmed();
    claim.payProg = take(line, 32 + afterBirth, 3).trimmed();
    claim.payee = take(line, 35 + afterBirth, 1).trimmed();
    claim.refDoc = take(line, 36 + afterBirth, 6).trimmed();
    claim.facilityNum = take(line, 42 + afterBirth, 4).trimmed();
    claim.admitDate = dateAt(line, number, 46 + afterBirth, v03, QStringLiteral("Admission Date"));
    claim.refLab = take(line, 54 + afterAdmit, 4).trimmed();
    claim.manualReview = take(line, 58 + afterAdmit, 1).trimmed();
    claim.location = take(line, 59 + afterAdmit, 4).trimmed();
    claim.errors = received::errorCodesOf(line);
}

void Reader::readReciprocal(const QString& line, int number) {
    // The ministry repeats a reciprocal claim as its header followed by the registration
    // record; on its own, the registration record is the claim's header.
    Claim& claim = m_inClaim && !m_itemSeen ? this->claim() : startClaim(line, number);
    claim.reciprocal = true;
    claim.regNum = take(line, 4, 12).trimmed();
    claim.lastName = take(line, 16, 9).trimmed();
    claim.firstName = take(line, 25, 5).trimmed();
    claim.sex = take(line, 30, 1).trimmed();
    claim.province = take(line, 31, 2).trimmed();
    QStringList codes = claim.errors.split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString& code :
         received::errorCodesOf(line).split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        if (!codes.contains(code)) {
            codes << code;
        }
    }
    claim.errors = codes.join(QLatin1Char(','));
}

void Reader::readItem(const QString& line, int number) {
    if (!m_inClaim) {
        fault(number, QStringLiteral("Item record without a claim header"), take(line, 4, 5),
              QStringLiteral("HXH or HXR before it"));
        return;
    }
    const bool v03 = m_report.providers.last().v03;
    Item item;
    item.line = number;
    item.serviceCode = take(line, 4, 5).trimmed();
    const QString fee = take(line, 11, 6);
    if (!fee.trimmed().isEmpty()) {
        item.fee = received::amountOf(fee);
        if (!item.fee) {
            fault(number, QStringLiteral("Invalid Fee Submitted"), fee.trimmed(),
                  QStringLiteral("6 digits"));
        }
    }
    const QString services = take(line, 17, 2);
    if (services.size() == 2 && services.at(0).isDigit() && services.at(1).isDigit()) {
        item.numServ = services.toInt();
    } else if (!services.trimmed().isEmpty()) {
        fault(number, QStringLiteral("Invalid Number of Services"), services.trimmed(),
              QStringLiteral("2 digits"));
    }
    item.serviceDateText = take(line, 19, v03 ? 8 : 6).trimmed();
    item.serviceDate = dateAt(line, number, 19, v03, QStringLiteral("Service Date"));
    item.diagCode = take(line, v03 ? 27 : 25, 4).trimmed();
    // The explanatory code sits beside the error codes, which the ministry appends at the
    // same positions in every layout; only the fields copied from the claim file move.
    item.explCode = take(line, 63, 2).trimmed();
    item.errors = received::errorCodesOf(line);
    claim().items << item;
    m_itemSeen = true;
}

void Reader::readLine(const QString& line, int number) {
    // A record of another length (trailing blanks lost to an editor, say) is listed and
    // still read: its fields are positional and a short one simply reads blank.
    received::checkLength(line, number, kRecordLength, m_report.errors);
    if (take(line, 1, 2) != QLatin1String("HX")) {
        fault(number, QStringLiteral("Invalid Transaction Identifier"), take(line, 1, 2),
              QStringLiteral("HX"));
        return;
    }
    const QString type = take(line, 3, 1);
    if (type == QLatin1String("1")) {
        readHeader(line, number);
    } else if (type == QLatin1String("H")) {
        readClaim(line, number);
    } else if (type == QLatin1String("R")) {
        readReciprocal(line, number);
    } else if (type == QLatin1String("T")) {
        readItem(line, number);
    } else if (type == QLatin1String("8")) {
        m_report.messages << Message{number, take(line, 4, 2).trimmed(),
                                     take(line, 6, 55).trimmed()};
    } else if (type != QLatin1String("9")) {  // the trailer's counts are not used
        fault(number, QStringLiteral("Invalid Record Type"), type,
              QStringLiteral("1,H,R,T,8 or 9"));
    }
}

}  // namespace

int ErrorReport::itemCount() const {
    int count = 0;
    for (const ProviderSection& provider : providers) {
        for (const Claim& claim : provider.claims) {
            count += static_cast<int>(claim.items.size());
        }
    }
    return count;
}

int ErrorReport::countOf(ItemOutcome outcome) const {
    int count = 0;
    for (const ProviderSection& provider : providers) {
        for (const Claim& claim : provider.claims) {
            count += static_cast<int>(
                std::count_if(claim.items.begin(), claim.items.end(),
                              [outcome](const Item& item) { return item.outcome == outcome; }));
        }
    }
    return count;
}

std::array<BillingNumber, 2> placementsOf(const QString& line) {
    std::array<BillingNumber, 2> placements;
    for (std::size_t i = 0; i < placements.size(); ++i) {
        const int at = kGroupPositions.at(i);
        placements[i] = {take(line, at, 4).trimmed(), take(line, at + 4, 6).trimmed(),
                         take(line, at + 10, 2).trimmed()};
    }
    return placements;
}

std::optional<BillingNumber> chooseBillingNumber(const std::array<BillingNumber, 2>& placements,
                                                 const DoctorTest& isOfficeDoctor) {
    for (const BillingNumber& number : placements) {
        if (isOfficeDoctor && claimform::isProviderNumber(number.provider) &&
            isOfficeDoctor(number)) {
            return number;
        }
    }
    for (const BillingNumber& number : placements) {
        if (claimform::isProviderNumber(number.provider)) {
            return number;
        }
    }
    return std::nullopt;
}

bool firstRecordValid(const QString& line) {
    const QString version = take(line, 4, 3);
    return take(line, 1, 3) == QLatin1String("HX1") &&
           (version == QLatin1String("V03") || version == QLatin1String("V02")) &&
           chooseBillingNumber(placementsOf(line)).has_value();
}

ErrorReport read(const QStringList& lines, const received::Progress& progress,
                 const received::CutLines& cut) {
    ErrorReport report;
    report.lineCount = static_cast<int>(lines.size());
    Reader reader(report);
    for (int i = 0; i < report.lineCount; ++i) {
        if (progress && i > 0 && i % received::kProgressEvery == 0) {
            progress(i, report.lineCount);
        }
        if (!received::listedAsCut(cut, i, kRecordLength, report.errors)) {
            reader.readLine(lines.at(i), i + 1);
        }
    }
    if (progress) {
        progress(report.lineCount, report.lineCount);
    }
    return report;
}

}  // namespace brimsett::errorreport
