#pragma once

// The made-up claims the benchmarks of claims share: an office of many claims and their items,
// shaped by ClaimShape. The plain shape (one doctor, two or three items a claim, all paid but
// the newest) is what reconciling a remittance needs; the varied shape spreads doctors, one to
// three items a claim (1.5 on average), codes, programs, statuses, batches, resubmissions,
// invoices and remittances over the years, as an office's history would.
#include "BenchOffice.h"
#include "claims/ClaimRecord.h"
#include "foundation/Database.h"

#include <QDate>
#include <QStringList>

namespace brimsett::bench {

struct ClaimShape {
    int claims = 400000;
    QDate firstDay{2025, 11, 1};
    int days = 365;      // service dates spread over this many days from firstDay
    int doctors = 1;     // "D1", "D2", ...
    int awaiting = 0;    // the newest claims sent, not yet answered (before the pending ones)
    int pending = 0;     // the newest claims, not yet sent (varied shape)
    int splitEvery = 0;  // one awaiting claim in this many has a part split off
    bool varied = false;
};

struct BenchCode {
    const char* code;
    int cents;
};

class ClaimOffice {
public:
    explicit ClaimOffice(ClaimShape shape) : m_shape(std::move(shape)) {}
    const ClaimShape& shape() const { return m_shape; }

    static QString account(int n) {
        return QStringLiteral("%1").arg(n + 1, 8, 10, QLatin1Char('0'));
    }

    // The plain shape cycles through a year; the varied one goes forward in time, so the
    // newest claims are the pending and awaiting ones.
    QDate dayOf(int n) const {
        return m_shape.varied ? m_shape.firstDay.addDays(qint64(n) * m_shape.days / m_shape.claims)
                              : m_shape.firstDay.addDays(n % m_shape.days);
    }
    int itemsOf(int n) const {
        if (!m_shape.varied) {
            return n % 2 ? 3 : 2;
        }
        const int r = int(mix(n, 7) % 10);
        return r < 6 ? 1 : r < 9 ? 2 : 3;
    }
    BenchCode codeOf(int n, int item) const {
        static constexpr BenchCode plain[] = {{"A007A", 3370}, {"E083A", 1011}, {"G010A", 354}};
        if (!m_shape.varied) {
            return plain[item];
        }
        // Five common codes take 60 in 100 items, the other 35 share the rest.
        static constexpr BenchCode common[] = {
            {"A007A", 3370}, {"A001A", 2375}, {"G010A", 354}, {"E083A", 1011}, {"A008A", 1500}};
        static constexpr int weights[] = {25, 12, 10, 8, 5};
        static constexpr BenchCode rare[] = {
            {"K005A", 6275}, {"K013A", 6275}, {"K033A", 3230}, {"G365A", 1070}, {"G538A", 560},
            {"G539A", 560},  {"G840A", 995},  {"G590A", 995},  {"G591A", 475},  {"G700A", 515},
            {"E430A", 1125}, {"E431A", 1125}, {"A003A", 8710}, {"A004A", 3840}, {"A888A", 3370},
            {"B960A", 4185}, {"B990A", 2700}, {"C010A", 2100}, {"C122A", 3190}, {"C124A", 3190},
            {"H102A", 1670}, {"H112A", 1670}, {"J301A", 2130}, {"K017A", 1690}, {"K030A", 3740},
            {"K130A", 7780}, {"K131A", 5550}, {"K132A", 7780}, {"P004A", 5645}, {"P005A", 5645},
            {"Q040A", 6000}, {"Q042A", 5000}, {"R048A", 9450}, {"Z101A", 2900}, {"Z176A", 3300}};
        int r = int(mix(n, 31 + item) % 100);
        for (int i = 0; i < 5; ++i) {
            if (r < weights[i]) {
                return common[i];
            }
            r -= weights[i];
        }
        return rare[r % 35];
    }
    QString doctorOf(int n) const { return QStringLiteral("D%1").arg(1 + n % m_shape.doctors); }
    // The ministry batch a claim went out in: the month after its service, per doctor.
    QString batchOf(int n, int monthsLater = 1) const {
        const QDate sent = dayOf(n).addMonths(monthsLater);
        return sent.toString(QStringLiteral("yyMM")) + QStringLiteral("01") +
               QStringLiteral("%1").arg(1 + n % m_shape.doctors, 6, 10, QLatin1Char('0'));
    }
    bool isPending(int n) const { return m_shape.varied && n >= m_shape.claims - m_shape.pending; }
    bool isAwaiting(int n) const {
        return n >= m_shape.claims - m_shape.pending - m_shape.awaiting && !isPending(n);
    }

    void fill(Database& db) const {
        Transaction tx(db);
        for (int d = 0; d < m_shape.doctors; ++d) {
            db.exec(QStringLiteral("Insert Into doctors (DoctorID, GroupNum, ProviderNum, "
                                   "SpecCode, MOHOffice) Values (?,'0000',?,'00','J')"),
                    {QStringLiteral("D%1").arg(d + 1), QString::number(272278 + d)});
        }
        if (m_shape.varied) {
            fillCodes(db);
        }
        Rows claims(db,
                    QStringLiteral("Insert Into claims (ClaimID, AcctNum, BatchID, DoctorID, "
                                   "PatientID, PayProg, ThirdPartyID, HealthNum, FName, LName, "
                                   "DateCreated, InvoiceNum, AllBatches, RA)"),
                    14);
        Rows items(db,
                   QStringLiteral("Insert Into items (ClaimID, ItemID, ServiceCode, DiagCode, "
                                  "NumServ, FeeSubm, ServiceDate, FeePaid, Status, Errors, "
                                  "facility)"),
                   11);
        Rows invoices(db, QStringLiteral("Insert Into invoices (ID, InvoiceNum)"), 2);
        int invoiced = 0;
        for (int n = 0; n < m_shape.claims; ++n) {
            const qint64 id = kFirstClaimId + n;
            if (!m_shape.varied) {
                plainClaim(claims, items, id, n);
                continue;
            }
            const Fate f = fate(n);
            QVariant invoice;
            if (f.batch == QLatin1String(" Direct     ") ||
                f.batch == QLatin1String(" thirdparty ")) {
                // Two claims to an invoice.
                const int number = 1001 + invoiced / 2;
                if (invoiced++ % 2 == 0) {
                    invoices.add({number, QString::number(number)});
                }
                invoice = QString::number(number) + QLatin1Char('!');
            }
            const int patient = 1 + int(mix(n, 3) % kPatients);
            claims.add({id, account(n), f.batch, doctorOf(n), patient, f.payProg,
                        f.thirdParty ? QVariant(f.thirdParty) : QVariant(),
                        QStringLiteral("%1").arg(1000000000 + patient, 10, 10, QLatin1Char('0')),
                        firstName(patient), lastName(patient),
                        dayOf(n).addDays(2).startOfDay().toString(Qt::ISODate), invoice,
                        f.allBatches.isEmpty() ? QVariant() : QVariant(f.allBatches),
                        f.ra.isEmpty() ? QVariant() : QVariant(f.ra)});
            for (int i = 0; i < itemsOf(n); ++i) {
                const BenchCode code = codeOf(n, i);
                const qint64 units = qint64(code.cents) * 100;
                const int r = int(mix(n, 11 + i) % 100);
                QVariant paid;
                if (f.status == 2) {
                    paid = r < 4 ? units * 97 / 100 : units;
                }
                static const char* const diags[] = {"401", "250", "300", "780",
                                                    "460", "724", "311", "493"};
                static const char* const errors[] = {"30", "35", "55", "I2"};
                items.add({id, i + 1, QString::fromLatin1(code.code),
                           QString::fromLatin1(diags[mix(n, 13 + i) % 8]), 1, units,
                           dayOf(n).toString(Qt::ISODate), paid, f.status,
                           f.status == 1 || f.status == 3
                               ? QVariant(QString::fromLatin1(errors[mix(n, 17) % 4]))
                               : QVariant(),
                           r == 50 ? QVariant(QStringLiteral("General Hospital")) : QVariant()});
            }
        }
        claims.flush();
        items.flush();
        invoices.flush();
        tx.commit();
    }

    // The line every claims benchmark starts with: what the office holds and its building time.
    static void tell(QTextStream& out, Database& db, qint64 builtMs) {
        out << "office: " << db.scalar(QStringLiteral("Select Count(*) From claims")).toInt()
            << " claims, " << db.scalar(QStringLiteral("Select Count(*) From items")).toInt()
            << " items, built in " << builtMs << " ms on " << engine(db) << "\n";
        out.flush();
    }

    static constexpr int kPatients = 30000;

private:
    // A fixed scramble of a claim number, so that the spread looks random but every run is the
    // same office.
    static quint64 mix(int n, int salt) {
        quint64 x = quint64(n) * 0x9E3779B97F4A7C15ULL + quint64(salt) * 0xBF58476D1CE4E5B9ULL;
        x ^= x >> 31;
        x *= 0x94D049BB133111EBULL;
        return x ^ (x >> 29);
    }
    static QString lastName(int patient) {
        static const char* const names[] = {
            "Smith",     "Brown",   "Tremblay", "Martin",   "Roy",      "Wilson",   "MacDonald",
            "Gagnon",    "Johnson", "Taylor",   "Côté",     "Campbell", "Anderson", "Leblanc",
            "Lee",       "Jones",   "White",    "Williams", "Miller",   "Thompson", "Gauthier",
            "Young",     "Van Dyk", "O'Neil",   "Morin",    "Bouchard", "Scott",    "Stewart",
            "Pelletier", "Lavoie",  "Fortin",   "Gagné",    "Ouellet",  "Wong",     "Singh"};
        return QString::fromUtf8(names[patient % 35]) +
               (patient % 7 ? QString() : QStringLiteral("-Reid"));
    }
    static QString firstName(int patient) {
        static const char* const names[] = {"Mary",  "John", "Anne",  "Peter",  "Linda",
                                            "Raj",   "Chen", "Marie", "Luc",    "Sarah",
                                            "David", "Emma", "Noah",  "Olivia", "Liam"};
        return QString::fromLatin1(names[(patient / 35) % 15]);
    }

    struct Fate {
        QString batch;
        QString payProg;
        int thirdParty = 0;
        int status = 0;
        QString allBatches;
        QString ra;
    };
    Fate fate(int n) const {
        Fate f;
        const int program = int(mix(n, 5) % 100);
        f.payProg = program < 88   ? QStringLiteral("HCP - P")
                    : program < 92 ? QStringLiteral("HCP - S")
                    : program < 94 ? QStringLiteral("WCB")
                    : program < 96 ? QStringLiteral("RMB")
                    : program < 98 ? QStringLiteral("Direct")
                                   : QStringLiteral("Third Party");
        const bool recent = isPending(n) || isAwaiting(n);
        if (program >= 96) {
            f.batch =
                program < 98 ? QStringLiteral(" Direct     ") : QStringLiteral(" thirdparty ");
            f.thirdParty = program < 98 ? 0 : 1 + n % 3;
            f.status = recent ? 0 : 2;
            return f;
        }
        if (isPending(n)) {
            f.batch = kPendingBatch;
            return f;
        }
        f.batch = batchOf(n);
        f.allBatches = f.batch + QLatin1Char('!');
        const int outcome = int(mix(n, 9) % 100);
        if (outcome < 3) {
            // Rejected once, sent again the month after.
            f.allBatches = f.batch + QLatin1Char('!') + batchOf(n, 2) + QLatin1Char('!');
            f.batch = batchOf(n, 2);
        }
        if (isAwaiting(n)) {
            return f;
        }
        f.status = outcome >= 3 && outcome < 5 ? 1 : outcome < 7 ? 3 : outcome < 9 ? 0 : 2;
        if (f.status != 0) {
            f.ra = QStringLiteral("PB%1.001 %2!")
                       .arg(272278 + n % m_shape.doctors)
                       .arg(dayOf(n).addMonths(2).toString(QStringLiteral("yyyyMM15")));
        }
        return f;
    }

    void plainClaim(Rows& claims, Rows& items, qint64 id, int n) const {
        const bool awaiting = isAwaiting(n);
        const auto claim = [&](qint64 claimId) {
            claims.add({claimId, account(n), QStringLiteral("260101000001"), QStringLiteral("D1"),
                        1 + n % 5000, QStringLiteral("HCP - P"), QVariant(),
                        QStringLiteral("1234567897"), QVariant(), QVariant(), QVariant(),
                        QVariant(), QVariant(), QVariant()});
        };
        const auto item = [&](qint64 claimId, int itemId, const BenchCode& code, bool paid) {
            const qint64 units = qint64(code.cents) * 100;
            items.add({claimId, itemId, QString::fromLatin1(code.code), QStringLiteral("401"), 1,
                       units, dayOf(n).toString(Qt::ISODate), paid ? QVariant(units) : QVariant(),
                       paid ? 2 : 0, QVariant(), QVariant()});
        };
        claim(id);
        for (int i = 0; i < itemsOf(n); ++i) {
            item(id, i + 1, codeOf(n, i), !awaiting);
        }
        if (awaiting && m_shape.splitEvery > 0 && n % m_shape.splitEvery == 0) {
            claim(kFirstSplitClaimId + n);
            item(kFirstSplitClaimId + n, 1, {"A007B", 1200}, false);
        }
    }

    void fillCodes(Database& db) const {
        QSet<QString> billed;
        Rows patients(db,
                      QStringLiteral("Insert Into patients (PatientID, HealthNum, FName, LName, "
                                     "City, Province)"),
                      6);
        for (int p = 1; p <= kPatients; ++p) {
            patients.add({p, QStringLiteral("%1").arg(1000000000 + p, 10, 10, QLatin1Char('0')),
                          firstName(p), lastName(p), QStringLiteral("Kingston"),
                          QStringLiteral("ON")});
        }
        patients.flush();
        // A schedule of about the ministry's size, with the codes billed among them.
        Rows codes(db, QStringLiteral("Insert Into servicecodes (ServiceCode, Description)"), 2);
        for (int c = 0; c < 7000; ++c) {
            codes.add({QStringLiteral("X%1").arg(c, 4, 10, QLatin1Char('0')),
                       QStringLiteral("Schedule code %1").arg(c)});
        }
        for (int n = 0; n < 5000; ++n) {
            for (int i = 0; i < 3; ++i) {
                const QString code = QString::fromLatin1(codeOf(n, i).code).left(4);
                if (!billed.contains(code)) {
                    billed << code;
                    codes.add({code, QStringLiteral("Service %1").arg(code)});
                }
            }
        }
        codes.flush();
        for (int t = 1; t <= 3; ++t) {
            db.exec(QStringLiteral("Insert Into thirdparty (ThirdPartyID, Name) Values (?, ?)"),
                    {t, QStringLiteral("Payer %1").arg(t)});
        }
        for (const char* code : {"30", "35", "55", "I2"}) {
            db.exec(QStringLiteral("Insert Into explcodes (ExplCode, Description) Values (?, ?)"),
                    {QString::fromLatin1(code),
                     QStringLiteral("Explanation %1").arg(QLatin1String(code))});
        }
    }

    ClaimShape m_shape;
};

}  // namespace brimsett::bench
