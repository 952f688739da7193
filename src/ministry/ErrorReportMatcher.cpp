#include "claims/ClaimRecord.h"
#include "foundation/Database.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "ministry/AnswerDoctor.h"
#include "ministry/ClaimFileRecords.h"
#include "ministry/ErrorReport.h"
#include "patients/PatientEntry.h"

#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>

namespace brimsett::errorreport {

namespace {

// The error codes an item can hold: five codes and four commas fill its `Errors`.
constexpr int kMostCodes = 5;

QString lastFirst(const QString& last, const QString& first) {
    if (last.isEmpty() || first.isEmpty()) {
        return last + first;
    }
    return last + QStringLiteral(", ") + first;
}

// What a rejected item records: its own codes, or, when the ministry gave the item none,
// its claim header's, so that a rejection always says why.
QString codesFor(const Item& item, const Claim& claim) {
    if (!item.errors.isEmpty()) {
        return item.errors;
    }
    return claim.errors.split(QLatin1Char(',')).mid(0, kMostCodes).join(QLatin1Char(','));
}

class Matcher {
public:
    Matcher(Database& db, bool reconcile, bool autoSplit)
        : m_db(db), m_reconcile(reconcile), m_autoSplit(autoSplit) {}

    void lookUpSection(ProviderSection& section);
    const QStringList& logLines() const { return m_logLines; }

private:
    QList<qint64> lookUpClaim(Claim& claim);
    void lookUpPatient(Claim& claim);
    ItemOutcome apply(const QList<qint64>& claimIds, const Claim& claim, const Item& item);
    // The first item a search finds that no earlier record of this file has taken.
    std::optional<ItemRecord> firstUntaken(QSqlQuery query) const;
    std::optional<ItemRecord> find(const QList<qint64>& claimIds, const Item& item);

    Database& m_db;
    bool m_reconcile;
    bool m_autoSplit;
    QStringList m_logLines;
    // Items matched by this file so far: two like records of one claim answer two items.
    QSet<std::pair<qint64, int>> m_taken;
};

void Matcher::lookUpSection(ProviderSection& section) {
    const std::optional<BillingNumber> chosen =
        chooseBillingNumber(section.placements, officeDoctors(m_db));
    if (chosen) {
        section.group = chosen->group;
        section.provider = chosen->provider;
        section.specialty = chosen->specialty;
    }
    const auto doctor =
        answerdoctor::byBillingNumber(m_db, section.group, section.provider, section.specialty);
    section.doctorName = doctor ? doctor->displayName() : QString();
    for (Claim& claim : section.claims) {
        const QList<qint64> claimIds = lookUpClaim(claim);
        if (!m_reconcile) {
            continue;
        }
        for (Item& item : claim.items) {
            item.outcome = apply(claimIds, claim, item);
        }
    }
}

// Every claim with the account number (the parts of a split claim share it); the first
// names the patient.
QList<qint64> Matcher::lookUpClaim(Claim& claim) {
    QList<qint64> ids;
    if (claim.acctNum.isEmpty()) {
        lookUpPatient(claim);
        return ids;
    }
    const QStringList accounts = claimfile::accountForms(claim.acctNum);
    const QVariantList forms(accounts.begin(), accounts.end());
    QStringList marks;
    marks.fill(QStringLiteral("?"), forms.size());
    QSqlQuery query =
        m_db.exec(QStringLiteral("Select * From Claims Where AcctNum In (") +
                      marks.join(QLatin1Char(',')) + QStringLiteral(") Order By ClaimID"),
                  forms, QStringLiteral("finding account ") + claim.acctNum);
    while (query.next()) {
        const ClaimRecord found = ClaimRecord::fromRecord(query.record());
        if (ids.isEmpty()) {
            claim.claimId = found.claimId;
            claim.patientName = lastFirst(found.lName, found.fName);
            claim.patientBirthDate = found.dob;
        }
        ids << found.claimId;
    }
    if (ids.isEmpty()) {
        lookUpPatient(claim);
    }
    return ids;
}

void Matcher::lookUpPatient(Claim& claim) {
    // A reciprocal claim names its patient by the registration number alone.
    const QString number = claim.healthNum.isEmpty() ? claim.regNum : claim.healthNum;
    if (number.isEmpty()) {
        return;
    }
    QSqlQuery query =
        m_db.exec(QStringLiteral("Select * From Patients Where HealthNum=? Order By PatientID"),
                  {number}, QStringLiteral("finding the patient of health number ") + number);
    if (query.next()) {
        const PatientEntry patient = PatientEntry::fromRecord(query.record());
        claim.patientName = patient.displayName(true);
        claim.patientBirthDate = readTypedDate(patient.dob);
    }
}

std::optional<ItemRecord> Matcher::firstUntaken(QSqlQuery query) const {
    while (query.next()) {
        ItemRecord found = ItemRecord::fromRecord(query.record());
        if (!m_taken.contains({found.claimId, found.itemId})) {
            return found;
        }
    }
    return std::nullopt;
}

// The searches from the closest match to the loosest, each over every claim of the account
// before the next is tried: the first that finds an item wins.
std::optional<ItemRecord> Matcher::find(const QList<qint64>& claimIds, const Item& item) {
    const QString doing = QStringLiteral("finding item ") + item.serviceCode;
    const QString open = QStringLiteral("Select * From Items Where ClaimID=? And ");
    const QString order = QStringLiteral(" Order By ItemID");
    // A blank diagnostic code in the report is an item stored without one.
    const QString diagnostic = item.diagCode.isEmpty()
                                   ? QStringLiteral(" And (DiagCode Is Null Or DiagCode='')")
                                   : QStringLiteral(" And DiagCode=?");
    const int searches = m_autoSplit ? 3 : 2;
    for (int search = 0; search < searches; ++search) {
        // An unreadable service date cannot be compared.
        if (search == 0 && !item.serviceDate.isValid()) {
            continue;
        }
        for (const qint64 claimId : claimIds) {
            QString sql;
            QVariantList values{claimId, item.serviceCode};
            if (search == 0) {
                sql =
                    open +
                    QStringLiteral("Status<>2 And Status<>3 And ServiceCode=? And ServiceDate=?") +
                    diagnostic;
                values << item.serviceDate;
                if (!item.diagCode.isEmpty()) {
                    values << item.diagCode;
                }
            } else if (search == 1) {
                sql = open + QStringLiteral("Status<>2 And Status<>3 And ServiceCode=?");
            } else {
                // Split partners: an item whatever its status, still by its code.
                sql = open + QStringLiteral("ServiceCode=?");
            }
            if (auto found = firstUntaken(m_db.exec(sql + order, values, doing))) {
                return found;
            }
        }
    }
    return std::nullopt;
}

ItemOutcome Matcher::apply(const QList<qint64>& claimIds, const Claim& claim, const Item& item) {
    // A record of error codes alone, without a service code, names no item of ours.
    if (item.serviceCode.isEmpty()) {
        return ItemOutcome::NotApplied;
    }
    const auto found = find(claimIds, item);
    if (!found) {
        return ItemOutcome::Unknown;
    }
    m_taken.insert({found->claimId, found->itemId});
    if (found->status != static_cast<int>(ItemStatus::Unanswered)) {
        return ItemOutcome::LeftAsItWas;
    }
    SqlStatementBuilder update;
    update.beginUpdate(QStringLiteral("Items"));
    update.addField(QStringLiteral("Status"), static_cast<int>(ItemStatus::Rejected),
                    SqlStatementBuilder::Kind::Number);
    update.addField(QStringLiteral("Errors"), codesFor(item, claim),
                    SqlStatementBuilder::Kind::Text);
    const auto bound = update.boundUpdate(QStringLiteral("ClaimID=? And ItemID=?"),
                                          {found->claimId, found->itemId});
    m_db.exec(bound.sql, bound.values,
              QStringLiteral("marking item %1 of claim %2 rejected")
                  .arg(found->itemId)
                  .arg(found->claimId));
    m_logLines << update.finishUpdate(
        QStringLiteral("ClaimID=%1 And ItemID=%2").arg(found->claimId).arg(found->itemId));
    return ItemOutcome::MarkedRejected;
}

}  // namespace

DoctorTest officeDoctors(Database& db) {
    return [&db](const BillingNumber& number) {
        return answerdoctor::byBillingNumberOrProvider(db, number.group, number.provider,
                                                       number.specialty)
            .has_value();
    };
}

void lookUp(Database& db, const SqlLog& log, ErrorReport& report, bool reconcile, bool autoSplit) {
    Transaction tx(db, QStringLiteral("reading the claim error report"));
    Matcher matcher(db, reconcile, autoSplit);
    // Filled on a copy: a refusal half way leaves the report as it was read.
    QList<ProviderSection> providers = report.providers;
    for (ProviderSection& section : providers) {
        matcher.lookUpSection(section);
    }
    tx.commit();
    report.providers = std::move(providers);
    for (const QString& line : matcher.logLines()) {
        log.write(line);
    }
}

}  // namespace brimsett::errorreport
