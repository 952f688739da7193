#include "ministry/Remittance.h"

#include "claims/ClaimRecord.h"
#include "foundation/Database.h"
#include "foundation/SqlLog.h"
#include "foundation/SqlStatementBuilder.h"
#include "ministry/PaymentRule.h"
#include "ministry/RemittanceQueries.h"

#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>

#include <algorithm>

namespace brimsett::remittance {

namespace {

using Kind = SqlStatementBuilder::Kind;

constexpr int kPaid = static_cast<int>(ItemStatus::Paid);

// A claim of the office under the remittance's account number, as read for one claim header.
struct OfficeClaim {
    qint64 id = 0;
    QString ra;
    QString mohClaim;
    bool changed = false;
};

// An item of the header's claims, read once for the header and kept as the database has it
// while its lines are answered.
struct OfficeItem {
    ItemRecord row;
    bool hasStatus = false;  // a NULL status is neither open nor closed to the matching
    QVariant storedDate;     // ServiceDate as stored, for the matching's exact comparison
};

// The service date as an equality of the stored value with the date would find it.
bool sameStoredDate(const QVariant& stored, const QDate& date) {
    if (!stored.isValid() || stored.isNull()) {
        return false;
    }
    if (stored.typeId() == QMetaType::QDate) {
        return stored.toDate() == date;
    }
    if (stored.typeId() == QMetaType::QDateTime) {
        return stored.toDateTime() == date.startOfDay();
    }
    return stored.toString() == date.toString(Qt::ISODate);
}

// The matchings in the order they are tried, most exact first; an item already paid or closed
// is found again only by the last.
constexpr int kMatchings = 4;
bool matches(int which, const OfficeItem& office, const Item& item) {
    const ItemRecord& r = office.row;
    if (!sameStoredDate(office.storedDate, item.serviceDate)) {
        return false;
    }
    const bool fee = r.feeSubm && *r.feeSubm == *item.submitted;
    const bool open = office.hasStatus && r.status != 2 && r.status != 3;
    const bool code = r.serviceCode == item.serviceCode;
    switch (which) {
        case 0:
            return fee && open && code;
        case 1:
            return open && code;
        case 2:
            return fee && open;
        default:
            return fee && code;
    }
}

bool holdsReference(const QString& ra, const QString& reference) {
    return ra.split(QLatin1Char('!')).contains(reference);
}

class Reconciler {
public:
    Reconciler(Database& db, QString reference, const ReconcileOptions& options)
        : m_db(db), m_reference(std::move(reference)), m_options(options) {}

    // Answers every usable item of the claim header; returns the outcomes in item order.
    QList<ItemOutcome> claim(const Claim& header);
    const QStringList& logLines() const { return m_logLines; }

private:
    void readClaims(const QString& account);
    OfficeItem* find(const Item& item);
    ItemOutcome answer(const Claim& header, const Item& item, OfficeItem& found);
    void answerPartners(const Item& item, qint64 claimId, int status, const QString& errors);
    void run(SqlStatementBuilder& b, const QString& condition, const QVariantList& values,
             const QString& logCondition);

    Database& m_db;
    QString m_reference;
    ReconcileOptions m_options;
    QList<OfficeClaim> m_claims;
    QList<OfficeItem> m_items;            // of m_claims
    QSet<qint64> m_referenceAdded;        // claims whose `RA` this reading extended
    QSet<QPair<qint64, int>> m_answered;  // items an earlier line of the file answered
    QStringList m_logLines;
};

void Reconciler::readClaims(const QString& account) {
    m_claims.clear();
    m_items.clear();
    if (account.isEmpty()) {
        return;  // a claim without an account number is no one's
    }
    const query::Statement claims = query::claimsOfAccount(account);
    QVariantList ids;
    {
        QSqlQuery q = m_db.exec(claims.sql, claims.values,
                                QStringLiteral("finding the claims of account ") + account);
        while (q.next()) {
            m_claims << OfficeClaim{q.value(0).toLongLong(), q.value(1).toString(),
                                    q.value(2).toString()};
            ids << m_claims.last().id;
        }
    }
    if (ids.isEmpty()) {
        return;
    }
    const query::Statement items = query::itemsOfClaims(ids);
    QSqlQuery q = m_db.exec(items.sql, items.values,
                            QStringLiteral("finding the items of account ") + account);
    while (q.next()) {
        const QSqlRecord record = q.record();
        const int status = record.indexOf(QStringLiteral("Status"));
        m_items << OfficeItem{ItemRecord::fromRecord(record), status >= 0 && !record.isNull(status),
                              record.value(QStringLiteral("ServiceDate"))};
    }
}

OfficeItem* Reconciler::find(const Item& item) {
    for (int which = 0; which < kMatchings; ++which) {
        for (OfficeItem& office : m_items) {
            // Two lines for two like services answer both items, not one item twice.
            if (matches(which, office, item) &&
                !m_answered.contains({office.row.claimId, office.row.itemId})) {
                return &office;
            }
        }
    }
    return nullptr;
}

void Reconciler::run(SqlStatementBuilder& b, const QString& condition, const QVariantList& values,
                     const QString& logCondition) {
    const SqlStatementBuilder::Bound bound = b.boundUpdate(condition, values);
    m_db.exec(bound.sql, bound.values, QStringLiteral("writing the remittance ") + m_reference);
    m_logLines << b.finishUpdate(logCondition);
}

ItemOutcome Reconciler::answer(const Claim& header, const Item& item, OfficeItem& office) {
    ItemRecord& found = office.row;
    const QString& expl = item.explCode;
    const paymentrule::Settled settled =
        paymentrule::settle(*item.submitted, *item.paid, expl, m_options.i2ToFullSubmitted);
    const Money submitted = settled.submitted;
    const Money paid = settled.paid;
    const bool lowered = settled.submittedLowered;
    const int status = static_cast<int>(settled.status);

    SqlStatementBuilder b;
    b.beginUpdate(QStringLiteral("items"));
    bool changed = found.feePaid != paid || found.status != status || found.errors != expl;
    if (lowered && found.feeSubm != submitted) {
        b.addField(QStringLiteral("FeeSubm"), submitted.toVariant(), Kind::Number);
        found.feeSubm = submitted;
        changed = true;
    }
    if (changed) {
        b.addField(QStringLiteral("FeePaid"), paid.toVariant(), Kind::Number);
        b.addField(QStringLiteral("Status"), status, Kind::Number);
        b.addField(QStringLiteral("Errors"), expl, Kind::Text);
        run(b, QStringLiteral("ClaimID=? And ItemID=?"), {found.claimId, found.itemId},
            QStringLiteral("ClaimID=%1 And ItemID=%2").arg(found.claimId).arg(found.itemId));
        found.feePaid = paid;
        found.status = status;
        found.errors = expl;
        office.hasStatus = true;
    }
    m_answered.insert({found.claimId, found.itemId});

    for (OfficeClaim& c : m_claims) {
        if (c.id != found.claimId) {
            continue;
        }
        if (!holdsReference(c.ra, m_reference)) {
            c.ra += m_reference + QLatin1Char('!');
            m_referenceAdded.insert(c.id);
            c.changed = true;
        }
        if (c.mohClaim != header.mohClaim) {
            c.mohClaim = header.mohClaim;
            c.changed = true;
        }
    }
    if (m_options.autoSplit) {
        answerPartners(item, found.claimId, status, expl);
    }
    return status == kPaid ? ItemOutcome::Paid : ItemOutcome::Rejected;
}

// The parts split off a claim share its account number; their items of the same day under
// another suffix were billed together with this one and share its answer.
void Reconciler::answerPartners(const Item& item, qint64 claimId, int status,
                                const QString& errors) {
    QList<OfficeItem*> partners;
    const QString suffix = item.serviceCode.mid(4, 1);
    for (OfficeItem& other : m_items) {
        const ItemRecord& r = other.row;
        // An item without a suffix belongs to no split; only unanswered ones share the answer.
        if (r.claimId != claimId && other.hasStatus && r.status == 0 &&
            r.serviceDate == item.serviceDate && r.serviceCode.size() >= 5 &&
            r.serviceCode.mid(4, 1) != suffix) {
            partners << &other;
        }
    }
    for (OfficeItem* partner : partners) {
        const qint64 partnerClaim = partner->row.claimId;
        const int partnerItem = partner->row.itemId;
        SqlStatementBuilder b;
        b.beginUpdate(QStringLiteral("items"));
        b.addField(QStringLiteral("Status"), status, Kind::Number);
        b.addField(QStringLiteral("Errors"), errors, Kind::Text);
        run(b, QStringLiteral("ClaimID=? And ItemID=?"), {partnerClaim, partnerItem},
            QStringLiteral("ClaimID=%1 And ItemID=%2").arg(partnerClaim).arg(partnerItem));
        partner->row.status = status;
        partner->row.errors = errors;
    }
}

QList<ItemOutcome> Reconciler::claim(const Claim& header) {
    QList<ItemOutcome> outcomes(header.items.size(), ItemOutcome::NotReconciled);
    if (std::none_of(header.items.begin(), header.items.end(),
                     [](const Item& i) { return i.usable; })) {
        return outcomes;
    }
    readClaims(header.acctNum);
    for (qsizetype n = 0; n < header.items.size(); ++n) {
        const Item& item = header.items.at(n);
        if (!item.usable) {
            continue;
        }
        if (OfficeItem* found = find(item)) {
            outcomes[n] = answer(header, item, *found);
            continue;
        }
        const bool readBefore = std::any_of(m_claims.begin(), m_claims.end(), [&](const auto& c) {
            return !m_referenceAdded.contains(c.id) && holdsReference(c.ra, m_reference);
        });
        outcomes[n] = readBefore ? ItemOutcome::AlreadyRead : ItemOutcome::Unmatched;
    }
    for (OfficeClaim& c : m_claims) {
        if (!c.changed) {
            continue;
        }
        SqlStatementBuilder b;
        b.beginUpdate(QStringLiteral("claims"));
        b.addField(QStringLiteral("MOHClaim"), c.mohClaim, Kind::Text);
        b.addField(QStringLiteral("RA"), c.ra, Kind::Text);
        run(b, QStringLiteral("ClaimID=?"), {c.id}, QStringLiteral("ClaimID=%1").arg(c.id));
        c.changed = false;
    }
    return outcomes;
}

}  // namespace

ReconcileCounts reconcile(Database& db, const SqlLog& log, Remittance& remittance,
                          const QString& reference, const ReconcileOptions& options) {
    Reconciler reconciler(db, reference, options);
    QList<QList<ItemOutcome>> outcomes;
    brimsett::Transaction tx(db, QStringLiteral("reconciling the remittance ") + reference);
    for (const Claim& claim : remittance.claims) {
        outcomes << reconciler.claim(claim);
    }
    tx.commit();
    for (const QString& line : reconciler.logLines()) {
        log.write(line);
    }

    // The outcomes go on the items only once they are in the database.
    ReconcileCounts counts;
    for (qsizetype c = 0; c < remittance.claims.size(); ++c) {
        QList<Item>& items = remittance.claims[c].items;
        for (qsizetype i = 0; i < items.size(); ++i) {
            items[i].outcome = outcomes[c][i];
            switch (items[i].outcome) {
                case ItemOutcome::Paid:
                    ++counts.paid;
                    break;
                case ItemOutcome::Rejected:
                    ++counts.rejected;
                    break;
                case ItemOutcome::Unmatched:
                    ++counts.unmatched;
                    break;
                case ItemOutcome::AlreadyRead:
                    ++counts.alreadyRead;
                    break;
                case ItemOutcome::NotReconciled:
                    break;
            }
        }
    }
    return counts;
}

}  // namespace brimsett::remittance
